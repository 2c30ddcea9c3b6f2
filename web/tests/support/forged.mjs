// File inventories of any length, always the same ones for the same length.
const extensions = ['app', 'dylib', 'pdf', 'txt', 'jpg', 'mov', 'plist', 'so', 'zip', 'html'];
const words = [
  'Library',
  'Reports',
  'images',
  'build',
  'Fjord',
  'cache',
  'Skerry',
  'notes',
  'share',
  'data',
  'old',
  'bin',
  'binary',
];

/** Numbers from 0 to below 1 (mulberry32). */
export function random(seed) {
  let state = seed;
  return () => {
    state = (state + 0x6d2b79f5) | 0;
    let mixed = Math.imul(state ^ (state >>> 15), 1 | state);
    mixed = (mixed + Math.imul(mixed ^ (mixed >>> 7), 61 | mixed)) ^ mixed;
    return ((mixed ^ (mixed >>> 14)) >>> 0) / 4294967296;
  };
}

const device = {assetDate: 1767225600123, guid: '0F1E2D3C-0000-4000-8000-000000000001'};

export function fileInventory(count, seed = 7) {
  const next = random(seed);
  const pick = (from) => from[Math.floor(next() * from.length)];
  const paths = [];
  for (let made = 0; made < count;) {
    const depth = 2 + Math.floor(next() * 6);
    const names = Array.from(
      {length: depth},
      (_, level) => pick(words) + (level > 1 ? `-${Math.floor(next() * 40)}.bundle` : ''),
    );
    const files = [];
    for (let left = Math.min(count - made, 1 + Math.floor(next() * 10)); left > 0; --left, ++made) {
      files.push({
        extension: pick(extensions).toUpperCase(),
        fileStatus: -1,
        filename: `${pick(words)} ${pick(words)} of com.fjord.${pick(words)} version ${made}`,
        lastMod: 1.4e12 + Math.floor(next() * 3.6e8) * 1000,
        size: Math.floor(next() ** 6 * 4e9),
      });
    }
    paths.push({files, pathName: '/' + names.join('/')});
  }
  paths.sort((a, b) => (a.pathName < b.pathName ? -1 : 1));
  return {device, paths, typeInventory: 0};
}

/** A machine document with so much software that it has about so many bytes. */
export function machineOf(document, bytes) {
  const software = [...document.software];
  const made = {...document, software};
  for (let at = 0; JSON.stringify(made).length < bytes; ++at) {
    const [model] = document.software;
    software.push({
      ...model,
      name: `Fjord Tool ${at}`,
      softwareKey: `/Applications/Fjord Tool ${at}.app`,
      version: `1.${at}`,
    });
  }
  return made;
}
