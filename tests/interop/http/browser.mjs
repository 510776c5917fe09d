// Opens a page in a real browser and takes what its script finds.

import { once } from 'node:events';
import { createServer } from 'node:http';

import { Browser } from '../../support/chromium.mjs';

export { skip } from '../../support/chromium.mjs';

// Opens a page with `script`, below `host`, which leads to this computer, and returns what the
// script posts to /results.
export async function resultsOfPage(script, host = '127.0.0.1') {
  const page = `<!doctype html><body><script>${script}</script>`;
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
  const browser = new Browser(`--host-resolver-rules=MAP ${host} 127.0.0.1`);
  browser.ended.then(() => fail(new Error('the browser ended before the page reported')));
  browser.send('Target.createTarget', { url: `http://${host}:${site.address().port}/` });
  try {
    return await results;
  } finally {
    await browser.close();
    site.close();
    site.closeAllConnections();
  }
}
