// Measures the page in the browser beside a plain page that only parses the same documents: medians of 5.
//   node bench/view.mjs [--rounds N] [FILES...]   numbers of files; without them 180000, 1000000
// Needs the program, as the tests do. Prints a table; exits with 3 if a figure exceeds its limit.
import {inventoryOf, launch, write} from '../tests/support/browser.mjs';
import {fileInventory, machineOf} from '../tests/support/forged.mjs';

const options = process.argv.slice(2);
const rounds = options[0] === '--rounds' ? Number(options.splice(0, 2)[1]) : 5;
const sizes = options.length ? options.map(Number) : [180_000, 1_000_000];

const plain = `window.parsed = [...document.querySelectorAll('script[type="application/json"]')]
  .map((element) => JSON.parse(element.textContent)); document.getElementById('view').textContent = 'ready';`;

let missed = 0;
const median = (values) => [...values].sort((a, b) => a - b)[Math.floor(values.length / 2)];
function line(what, value, unit, most) {
  const text = value >= 100 ? value.toFixed(0) : value.toFixed(2);
  const held = most === undefined || value <= most;
  const bar = most === undefined ? '' : `${most} ${held ? 'held' : 'MISSED'}`;
  if (!held) ++missed;
  console.log(`| ${what} | ${text} ${unit} | ${bar} |`);
}

/** Notes in the page when what `ready` looks for has been drawn. */
const watch = (ready) => {
  new MutationObserver((_, observer) => {
    if (!document.querySelector(ready) && document.getElementById('view')?.textContent !== 'ready')
      return;
    observer.disconnect();
    requestAnimationFrame(() => setTimeout(() => (window.usableAfter = performance.now())));
  }).observe(document, {childList: true, subtree: true, attributes: true, characterData: true});
};

/** Opens the page in a browser of its own. @returns milliseconds until it could be used, and what `work` gives. */
async function opened(address, ready, work = () => undefined) {
  const browser = await launch();
  try {
    const page = await browser.newPage({viewport: {width: 1280, height: 900}});
    await page.addInitScript(watch, ready);
    await page.goto(address);
    await page.waitForFunction(() => window.usableAfter, undefined, {timeout: 120_000});
    return {usable: await page.evaluate(() => window.usableAfter), result: await work(page)};
  } finally {
    await browser.close();
  }
}

async function heapOf(page) {
  const session = await page.context().newCDPSession(page);
  await session.send('HeapProfiler.collectGarbage');
  await session.send('HeapProfiler.collectGarbage');
  const {usedSize, backingStorageSize = 0} = await session.send('Runtime.getHeapUsage');
  return usedSize + backingStorageSize;
}

const main = 'CrRendererMain';

/**
 * The longest task of the page while `work` was done, in milliseconds of processor time: on the clock, a shared
 * machine stops for longer than a frame by itself.
 */
async function longestTask(page, work) {
  const session = await page.context().browser().newBrowserCDPSession();
  const events = [];
  session.on('Tracing.dataCollected', ({value}) => events.push(...value));
  const complete = new Promise((resolve) => session.once('Tracing.tracingComplete', resolve));
  await session.send('Tracing.start', {traceConfig: {includedCategories: ['toplevel']}});
  await work();
  await session.send('Tracing.end');
  await complete;
  await session.detach();
  const threads = new Set(
    events.filter(({args}) => args?.name === main).map(({pid, tid}) => `${pid}/${tid}`),
  );
  const tasks = events.filter(({pid, tid, tdur}) => tdur && threads.has(`${pid}/${tid}`));
  if (tasks.length === 0) throw new Error('the browser traced no task of the page');
  return Math.max(...tasks.map(({tdur}) => tdur)) / 1000;
}

const settled = (page) =>
  page.waitForFunction(() => !document.querySelector('[aria-busy="true"]'), undefined, {
    timeout: 120_000,
  });

