// The three resources, listed and read.

import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { User } from './server.mjs';

let user;
let client;
before(async () => {
  user = new User();
  client = await user.connect();
});
after(() => user.leave());

async function read(uri) {
  const { contents } = await client.readResource({ uri });
  assert.equal(contents.length, 1);
  const [{ text, ...rest }] = contents;
  assert.deepEqual(rest, { uri, mimeType: 'text/plain' });
  return text;
}

test('the resources are listed in their order', async () => {
  const { resources } = await client.listResources();
  assert.deepEqual(
    resources.map(({ uri, name }) => [uri, name]),
    [
      ['tessum://activities/today', "Today's Activities"],
      ['tessum://activities/yesterday', "Yesterday's Activities"],
      ['tessum://usage/today', "Today's App Usage Summary"],
    ],
  );
  for (const { description, mimeType } of resources) {
    assert(description.length > 0);
    assert.equal(mimeType, 'text/plain');
  }
});

test('each resource reads as its report', async () => {
  assert.match(await read('tessum://activities/today'), /^Activities \(1 sessions\):\n• Notes – .*\(ongoing\)$/);
  assert.match(await read('tessum://activities/yesterday'), /^Activities \(1 sessions\):\n• Mail {2}\[.*\(1h 0m\)$/);
  assert.match(await read('tessum://usage/today'), /^App usage summary \(1 apps\):\n• Notes: .* across 1 session\(s\)$/);
});

test('any other URI is refused', async () => {
  for (const uri of ['tessum://activities/Today', 'tessum://activities/today/', 'file:///etc/passwd', '']) {
    await assert.rejects(client.readResource({ uri }), (error) => {
      assert.equal(error.code, -32603);
      assert(error.message.endsWith(`Unknown resource URI: ${uri}`), error.message);
      return true;
    });
  }
});
