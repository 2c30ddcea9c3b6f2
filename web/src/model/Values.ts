/** How values of documents are shown: always as text, in units and in the reader's zone. */
export interface Shown {
  text: string;
  /** The exact value, if the text is not. */
  exact?: string;
}

/** Longer texts are cut in tables; the raw document has them whole. */
const mostShown = 300;

// Control characters, and those that change the direction or the lines of the text around them.
const unseen =
  /[\u0000-\u001F\u007F-\u009F\u061C\u200B\u200E\u200F\u2028-\u202E\u2066-\u2069\uFEFF]/g;

const escapeOf = (character: string): string => {
  const short = {'\n': '\\n', '\r': '\\r', '\t': '\\t'}[character];
  return short ?? `\\u${character.charCodeAt(0).toString(16).padStart(4, '0')}`;
};

/** The text with its unseen characters as JSON would escape them. */
export const visible = (text: string): string => text.replace(unseen, escapeOf);

export const shortText = (text: string): string =>
  visible(text.length > mostShown ? text.slice(0, mostShown) + '\u2026' : text.trim());

const sizeUnits = ['kB', 'MB', 'GB', 'TB', 'PB', 'EB'];

export const sizeText = (bytes: number): string => {
  if (Math.abs(bytes) < 1000) return `${bytes} ${bytes === 1 ? 'byte' : 'bytes'}`;
  let size = bytes / 1000;
  let unit = 0;
  // From here on the rounded size would have a fourth digit.
  while (Math.abs(size) >= 999.95 && unit + 1 < sizeUnits.length) {
    size /= 1000;
    ++unit;
  }
  return `${size.toFixed(1)} ${sizeUnits[unit]}`;
};

/** Memory is built in powers of two. */
export const memoryText = (bytes: number): string => `${Number((bytes / 2 ** 30).toFixed(1))} GiB`;

/** With its thousands set apart. */
export const grouped = (count: number): string => String(count).replace(/\B(?=(\d{3})+$)/g, ',');

export const countText = (count: number, one: string, several = one + 's'): string =>
  `${grouped(count)} ${count === 1 ? one : several}`;

const latest = 8.64e15;

export const dateText = (milliseconds: number): Shown => {
  if (milliseconds === 0) return {text: 'unknown', exact: '0'};
  if (!(Math.abs(milliseconds) <= latest)) return {text: String(milliseconds)};
  const date = new Date(milliseconds);
  const exact = date.toISOString().replace('T', ' ').replace('Z', ' UTC');
  return {text: `${dayOf(date)} ${clockOf(date)}`, exact};
};

/** The day in the reader's zone. */
export const dayText = (milliseconds: number): string =>
  Math.abs(milliseconds) <= latest ? dayOf(new Date(milliseconds)) : String(milliseconds);

// The browser's own formats take longer to load than the rest of the page.
const padded = (number: number, digits = 2): string => String(number).padStart(digits, '0');
const dayOf = (date: Date): string =>
  `${padded(date.getFullYear(), 4)}-${padded(date.getMonth() + 1)}-${padded(date.getDate())}`;
const clockOf = (date: Date): string =>
  [date.getHours(), date.getMinutes(), date.getSeconds()].map((part) => padded(part)).join(':');

export const isDate = (unit?: string): boolean => !!unit && /^(ms|milliseconds) since/.test(unit);

export const shown = (value: unknown, unit?: string): Shown => {
  if (value === null || value === undefined) return {text: ''};
  if (typeof value === 'string') return {text: shortText(value)};
  if (typeof value === 'number') return shownNumber(value, unit);
  if (typeof value === 'boolean') return {text: String(value)};
  return {text: listText(value)};
};

function shownNumber(value: number, unit?: string): Shown {
  if (isDate(unit)) return dateText(value);
  if (unit === 'bytes') return {text: sizeText(value), exact: `${value} bytes`};
  if (!unit || /^(code|count|identifier|number)$/.test(unit)) return {text: String(value)};
  return {text: `${value} ${unit}`};
}

/** Lists and objects on one line. */
function listText(value: unknown): string {
  let text = '';
  const add = (part: unknown): void => {
    if (text.length > mostShown) return;
    if (Array.isArray(part)) {
      part.slice(0, 50).forEach((each, at) => {
        text += at ? ', ' : '';
        add(each);
      });
    } else if (typeof part === 'object' && part !== null) {
      add(Object.values(part).filter((each) => each !== null && each !== ''));
    } else {
      text += shortText(String(part));
    }
  };
  add(value);
  return shortText(text);
}
