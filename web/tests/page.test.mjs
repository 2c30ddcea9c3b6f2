// The page in a browser, with documents that the agent made of recorded machines and with forged ones.
import assert from 'node:assert/strict';
import {readFileSync, writeFileSync} from 'node:fs';
import {createRequire} from 'node:module';
import {join} from 'node:path';
import {after, before, test} from 'node:test';
import {pathToFileURL} from 'node:url';
import {agent, folder, inventoryOf, launch, withPage, write} from './support/browser.mjs';
import {fileInventory, machineOf} from './support/forged.mjs';
import {explanations, schema, webFolder} from './support/pages.mjs';

const axe = createRequire(import.meta.url).resolve('axe-core');
const hostile = JSON.parse(readFileSync(join(webFolder, 'tests/hostile.json'), 'utf8'));
const machine = inventoryOf('intel-t2');
const files = fileInventory(3000);
const mostElements = 1500;
const machineEntry = {
  kind: 'machine',
  form: 'full',
  name: 'mac.jsonkob',
  time: 1767225600,
  json: machine,
};
const filesEntry = {
  kind: 'files',
  form: 'full',
  name: 'mac.jsonrud',
  time: 1767225600,
  json: files,
};

let browser;
let address;
before(async () => {
  browser = await launch();
  address = write([machineEntry, filesEntry]);
});
after(() => browser.close());

const settled = async (page) => {
  await page.evaluate(() => new Promise((drawn) => requestAnimationFrame(() => setTimeout(drawn))));
  await page.waitForFunction(() => !document.querySelector('[aria-busy="true"]'));
};
const count = (page) => page.locator('.count').first().innerText();
const column = async (page, at) => {
  await settled(page);
  return page
    .locator(`.grid .row [role=gridcell][aria-colindex="${at}"]`)
    .evaluateAll((cells) =>
      cells
        .sort((a, b) => a.parentNode.ariaRowIndex - b.parentNode.ariaRowIndex)
        .map((cell) => cell.textContent),
    );
};
const go = async (page, hash) => {
  await page.goto(address + hash);
  await settled(page);
};

test('the overview shows the machine and what needs attention', () =>
  withPage(browser, address, async (page) => {
    const text = await page.locator('main').innerText();
    const {model} = machine.disk[0];
    for (const fact of [
      machine.device.name,
      machine.setup.system.serial,
      machine.networkAdapter[1].addresses[0].address,
      model,
    ]) {
      assert.ok(text.includes(fact), fact);
    }
    const stopped = machine.service.filter(
      ({state, startupMode}) => state === 'Stopped' && startupMode === 'Enabled',
    );
    assert.equal(await page.locator('.concerns li').count(), stopped.length);
  }));

test('full volumes and undated firmware need attention', () => {
  const {disk, bios} = structuredClone(machine);
  const displays = null;
  disk[0].logicalDisk[0].freeBytes = Math.floor(disk[0].logicalDisk[0].sizeBytes * 0.099);
  disk[0].logicalDisk[1].freeBytes = Math.ceil(disk[0].logicalDisk[1].sizeBytes * 0.101);
  disk[0].logicalDisk[0].volumeName = 'V'.repeat(1000);
  const memorySlot = [
    {name: 'DIMM A', sizeBytes: 8 * 2 ** 30, type: 'DDR4', speedMhz: 2667},
    {name: 'DIMM B', sizeBytes: 0},
  ];
  const json = {
    ...machine,
    disk,
    displays,
    memorySlot,
    bios: {...bios, date: -1000},
    service: null,
  };
  return withPage(browser, write([{...machineEntry, json}]), async (page) => {
    const concerns = await page.locator('.concerns li').allInnerTexts();
    assert.equal(concerns.length, 2);
    assert.match(concerns[0], /^Volume V+ is 90% full/);
    assert.match(concerns[1], /no date$/);
    assert.deepEqual(await page.locator('.slot').allInnerTexts(), [
      'DIMM A\n8 GiB DDR4, 2667 MHz',
      'DIMM B\nempty',
    ]);
    await page.locator('.card .empty a').click();
    assert.ok((await page.locator('.empty').innerText()).startsWith('This section is empty'));
  });
});

