import {shown, type Shown} from '../model/Values';
import type {Rows} from './Rows';

/** What a cell shows. */
export function cellText(rows: Rows, row: number, column: number): Shown {
  const {unit, words} = rows.columns[column];
  const value = rows.value(row, column);
  const word = words?.(value);
  return word !== undefined
    ? {text: word, exact: String(value)}
    : (rows.shownAs?.(row, column) ?? shown(value, unit));
}
