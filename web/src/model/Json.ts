export type JsonObject = {[key: string]: unknown};

export const isObject = (value: unknown): value is JsonObject =>
  typeof value === 'object' && value !== null && !Array.isArray(value);

/** The records of a list; none of null or of anything else. */
export const recordsOf = (value: unknown): JsonObject[] =>
  Array.isArray(value) ? value.filter(isObject) : [];

export const objectAt = (value: unknown, key: string): JsonObject => {
  const found = isObject(value) ? value[key] : undefined;
  return isObject(found) ? found : {};
};

export const textAt = (value: JsonObject, key: string): string => {
  const found = value[key];
  return typeof found === 'string' ? found.trim() : '';
};

export const numberAt = (value: JsonObject, key: string): number => {
  const found = value[key];
  return typeof found === 'number' ? found : 0;
};

/** A JSON pointer (RFC 6901). */
export function pointer(...keys: (string | number)[]): string {
  let text = '';
  for (const key of keys) {
    text +=
      typeof key === 'string' && /[~/]/.test(key)
        ? `/${key.replace(/~/g, '~0').replace(/\//g, '~1')}`
        : `/${key}`;
  }
  return text;
}

export const keysOfPointer = (text: string): string[] =>
  text
    .split('/')
    .slice(1)
    .map((key) => key.replace(/~1/g, '/').replace(/~0/g, '~'));

/** Address in this page of a value in its document. */
export const rawLink = (document: number, ...keys: (string | number)[]): string =>
  `#raw/${document}${encodeText(pointer(...keys))}`;

const halfPairs = /[\uD800-\uDBFF](?![\uDC00-\uDFFF])|(?<![\uD800-\uDBFF])[\uDC00-\uDFFF]/g;

/** The text as an address can have it. */
export const wellFormed = (text: string): string => text.replace(halfPairs, '\uFFFD');

export const encodeText = (text: string): string =>
  // Most texts are as they are; each copy is garbage while one scrolls.
  /^[\w/.-]*$/.test(text) ? text : encodeURI(wellFormed(text)).replace(/#/g, '%23');