/** What a reader does with many files. */
async function used(page) {
  const elements = () => page.evaluate(() => document.querySelectorAll('*').length);
  let mostElements = await elements();
  const firstHeap = await heapOf(page);
  const scrolling = await longestTask(page, async () => {
    await page.locator('.grid').hover();
    for (let turn = 0; turn < 60; ++turn) await page.mouse.wheel(0, 400);
    for (let at = 1; at <= 20; ++at) {
      await page
        .locator('.grid')
        .evaluate((grid, part) => (grid.scrollTop = grid.scrollHeight * part), at / 20);
      await page.waitForTimeout(30);
    }
    mostElements = Math.max(mostElements, await elements());
  });
  const typing = await longestTask(page, async () => {
    await page.getByRole('searchbox').focus();
    for (const key of 'cache/no') {
      await page.keyboard.press(key);
      await page.waitForTimeout(40);
    }
    await settled(page);
  });
  const sorting = await longestTask(page, async () => {
    await page.getByRole('searchbox').fill('');
    await page.getByRole('button', {name: 'Largest'}).click();
    await settled(page);
  });
  const boxes = Number(await page.locator('.treemap').getAttribute('data-boxes'));
  return {
    firstHeap,
    lastHeap: await heapOf(page),
    scrolling,
    typing,
    sorting,
    mostElements,
    boxes,
  };
}

async function compare(what, documents, ready, work) {
  const [ours, theirs] = [write(documents), write(documents, {}, plain)];
  const runs = {ours: [], theirs: []};
  for (let round = 0; round < rounds; ++round) {
    runs.theirs.push(await opened(theirs, '#none', heapOf));
    runs.ours.push(await opened(ours, ready, work));
  }
  const of = (list, pick) => median(list.map(pick));
  const usable = {
    ours: of(runs.ours, (run) => run.usable),
    theirs: of(runs.theirs, (run) => run.usable),
  };
  line(`${what}: plain page`, usable.theirs, 'ms');
  line(`${what}: until it can be used`, usable.ours, 'ms');
  return {
    usable,
    heap: of(runs.theirs, (run) => run.result),
    of: (pick) => of(runs.ours, (run) => pick(run.result)),
  };
}

console.log('| what | measured | at most |\n| --- | --- | --- |');
const machine = machineOf(inventoryOf('intel-t2'), 60_000);
const small = await compare(
  'machine document of 60 KB',
  [{kind: 'machine', form: 'full', name: 'mac.jsonkob', json: machine}],
  '.card',
);
line('machine document: beyond the plain page', small.usable.ours - small.usable.theirs, 'ms', 150);

for (const count of sizes) {
  const what = `${count.toLocaleString('en-GB')} files`;
  const json = JSON.stringify(fileInventory(count));
  const measured = await compare(
    what,
    [{kind: 'files', form: 'full', name: 'mac.jsonrud', json}],
    '.treemap[data-boxes] button',
    used,
  );
  line(
    `${what}: times the plain page`,
    measured.usable.ours / measured.usable.theirs,
    '',
    count <= 180_000 ? 1.5 : 2,
  );
  line(
    `${what}: longest task while scrolling`,
    measured.of((run) => run.scrolling),
    'ms',
    50,
  );
  line(
    `${what}: longest task while typing`,
    measured.of((run) => run.typing),
    'ms',
    50,
  );
  line(
    `${what}: longest task while sorting`,
    measured.of((run) => run.sorting),
    'ms',
    50,
  );
  line(
    `${what}: heap beyond the JSON, opened`,
    (measured.of((run) => run.firstHeap) - measured.heap) / count,
    'bytes a file',
    250,
  );
  line(
    `${what}: heap beyond the JSON, searched and sorted`,
    (measured.of((run) => run.lastHeap) - measured.heap) / count,
    'bytes a file',
    250,
  );
  line(
    `${what}: elements`,
    measured.of((run) => run.mostElements),
    '',
    1500,
  );
  line(
    `${what}: boxes`,
    measured.of((run) => run.boxes),
    '',
    2000,
  );
}
process.exitCode = missed ? 3 : 0;
