import {useLayoutEffect, useRef, useState} from 'preact/hooks';
import {countText, shortText, sizeText} from '../model/Values';
import {hasTitle, type Box, type Item, type Room} from './boxes';
import type {Measure} from './FolderTree';

interface Props {
  label: string;
  measure: Measure;
  /** Lays out the boxes; the first is the one around the others. Another function is another map. */
  layOut: (room: Room) => Box[];
  enter: (item: Item) => void;
  /** Undefined if there is nothing above. */
  leave?: () => void;
  /** Whether the next map gets the focus, since the box that had it is gone. */
  focus: {current: boolean};
}

/** Outer boxes are buttons; what is in them is painted. Arrows move, Enter enters, Escape leaves. */
export function Treemap({label, measure, layOut, enter, leave, focus}: Props) {
  const frame = useRef<HTMLDivElement>(null);
  const canvas = useRef<HTMLCanvasElement>(null);
  const room = useRoom(frame);
  const [current, setCurrent] = useState(0);
  const last = useRef<{layOut?: Props['layOut']; room?: Room; boxes: Box[]}>({boxes: []});
  if (room && (last.current.layOut !== layOut || last.current.room !== room)) {
    last.current = {layOut, room, boxes: layOut(room)};
  }
  const {boxes} = last.current;
  const outer = boxes.filter(({depth}) => depth === 1);
  const total = boxes[0]?.value ?? 0;
  const stop = Math.min(current, outer.length - 1);

  useLayoutEffect(() => {
    if (!canvas.current || !room) return undefined;
    const paint = (): void => paintBoxes(canvas.current!, room, boxes);
    paint();
    const dark = matchMedia('(prefers-color-scheme: dark)');
    dark.addEventListener('change', paint);
    return () => dark.removeEventListener('change', paint);
  }, [boxes]);

  useLayoutEffect(() => {
    const box = frame.current!.querySelector('button');
    if (!focus.current || !box) return;
    focus.current = false;
    box.focus();
  }, [boxes]);

  const onKeyDown = (event: KeyboardEvent): void => {
    if ((event.key === 'Escape' || event.key === 'Backspace') && leave) leave();
    else if (event.key.startsWith('Arrow')) {
      const next = neighbour(outer, stop, event.key);
      setCurrent(next);
      (frame.current!.querySelectorAll('button')[next] as HTMLElement).focus();
    } else return;
    event.preventDefault();
  };
  return (
    <div
      class="treemap"
      role="group"
      aria-label={label}
      ref={frame}
      data-boxes={boxes.length}
      onKeyDown={onKeyDown}
    >
      <canvas ref={canvas} aria-hidden="true" />
      {outer.map((box, at) => (
        <button
          type="button"
          key={`${box.data.kind} ${box.data.id}`}
          class={`box ${box.data.kind}`}
          tabIndex={at === stop ? 0 : -1}
          style={edges(box)}
          title={describe(box.data, measure, total)}
          aria-label={describe(box.data, measure, total)}
          aria-disabled={!isEntered(box.data)}
          onFocus={() => setCurrent(at)}
          onClick={() => isEntered(box.data) && enter(box.data)}
        >
          {box.x1 - box.x0 > 40 && box.y1 - box.y0 > 16 ? shortText(box.data.name) : ''}
        </button>
      ))}
      {outer.length === 0 && <p>Nothing here has a {measure === 'size' ? 'size' : 'file'}.</p>}
    </div>
  );
}

const isEntered = ({kind}: Item): boolean => kind === 'folder' || kind === 'extension';

function describe({name, kind, value}: Item, measure: Measure, total: number): string {
  const amount = measure === 'size' ? sizeText(value) : countText(value, 'file');
  return `${kind === 'rest' ? '' : kind + ' '}${shortText(name)}: ${amount}, ${((100 * value) / total).toFixed(1)}%`;
}

const edges = ({x0, y0, x1, y1}: Box): Record<string, string> => ({
  left: `${x0}px`,
  top: `${y0}px`,
  width: `${x1 - x0}px`,
  height: `${y1 - y0}px`,
});

/** Size of the element while it can be seen; undefined before. */
function useRoom(element: {current: HTMLElement | null}): Room | undefined {
  const [room, setRoom] = useState<Room>();
  useLayoutEffect(() => {
    const {current} = element;
    let seen = current!.getBoundingClientRect().top < innerHeight;
    const measure = (): void => {
      const {clientWidth: width, clientHeight: height} = current!;
      if (seen && width > 0 && height > 0) {
        setRoom((former) =>
          former?.width === width && former.height === height ? former : {width, height},
        );
      }
    };
    const sizes = new ResizeObserver(measure);
    const sight = new IntersectionObserver((entries) => {
      seen = entries[entries.length - 1].isIntersecting;
      measure();
    });
    measure();
    sizes.observe(current!);
    sight.observe(current!);
    return () => {
      sizes.disconnect();
      sight.disconnect();
    };
  }, []);
  return room;
}

/** The box that is next in a direction. */
function neighbour(boxes: Box[], from: number, key: string): number {
  const middle = ({x0, x1, y0, y1}: Box): [number, number] => [(x0 + x1) / 2, (y0 + y1) / 2];
  const [x, y] = middle(boxes[from]);
  let best = from;
  let least = Infinity;
  boxes.forEach((box, at) => {
    const [dx, dy] = [middle(box)[0] - x, middle(box)[1] - y];
    const along = {ArrowLeft: -dx, ArrowRight: dx, ArrowUp: -dy, ArrowDown: dy}[key] ?? 0;
    const aside = /Left|Right/.test(key) ? Math.abs(dy) : Math.abs(dx);
    if (along > 0 && along + 2 * aside < least) {
      least = along + 2 * aside;
      best = at;
    }
  });
  return best;
}

const colours = [
  ...['--rest', '--box', '--text'],
  ...Array.from({length: 8}, (_, tint) => `--tint${tint}`),
];

function paintBoxes(canvas: HTMLCanvasElement, {width, height}: Room, boxes: Box[]): void {
  const scale = devicePixelRatio || 1;
  canvas.width = Math.round(width * scale);
  canvas.height = Math.round(height * scale);
  const context = canvas.getContext('2d')!;
  context.scale(scale, scale);
  const style = getComputedStyle(canvas);
  const [rest, box, text, ...tints] = colours.map((name) => style.getPropertyValue(name));
  context.font = `11px ${style.fontFamily}`;
  context.textBaseline = 'top';
  for (const each of boxes) {
    const {data, depth, x0, y0, x1, y1, children} = each;
    if (depth === 0) continue;
    context.fillStyle =
      data.kind === 'rest' ? rest : children ? box : tints[tintOf(data) % tints.length];
    context.fillRect(x0, y0, x1 - x0, y1 - y0);
    // The names of the outer boxes are those of their buttons.
    if (depth === 1 || !hasTitle(each) || (children && children[0].y0 - y0 < 10)) continue;
    context.save();
    context.beginPath();
    context.rect(x0, y0, x1 - x0 - 2, y1 - y0);
    context.clip();
    context.fillStyle = text;
    context.fillText(shortText(data.name).slice(0, 60), x0 + 3, y0 + 3);
    context.restore();
  }
}

/** Files of one extension have one colour. */
function tintOf({name, kind}: Item): number {
  const text = kind === 'file' ? name.slice(name.lastIndexOf('.') + 1) : name;
  let sum = 0;
  for (let at = 0; at < Math.min(text.length, 12); ++at)
    sum = (sum * 31 + text.charCodeAt(at)) >>> 0;
  return sum;
}
