// Puts pages together from documents: what a page is made of, in one place for tests and benchmarks.
import {createHash} from 'node:crypto';
import {readFileSync} from 'node:fs';
import {dirname, join} from 'node:path';
import {fileURLToPath} from 'node:url';

export const webFolder = join(dirname(fileURLToPath(import.meta.url)), '../..');
const fromRoot = (path) => readFileSync(join(webFolder, '..', path), 'utf8');

const escapes = {
  '<': '\\u003c',
  '>': '\\u003e',
  '&': '\\u0026',
  '\u2028': '\\u2028',
  '\u2029': '\\u2029',
};
const inElement = (json) => json.replace(/[<>&\u2028\u2029]/g, (character) => escapes[character]);
const hashOf = (text) => `'sha256-${createHash('sha256').update(text).digest('base64')}'`;

/** Fields of a record by their dotted path. */
function fieldsOf(root, node, prefix, fields) {
  const at = node.$ref ? root.$defs[node.$ref.split('/').pop()] : node;
  if (at.items) return fieldsOf(root, at.items, prefix, fields);
  for (const [key, property] of Object.entries(at.properties ?? {})) {
    const {description, type, 'x-source': source, 'x-unit': unit} = property;
    fields[prefix + key] = {description, source, type: type ?? 'object', unit};
    fieldsOf(root, property, `${prefix}${key}.`, fields);
  }
  return fields;
}

const sectionOf = (root, node) => ({
  description: node.description,
  kind: node.items ? 'list' : 'record',
  identity: node['x-identity'],
  fields: fieldsOf(root, node, '', {}),
});

function schemaOf() {
  const machine = JSON.parse(fromRoot('docs/schema/inventory.schema.json'));
  const files = JSON.parse(fromRoot('docs/schema/file-inventory.schema.json'));
  const sections = Object.entries(machine.properties).map(([key, node]) => [
    key,
    sectionOf(machine, node),
  ]);
  return {...Object.fromEntries(sections), paths: sectionOf(files, files.properties.paths)};
}

export const schema = schemaOf();
export const explanations = Object.fromEntries(
  Object.entries(JSON.parse(fromRoot('docs/sections.json')).sections).map(
    ([key, {empty, needs}]) => [key, {missing: empty, needs}],
  ),
);

/** What the page says of its documents; a document is {kind, form, name, time, json}. */
export function describe(documents, more = {}) {
  const last = (kind) => {
    const index = documents.findLastIndex(
      (each) => each.kind === kind && each.form !== 'incremental',
    );
    return index < 0 ? null : index;
  };
  return {
    generator: 'norvik-agent 9.24',
    made: '2026-01-31T12:00:00Z',
    redacted: false,
    machine: {name: 'mac-07', guid: '0F1E2D3C-0000-4000-8000-000000000001'},
    documents: documents.map(({kind, form, name, time = null}) => ({kind, form, name, time})),
    notes: [],
    current: {machine: last('machine'), files: last('files')},
    schema,
    explanations,
    changes: [],
    ...more,
  };
}

/** A script of its own, for the plain page that a benchmark compares with. */
export function assemble(
  documents,
  more,
  script = readFileSync(join(webFolder, 'dist/viewer.js'), 'utf8'),
) {
  const style = readFileSync(join(webFolder, 'dist/viewer.css'), 'utf8');
  const blocks = documents.map(
    ({json}) =>
      '<script type="application/json" class="norvik-document">' +
      `${inElement(typeof json === 'string' ? json : JSON.stringify(json))}</script>`,
  );
  return (
    '<!doctype html><html lang="en"><head><meta charset="utf-8">' +
    `<meta http-equiv="Content-Security-Policy" content="default-src 'none'; script-src ${hashOf(script)}; ` +
    `style-src ${hashOf(style)}; img-src data:; base-uri 'none'; form-action 'none'">` +
    '<meta name="viewport" content="width=device-width, initial-scale=1"><meta name="color-scheme" content="light dark">' +
    `<title>mac-07 - Norvik</title><style>${style}</style></head><body><noscript>This page needs JavaScript.</noscript>` +
    '<main id="view"></main><script type="application/json" id="norvik-page">' +
    `${inElement(JSON.stringify(describe(documents, more)))}</script>${blocks.join('')}<script>${script}</script></body></html>`
  );
}
