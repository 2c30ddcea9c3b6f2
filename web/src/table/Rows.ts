import type {Shown} from '../model/Values';

/** The rows of a table, wherever they come from. Their order is that of the document. */
export interface Rows {
  readonly count: number;
  readonly columns: readonly Column[];
  /** The value as in the document. */
  value(row: number, column: number): unknown;
  /** What the reader sees of it, if the column's unit does not say. */
  shownAs?(row: number, column: number): Shown;
  /** Address of the value in the raw document, if it is there. */
  link(row: number, column: number): string | undefined;
  /** @param query in lower case, not empty. */
  matcher(query: string): (row: number) => boolean;
}

export interface Column {
  key: string;
  description?: string;
  source?: string;
  unit?: string;
  /** In pixels. */
  width: number;
  /** Whether it is shown until the reader decides. */
  common: boolean;
  /** Other words for a value, as for a code. */
  words?: (value: unknown) => string | undefined;
}
