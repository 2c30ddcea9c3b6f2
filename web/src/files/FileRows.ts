import type {SectionSchema} from '../data/Source';
import {isObject, rawLink, type JsonObject} from '../model/Json';
import {columnOf} from '../table/columns';
import type {Column, Rows} from '../table/Rows';

const statuses: Record<number, string> = {[-1]: 'unchanged', 1: 'new', 2: 'modified', 3: 'removed'};
export const statusText = (status: unknown): string | undefined =>
  typeof status === 'number' ? statuses[status] : undefined;

/** Places of the columns. */
export const folderColumn = 0,
  sizeColumn = 3,
  timeColumn = 4,
  statusColumn = 5;
const keys = ['pathName', 'filename', 'extension', 'size', 'lastMod', 'fileStatus'];

interface Run {
  pathName: string;
  files: JsonObject[];
}

/**
 * The files of a document, as rows. A document has runs of files of one folder; a file is known by its number in
 * the document. Values stay where they are: per file nothing is kept.
 */
export class FileRows implements Rows {
  readonly columns: Column[];
  readonly count: number;
  readonly runs: Run[];
  /** Number of the first file of each run, and of all files. */
  readonly starts: Uint32Array;
  private lastRun = 0;
  /** The row whose cells are being linked. */
  private linked = {row: -1, link: ''};

  constructor(
    document: unknown,
    private readonly index: number,
    schema?: SectionSchema,
  ) {
    const paths = isObject(document) && Array.isArray(document.paths) ? document.paths : [];
    this.runs = paths.filter(
      (run): run is Run =>
        isObject(run) && typeof run.pathName === 'string' && Array.isArray(run.files),
    );
    if (this.runs.length < paths.length) throw new Error('The document is not a file inventory.');
    this.starts = new Uint32Array(this.runs.length + 1);
    this.runs.forEach(({files}, run) => (this.starts[run + 1] = this.starts[run] + files.length));
    this.count = this.starts[this.runs.length];
    const incremental = isObject(document) && document.typeInventory === 1;
    this.columns = keys.map((key) =>
      columnOf(
        key,
        schema?.fields[key] ?? schema?.fields[`files.${key}`],
        key !== 'fileStatus' || incremental,
      ),
    );
    [380, 240, 110, 110, 200, 120].forEach((width, at) => (this.columns[at].width = width));
    this.columns[sizeColumn].unit = 'bytes';
    this.columns[timeColumn].unit = 'ms since the epoch';
    this.columns[statusColumn].words = statusText;
  }

  runOf(file: number): number {
    const {starts} = this;
    let run = this.lastRun;
    if (file >= starts[run] && file < starts[run + 1]) return run;
    let end = this.runs.length;
    run = 0;
    while (run + 1 < end) {
      const middle = (run + end) >>> 1;
      if (starts[middle] <= file) run = middle;
      else end = middle;
    }
    // Of runs without files, which begin at the same file, this is the last.
    return (this.lastRun = run);
  }

  file(file: number): JsonObject {
    const run = this.runOf(file);
    return this.runs[run].files[file - this.starts[run]] ?? {};
  }

  size(file: number): number {
    return sizeOf(this.file(file));
  }

  status(file: number): unknown {
    return this.file(file).fileStatus;
  }

  value(row: number, column: number): unknown {
    return column === folderColumn
      ? this.runs[this.runOf(row)].pathName
      : this.file(row)[keys[column]];
  }

  link(row: number, column: number): string {
    const run = this.runOf(row);
    if (column === folderColumn) return rawLink(this.index, 'paths', run, 'pathName');
    if (this.linked.row !== row)
      this.linked = {row, link: rawLink(this.index, 'paths', run, 'files', row - this.starts[run])};
    return `${this.linked.link}/${keys[column]}`;
  }

  /** Finds a part of the whole path, folder and name. */
  matcher(query: string): (row: number) => boolean {
    const folders = new Uint8Array(this.runs.length);
    const slash = query.lastIndexOf('/');
    const folderEnd = query.slice(0, Math.max(slash, 0));
    const nameStart = query.slice(slash + 1);
    const has = 1,
      ends = 2,
      known = 4;
    const examine = (run: number): number => {
      const path = this.runs[run].pathName.toLowerCase();
      const end = slash >= 0 && (path.endsWith(folderEnd) || (path === '/' && folderEnd === ''));
      return (folders[run] = known | (path.includes(query) ? has : 0) | (end ? ends : 0));
    };
    return (row) => {
      const run = this.runOf(row);
      const folder = folders[run] || examine(run);
      if (folder & has) return true;
      if (slash >= 0 && !(folder & ends)) return false;
      const name = nameOf(this.runs[run].files[row - this.starts[run]]).toLowerCase();
      return slash >= 0 ? name.startsWith(nameStart) : name.includes(query);
    };
  }

  /** A test for the files in a folder or below it. */
  below(folder: string): (row: number) => boolean {
    const inside = new Uint8Array(this.runs.length);
    const prefix = folder.endsWith('/') ? folder : folder + '/';
    this.runs.forEach(({pathName}, run) => {
      inside[run] = pathName === folder || pathName.startsWith(prefix) ? 1 : 0;
    });
    return (row) => inside[this.runOf(row)] === 1;
  }
}

/** Odd documents may have anything as a file. */
export const sizeOf = (file: JsonObject | null | undefined): number => {
  const size = file?.size;
  return typeof size === 'number' && size > 0 ? size : 0;
};

export const nameOf = (file: JsonObject | null | undefined): string => {
  const {filename, extension} = file ?? {};
  const name = typeof filename === 'string' ? filename : '';
  return typeof extension === 'string' && extension ? `${name}.${extension}` : name;
};
