// A web page in a real browser, which asks the server whether the page may talk to it.

import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { resultsOfPage, skip } from './browser.mjs';
import { HTTPServer } from './http_server.mjs';

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

test(
  'a page of another origin talks to the server after a pre-flight',
  { skip, timeout: 120000 },
  async () => {
    const { origin, allowed, otherHeader } = await resultsOfPage(
      `(${talk})(${JSON.stringify(server.url)})`,
    );
    assert.notEqual(origin, new URL(server.url).origin);
    assert.equal(allowed.status, 200);
    assert.equal(allowed.answer.id, 'page');
    assert.equal(allowed.answer.result.serverInfo.name, 'tessum');
    assert.deepEqual(otherHeader, { refused: 'TypeError' });
  },
);
