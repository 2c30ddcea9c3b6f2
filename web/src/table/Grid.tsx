import {Component} from 'preact';
import {useLayoutEffect, useMemo, useRef} from 'preact/hooks';
import {isDate, shortText} from '../model/Values';
import {cellText} from './cells';
import {useRowKeys} from './RowKeys';
import type {RowOrder, Sorting} from './RowOrder';
import type {Rows} from './Rows';
import {placeOf, useCursor, type Place} from './useCursor';
import {drawnRows, rowHeight, useVirtualRows, type VirtualRows} from './useVirtualRows';

interface Props {
  label: string;
  rows: Rows;
  order: RowOrder;
  /** Those to show, in their order. */
  columns: number[];
  sorting?: Sorting;
  sortBy: (column: number) => void;
  /** The reader is at this column, -1 for none. */
  explain: (column: number) => void;
  /** The row to go to; a new object goes there again. */
  target?: {row: number};
  elements: number;
}

const headHeight = 32;
const rowsBeyond = 10;
// In pixels, about.
const characterWidth = 8;
const narrow = 150;

/** Draws the cells that can be seen. Arrow keys move among them; Enter sorts, or opens the value. */
export function Grid(props: Props) {
  const {label, rows, order, columns, elements, target} = props;
  const element = useRef<HTMLDivElement>(null);
  const virtual = useVirtualRows(element, order.count, headHeight);
  const room = virtual.scroller?.clientWidth ?? 0;
  const starts = useMemo(() => startsOf(rows, columns, room), [rows, columns, room]);
  const {active, go, note} = useCursor(element, virtual, order.count, starts);
  useLayoutEffect(() => {
    if (target) go({row: target.row, column: active.column});
  }, [target]);

  const seen = useSeenColumns(starts, virtual.scroller?.scrollLeft ?? 0, room, active.column);
  const most = Math.max(8, Math.floor(elements / (2 * seen.length + 1)) - rowsBeyond);
  const stop = tabStop(active, virtual);
  const boxes = useMemo(() => columns.map((_, place) => box(starts, place)), [columns, starts]);
  const cells = {rows, columns, seen, boxes};
  const drawn = drawnRows(virtual, active.row);
  const keys = useRowKeys(drawn, active.row);
  return (
    <div
      class="grid"
      role="grid"
      ref={element}
      aria-label={label}
      aria-rowcount={order.count + 1}
      aria-colcount={columns.length}
      aria-busy={order.busy}
      style={{height: `${Math.min(order.count, most) * rowHeight + headHeight + 18}px`}}
      onKeyDown={(event) =>
        moveByKey(event, active, order.count, columns.length, element.current!, go)
      }
      onFocusIn={(event) => {
        const place = placeOf(event.target as Element);
        if (!place) return;
        props.explain(columns[place.column]);
        note(place);
      }}
    >
      <div
        role="presentation"
        class="content"
        style={{height: `${virtual.height}px`, width: `${starts[columns.length]}px`}}
      >
        <Head {...props} {...cells} stop={stop} />
        {drawn.map((row, at) => (
          <Row
            key={keys[at]}
            {...cells}
            row={row}
            of={order.row(row)}
            top={inContent(virtual.top(row), virtual)}
            stop={stop.row === row ? stop.column : -1}
          />
        ))}
      </div>
    </div>
  );
}

/** Places of the columns that can be seen, and of the one with the focus; the same object as long as they stay. */
function useSeenColumns(starts: number[], left: number, room: number, active: number): number[] {
  const right = left + (room || 1000);
  const places = [...starts.keys()].filter(
    (place) =>
      place + 1 < starts.length &&
      (place === active || (starts[place + 1] > left && starts[place] < right)),
  );
  return useMemo(() => places, [places.join()]);
}

/** Where each column begins, in pixels, and the last one ends. */
function startsOf(rows: Rows, columns: number[], room: number): number[] {
  const widths = columns.map((column) => rows.columns[column].width);
  const sum = (numbers: number[]): number => numbers.reduce((all, each) => all + each, 0);
  // Room that is left goes to the wide columns, whose values may be cut, up to twice their width.
  const wants = widths.map((width) => Math.max(0, width - narrow));
  const share = Math.max(0, room - sum(widths)) / Math.max(1, sum(wants));
  const starts = [0];
  widths.forEach((width, at) =>
    starts.push(starts[at] + width + Math.floor(Math.min(width, wants[at] * share))),
  );
  return starts;
}

/** A row that is far away, and only drawn because it has the focus, must not make the content higher. */
function inContent(top: number, {height}: {height: number}): number {
  return Math.max(-100, Math.min(top, height - rowHeight));
}

