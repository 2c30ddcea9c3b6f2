import {visible, grouped} from '../model/Values';

/** A line of the folded JSON. */
export interface Line {
  /** The place in the document: a JSON pointer, and for a part of a long value its range. */
  id: string;
  depth: number;
  /** Key, index, or undefined for a range. */
  key?: string | number;
  value: unknown;
  /** Of a range, the first member and the one after the last. */
  range?: [number, number];
  /** How many members can be unfolded. */
  members: number;
  /** Place among its siblings, from 1, and their number. */
  place: number;
  siblings: number;
}

/** So many members are shown at once; more are put into ranges. */
const most = 100;
/** A longer text is unfolded into pieces. */
const piece = 200;

const membersOf = (value: unknown): number =>
  typeof value === 'string'
    ? value.length > piece
      ? Math.ceil(value.length / piece)
      : 0
    : Array.isArray(value)
      ? value.length
      : typeof value === 'object' && value !== null
        ? Object.keys(value).length
        : 0;

export const rangeId = (id: string, from: number, end: number): string => `${id}\0${from}-${end}`;

/** How many members a range has in a value of so many. */
function rangeSize(members: number): number {
  let size = 1;
  while (members > size * most) size *= most;
  return size;
}

export const rootLine = (value: unknown): Line => ({
  id: '',
  depth: 0,
  value,
  members: membersOf(value),
  place: 1,
  siblings: 1,
});

/** The lines of what is unfolded, in their order. */
export function linesOf(root: unknown, open: ReadonlySet<string>): Line[] {
  const lines: Line[] = [];
  const waiting = [rootLine(root)];
  while (waiting.length) {
    const line = waiting.pop()!;
    lines.push(line);
    if (line.members > 0 && open.has(line.id)) waiting.push(...membersOfLine(line).reverse());
  }
  return lines;
}

function membersOfLine(line: Line): Line[] {
  const {value, depth} = line;
  const [from, end] = line.range ?? [0, line.members];
  const base = line.id.split('\0')[0];
  const size = rangeSize(end - from);
  const siblings = Math.ceil((end - from) / size);
  const keys =
    typeof value === 'object' && !Array.isArray(value) && value !== null
      ? Object.keys(value)
      : undefined;
  return Array.from({length: siblings}, (_, at): Line => {
    const common = {depth: depth + 1, place: at + 1, siblings};
    const first = from + at * size;
    if (size > 1) {
      const range: [number, number] = [first, Math.min(end, first + size)];
      return {...common, id: rangeId(base, ...range), value, range, members: range[1] - range[0]};
    }
    if (typeof value === 'string') {
      const part = value.slice(first * piece, (first + 1) * piece);
      return {...common, id: `${base}\0p${first}`, key: first * piece, value: part, members: 0};
    }
    const key = keys ? keys[first] : first;
    const member = (value as Record<string, unknown>)[key];
    const id = `${base}/${String(key).replace(/~/g, '~0').replace(/\//g, '~1')}`;
    return {...common, id, key, value: member, members: membersOf(member)};
  });
}

/** What must be unfolded for a place to be seen, and its line's id; the nearest one if it is not there. */
export function pathTo(root: unknown, keys: readonly string[]): {open: string[]; id: string} {
  const open: string[] = [];
  let line = rootLine(root);
  for (const key of keys) {
    const {value} = line;
    if (typeof value !== 'object' || value === null || !Object.hasOwn(value, key)) break;
    const index = Array.isArray(value) ? Number(key) : Object.keys(value).indexOf(key);
    for (let reached = false; !reached;) {
      open.push(line.id);
      const members = membersOfLine(line);
      const next = members.find((each) =>
        each.range ? index >= each.range[0] && index < each.range[1] : String(each.key) === key,
      );
      if (!next) return {open, id: line.id};
      reached = !next.range;
      line = next;
    }
  }
  return {open, id: line.id};
}

/** The value on one line. */
export function lineText({value, range, members}: Line): string {
  if (range) return `[${grouped(range[0])} \u2026 ${grouped(range[1] - 1)}]`;
  if (Array.isArray(value)) return members ? `[ ${grouped(members)} ]` : '[]';
  if (typeof value === 'object' && value !== null)
    return members ? `{ ${grouped(members)} }` : '{}';
  if (typeof value !== 'string') return String(value);
  if (value.length > piece)
    return `${visible(JSON.stringify(value.slice(0, 60)))} \u2026 ${grouped(value.length)} characters`;
  return visible(JSON.stringify(value));
}
