// The tree of folders beside plain sums over all paths, for documents in the agent's order and in none.
import assert from 'node:assert/strict';
import {test} from 'node:test';
import {build} from 'esbuild';
import {fileInventory, random} from './support/forged.mjs';
import {webFolder} from './support/pages.mjs';

const contents = `export {FolderTree} from './src/files/FolderTree';
  export {FileRows} from './src/files/FileRows';`;
const {outputFiles} = await build({
  stdin: {contents, resolveDir: webFolder, loader: 'ts'},
  bundle: true,
  format: 'esm',
  write: false,
});
const {FolderTree, FileRows} = await import(
  `data:text/javascript;base64,${Buffer.from(outputFiles[0].contents).toString('base64')}`
);

/** Number of files by folder. */
function sums({paths}) {
  const counts = {'/': 0};
  for (const {pathName, files} of paths) {
    const ends = `${pathName.slice(1)}/`
      .split('')
      .flatMap((one, at) => (one === '/' ? [at + 1] : []));
    const folders = new Set(['/', ...ends.map((end) => pathName.slice(0, end))]);
    for (const folder of folders) counts[folder] = (counts[folder] ?? 0) + files.length;
  }
  return counts;
}

function counted(document) {
  const steps = FolderTree.build(new FileRows(document, 0));
  let step = steps.next();
  while (!step.done) step = steps.next();
  const tree = step.value;
  const counts = Array.from({length: tree.size}, (_, at) => [
    tree.path(at),
    tree.value(at, 'count'),
  ]);
  const known = Object.fromEntries(counts);
  assert.equal(Object.keys(known).length, counts.length, 'a folder is there twice');
  return known;
}

test('the tree has each folder once, with all that is below it', () => {
  const document = fileInventory(4000);
  assert.deepEqual(counted(document), sums(document));
  const next = random(3);
  document.paths.sort(() => next() - 0.5);
  assert.deepEqual(counted(document), sums(document));
});

test('odd names make no folder twice', () => {
  const names = ['a', 'b', 'a b', '-', '', 'a.', '\u00e9', 'aa', '\ud83d\ude00', '\uff5e'];
  const files = [{extension: 'A', filename: 'x', size: 1}];
  for (let seed = 0; seed < 1000; ++seed) {
    const next = random(seed);
    const name = () => names[Math.floor(next() * names.length)];
    const paths = Array.from({length: 8}, () => ({
      pathName: `/n${name()}/${Array.from({length: Math.floor(next() * 4)}, name).join('/')}`,
      files,
    }));
    assert.deepEqual(counted({paths}), sums({paths}), JSON.stringify(paths));
  }
});
