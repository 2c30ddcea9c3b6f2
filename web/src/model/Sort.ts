import type {Steps} from './Slices';

const perStep = 1024;
const run = 16;

type Keys = ArrayLike<number> | ArrayLike<string>;

/** Sorts rows by their keys, equal ones in their order; undefined and NaN do not occur. */
export function* sortedRows(count: number, keys: Keys, descending: boolean): Steps<Uint32Array> {
  const sign = descending ? -1 : 1;
  const after = (a: number, b: number): boolean =>
    keys[a] < keys[b] ? sign < 0 : keys[a] > keys[b] ? sign > 0 : false;
  let from = new Uint32Array(count);
  for (let start = 0; start < count; start += run) {
    insertionSort(from, start, Math.min(start + run, count), after);
    if (start % perStep === 0) yield;
  }
  let to = new Uint32Array(count);
  for (let width = run; width < count; width *= 2) {
    yield* mergePass(from, to, width, after);
    [from, to] = [to, from];
  }
  return from;
}

function insertionSort(
  rows: Uint32Array,
  start: number,
  end: number,
  after: (a: number, b: number) => boolean,
): void {
  for (let at = start; at < end; ++at) {
    let place = at;
    while (place > start && after(rows[place - 1], at)) {
      rows[place] = rows[place - 1];
      --place;
    }
    rows[place] = at;
  }
}

function* mergePass(
  from: Uint32Array,
  to: Uint32Array,
  width: number,
  after: (a: number, b: number) => boolean,
): Steps {
  const count = from.length;
  let done = 0;
  for (let start = 0; start < count; start += 2 * width) {
    const middle = Math.min(start + width, count);
    const end = Math.min(start + 2 * width, count);
    let left = start;
    let right = middle;
    while (done < end) {
      const takeRight = left === middle || (right < end && after(from[left], from[right]));
      to[done++] = takeRight ? from[right++] : from[left++];
      if (done % perStep === 0) yield;
    }
  }
}