test('every table sorts and searches; an empty section says why', () =>
  withPage(browser, address, async (page) => {
    const byCode = (a, b) => (a < b ? -1 : a > b ? 1 : 0);
    for (const [section, value] of Object.entries(machine)) {
      await go(page, `#sections/${section}`);
      if (value === null) {
        const why = explanations[section].missing.replaceAll('`', '');
        assert.ok((await page.locator('.empty').innerText()).includes(why), section);
        continue;
      }
      const before = await column(page, 1);
      assert.ok(before.length > 0, section);
      const head = page.locator('.grid').first().locator('.head button').first();
      for (const sign of [1, -1]) {
        await head.click();
        const sorted = await page
          .locator('.grid')
          .first()
          .locator('.row [aria-colindex="1"]')
          .allInnerTexts();
        if (Number.isNaN(Number(sorted[0]))) {
          const lower = sorted.map((text) => text.toLowerCase());
          assert.deepEqual(
            lower,
            [...lower].sort((a, b) => sign * byCode(a, b)),
            section,
          );
        }
      }
      await page.locator('input[type=search]').first().fill('no record has this');
      await settled(page);
      assert.equal(await count(page), 'No row fits.', section);
    }
  }));

test('a table hides columns, explains them, and is copied as CSV', () =>
  withPage(browser, address, async (page) => {
    await go(page, '#sections/software');
    await page.locator('summary').click();
    await page.getByLabel('version', {exact: true}).uncheck();
    await page.keyboard.press('Escape');
    assert.equal(await page.locator('.choice').count(), 0);
    assert.ok(!(await page.locator('.head').innerText()).includes('version'));
    await page.locator('.head button').first().focus();
    await page.keyboard.press('End');
    const key = await page.locator('.head button:focus').innerText();
    const {description, source} = schema.software.fields[key];
    assert.equal(
      await page.locator('.hint').innerText(),
      `${key}: ${description} Source: ${source}.`,
    );
    await page.locator('input[type=search]').fill('terminal');
    await settled(page);
    await page.getByText('Copy as CSV').click();
    await page.getByText('Copied 1 row.').waitFor();
    const [head, line] = (await page.evaluate(() => navigator.clipboard.readText())).split('\r\n');
    assert.equal(head.split(',')[0], 'name');
    assert.equal(line.split(',')[0], 'Terminal');
  }));

test('a value leads to its place in the raw document', () =>
  withPage(browser, address, async (page) => {
    await go(page, '#sections/disk');
    await page.locator('.grid').nth(1).locator('.row a').first().click();
    const line = page.locator('.line:focus');
    await line.waitFor();
    assert.equal(
      await line.innerText(),
      `device: ${JSON.stringify(machine.disk[0].logicalDisk[0].device)}`,
    );
    await page.keyboard.press('ArrowLeft');
    await page.keyboard.press('ArrowLeft');
    assert.equal(await page.locator('.line:focus').getAttribute('aria-expanded'), 'false');
  }));

test('search and sorting of a table are still there after a look at the raw document', () =>
  withPage(browser, address, async (page) => {
    for (const [hash, text] of [
      ['#sections/software', 'er'],
      ['#files', 'notes'],
    ]) {
      await go(page, hash);
      await page.getByRole('searchbox').first().fill(text);
      await page.locator('.head button').first().click();
      await page.locator('.head button').first().click();
      const former = [await column(page, 1), await count(page)];
      await page.locator('.row a').first().click();
      await page.locator('.line:focus').waitFor();
      await page.goBack();
      await page.locator('.grid').first().waitFor();
      assert.deepEqual([await column(page, 1), await count(page)], former, hash);
      assert.equal(await page.locator('.head [aria-sort=descending]').count(), 1, hash);
      await go(page, '#sections/service');
      assert.equal(await page.getByRole('searchbox').first().inputValue(), '');
    }
  }));