/** The active cell, or one that can be seen if it is scrolled out of sight. */
function tabStop({row, column}: Place, {first, end}: VirtualRows): Place {
  const seen = row < 0 || (row >= first && row < end);
  return {row: seen ? row : Math.min(first + 4, end - 1), column};
}

function moveByKey(
  event: KeyboardEvent,
  {row, column}: Place,
  count: number,
  columns: number,
  element: HTMLElement,
  go: (place: Place) => void,
): void {
  const whole = event.ctrlKey || event.metaKey;
  if (event.altKey || (whole && !/^(Home|End)$/.test(event.key))) return;
  const page = Math.max(1, Math.floor((element.clientHeight - headHeight) / rowHeight) - 1);
  const places: Record<string, Place> = {
    ArrowUp: {row: row - 1, column},
    ArrowDown: {row: row + 1, column},
    ArrowLeft: {row, column: column - 1},
    ArrowRight: {row, column: column + 1},
    PageUp: {row: Math.max(0, row - page), column},
    PageDown: {row: row + page, column},
    Home: {row: whole ? 0 : row, column: 0},
    End: {row: whole ? count - 1 : row, column: columns - 1},
  };
  const place = places[event.key];
  if (!place) return;
  event.preventDefault();
  go(place);
}

interface HeadProps extends Props {
  /** Places of the columns that can be seen. */
  seen: number[];
  /** Where each column lies. */
  boxes: Box[];
  /** The one cell that the Tab key reaches. */
  stop: Place;
}

function Head({rows, columns, seen, boxes, stop, sorting, sortBy, explain}: HeadProps) {
  return (
    <div role="row" class="head" aria-rowindex={1}>
      {seen.map((place) => {
        const {key, description, source} = rows.columns[columns[place]];
        const sorted = sorting?.column === columns[place] ? sorting : undefined;
        return (
          <div
            role="columnheader"
            key={place}
            aria-colindex={place + 1}
            style={boxes[place].style}
            aria-sort={sorted ? (sorted.descending ? 'descending' : 'ascending') : 'none'}
          >
            <button
              type="button"
              tabIndex={stop.row === -1 && stop.column === place ? 0 : -1}
              title={
                [description, source && `Source: ${source}`].filter(Boolean).join('\n') || undefined
              }
              onClick={() => sortBy(columns[place])}
              onMouseEnter={() => explain(columns[place])}
            >
              {shortText(key)}
            </button>
          </div>
        );
      })}
    </div>
  );
}

interface RowProps {
  rows: Rows;
  columns: number[];
  seen: number[];
  boxes: Box[];
  /** Its place in the table. */
  row: number;
  /** Its number in `rows`. */
  of: number;
  top: number;
  /** The column that the Tab key reaches; -1 for none. */
  stop: number;
}

/** Drawn again only if something of it has changed: while one scrolls, most rows stay. */
class Row extends Component<RowProps> {
  shouldComponentUpdate(next: RowProps): boolean {
    return (Object.keys(next) as (keyof RowProps)[]).some((key) => next[key] !== this.props[key]);
  }

  render({row, seen, top}: RowProps) {
    return (
      <div
        role="row"
        class={row % 2 ? 'row odd' : 'row'}
        aria-rowindex={row + 2}
        style={{transform: `translateY(${top}px)`}}
      >
        {seen.map((place) => this.cell(place))}
      </div>
    );
  }

  private cell(place: number) {
    const {rows, columns, boxes, of, stop} = this.props;
    const column = columns[place];
    const {text, exact} = cellText(rows, of, column);
    const {style, fitting} = boxes[place];
    const link = rows.link(of, column);
    const Content = link ? 'a' : 'span';
    return (
      <div
        role="gridcell"
        key={place}
        aria-colindex={place + 1}
        style={style}
        class={isNumber(rows, of, column) ? 'number' : undefined}
      >
        <Content
          href={link || undefined}
          tabIndex={stop === place ? 0 : -1}
          title={exact ?? (text.length > fitting ? text : undefined)}
          aria-label={text ? undefined : 'empty'}
        >
          {text}
        </Content>
      </div>
    );
  }
}

const isNumber = (rows: Rows, row: number, column: number): boolean =>
  typeof rows.value(row, column) === 'number' &&
  !rows.shownAs &&
  !isDate(rows.columns[column].unit) &&
  !rows.columns[column].words;

interface Box {
  style: {left: string; width: string};
  /** So many characters are shown whole. */
  fitting: number;
}

function box(starts: number[], place: number): Box {
  const width = starts[place + 1] - starts[place];
  return {
    style: {left: `${starts[place]}px`, width: `${width}px`},
    fitting: width / characterWidth - 2,
  };
}
