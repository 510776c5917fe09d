// A web page in a real browser, which asks the server whether the page may talk to it.

import assert from 'node:assert/strict';
import { spawn, spawnSync } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, rmSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { HTTPServer } from './http_server.mjs';

const kBrowser = 'chromium';
const hasBrowser = spawnSync(kBrowser, ['--version']).status === 0;

const server = new HTTPServer();
before(() => server.start());
after(async () => assert.equal(await server.stop(), 0));

// The script of the page. A JSON content type or an unusual header makes the browser send a pre-flight
// request first; it then allows only the headers that the server lists.
async function talk(url) {
  const post = async (headers) => {
    const body = JSON.stringify({ jsonrpc: '2.0', id: 'page', method: 'initialize' });
    try {
      const response = await fetch(url, { method: 'POST', headers, body });
      return { status: response.status, answer: await response.json() };
    } catch (error) {
      return { refused: error.name };
    }
  };
  const results = {
    origin: location.origin,
    allowed: await post({ 'Content-Type': 'application/json' }),
    otherHeader: await post({ 'Content-Type': 'application/json', 'X-Other': '1' }),
  };
  await fetch('/results', { method: 'POST', body: JSON.stringify(results) });
}

// Opens the page in a browser and returns what its script reports.
async function resultsOfPage() {
  const page = `<!doctype html><script>(${talk})(${JSON.stringify(server.url)})</script>`;
  const folder = mkdtempSync(join(tmpdir(), 'tessum-browser-'));
  let report;
  let fail;
  const results = new Promise((resolve, reject) => {
    report = resolve;
    fail = reject;
  });
  const site = createServer(async (request, response) => {
    if (request.url !== '/results') return response.setHeader('Content-Type', 'text/html').end(page);
    let text = '';
    for await (const part of request) text += part;
    response.end();
    report(JSON.parse(text));
  });
  await once(site.listen(0, '127.0.0.1'), 'listening');
  const browser = spawn(
    kBrowser,
    [
      ...['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run'],
      ...['--disable-background-networking', '--disable-component-update', '--disable-sync'],
      ...['--remote-debugging-port=0', `--user-data-dir=${folder}`],
      `http://127.0.0.1:${site.address().port}/`,
    ],
    { stdio: 'ignore' },
  );
  const ended = once(browser, 'exit');
  ended.then(() => fail(new Error('the browser ended before the page reported')));
  try {
    return await results;
  } finally {
    browser.kill();
    await ended;
    site.close();
    site.closeAllConnections();
    rmSync(folder, { recursive: true, force: true, maxRetries: 10 });
  }
}

test(
  'a page of another origin talks to the server after a pre-flight',
  { skip: hasBrowser ? false : `there is no ${kBrowser}`, timeout: 120000 },
  async () => {
    const { origin, allowed, otherHeader } = await resultsOfPage();
    assert.notEqual(origin, new URL(server.url).origin);
    assert.equal(allowed.status, 200);
    assert.equal(allowed.answer.id, 'page');
    assert.equal(allowed.answer.result.serverInfo.name, 'tessum');
    assert.deepEqual(otherHeader, { refused: 'TypeError' });
  },
);