test('dates are those of the reader, with UTC as their title', () => {
  const json = {...machine, bios: {date: Date.UTC(2021, 1, 10, 23)}};
  return withPage(browser, write([{...machineEntry, json}]) + '#sections/bios', async (page) => {
    const cell = page.locator('.row a', {hasText: '2021'});
    assert.equal(await cell.innerText(), '2021-02-11 00:00:00');
    assert.match(await cell.getAttribute('title'), /^2021-02-10 23:00:00/);
    const {source} = schema.bios.fields.date;
    assert.equal(await page.locator('.row span', {hasText: source}).getAttribute('title'), source);
  });
});

test('records without values have columns, and missing numbers come first', () => {
  const software = [10, null, 9, undefined].map((sizeBytes) => ({name: `${sizeBytes}`, sizeBytes}));
  const json = {...machine, software, printer: [{name: '', port: ''}]};
  const at = write([{...machineEntry, json}]);
  return withPage(browser, `${at}#sections/software`, async (page) => {
    await page.getByRole('button', {name: 'sizeBytes'}).click();
    assert.deepEqual(await column(page, 1), ['null', 'undefined', '9', '10']);
    await page.goto(`${at}#sections/printer`);
    await page.locator('h2', {hasText: 'printer'}).waitFor();
    assert.ok((await page.locator('.head button').count()) > 1);
    await page.locator('summary').click();
    for (const box of (await page.getByRole('checkbox').all()).slice(1)) await box.uncheck();
    assert.ok(await page.getByRole('checkbox').first().isDisabled());
  });
});

test('an incremental document alone has its changes', () => {
  const entry = {...machineEntry, form: 'incremental', json: {update: {os: {version: '14.1'}}}};
  const change = {
    time: 1767225600,
    from: null,
    to: 0,
    section: 'os',
    change: 'changed',
    record: '',
  };
  const fields = [{key: 'version', after: '14.1'}];
  return withPage(browser, write([entry], {changes: [{...change, fields}]}), async (page) => {
    assert.deepEqual([...(await column(page, 6)), ...(await column(page, 7))], ['?', '14.1']);
    await page.locator('.row a').first().click();
    assert.equal(await page.locator('.line:focus').innerText(), 'os: { 1 }');
  });
});

test('the choice of documents has the newest, and the one that is shown', () => {
  const many = Array.from({length: 150}, (_, at) => ({
    ...filesEntry,
    name: `f${at}`,
    json: {paths: []},
  }));
  const at = write(many);
  return withPage(browser, at, async (page) => {
    for (const [hash, name] of [
      ['#files', 'f149'],
      ['#raw', 'f149'],
      ['#raw/3', 'f3'],
      ['#files/3', 'f3'],
    ]) {
      await page.goto(at + hash);
      assert.equal(await page.locator('option:checked').first().innerText(), `${name} (full)`);
    }
  });
});

/** What an incremental document says, a line for each record and for each property that changed. */
function storyOf(difference, before) {
  const lines = [];
  for (const [part, change] of [
    ['create', 'created'],
    ['delete', 'removed'],
    ['update', 'changed'],
  ]) {
    for (const [section, value] of Object.entries(difference[part] ?? {})) {
      for (const record of [value].flat()) {
        if (part !== 'update') lines.push([section, change, '', '', ''].join('|'));
        const same = (other) =>
          (schema[section].identity ?? []).every((key) => other[key] === record[key]);
        const former = part === 'update' ? [before[section]].flat().find(same) : record;
        for (const key of Object.keys(record)) {
          if (record[key] !== former[key] && typeof record[key] !== 'object')
            lines.push([section, change, key, former[key], record[key]].join('|'));
        }
      }
    }
  }
  return lines;
}

