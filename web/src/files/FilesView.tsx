import {useLayoutEffect, useMemo, useRef, useState} from 'preact/hooks';
import type {Source} from '../data/Source';
import {inSlices} from '../model/Slices';
import {countText, shortText, visible} from '../model/Values';
import {DataTable} from '../table/DataTable';
import type {Filter, Sorting} from '../table/RowOrder';
import {useKept} from '../table/useKept';
import {extensionBoxes, folderBoxes, type Item, type Room} from './boxes';
import {FileRows, sizeColumn, statusText, timeColumn} from './FileRows';
import {FolderTree, extensionsOf, type Extension, type Measure} from './FolderTree';
import {Treemap} from './Treemap';

const orders: Record<string, Sorting | undefined> = {
  'All files': undefined,
  Largest: {column: sizeColumn, descending: true},
  Newest: {column: timeColumn, descending: true},
};

/** The files of one document: the treemap, and a table of those in the folder that is entered. */
export function FilesView({source, index}: {source: Source; index: number}) {
  const rows = useMemo(
    () => new FileRows(source.document(index), index, source.page.schema.paths),
    [source, index],
  );
  const [scope, setScope] = useState<Scope>({path: '/'});
  const sortState = useKept<Sorting | undefined>(`files ${index} sorting`, () => undefined);
  const [sorting, sort] = sortState;
  const [status, setStatus] = useState('');
  const incremental = source.page.documents[index].form === 'incremental';
  const filter = useMemo(() => filterOf(rows, scope, status), [rows, scope, status]);
  return (
    <>
      <FileMap key={index} rows={rows} setScope={setScope} />
      <h2 class="scope" aria-live="polite">
        {scopeText(scope)}
      </h2>
      <div class="choices" role="group" aria-label="Which files">
        {Object.entries(orders).map(([name, order]) => (
          <button type="button" aria-pressed={sorting === order} onClick={() => sort(order)}>
            {name}
          </button>
        ))}
        {incremental && (
          <select
            aria-label="State"
            value={status}
            onChange={(event) => setStatus(event.currentTarget.value)}
          >
            <option value="">all differences</option>
            {[1, 2, 3].map((code) => (
              <option value={code}>{statusText(code)}</option>
            ))}
          </select>
        )}
      </div>
      <DataTable
        key={index}
        name={`files ${index}`}
        label="Files"
        rows={rows}
        filter={filter}
        sortState={sortState}
        elements={760}
      />
    </>
  );
}

/** The folder that is entered, and the extension if only its files are. */
interface Scope {
  path: string;
  extension?: string;
}

const scopeText = ({path, extension}: Scope): string =>
  `Files${path === '/' ? '' : ` in ${shortText(path)}`}${extension === undefined ? '' : ` with the extension ${shortText(extension)}`}`;

function filterOf(rows: FileRows, {path, extension}: Scope, status: string): Filter | undefined {
  if (path === '/' && extension === undefined && !status) return undefined;
  const below = path === '/' ? () => true : rows.below(path);
  return {
    name: JSON.stringify([path, extension, status]),
    test: (row) =>
      below(row) &&
      (extension === undefined || rows.file(row).extension === extension) &&
      (!status || rows.status(row) === Number(status)),
  };
}

