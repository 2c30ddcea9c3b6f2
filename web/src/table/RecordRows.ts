import type {FieldSchema} from '../data/Source';
import {isObject, type JsonObject} from '../model/Json';
import {shown} from '../model/Values';
import {columnOf} from './columns';
import type {Column, Rows} from './Rows';

const sampled = 60;
const widest = 340;
const characterWidth = 8;

/** A record, with what identifies the one that it is part of. */
export interface Placed {
  record: JsonObject;
  /** Address of a value in it. */
  link: (...keys: (string | number)[]) => string;
  parent?: unknown;
}

/** The records of a list. */
export const placedRecords = (list: unknown, link: Placed['link']): Placed[] =>
  Array.isArray(list)
    ? list.flatMap((record, at) =>
        isObject(record) ? [{record, link: (...keys) => link(at, ...keys)}] : [],
      )
    : [];

/** Records of a list as rows, a column for each property. */
export class RecordRows implements Rows {
  readonly columns: Column[];
  private readonly parents: boolean;

  constructor(
    private readonly records: Placed[],
    fields: Record<string, FieldSchema>,
    identity: readonly string[] = [],
    parent?: string,
  ) {
    this.parents = parent !== undefined;
    const filled = new Set<string>();
    const keys = new Set([...identity, ...Object.keys(fields)]);
    for (const {record} of records) {
      for (const [key, value] of Object.entries(record)) {
        keys.add(key);
        if (value !== null && value !== '' && value !== 0 && value !== false) filled.add(key);
      }
    }
    const ordered = [...keys].filter((key) => Object.hasOwn(fields, key) || filled.has(key));
    this.columns = ordered.map((key) =>
      columnOf(
        key,
        Object.hasOwn(fields, key) ? fields[key] : undefined,
        filled.size === 0 || filled.has(key),
      ),
    );
    if (parent !== undefined) this.columns.unshift(columnOf(parent, undefined));
    this.columns.forEach((column, at) => (column.width = this.widthFor(at)));
  }

  /** Enough for the key and for the values of the first records. */
  private widthFor(column: number): number {
    const {key, unit} = this.columns[column];
    let longest = key.length + 3;
    for (let row = 0; row < Math.min(sampled, this.count); ++row) {
      longest = Math.max(longest, shown(this.value(row, column), unit).text.length);
    }
    return Math.round(Math.min(widest, 24 + longest * characterWidth));
  }

  get count(): number {
    return this.records.length;
  }

  value(row: number, column: number): unknown {
    const {record, parent} = this.records[row];
    if (this.parents && column === 0) return parent;
    const {key} = this.columns[column];
    return Object.hasOwn(record, key) ? record[key] : undefined;
  }

  link(row: number, column: number): string | undefined {
    if (this.parents && column === 0) return undefined;
    return this.records[row].link(this.columns[column].key);
  }

  matcher(query: string): (row: number) => boolean {
    return (row) =>
      this.columns.some((_, column) =>
        matches(this.value(row, column), query, this.columns[column]),
      );
  }
}

/** Whether the value or what is shown of it has the text. */
export function matches(value: unknown, query: string, {unit, words}: Column): boolean {
  if (value === null || value === undefined) return false;
  const text =
    typeof value === 'string'
      ? value
      : typeof value === 'object'
        ? JSON.stringify(value)
        : String(value);
  return (
    text.toLowerCase().includes(query) ||
    (words?.(value) ?? (typeof value === 'string' ? '' : shown(value, unit).text))
      .toLowerCase()
      .includes(query)
  );
}
