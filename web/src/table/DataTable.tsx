import {useEffect, useLayoutEffect, useMemo, useReducer, useState} from 'preact/hooks';
import {copyText, csvLine} from '../model/Csv';
import {inSlices, type Steps} from '../model/Slices';
import {countText, grouped, shortText} from '../model/Values';
import {ColumnChoice} from './ColumnChoice';
import {Grid} from './Grid';
import {PrintedTable} from './PrintedTable';
import {RowOrder, type Filter, type Sorting} from './RowOrder';
import type {Rows} from './Rows';
import {useKept} from './useKept';
import {usePrinting} from './usePrinting';

export type SortState = [
  sorting: Sorting | undefined,
  sort: (sorting: Sorting | undefined) => void,
];

interface Props {
  /** Unique in the page: search, sorting and columns are kept by it. */
  name: string;
  label: string;
  rows: Rows;
  filter?: Filter;
  /** How the rows are sorted, if something else also sorts them. */
  sortState?: SortState;
  /** How many elements the grid may have. */
  elements?: number;
}

/** A table with its tools: search, columns, row number, CSV. Give it a new key for other rows. */
export function DataTable({name, label, rows, filter, sortState, elements = 950}: Props) {
  const [, draw] = useReducer((drawn: number) => drawn + 1, 0);
  const [query, setQuery] = useKept(`${name} query`, () => '');
  const ownState = useKept<Sorting | undefined>(`${name} sorting`, () => undefined);
  const [sorting, setSorting] = sortState ?? ownState;
  const [hint, setHint] = useState(-1);
  const [target, setTarget] = useState<{row: number}>();
  const [columns, setColumns] = useKept(`${name} columns`, () =>
    rows.columns.map((_, at) => at).filter((at) => rows.columns[at].common),
  );
  const order = useMemo(() => new RowOrder(rows, () => draw(0)), [rows]);
  const printing = usePrinting();

  useLayoutEffect(
    () => void order.arrange(query, filter, sorting),
    [order, query, filter?.name, sorting],
  );
  useEffect(() => () => order.stop(), [order]);

  const sortBy = (column: number): void =>
    setSorting(
      sorting?.column !== column
        ? {column, descending: false}
        : sorting.descending
          ? undefined
          : {column, descending: true},
    );
  if (printing) return <PrintedTable label={label} rows={rows} order={order} columns={columns} />;
  return (
    <section class="table" aria-label={label}>
      <div class="tools">
        <input
          type="search"
          placeholder="Search"
          aria-label={`Search ${label}`}
          value={query}
          onInput={(event) => setQuery(event.currentTarget.value)}
        />
        <RowNumber count={order.count} go={(row) => setTarget({row})} />
        <ColumnChoice all={rows.columns} chosen={columns} choose={setColumns} />
        <CopyButton rows={rows} order={order} columns={columns} />
        <span class="count" role="status">
          {countOf(order, rows)}
        </span>
      </div>
      <Hint column={rows.columns[hint]} />
      <Grid
        label={label}
        rows={rows}
        order={order}
        columns={columns}
        sorting={sorting}
        sortBy={sortBy}
        explain={setHint}
        target={target}
        elements={elements}
      />
    </section>
  );
}

function countOf({busy, count}: RowOrder, rows: Rows): string {
  if (busy) return 'Searching\u2026';
  if (count === 0 && rows.count > 0) return 'No row fits.';
  return count === rows.count
    ? countText(count, 'row')
    : `${grouped(count)} of ${countText(rows.count, 'row')}`;
}

function Hint({column}: {column?: Rows['columns'][number]}) {
  const source = column?.source && ` Source: ${column.source}.`;
  return (
    <p class="hint">
      {column ? `${shortText(column.key)}: ${column.description ?? ''}${source ?? ''}` : '\u00a0'}
    </p>
  );
}

function RowNumber({count, go}: {count: number; go: (row: number) => void}) {
  const submit = (event: Event): void => {
    event.preventDefault();
    const number = Number(new FormData(event.currentTarget as HTMLFormElement).get('row'));
    if (number >= 1 && count > 0) go(Math.min(number, count) - 1);
  };
  return (
    <form class="row-number" onSubmit={submit}>
      <input
        type="number"
        name="row"
        min="1"
        max={count}
        placeholder="Row"
        aria-label="Go to row"
      />
      <button type="submit">Go</button>
    </form>
  );
}

const mostCopied = 200_000;

function CopyButton({rows, order, columns}: {rows: Rows; order: RowOrder; columns: number[]}) {
  const [said, say] = useState('');
  const copy = async (): Promise<void> => {
    if (order.count > mostCopied) {
      say(`Only up to ${grouped(mostCopied)} rows can be copied: search for fewer.`);
      return;
    }
    const text = await inSlices(csvSteps(rows, order, columns), () => true);
    say(
      (await copyText(text!))
        ? `Copied ${countText(order.count, 'row')}.`
        : 'The browser does not let pages copy.',
    );
  };
  return (
    <>
      <button type="button" onClick={copy}>
        Copy as CSV
      </button>
      <span class="said" role="status">
        {said}
      </span>
    </>
  );
}

function* csvSteps(rows: Rows, order: RowOrder, columns: number[]): Steps<string> {
  const lines = [csvLine(columns.map((column) => rows.columns[column].key))];
  for (let place = 0; place < order.count; ++place) {
    const row = order.row(place);
    lines.push(csvLine(columns.map((column) => rows.value(row, column))));
    yield;
  }
  return lines.join('');
}
