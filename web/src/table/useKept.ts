import {useState} from 'preact/hooks';

const kept = new Map<string, unknown>();

/** A state that is still there when the reader comes back from another view. Its name is unique in the page. */
export function useKept<Value>(
  name: string,
  initial: () => Value,
): [value: Value, set: (value: Value) => void] {
  const [value, setValue] = useState(() =>
    kept.has(name) ? (kept.get(name) as Value) : initial(),
  );
  const set = (next: Value): void => {
    kept.set(name, next);
    setValue(() => next);
  };
  return [value, set];
}
