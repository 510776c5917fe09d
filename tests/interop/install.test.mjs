// Uses the entry that the host program writes into an assistant's file as an assistant does.

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync } from 'node:fs';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

import { User } from './server.mjs';

const { TESSUM_PROGRAM } = process.env;

let user;
before(() => {
  user = new User();
});
after(() => user.leave());

test('the registered entry starts a server that answers', async () => {
  const env = user.environment;
  execFileSync(TESSUM_PROGRAM, ['install', 'cursor'], { env });
  const config = JSON.parse(readFileSync(join(env.HOME, '.cursor/mcp.json'), 'utf8'));

  const client = new Client({ name: 'interop', version: '1.0' });
  await client.connect(new StdioClientTransport({ ...config.mcpServers.tessum, env }));
  assert.equal(client.getServerVersion().name, 'tessum');
  const { content } = await client.callTool({ name: 'get_activities' });
  assert.doesNotMatch(content[0].text, /^Error/);
  await client.close();
});
