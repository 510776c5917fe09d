// The official client of the protocol, and curl, over HTTP.

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StreamableHTTPClientTransport } from '@modelcontextprotocol/sdk/client/streamableHttp.js';
import assert from 'node:assert/strict';
import { execFile } from 'node:child_process';
import { after, before, test } from 'node:test';
import { promisify } from 'node:util';

import { HTTPServer } from './http_server.mjs';

const server = new HTTPServer();
before(() => server.start());
after(async () => assert.equal(await server.stop(), 0));

async function connect() {
  const client = new Client({ name: 'interop', version: '1.0' });
  client.onerror = (error) => assert.fail(error);
  await client.connect(new StreamableHTTPClientTransport(new URL(server.url)));
  return client;
}

test('the official client learns who the server is and what it can do', async () => {
  const client = await connect();
  assert.deepEqual(client.getServerVersion(), { name: 'tessum', version: '1.0.0' });
  assert.deepEqual(client.getServerCapabilities(), { tools: {}, resources: {} });
  await client.close();
});

test('the official client lists, calls and reads', async () => {
  const client = await connect();
  assert.equal((await client.listTools()).tools.length, 5);
  assert.equal((await client.listResources()).resources.length, 3);

  await client.callTool({ name: 'annotate', arguments: { text: 'Served over HTTP – é' } });
  const { content, isError } = await client.callTool({ name: 'get_annotations' });
  assert.equal(isError, false);
  assert.match(content[0].text, /Served over HTTP – é/);

  const { contents } = await client.readResource({ uri: 'tessum://activities/today' });
  assert.equal(contents[0].uri, 'tessum://activities/today');
  await assert.rejects(client.readResource({ uri: 'tessum://nothing' }), { code: -32603 });
  await assert.rejects(client.ping(), { code: -32601 });
  await client.close();
});

test('each of many requests sent at once gets its own answer', async () => {
  const client = await connect();
  const names = Array.from({ length: 200 }, (_, i) => `tool-${i}`);
  const results = await Promise.all(names.map((name) => client.callTool({ name })));
  assert.deepEqual(
    results.map((result) => result.content[0].text),
    names.map((name) => `Unknown tool: ${name}`),
  );
  await client.close();
});

const curl = async (...options) =>
  (await promisify(execFile)('curl', ['--silent', '--show-error', '--include', ...options])).stdout;

const head = (status, type, length) =>
  [
    `HTTP/1.1 ${status}`,
    `Content-Type: ${type}; charset=utf-8`,
    `Content-Length: ${length}`,
    'Access-Control-Allow-Origin: *',
    'Access-Control-Allow-Methods: POST, GET, OPTIONS',
    'Access-Control-Allow-Headers: Content-Type',
    'Connection: close',
    '\r\n',
  ].join('\r\n');

test('curl gets the exact bytes, by either family of addresses', async () => {
  const { origin } = new URL(server.url);
  const greeting = 'Tessum MCP Server – POST /mcp with a JSON-RPC 2.0 request.';
  for (const family of ['--ipv4', '--ipv6']) {
    assert.equal(await curl(family, `${origin}/`), head('200 OK', 'text/plain', 60) + greeting);
    assert.equal(
      await curl(family, server.url),
      head('404 Not Found', 'text/plain', 9) + 'Not found',
    );
    assert.equal(
      await curl(family, '--request', 'OPTIONS', server.url),
      head('204 No Content', 'application/json', 0),
    );
    const answer = await curl(family, '--data', '{"jsonrpc":"2.0","id":7,"method":"ping"}', server.url);
    const body = answer.slice(answer.indexOf('\r\n\r\n') + 4);
    assert.equal(answer, head('200 OK', 'application/json', body.length) + body);
    assert.deepEqual(JSON.parse(body), {
      jsonrpc: '2.0',
      id: 7,
      error: { code: -32601, message: 'Method not found: ping' },
    });
  }
});

test('curl gets an empty answer to a notification', async () => {
  const notification = '{"jsonrpc":"2.0","method":"notifications/initialized"}';
  assert.equal(
    await curl('--data', notification, server.url),
    head('200 OK', 'application/json', 0),
  );
});

// curl announces a large body and waits a while for a "100 Continue" that this server never sends.
test('curl gets an answer to a body that it announces', async () => {
  const message = JSON.stringify({ jsonrpc: '2.0', id: 1, method: 'x'.repeat(100000) });
  const answer = await curl(
    ...['--header', 'Expect: 100-continue', '--expect100-timeout', '0.1'],
    ...['--data', message, server.url],
  );
  assert.match(answer, /Method not found: x{100000}/);
});
