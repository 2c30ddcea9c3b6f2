import {useLayoutEffect, useRef, useState} from 'preact/hooks';
import type {VirtualRows} from './useVirtualRows';

/** A cell by its row, -1 for the head, and its place among the columns shown. */
export interface Place {
  row: number;
  column: number;
}

export interface Cursor {
  /** Where the keys move from. */
  active: Place;
  /** Has the cell drawn and gives it the focus. */
  go: (place: Place) => void;
  /** Says that the cell has got the focus. */
  note: (place: Place) => void;
}

/**
 * The cell of a grid that has the focus, also while it is scrolled out of sight.
 * @param starts where each column begins, in pixels, and the last one ends.
 */
export function useCursor(
  element: {current: HTMLElement | null},
  virtual: VirtualRows,
  rows: number,
  starts: number[],
): Cursor {
  const [at, note] = useState<Place>({row: -1, column: 0});
  const wantsFocus = useRef(false);
  const columns = starts.length - 1;
  const limited = ({row, column}: Place): Place => ({
    row: Math.max(-1, Math.min(row, rows - 1)),
    column: Math.max(0, Math.min(column, columns - 1)),
  });
  const active = limited(at);
  useLayoutEffect(() => {
    if (!wantsFocus.current) return;
    const cell = element.current!.querySelector<HTMLElement>('[tabindex="0"]');
    const place = cell && placeOf(cell);
    if (place?.row !== active.row || place.column !== active.column) return;
    wantsFocus.current = false;
    cell!.focus({preventScroll: true});
  });
  const go = (wanted: Place): void => {
    const place = limited(wanted);
    if (place.row >= 0) virtual.reveal(place.row);
    revealColumn(element.current!, starts[place.column], starts[place.column + 1]);
    wantsFocus.current = true;
    note(place);
  };
  return {active, go, note};
}

function revealColumn(element: HTMLElement, start: number, end: number): void {
  const {scrollLeft, clientWidth} = element;
  if (start < scrollLeft) element.scrollLeft = start;
  else if (end > scrollLeft + clientWidth) element.scrollLeft = end - clientWidth;
}

/** The place of the cell that has the element. */
export function placeOf(element: Element): Place | undefined {
  const cell = element.closest('[aria-colindex]');
  const row = cell?.closest('[aria-rowindex]');
  if (!cell || !row) return undefined;
  return {
    row: Number(row.getAttribute('aria-rowindex')) - 2,
    column: Number(cell.getAttribute('aria-colindex')) - 1,
  };
}
