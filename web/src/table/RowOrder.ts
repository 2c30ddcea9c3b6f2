import {sortedRows} from '../model/Sort';
import {inSlices, type Steps} from '../model/Slices';
import type {Rows} from './Rows';

export interface Sorting {
  column: number;
  descending: boolean;
}

/** What rows are left; the name changes with the meaning of the test. */
export interface Filter {
  name: string;
  test: (row: number) => boolean;
}

const perStep = 64;

/** Which rows of a table are shown, in which order. Searches and sorts in slices. */
export class RowOrder {
  count: number;
  busy = false;
  private sorted?: Uint32Array;
  private sorting?: Sorting;
  private found?: Uint32Array;
  private query = '';
  private filter?: Filter;
  /** Whether `found` has all rows of `query` and `filter`. */
  private complete = true;
  private work = 0;

  constructor(
    private readonly rows: Rows,
    private readonly changed: () => void,
  ) {
    this.count = rows.count;
  }

  /** The row at a place, `count` of which there are. */
  row(place: number): number {
    return this.found ? this.found[place] : this.sorted ? this.sorted[place] : place;
  }

  /** Ends when the order is as wanted, or when it is no longer wanted. */
  async arrange(
    query: string,
    filter: Filter | undefined,
    sorting: Sorting | undefined,
  ): Promise<void> {
    const work = ++this.work;
    const wanted = (): boolean => this.work === work;
    this.busy = true;
    this.changed();
    if (
      sorting?.column !== this.sorting?.column ||
      sorting?.descending !== this.sorting?.descending
    ) {
      const sorted = sorting && (await inSlices(this.sort(sorting), wanted));
      if (!wanted()) return;
      this.sorted = sorted;
      this.sorting = sorting;
      this.complete = false;
    }
    await inSlices(this.search(query.toLowerCase(), filter), wanted, this.changed);
    if (!wanted()) return;
    this.busy = false;
    this.changed();
  }

  stop(): void {
    ++this.work;
  }

  private *sort({column, descending}: Sorting): Steps<Uint32Array> {
    const {rows} = this;
    const texts: string[] = [];
    let numbers: Float64Array | undefined = new Float64Array(rows.count);
    for (let row = 0; row < rows.count && numbers; ++row) {
      const value = rows.value(row, column) ?? -Infinity;
      if (typeof value === 'string' || typeof value === 'object') numbers = undefined;
      else numbers[row] = Number(value);
      if (row % perStep === 0) yield;
    }
    for (let row = 0; row < rows.count && !numbers; ++row) {
      const value = rows.value(row, column) ?? '';
      texts.push((typeof value === 'object' ? JSON.stringify(value) : String(value)).toLowerCase());
      if (row % perStep === 0) yield;
    }
    return yield* sortedRows(rows.count, numbers ?? texts, descending);
  }

  private *search(query: string, filter: Filter | undefined): Steps {
    const narrower =
      this.complete && this.filter?.name === filter?.name && query.startsWith(this.query);
    const former = narrower ? this.found : undefined;
    const formerCount = former ? this.count : this.rows.count;
    this.query = query;
    this.filter = filter;
    this.complete = false;
    if (!query && !filter) {
      this.found = undefined;
      this.count = this.rows.count;
    } else {
      const source = former ?? this.sorted;
      const matches = query ? this.rows.matcher(query) : () => true;
      const passes = filter?.test ?? (() => true);
      this.found = new Uint32Array(1024);
      this.count = 0;
      for (let place = 0; place < formerCount; ++place) {
        const row = source ? source[place] : place;
        if (passes(row) && matches(row)) this.add(row);
        if (place % perStep === 0) yield;
      }
    }
    this.complete = true;
  }

  private add(row: number): void {
    let found = this.found!;
    if (this.count === found.length) {
      this.found = new Uint32Array(this.count * 2);
      this.found.set(found);
      found = this.found;
    }
    found[this.count++] = row;
  }
}
