import {hierarchy, treemap, type HierarchyRectangularNode} from 'd3-hierarchy';
import {grouped} from '../model/Values';
import type {Extension, FolderTree, Measure} from './FolderTree';

/** What a box of the treemap stands for. */
export interface Item {
  name: string;
  value: number;
  kind: 'folder' | 'file' | 'extension' | 'rest';
  /** Of a folder or file its number, of a rest how many items it is. */
  id: number;
  children?: Item[];
}

export type Box = HierarchyRectangularNode<Item>;

export interface Room {
  width: number;
  height: number;
}

export const mostBoxes = 2000;
/** Of these each is an element that can have the focus. */
const mostOuter = 120;
// Smaller boxes cannot be told apart, in square pixels.
const smallestBox = 12;
const smallestOpen = 2000;
const title = 18;

/** The boxes of a folder, those that are too small put together. The first one is the folder. */
export function folderBoxes(tree: FolderTree, folder: number, measure: Measure, room: Room): Box[] {
  const root: Item = {
    name: tree.names[folder],
    value: tree.value(folder, measure),
    kind: 'folder',
    id: folder,
  };
  const perValue = (room.width * room.height) / Math.max(root.value, 1);
  let left = mostBoxes - 1;
  const open = [root];
  // The folders come by their size, so that the boxes run out in the smallest.
  while (open.length && left > 0) {
    const item = open.shift()!;
    const most = item === root ? mostOuter : left;
    const smallest = (item === root ? smallestBox * 8 : smallestBox) / perValue;
    item.children = childrenOf(tree, item.id, measure, smallest, Math.min(most, left));
    left -= item.children.length;
    for (const child of item.children) {
      if (child.kind === 'folder' && child.value * perValue >= smallestOpen) insert(open, child);
    }
  }
  return laidOut(root, room);
}

export function extensionBoxes(extensions: Extension[], measure: Measure, room: Room): Box[] {
  const items = extensions.map((extension, id): Item => ({
    name: extension.name,
    value: extension[measure],
    kind: 'extension',
    id,
  }));
  const value = items.reduce((sum, item) => sum + item.value, 0);
  const root: Item = {name: '', value, kind: 'folder', id: 0};
  root.children = largest(items, (smallestBox * 8 * value) / (room.width * room.height), mostOuter);
  return laidOut(root, room);
}

function childrenOf(
  tree: FolderTree,
  folder: number,
  measure: Measure,
  smallest: number,
  most: number,
): Item[] {
  const items: Item[] = [];
  for (const id of tree.children(folder)) {
    items.push({name: tree.names[id], value: tree.value(id, measure), kind: 'folder', id});
  }
  let rest = 0;
  let restCount = 0;
  for (const {name, size, file} of tree.files(folder)) {
    const value = measure === 'size' ? size : 1;
    if (value >= smallest) {
      items.push({name, value, kind: 'file', id: file});
    } else {
      rest += value;
      ++restCount;
    }
  }
  return largest(items, smallest, most, rest, restCount);
}

/** The largest items and one for all others. */
function largest(items: Item[], smallest: number, most: number, rest = 0, restCount = 0): Item[] {
  items.sort((a, b) => b.value - a.value);
  let kept = 0;
  while (
    kept < items.length &&
    kept < most - 1 &&
    items[kept].value >= smallest &&
    items[kept].value > 0
  )
    ++kept;
  for (let at = kept; at < items.length; ++at) rest += items[at].value;
  restCount += items.length - kept;
  items.length = kept;
  if (rest > 0)
    items.push({
      name: `${grouped(restCount)} smaller`,
      value: rest,
      kind: 'rest',
      id: restCount,
    });
  return items;
}

function insert(open: Item[], item: Item): void {
  let low = 0;
  let high = open.length;
  while (low < high) {
    const middle = (low + high) >>> 1;
    if (open[middle].value >= item.value) low = middle + 1;
    else high = middle;
  }
  open.splice(low, 0, item);
}

function laidOut(root: Item, {width, height}: Room): Box[] {
  const tree = hierarchy(root).sum((item) => (item.children?.length ? 0 : item.value));
  return treemap<Item>()
    .size([width, height])
    .round(true)
    .paddingInner(1)
    .paddingTop((box) => (box.depth === 0 ? 0 : hasTitle(box as Box) ? title : 1))(tree)
    .descendants();
}

/** Whether a box has its name above what is in it, or there is room for it. */
export const hasTitle = ({x0, y0, x1, y1, children}: Box): boolean =>
  x1 - x0 >= (children ? 64 : 48) && y1 - y0 >= (children ? 3 * title : 16);