function FileMap({rows, setScope}: {rows: FileRows; setScope: (scope: Scope) => void}) {
  const [by, setBy] = useState<'folder' | 'extension'>('folder');
  const [measure, setMeasure] = useState<Measure>('size');
  const [extension, setExtension] = useState<string>();
  const [folder, setFolder] = useState(0);
  const tree = useSteps(() => FolderTree.build(rows, extension), [rows, extension]);
  const extensions = useSteps(() => extensionsOf(rows), [rows], by === 'extension');
  const listed = by === 'extension' && extension === undefined;

  const show = (of: FolderTree | undefined, to: number, only: string | undefined): void => {
    setFolder(to);
    setExtension(only);
    setScope({path: of ? of.path(to) : '/', extension: only});
  };
  const layOut = useMemo(
    () => layOutOf(listed ? extensions : tree, folder, measure),
    [listed, extensions, tree, folder, measure],
  );
  const focus = useRef(false);
  const enter = ({kind, id}: Item): void => {
    focus.current = true;
    if (kind === 'extension') show(undefined, 0, extensions![id].name);
    else show(tree, soleChild(tree!, id), extension);
  };
  const leave = (): void => {
    focus.current = true;
    if (folder > 0) show(tree, placeAbove(tree!, folder), extension);
    else show(undefined, 0, undefined);
  };
  return (
    <section aria-label="Map of the files">
      <div class="choices">
        <Choice
          name="Group by"
          value={by}
          values={['folder', 'extension']}
          choose={(value) => {
            setBy(value);
            show(undefined, 0, undefined);
          }}
        />
        <Choice name="Measure" value={measure} values={['size', 'count']} choose={setMeasure} />
        <Trail tree={tree} folder={folder} extension={extension} show={show} />
      </div>
      {layOut ? (
        <Treemap
          label="Treemap"
          measure={measure}
          layOut={layOut}
          enter={enter}
          leave={folder > 0 || extension !== undefined ? leave : undefined}
          focus={focus}
        />
      ) : (
        <div class="treemap" role="status">
          Adding up {countText(rows.count, 'file')}…
        </div>
      )}
    </section>
  );
}

function layOutOf(from: FolderTree | Extension[] | undefined, folder: number, measure: Measure) {
  if (!from) return undefined;
  return (room: Room) =>
    Array.isArray(from)
      ? extensionBoxes(from, measure, room)
      : folderBoxes(from, folder, measure, room);
}

/** Folders with nothing but one folder are passed, in both directions. */
function soleChild(tree: FolderTree, folder: number): number {
  const children = [...tree.children(folder)].filter((child) => tree.value(child, 'count') > 0);
  return children.length === 1 && tree.files(folder).next().done
    ? soleChild(tree, children[0])
    : folder;
}

function placeAbove(tree: FolderTree, folder: number): number {
  const above = tree.parent(folder);
  return above > 0 && soleChild(tree, above) !== above ? placeAbove(tree, above) : above;
}

/** The result of long work, undefined until it is there. */
function useSteps<Result>(
  begin: () => Generator<void, Result>,
  inputs: unknown[],
  wanted = true,
): Result | undefined {
  const [result, setResult] = useState<{inputs: unknown[]; value: Result}>();
  const current =
    result && inputs.every((input, at) => input === result.inputs[at]) ? result.value : undefined;
  useLayoutEffect(() => {
    let alive = wanted && current === undefined;
    // Few slices: between two of them the browser draws a whole frame.
    void inSlices(begin(), () => alive, undefined, 40).then((value) => {
      if (alive) setResult({inputs, value: value!});
    });
    return () => {
      alive = false;
    };
  }, [...inputs, wanted]);
  return current;
}

function Choice<Value extends string>({
  name,
  value,
  values,
  choose,
}: {
  name: string;
  value: Value;
  values: Value[];
  choose: (value: Value) => void;
}) {
  return (
    <label>
      {name}{' '}
      <select value={value} onChange={(event) => choose(event.currentTarget.value as Value)}>
        {values.map((each) => (
          <option value={each}>{each}</option>
        ))}
      </select>
    </label>
  );
}

const mostSteps = 24;

/** The way from the top to the folder that is entered. */
function Trail({
  tree,
  folder,
  extension,
  show,
}: {
  tree?: FolderTree;
  folder: number;
  extension?: string;
  show: (tree: FolderTree | undefined, folder: number, extension: string | undefined) => void;
}) {
  const steps: number[] = [];
  for (let at = folder; tree && at > 0 && steps.length < mostSteps; at = tree.parent(at))
    steps.unshift(at);
  return (
    <nav class="trail" aria-label="Entered folders">
      <button type="button" onClick={() => show(undefined, 0, undefined)}>
        All
      </button>
      {extension !== undefined && (
        <button type="button" onClick={() => show(tree, 0, extension)}>
          .{shortText(extension)}
        </button>
      )}
      {steps.map((step) => (
        <button
          type="button"
          aria-current={step === folder ? 'location' : undefined}
          onClick={() => show(tree, step, extension)}
        >
          {visible(tree!.names[step].slice(0, 40)) || '/'}
        </button>
      ))}
    </nav>
  );
}
