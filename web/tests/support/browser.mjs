// A page in Debian's browser. Every test gets one without console output and without requests.
import assert from 'node:assert/strict';
import {execFileSync} from 'node:child_process';
import {mkdtempSync, readdirSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {join} from 'node:path';
import {pathToFileURL} from 'node:url';
import {chromium} from 'playwright-core';
import {assemble, webFolder} from './pages.mjs';

export const folder = mkdtempSync(join(tmpdir(), 'norvik-view-'));
process.on('exit', () => rmSync(folder, {recursive: true, force: true}));

export const launch = () =>
  chromium.launch({
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    // The sandbox of the browser does not work for root.
    args: process.getuid?.() === 0 ? ['--no-sandbox'] : [],
  });

let written = 0;
export function write(documents, more, script) {
  const file = join(folder, `page-${++written}.html`);
  writeFileSync(file, assemble(documents, more, script));
  return pathToFileURL(file).href;
}

/** Opens the page, and closes it after the work; complains of console output and of requests. */
export async function withPage(browser, address, work, settings = {}) {
  const context = await browser.newContext({
    viewport: {width: 1280, height: 900},
    timezoneId: 'Europe/Madrid',
    locale: 'en-GB',
    permissions: ['clipboard-read', 'clipboard-write'],
    ...settings,
  });
  const page = await context.newPage();
  const seen = [];
  page.on('console', (message) => seen.push(`console: ${message.text()}`));
  page.on('pageerror', (error) => seen.push(`error: ${error.message}`));
  page.on('dialog', (dialog) => seen.push(`dialog: ${dialog.message()}`));
  page.on('request', (request) => {
    const {origin, pathname, protocol} = new URL(request.url());
    if (
      origin + pathname !== new URL(address).origin + new URL(address).pathname &&
      protocol !== 'blob:'
    ) {
      seen.push(`request: ${request.url().slice(0, 100)}`);
    }
  });
  try {
    // The largest pages take long on a busy machine.
    await page.goto(address, {timeout: 120_000});
    const result = await work(page);
    assert.deepEqual(seen, []);
    return result;
  } finally {
    await context.close();
  }
}

const program = process.env.NORVIK_AGENT ?? join(webFolder, '../build/bin/norvik-agent');
export const agent = (...args) =>
  execFileSync(program, args, {
    encoding: 'utf8',
    maxBuffer: 1 << 28,
    stdio: ['ignore', 'pipe', 'ignore'],
  });

/** The inventory that the agent takes of a recorded machine. */
export function inventoryOf(machine) {
  const data = join(folder, machine);
  agent('--data', data, '--machine', join(webFolder, '../tests/machines', machine), 'inventory');
  const [file] = readdirSync(join(data, 'outbox'));
  return JSON.parse(agent('--data', data, 'open', join(data, 'outbox', file)));
}
