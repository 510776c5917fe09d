// Opens a page in a real browser.

import { spawn, spawnSync } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, rmSync } from 'node:fs';
import { createServer } from 'node:http';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const kBrowser = 'chromium';
const hasBrowser = spawnSync(kBrowser, ['--version']).status === 0;

// The option of a test that needs the browser.
export const skip = hasBrowser ? false : `there is no ${kBrowser}`;

// Opens a page with `script`, below `host`, which leads to this computer, and returns what the
// script posts to /results.
export async function resultsOfPage(script, host = '127.0.0.1') {
  const page = `<!doctype html><body><script>${script}</script>`;
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
      `--host-resolver-rules=MAP ${host} 127.0.0.1`,
      `http://${host}:${site.address().port}/`,
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
    // Its helpers may write for a moment longer.
    rmSync(folder, { recursive: true, force: true, maxRetries: 20, retryDelay: 200 });
  }
}
