// The beginning, course and end of a session between client and server.

import { McpError, ResultSchema } from '@modelcontextprotocol/sdk/types.js';
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { User } from './server.mjs';

let user;
before(() => {
  user = new User();
});
after(() => user.leave());

test('connecting tells who the server is and what it can do', async () => {
  const client = await user.connect();
  assert.deepEqual(client.getServerVersion(), { name: 'tessum', version: '1.0.0' });
  assert.deepEqual(client.getServerCapabilities(), { tools: {}, resources: {} });
});

test('an unknown method is refused, and the session goes on', async () => {
  const client = await user.connect();
  await assert.rejects(client.ping(), (error) => {
    assert(error instanceof McpError);
    assert.equal(error.code, -32601);
    assert.match(error.message, /Method not found: ping$/);
    return true;
  });
  await assert.rejects(client.request({ method: 'Tools/List' }, ResultSchema), { code: -32601 });
  assert.equal((await client.listTools()).tools.length, 5);
});

test('a call without a name is refused', async () => {
  const client = await user.connect();
  await assert.rejects(client.request({ method: 'tools/call', params: { name: 5 } }, ResultSchema), {
    code: -32602,
    message: /Invalid params: missing 'name'/,
  });
});

test('each of many requests sent at once gets its own answer', async () => {
  const client = await user.connect();
  const names = Array.from({ length: 200 }, (_, i) => `tool-${i}`);
  const results = await Promise.all(names.map((name) => client.callTool({ name })));
  assert.deepEqual(
    results.map((result) => result.content[0].text),
    names.map((name) => `Unknown tool: ${name}`),
  );
});

test('two clients see the same history', async () => {
  const [one, other] = [await user.connect(), await user.connect()];
  await one.callTool({ name: 'annotate', arguments: { text: 'Seen by both' } });
  const { content } = await other.callTool({ name: 'get_annotations' });
  assert.match(content[0].text, /^• Seen by both {2}\[.* → ongoing\]/m);
});

test('a closed client leaves a server that has ended well and said nothing', async () => {
  const client = await user.connect();
  await client.listTools();
  await client.close();
  assert.deepEqual(user.lastEnd(), { status: 0, errors: '' });
});
