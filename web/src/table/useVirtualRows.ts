import {Virtualizer} from '@tanstack/virtual-core';
import {useLayoutEffect, useReducer, useRef, useState} from 'preact/hooks';
import {ScaledScroller} from './ScaledScroller';

export const rowHeight = 28;
// The virtualizer keeps numbers for each of its items, so an item is some rows.
const rowsPerItem = 4;
// Drawn above and below those that can be seen: less than items give.
const spare = 2;

export interface VirtualRows {
  scroller?: ScaledScroller;
  /** The rows to draw are those from `first` to before `end`. */
  first: number;
  end: number;
  /** Height of the content in its element, in pixels. */
  height: number;
  /** Where a row lies in the element. */
  top: (row: number) => number;
  /** Scrolls so far that the row can be seen. */
  reveal: (row: number) => void;
}

/** The rows to draw: those that can be seen, and the one with the focus, which must not be lost. */
export function drawnRows({first, end}: VirtualRows, active: number): number[] {
  // In their order: an element that is moved in the page loses the focus.
  const rows: number[] = active >= 0 && active < first ? [active] : [];
  for (let row = first; row < end; ++row) rows.push(row);
  if (active >= end) rows.push(active);
  return rows;
}

/** The rows of a scrolled element that can be seen. `header` is the height of what stays above them. */
export function useVirtualRows(
  element: {current: HTMLElement | null},
  count: number,
  header: number,
): VirtualRows {
  const [, draw] = useReducer((drawn: number) => drawn + 1, 0);
  const [scroller, setScroller] = useState<ScaledScroller>();
  const virtualizer = useRef<Virtualizer<any, Element> | null>(null);
  const height = count * rowHeight + header;

  useLayoutEffect(() => {
    const made = new ScaledScroller(element.current!, height);
    setScroller(made);
    const stop = made.listen(() => draw(0));
    return () => {
      stop();
      made.stop();
    };
  }, []);

  const options = optionsOf(element, scroller, count, () => draw(0));
  virtualizer.current ??= new Virtualizer(options);
  virtualizer.current.setOptions(options);
  useLayoutEffect(() => scroller?.resize(height), [scroller, height]);
  useLayoutEffect(() => virtualizer.current!._didMount(), []);
  useLayoutEffect(() => virtualizer.current!._willUpdate());

  const items = virtualizer.current.getVirtualItems();
  const within = rowsWithin(scroller, header);
  const first = Math.max(within.first, (items[0]?.index ?? 0) * rowsPerItem);
  const itemsEnd = ((items[items.length - 1]?.index ?? -1) + 1) * rowsPerItem;
  const elementHeight = Math.min(height, ScaledScroller.highest);
  return {
    scroller,
    first,
    end: Math.max(first, Math.min(within.end, itemsEnd, count)),
    height: elementHeight,
    top: (row) => header + row * rowHeight + (scroller?.shift ?? 0),
    reveal: (row) => scroller && reveal(scroller, row * rowHeight, header),
  };
}

function optionsOf(
  element: {current: HTMLElement | null},
  scroller: ScaledScroller | undefined,
  count: number,
  onChange: () => void,
) {
  return {
    count: Math.ceil(count / rowsPerItem),
    getScrollElement: () => scroller as any,
    estimateSize: () => rowHeight * rowsPerItem,
    overscan: 1,
    observeElementRect: (_: unknown, notify: (rect: {width: number; height: number}) => void) => {
      const observer = new ResizeObserver(() =>
        notify({width: scroller!.clientWidth, height: scroller!.clientHeight}),
      );
      observer.observe(element.current!);
      notify({width: scroller!.clientWidth, height: scroller!.clientHeight});
      return () => observer.disconnect();
    },
    observeElementOffset: (_: unknown, notify: (offset: number, moving: boolean) => void) =>
      scroller!.listen((moving) => notify(scroller!.scrollTop, moving)),
    scrollToFn: (top: number) => scroller?.scrollTo(top),
    onChange,
  };
}

/** The rows that can be seen, and some around them. */
function rowsWithin(scroller: ScaledScroller | undefined, header: number) {
  if (!scroller) return {first: 0, end: 0};
  const {scrollTop, clientHeight} = scroller;
  return {
    first: Math.floor(scrollTop / rowHeight) - spare,
    end: Math.ceil((scrollTop + clientHeight - header) / rowHeight) + spare,
  };
}

/** Scrolls no further than the row at `start` needs. */
function reveal(scroller: ScaledScroller, start: number, header: number): void {
  const room = scroller.clientHeight - header;
  if (start < scroller.scrollTop) scroller.scrollTo(start);
  else if (start + rowHeight > scroller.scrollTop + room)
    scroller.scrollTo(start + rowHeight - room);
}
