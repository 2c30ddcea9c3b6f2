// Bundles the page into dist/. With a folder as argument it writes there instead.
import {build} from 'esbuild';
import {mkdir, readFile, writeFile} from 'node:fs/promises';
import {dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const target = process.argv[2] ?? join(here, 'dist');
const most = {script: 250_000, libraries: 100_000};

const {metafile, outputFiles} = await build({
  absWorkingDir: here,
  entryPoints: {viewer: 'src/main.tsx'},
  outdir: target,
  bundle: true,
  format: 'iife',
  target: ['chrome109', 'firefox115', 'safari16'],
  jsx: 'automatic',
  jsxImportSource: 'preact',
  define: {'process.env.NODE_ENV': '"production"'},
  minify: true,
  charset: 'ascii',
  legalComments: 'none',
  metafile: true,
  write: false,
});

/** Name of the package that an input of the bundle belongs to; undefined for our own. */
const packageOf = (input) => /node_modules\/((?:@[^/]+\/)?[^/]+)/.exec(input)?.[1];

const script = Object.values(metafile.outputs).find((output) => output.entryPoint);
let libraries = 0;
const packages = new Set();
for (const [input, {bytesInOutput}] of Object.entries(script.inputs)) {
  if (!packageOf(input) || !bytesInOutput) continue;
  libraries += bytesInOutput;
  packages.add(packageOf(input));
}
console.log(`script ${script.bytes} bytes, libraries ${libraries} of them`);
if (script.bytes > most.script || libraries > most.libraries) {
  throw new Error(`the script may have ${most.script} bytes, libraries ${most.libraries} of them`);
}

await mkdir(target, {recursive: true});
for (const file of outputFiles) {
  // The bytes are put between tags, so nothing in them may end the element.
  if (/<\/(script|style)|<!--|[^\x00-\x7f]/i.test(file.text)) {
    throw new Error(`${file.path} cannot be put into a page`);
  }
  await writeFile(file.path, file.contents);
}
const licences = [];
for (const name of [...packages].sort()) {
  const folder = join(here, 'node_modules', name);
  const {version} = JSON.parse(await readFile(join(folder, 'package.json'), 'utf8'));
  licences.push(
    `${name} ${version}\n\n${(await readFile(join(folder, 'LICENSE'), 'utf8')).trim()}\n`,
  );
}
await writeFile(join(target, 'licences.txt'), licences.join('\n\n'));