test('a page of the program has the changes of diff, and can be filtered', () => {
  const next = structuredClone(machine);
  next.device.assetDate += 86_400_000;
  next.os.version = '14.1';
  next.user[1].description = 'changed';
  next.memory.totalBytes += 1;
  next.disk[0].logicalDisk[0].freeBytes = 1e10;
  next.software.pop();
  next.software.push({
    ...machine.software[0],
    name: 'Fjord Map',
    softwareKey: '/Applications/Fjord Map.app',
  });
  const [old, later] = [machine, next].map((json, at) => {
    const file = join(folder, `pair-${at}.json`);
    writeFileSync(file, JSON.stringify(json));
    return file;
  });
  const expected = storyOf(JSON.parse(agent('diff', old, later)), machine);
  expected.push('disk|changed|logicalDisk.0.freeBytes|210.5 GB|10.0 GB');
  const output = join(folder, 'pair.html');
  agent('view', later, old, '--output', output);
  return withPage(browser, pathToFileURL(output).href, async (page) => {
    await page.getByRole('link', {name: 'Changes'}).click();
    const cells = await Promise.all([2, 3, 5, 6, 7].map((at) => column(page, at)));
    const sizes = (line) =>
      line
        .replace('|0|1610612736', '|0 bytes|1.6 GB')
        .replace('|1610612736|0', '|1.6 GB|0 bytes')
        .replace('|17179869184|17179869185', '|17179869184 bytes|17179869185 bytes');
    assert.deepEqual(
      cells[0].map((_, row) => cells.map((cell) => cell[row]).join('|')).sort(),
      expected.map(sizes).sort(),
    );
    await page.getByLabel(/^Section/).selectOption('software');
    assert.deepEqual((await column(page, 3)).sort(), ['created', 'removed']);
    await page
      .locator('label', {hasText: /^Change/})
      .locator('select')
      .selectOption('removed');
    assert.equal((await column(page, 3)).length, 1);
    await page.locator('.row a').first().click();
    assert.match(await page.locator('.line:focus').innerText(), /^software: \[/);
  });
});

test('the treemap is entered and left by mouse and keys', () =>
  withPage(browser, address, async (page) => {
    await go(page, '#files');
    const boxes = page.locator('.treemap button');
    const name = '/bin';
    const inside = files.paths.filter(
      ({pathName}) => pathName.startsWith(name + '/') || pathName === name,
    );
    const expected = inside.reduce((sum, each) => sum + each.files.length, 0);
    const sizeOf = (paths) =>
      paths.flatMap((path) => path.files).reduce((sum, {size}) => sum + size, 0);
    const percent = ((100 * sizeOf(inside)) / sizeOf(files.paths)).toFixed(1);
    const box = page.locator('.treemap').getByRole('button', {name: `folder ${name}:`});
    assert.ok((await box.getAttribute('title')).endsWith(`, ${percent}%`));
    await box.click();
    await page.locator('.scope', {hasText: `Files in ${name}`}).waitFor();
    await settled(page);
    assert.equal(await count(page), `${expected.toLocaleString('en-GB')} of 3,000 rows`);
    await page.keyboard.press('Escape');
    await page.locator('.scope', {hasText: /^Files$/}).waitFor();
    const first = await boxes.first().innerText();
    await page.keyboard.press('ArrowRight');
    assert.notEqual(await page.evaluate(() => document.activeElement.textContent), first);
    await page.keyboard.press('Enter');
    await page.locator('.scope', {hasText: 'Files in /'}).waitFor();
    await page.getByLabel(/^Group by/).selectOption('extension');
    await boxes.first().click();
    await page.locator('.scope', {hasText: 'with the extension'}).waitFor();
    await page.getByLabel(/^Measure/).selectOption('count');
    assert.match(await boxes.first().getAttribute('title'), /files?, [\d.]+%$/);
  }));

test('the treemap passes folders with nothing but one folder', () => {
  const [{files: those}] = files.paths;
  const json = {...files, paths: ['/a/b/c', '/d'].map((pathName) => ({pathName, files: those}))};
  return withPage(browser, write([{...filesEntry, json}]), async (page) => {
    await page.locator('.treemap').getByRole('button', {name: 'folder /a:'}).click();
    await page.locator('.scope', {hasText: 'Files in /a/b/c'}).waitFor();
    await page.keyboard.press('Escape');
    await page.locator('.scope', {hasText: /^Files$/}).waitFor();
  });
});

test('files are found by a part of their path, the largest and the newest first', () =>
  withPage(browser, address, async (page) => {
    await go(page, '#files');
    const all = files.paths.flatMap(({pathName, files: those}) =>
      those.map((file) => ({...file, pathName})),
    );
    for (const [button, key, at] of [
      ['Largest', 'size', 4],
      ['Newest', 'lastMod', 5],
    ]) {
      await page.getByRole('button', {name: button}).click();
      await settled(page);
      const best = all.reduce((a, b) => (b[key] > a[key] ? b : a));
      assert.equal((await column(page, 2))[0], best.filename, key);
      assert.equal(
        await page.locator('.head [aria-sort=descending]').getAttribute('aria-colindex'),
        String(at),
      );
      await page.evaluate(() => navigator.clipboard.writeText(''));
      await page.getByText('Copy as CSV').click();
      await page.getByText('Copied 3,000 rows.').waitFor();
      await page.waitForFunction(() => navigator.clipboard.readText());
      const lines = (await page.evaluate(() => navigator.clipboard.readText()))
        .trimEnd()
        .split('\r\n')
        .slice(1);
      const sorted = all
        .map((file) => file[key])
        .sort((a, b) => b - a)
        .map(String);
      assert.deepEqual(
        lines.map((line) => line.split(',')[at - 1]),
        sorted,
      );
    }
    await page.locator('.head button').first().click();
    assert.equal(await page.locator('[aria-pressed=true]').count(), 0);
    const file = all[1234];
    const folderEnd = file.pathName.slice(-4).toUpperCase();
    for (const query of [
      file.filename,
      `${file.filename}.${file.extension}`,
      `${folderEnd}/${file.filename}`,
      `${folderEnd}/${file.filename.slice(0, 3)}`,
      '/lib',
      'a',
      'no such path',
    ]) {
      await page.getByRole('searchbox').fill(query);
      await settled(page);
      const fitting = all.filter(({pathName, filename, extension}) =>
        `${pathName}/${filename}.${extension}`.toLowerCase().includes(query.toLowerCase()),
      ).length;
      const said = await count(page);
      assert.equal(parseInt(said.replace(/,|No row fits\./g, '') || '0', 10), fitting, query);
    }
  }));

test('the differences of an incremental file inventory are shown by state', () => {
  const json = {
    device: files.device,
    typeInventory: 1,
    paths: [1, 2, 3].map((fileStatus) => ({
      pathName: '/changed',
      files: files.paths[0].files.slice(0, 1).map((file) => ({...file, fileStatus})),
    })),
  };
  const entry = {kind: 'files', form: 'incremental', name: 'step.jsonrud', time: 1767312000, json};
  return withPage(browser, write([filesEntry, entry]), async (page) => {
    await page.getByLabel('Document').selectOption({label: 'step.jsonrud (incremental)'});
    await page.getByLabel('State').waitFor();
    assert.deepEqual(await column(page, 6), ['new', 'modified', 'removed']);
    await page.getByLabel('State').selectOption('removed');
    assert.deepEqual(await column(page, 6), ['removed']);
  });
});

/** The value with every text in it replaced, and a number of other records beside the first. */
const spoilt = (value, text) =>
  typeof value === 'string'
    ? text
    : Array.isArray(value)
      ? value.map((each) => spoilt(each, text))
      : value && typeof value === 'object'
        ? Object.fromEntries(Object.entries(value).map(([key, each]) => [key, spoilt(each, text)]))
        : value;

/** Halves of pairs become the character that browsers show instead. */
const wellFormed = (text) => Buffer.from(text).toString();

/** What a cell shows of a text, from the rule and not from the code: unseen characters are escaped as in JSON. */
const escaped = (text) =>
  [...text.trim().slice(0, 300)]
    .map((character) =>
      /[\p{Cc}\u061c\u200b\u200e\u200f\u2028-\u202e\u2066-\u2069\ufeff]/u.test(character)
        ? ({'\n': '\\n', '\r': '\\r', '\t': '\\t'}[character] ??
          '\\u' + character.charCodeAt(0).toString(16).padStart(4, '0'))
        : character,
    )
    .join('');

test('hostile texts in every field and key are shown as text', async () => {
  const long = 'n'.repeat(1 << 20);
  const texts = [...hostile, long];
  const json = Object.fromEntries(
    Object.entries(machine).map(([section, value]) => [
      section,
      Array.isArray(value)
        ? texts.map((text) => ({...spoilt(value[0], text), [text]: text}))
        : value && {...spoilt(value, texts[section.length]), [texts[section.length]]: '<b>'},
    ]),
  );
  for (const text of texts.slice(0, -1)) json[`x${text}`] ??= [{name: text}];
  const forged = {
    device: files.device,
    typeInventory: 0,
    paths: texts.map((text, at) => ({
      pathName: at % 2 ? `/${text}` : text,
      files: [{extension: text, fileStatus: -1, filename: text, lastMod: 1, size: at}],
    })),
  };
  const changes = texts.map((text) => ({
    time: null,
    day: text,
    from: 0,
    to: 0,
    section: text,
    change: 'changed',
    record: text,
    fields: [{key: text, before: text, after: {[text]: text}}],
  }));
  const at = write(
    [
      {...machineEntry, json, name: texts[0]},
      {...filesEntry, json: forged, name: texts[1]},
    ],
    {changes, notes: texts, machine: {name: texts[2], guid: texts[3]}},
  );
  await withPage(browser, at, async (page) => {
    const check = async (hash) => {
      await page.goto(at + hash);
      await settled(page);
      const strange = await page.evaluate(
        () =>
          [
            ...document.querySelectorAll(
              'main :is(img, svg, script, style, iframe, [onerror], [onload], [onfocus]), body > h1',
            ),
          ].length,
      );
      assert.equal(strange, 0, hash);
      assert.ok(
        (await page.evaluate(() => document.querySelectorAll('*').length)) <= mostElements,
        hash,
      );
      assert.equal(await page.locator('.failure').allInnerTexts().then(String), '', hash);
    };
    for (const hash of [
      '#overview',
      '#changes',
      '#files',
      '#raw',
      '#raw/0/software/3',
      ...hostile.map((text) => '#' + encodeURI(wellFormed(text))),
    ])
      await check(hash);
    for (const section of Object.keys(json))
      await check(`#sections/${encodeURIComponent(wellFormed(section))}`);
    await check('#sections/user');
    const seen = new Set();
    for (let row = 1; row < texts.length + 10; row += 10) {
      await page
        .locator('input[name=row]')
        .first()
        .fill(String(Math.min(row, texts.length)));
      await page.keyboard.press('Enter');
      (await column(page, 1)).forEach((text) => seen.add(wellFormed(text)));
    }
    for (const text of hostile)
      assert.ok(seen.has(wellFormed(escaped(text))), JSON.stringify(text));
    await page.getByText('Copy as CSV').click();
    await page.getByText(/^Copied/).waitFor();
    const csv = await page.evaluate(() => navigator.clipboard.readText());
    const cells = csv.match(/"(?:[^"]|"")*"|[^,\r\n]+/g);
    assert.ok(cells.includes(long));
    assert.deepEqual(
      cells.filter((cell) => /^"?\s*[=+@-]/.test(cell)),
      [],
    );
  });
});

test('the last of 2,000,000 rows is reached by wheel, keys and number', () => {
  const row = '{"extension":"A","fileStatus":-1,"filename":"f","size":1}';
  const last = '{"extension":"A","fileStatus":-1,"filename":"last","size":1}';
  const json = `{"device":{},"typeInventory":0,"paths":[{"pathName":"/a","files":[${(row + ',').repeat(1_999_999)}${last}]}]}`;
  return withPage(browser, write([{...filesEntry, json}]), async (page) => {
    const lastSeen = () =>
      page.waitForFunction(
        () =>
          document.querySelector('.grid [aria-rowindex="2000001"]')?.textContent.includes('last') &&
          document.querySelector('.grid [aria-rowindex="2000001"]').getBoundingClientRect()
            .bottom <= document.querySelector('.grid').getBoundingClientRect().bottom,
      );
    const grid = page.locator('.grid');
    await page.locator('.head button').first().focus();
    await page.keyboard.press('Control+End');
    await lastSeen();
    await page.keyboard.press('Control+Home');
    await page.waitForFunction(() => document.querySelector('.grid').scrollTop === 0);
    await page.locator('input[name=row]').fill('2000000');
    await page.keyboard.press('Enter');
    await lastSeen();
    await page.locator('input[name=row]').fill('1999000');
    await page.keyboard.press('Enter');
    await grid.hover();
    for (let turn = 0; turn < 60; ++turn) await page.mouse.wheel(0, 500);
    await lastSeen();
    // A small turn moves by its own pixels, in an element that is much lower than its rows.
    await page.mouse.wheel(0, -280);
    await page.waitForFunction(() => {
      const {bottom} = document.querySelector('.grid').getBoundingClientRect();
      const rows = [...document.querySelectorAll('.grid .row')].filter(
        (row) => row.getBoundingClientRect().bottom <= bottom,
      );
      return Math.abs(Math.max(...rows.map((row) => Number(row.ariaRowIndex))) - 1_999_991) <= 1;
    });
  });
});

test('rows show their own values in their order, and the focus stays, however one scrolls', () =>
  withPage(browser, address, async (page) => {
    await go(page, '#files');
    const grid = page.locator('.grid');
    await grid.waitFor();
    const names = files.paths.flatMap(({files: those}) => those.map(({filename}) => filename));
    const shown = () =>
      grid.evaluate((element) => {
        const box = element.getBoundingClientRect();
        return [...element.querySelectorAll('.row')].map((row) => {
          const {top, bottom} = row.getBoundingClientRect();
          return {
            number: Number(row.ariaRowIndex) - 2,
            name: row.querySelector('[aria-colindex="2"]').textContent,
            link: row.querySelector('[aria-colindex="2"] a').hash.endsWith('/filename'),
            seen: bottom > box.top + 32 && top < box.bottom,
            focus: row.contains(document.activeElement),
          };
        });
      });
    const check = async (what, focused) => {
      await settled(page);
      const rows = await shown();
      const seen = rows.filter((row) => row.seen).map(({number}) => number);
      assert.ok(seen.length > 15 && seen.at(-1) - seen[0] === seen.length - 1, `${what}: ${seen}`);
      for (const [at, {number, name, link}] of rows.entries()) {
        assert.ok(link && (at === 0 || rows[at - 1].number < number), `${what}: order`);
        assert.equal(name, names[number], what);
      }
      assert.equal(rows.find(({focus}) => focus)?.number, focused, what);
    };
    const steps = [3, 900, 30, -30, 400, -90, 1500, -2000, 17, 650];
    const scroll = async (rows) => {
      await grid.evaluate((element, by) => (element.scrollTop += by), rows * 28);
      await check(`by ${rows}`, focused);
    };
    let focused;
    for (const step of steps) await scroll(step);
    await page.locator('.head button').first().focus();
    for (const [key, row] of [
      ['ArrowDown', 0],
      ['ArrowDown', 1],
      ['Control+End', 2999],
      ['ArrowUp', 2998],
      ['Control+Home', 0],
    ]) {
      await page.keyboard.press(key);
      await check(key, (focused = row));
    }
    for (const step of steps) await scroll(step);
    // Selected text must not become that of another row.
    await page.evaluate(() =>
      getSelection().selectAllChildren(document.querySelectorAll('.grid .row')[9]),
    );
    await scroll(900);
    assert.equal(await page.evaluate(() => String(getSelection())), '');
  }));

test('damaged documents leave one line', async () => {
  for (const json of [
    '{"a":',
    '',
    '[1,2]',
    'null',
    '{"paths":[1]}',
    '{"paths":[{"pathName":1}]}',
    '{"paths":[{"pathName":"/a","files":[null,1,{"filename":{"toString":1},"extension":[],"fileStatus":{"toString":1},"size":"x"}]}]}',
  ]) {
    await withPage(browser, write([{...filesEntry, json}]), async (page) => {
      const text = await page.locator('main').innerText();
      assert.doesNotMatch(text, /undefined|\[object/, json);
    });
  }
  await withPage(browser, write([{...filesEntry, json: '{"a":'}]), async (page) =>
    assert.match(
      await page.locator('.failure').innerText(),
      /^The document mac.jsonrud in this page cannot be read: /,
    ),
  );
});

test('a print has the rows and no tools', () =>
  withPage(browser, address, async (page) => {
    await go(page, '#files');
    await page.locator('.grid').waitFor();
    const rows = await page.evaluate(() => {
      dispatchEvent(new Event('beforeprint'));
      return document.querySelectorAll('.printed tbody tr').length;
    });
    assert.ok(rows > 100);
    await page.emulateMedia({media: 'print'});
    assert.ok((await page.evaluate(() => document.querySelectorAll('*').length)) <= mostElements);
    assert.equal(await page.locator('.tools').count(), 0);
  }));

const views = ['overview', 'sections/software', 'changes', 'files', 'raw/0/disk/0'];

test('views fit three widths in both colours without findings of axe', async () => {
  const day = (number, change, section, record, ...fields) => ({
    time: 1767225600 + 86_400 * number,
    from: 0,
    to: 0,
    section,
    change,
    record,
    fields: fields.length ? fields : undefined,
  });
  const changes = [
    day(0, 'created', 'software', 'Fjord Map'),
    day(0, 'removed', 'user', 'ana'),
    day(
      0,
      'changed',
      'os',
      '',
      {key: 'version', before: '13.5', after: '14.1'},
      {key: 'build', before: '22G74', after: '23B74'},
    ),
    day(3, 'changed', 'service', 'com.fjord.timer', {
      key: 'state',
      before: 'Running',
      after: 'Stopped',
    }),
    day(3, 'changed', 'disk', 'disk0', {key: 'sizeBytes', before: 5e11, after: 1e12}),
    day(5, 'created', 'printer', 'Plotter'),
  ];
  const at = write([{...machineEntry, json: machineOf(machine, 60_000)}, filesEntry], {changes});
  for (const width of [360, 1280, 2560]) {
    for (const colorScheme of ['light', 'dark']) {
      await withPage(
        browser,
        at,
        async (page) => {
          for (const view of views) {
            await page.goto(`${at}#${view}`);
            await settled(page);
            await page.waitForTimeout(100);
            const {wide, elements} = await page.evaluate(() => ({
              wide: document.documentElement.scrollWidth,
              elements: document.querySelectorAll('*').length,
            }));
            assert.ok(
              wide <= width && elements <= mostElements,
              `${view} ${width}: ${wide} wide, ${elements} elements`,
            );
            if (view === 'files' && width === 2560) {
              const head = await page.locator('[role=columnheader]').first().boundingBox();
              assert.ok(head.width > 700, 'the room of a wide window is used');
            }
            const shots = process.env.SCREENSHOTS;
            if (shots)
              await page.screenshot({
                path: join(shots, `${view.split('/')[0]}-${colorScheme}-${width}.png`),
              });
          }
        },
        {viewport: {width, height: width === 2560 ? 1440 : 900}, colorScheme},
      );
    }
  }
  for (const colorScheme of ['light', 'dark']) {
    // The checker puts itself into the page, which the page's own policy does not let it.
    await withPage(
      browser,
      at,
      async (page) => {
        for (const view of views) {
          await page.goto(`${at}#${view}`);
          await settled(page);
          await page.addScriptTag({path: axe});
          const {violations} = await page.evaluate(() => window.axe.run());
          assert.deepEqual(
            violations.map(({id, nodes}) => `${view} ${id}: ${nodes[0].html.slice(0, 200)}`),
            [],
          );
        }
      },
      {colorScheme, bypassCSP: true},
    );
  }
});
