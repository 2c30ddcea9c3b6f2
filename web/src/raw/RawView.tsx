import {useEffect, useLayoutEffect, useMemo, useRef, useState} from 'preact/hooks';
import type {Source} from '../data/Source';
import {keysOfPointer} from '../model/Json';
import {shortText} from '../model/Values';
import {DocumentChoice} from '../views/DocumentChoice';
import {drawnRows, rowHeight, useVirtualRows} from '../table/useVirtualRows';
import {linesOf, lineText, pathTo, type Line} from './lines';

/** A document as folded JSON. `place` is the JSON pointer of the value to show. */
export function RawView({source, index, place}: {source: Source; index: number; place: string}) {
  const {documents} = source.page;
  const root = useMemo(() => source.document(index), [source, index]);
  const path = useMemo(() => pathTo(root, keysOfPointer(place)), [root, place]);
  const [open, setOpen] = useState<ReadonlySet<string>>(() => new Set(['']));
  const [current, setCurrent] = useState('');
  useEffect(() => {
    setOpen((former) => new Set([...former, '', ...path.open]));
    setCurrent(path.id);
  }, [path]);
  const lines = useMemo(() => linesOf(root, open), [root, open]);
  const toggle = (line: Line): void => {
    const next = new Set(open);
    if (!next.delete(line.id)) next.add(line.id);
    setOpen(next);
    setCurrent(line.id);
  };
  return (
    <>
      <DocumentChoice
        documents={documents}
        choices={documents.map((_, at) => at)}
        index={index}
        view="raw"
      />
      <Tree
        lines={lines}
        open={open}
        current={current}
        asked={place === '' ? undefined : path}
        toggle={toggle}
        go={setCurrent}
      />
    </>
  );
}

interface TreeProps {
  lines: Line[];
  open: ReadonlySet<string>;
  current: string;
  /** A place that a link led to: it gets the focus. */
  asked?: {id: string};
  toggle: (line: Line) => void;
  go: (id: string) => void;
}

/** Up and down move, right unfolds, left folds or goes to what the line is part of. */
function Tree({lines, open, current, asked, toggle, go}: TreeProps) {
  const element = useRef<HTMLDivElement>(null);
  const virtual = useVirtualRows(element, lines.length, 0);
  const wantsFocus = useRef(false);
  const at = Math.max(
    0,
    lines.findIndex(({id}) => id === current),
  );
  const moveTo = (line: number): void => {
    const next = Math.max(0, Math.min(line, lines.length - 1));
    virtual.reveal(next);
    wantsFocus.current = true;
    go(lines[next].id);
  };
  useLayoutEffect(() => {
    if (asked && current === asked.id) moveTo(at);
  }, [asked, current === asked?.id, virtual.scroller]);
  useLayoutEffect(() => {
    if (!wantsFocus.current) return;
    const line = element.current!.querySelector<HTMLElement>('[tabindex="0"]');
    if (line?.dataset.line !== String(at)) return;
    wantsFocus.current = false;
    line.focus({preventScroll: true});
  });
  const onKeyDown = (event: KeyboardEvent): void => {
    const page = Math.max(1, Math.floor(element.current!.clientHeight / rowHeight) - 1);
    const move = movesFrom(lines, at, open, page)[event.key];
    if (move === undefined || event.ctrlKey || event.metaKey || event.altKey) return;
    event.preventDefault();
    wantsFocus.current = true;
    if (move === 'toggle') toggle(lines[at]);
    else moveTo(move);
  };
  return (
    <div class="raw" role="tree" aria-label="Document" ref={element} onKeyDown={onKeyDown}>
      <div role="presentation" class="content" style={{height: `${virtual.height}px`}}>
        {drawnRows(virtual, at).map((line) => (
          <RawLine
            key={lines[line].id}
            line={lines[line]}
            number={line}
            current={line === at}
            open={lines[line].members ? open.has(lines[line].id) : undefined}
            top={virtual.top(line)}
            click={() => (lines[line].members ? toggle(lines[line]) : go(lines[line].id))}
          />
        ))}
      </div>
    </div>
  );
}

/** What each key does: the line to go to, or folding. */
function movesFrom(
  lines: Line[],
  at: number,
  open: ReadonlySet<string>,
  page: number,
): Record<string, number | 'toggle'> {
  const folds = lines[at].members > 0;
  const unfolded = folds && open.has(lines[at].id);
  return {
    ArrowDown: at + 1,
    ArrowUp: at - 1,
    PageDown: at + page,
    PageUp: at - page,
    Home: 0,
    End: lines.length - 1,
    ArrowRight: folds && !unfolded ? 'toggle' : at + (unfolded ? 1 : 0),
    ArrowLeft: unfolded ? 'toggle' : parentOf(lines, at),
    Enter: folds ? 'toggle' : at,
    ' ': folds ? 'toggle' : at,
  };
}

function parentOf(lines: Line[], at: number): number {
  let parent = at;
  while (parent > 0 && lines[parent].depth >= lines[at].depth) --parent;
  return parent;
}

function RawLine({
  line,
  number,
  current,
  open,
  top,
  click,
}: {
  line: Line;
  number: number;
  current: boolean;
  open?: boolean;
  top: number;
  click: () => void;
}) {
  return (
    <div
      role="treeitem"
      class={current ? 'line current' : 'line'}
      aria-level={line.depth + 1}
      aria-expanded={open}
      aria-selected={current}
      aria-posinset={line.place}
      aria-setsize={line.siblings}
      tabIndex={current ? 0 : -1}
      data-line={number}
      onClick={click}
      style={{
        transform: `translateY(${top}px)`,
        paddingLeft: `${Math.min(line.depth, 40) * 18 + 22}px`,
      }}
    >
      {line.key !== undefined && <span class="key">{shortText(String(line.key))}: </span>}
      <span class={`value ${line.value === null ? 'null' : typeof line.value}`}>
        {lineText(line)}
      </span>
    </div>
  );
}
