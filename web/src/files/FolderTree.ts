import type {Steps} from '../model/Slices';
import {sortedRows} from '../model/Sort';
import {nameOf, sizeOf, type FileRows} from './FileRows';

export type Measure = 'size' | 'count';

/** Deeper folders count as part of the name, so that a hostile path cannot make millions of them. */
const deepest = 256;
const perStep = 512;

/**
 * The folders of a file inventory with the sizes and numbers of what is in them, kept in columns: a folder is
 * a number, 0 the one above all.
 */
export class FolderTree {
  readonly names: string[] = [''];
  private parents = new Int32Array(1024).fill(-1);
  private firstChild = new Int32Array(1024).fill(-1);
  private nextChild = new Int32Array(1024).fill(-1);
  private firstRun = new Int32Array(1024).fill(-1);
  private nextRun: Int32Array;
  private folderOfRun: Int32Array;
  private sizes = new Float64Array(0);
  private counts = new Float64Array(0);

  /** An extension leaves out all other files. */
  private constructor(
    readonly rows: FileRows,
    readonly extension?: string,
  ) {
    this.nextRun = new Int32Array(rows.runs.length).fill(-1);
    this.folderOfRun = new Int32Array(rows.runs.length);
  }

  static *build(rows: FileRows, extension?: string): Steps<FolderTree> {
    let tree = new FolderTree(rows, extension);
    if (!(yield* tree.addRuns())) {
      tree = new FolderTree(rows, extension);
      const keys = rows.runs.map(({pathName}) => pathName + '/');
      yield* tree.addRuns(yield* sortedRows(keys.length, keys, false));
    }
    yield* tree.sum();
    return tree;
  }

  get size(): number {
    return this.names.length;
  }

  value(folder: number, measure: Measure): number {
    return measure === 'size' ? this.sizes[folder] : this.counts[folder];
  }

  parent(folder: number): number {
    return this.parents[folder];
  }

  path(folder: number): string {
    const names: string[] = [];
    for (let at = folder; at > 0; at = this.parents[at]) names.push(this.names[at]);
    return folder === 0 ? '/' : names.reverse().join('/');
  }

  *children(folder: number): Generator<number> {
    for (let at = this.firstChild[folder]; at >= 0; at = this.nextChild[at]) yield at;
  }

  /** Files that lie directly in the folder. */
  *files(folder: number): Generator<{name: string; size: number; file: number}> {
    for (let run = this.firstRun[folder]; run >= 0; run = this.nextRun[run]) {
      const {files} = this.rows.runs[run];
      for (let at = 0; at < files.length; ++at) {
        if (this.extension !== undefined && files[at]?.extension !== this.extension) continue;
        yield {name: nameOf(files[at]), size: sizeOf(files[at]), file: this.rows.starts[run] + at};
      }
    }
  }

  /**
   * Adds the folders of all runs, from one to the next: what both paths share is there already. That needs an
   * order in which all that is in a folder stays together, as that of the agent.
   * @returns false if a run is not in that order; never with an order by path and slash.
   */
  private *addRuns(order?: Uint32Array): Steps<boolean> {
    const open = [{folder: 0, end: 0}];
    let former = '';
    for (let place = 0; place < this.rows.runs.length; ++place) {
      const run = order ? order[place] : place;
      const path = this.rows.runs[run].pathName;
      const shared = sharedLength(former, path);
      while (open.length > 1 && !isWithin(path, open[open.length - 1].end, shared)) open.pop();
      if (!this.addRest(path, open, order !== undefined)) return false;
      const {folder} = open[open.length - 1];
      this.folderOfRun[run] = folder;
      this.nextRun[run] = this.firstRun[folder];
      this.firstRun[folder] = run;
      former = path;
      if (place % 64 === 0) yield;
    }
    return true;
  }

  /** Adds the folders of the path below the last open one. @returns false if one may be there already. */
  private addRest(path: string, open: {folder: number; end: number}[], ordered: boolean): boolean {
    while (path !== '/' && open[open.length - 1].end < path.length) {
      const {folder: parent, end} = open[open.length - 1];
      const start = path.charCodeAt(end) === 0x2f ? end + 1 : end;
      const slash = open.length < deepest ? path.indexOf('/', start) : -1;
      const next = slash < 0 ? path.length : slash;
      // A name at the top is the whole path, with or without a slash before it.
      const name = path.slice(parent === 0 ? 0 : start, next);
      const sibling = this.firstChild[parent];
      if (!ordered && sibling >= 0 && this.names[sibling] + '/' >= name + '/') return false;
      open.push({folder: this.add(name, parent), end: next});
    }
    return true;
  }

  private add(name: string, parent: number): number {
    const folder = this.names.push(name) - 1;
    if (folder === this.parents.length) {
      this.parents = grown(this.parents);
      this.firstChild = grown(this.firstChild);
      this.nextChild = grown(this.nextChild);
      this.firstRun = grown(this.firstRun);
    }
    this.parents[folder] = parent;
    this.nextChild[folder] = this.firstChild[parent];
    this.firstChild[parent] = folder;
    return folder;
  }

  private *sum(): Steps {
    this.sizes = new Float64Array(this.size);
    this.counts = new Float64Array(this.size);
    const {runs} = this.rows;
    for (let run = 0; run < runs.length; ++run) {
      const folder = this.folderOfRun[run];
      const {files} = runs[run];
      for (let at = 0; at < files.length; ++at) {
        if (at % perStep === perStep - 1) yield;
        if (this.extension !== undefined && files[at]?.extension !== this.extension) continue;
        this.sizes[folder] += sizeOf(files[at]);
        ++this.counts[folder];
      }
      if (run % 32 === 0) yield;
    }
    // A folder has a higher number than the one it is in.
    for (let folder = this.size - 1; folder > 0; --folder) {
      this.sizes[this.parents[folder]] += this.sizes[folder];
      this.counts[this.parents[folder]] += this.counts[folder];
    }
  }
}

/** How many characters the beginnings of both have in common. */
function sharedLength(one: string, other: string): number {
  const most = Math.min(one.length, other.length);
  let at = 0;
  while (at < most && one.charCodeAt(at) === other.charCodeAt(at)) ++at;
  return at;
}

/** Whether the path is that of the folder whose path is its beginning, or one in it. */
const isWithin = (path: string, end: number, shared: number): boolean =>
  end <= shared && (path.length === end || path.charCodeAt(end) === 0x2f);

function grown(array: Int32Array<ArrayBuffer>): Int32Array<ArrayBuffer> {
  const larger = new Int32Array(array.length * 2).fill(-1);
  larger.set(array);
  return larger;
}

export interface Extension {
  name: string;
  size: number;
  count: number;
}

/** The sum of the files of each extension, the largest first. */
export function* extensionsOf(rows: FileRows): Steps<Extension[]> {
  const sums = new Map<string, Extension>();
  for (const {files} of rows.runs) {
    for (let at = 0; at < files.length; ++at) {
      if (at % perStep === perStep - 1) yield;
      const extension = files[at]?.extension;
      const name = typeof extension === 'string' ? extension : '';
      let sum = sums.get(name);
      if (!sum) sums.set(name, (sum = {name, size: 0, count: 0}));
      sum.size += sizeOf(files[at]);
      ++sum.count;
    }
    yield;
  }
  return [...sums.values()].sort((a, b) => b.size - a.size);
}
