import {useMemo} from 'preact/hooks';

/**
 * Keys of the rows that are drawn: a row with the key of another gets its elements, with new texts, which costs less
 * than new elements. Elements lie in the order of the rows and none is moved, since it would lose the focus: a row
 * that comes gets the elements of one that goes from between the same rows that stay. If few stay, they do not count.
 */
class RowKeys {
  private rows: readonly number[] = [];
  private keys: number[] = [];
  private last = 0;

  /**
   * @param rows in their order.
   * @param active the row that has the focus or gets it. It shares no elements: a new text in an element with the
   *   focus is not read out.
   * @param reuse false if each other row shall keep its elements to itself as well.
   */
  of(rows: readonly number[], active: number, reuse: boolean): number[] {
    const wanted = new Set(rows);
    const drawn = this.rows.filter((row) => wanted.has(row));
    const jump = reuse && drawn.length < rows.length / 2;
    const stays = new Set(jump ? drawn.filter((row) => row === active) : drawn);
    let at = 0;
    const keys = rows.map((row) => {
      if (stays.has(row)) at = this.rows.indexOf(row, at);
      else if (!reuse || row === active || at === this.rows.length || stays.has(this.rows[at]))
        return ++this.last;
      return this.keys[at++];
    });
    this.rows = rows;
    this.keys = keys;
    return keys;
  }
}

/** Keys of the rows of one element. While text is selected, no row gets the elements of another. */
export function useRowKeys(rows: readonly number[], active: number): number[] {
  const keys = useMemo(() => new RowKeys(), []);
  return keys.of(rows, active, document.getSelection()?.type !== 'Range');
}
