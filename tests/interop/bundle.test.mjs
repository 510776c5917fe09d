// Unpacks and starts the bundle of the server as an assistant does.

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { platform, tmpdir } from 'node:os';
import { join } from 'node:path';
import { after, before, test } from 'node:test';

const { TESSUM_BUNDLE } = process.env;
const kTool = 'node_modules/.bin/mcpb';

let home;
let folder;
let manifest;
before(() => {
  home = mkdtempSync(join(tmpdir(), 'tessum-bundle-'));
  folder = join(home, 'unpacked');
  execFileSync(kTool, ['unpack', TESSUM_BUNDLE, folder]);
  manifest = JSON.parse(readFileSync(join(folder, 'manifest.json'), 'utf8'));
});
after(() => rmSync(home, { recursive: true }));

test('the public validator accepts the manifest', () => {
  execFileSync(kTool, ['validate', join(folder, 'manifest.json')]);
});

test('the server that the manifest starts has the tools that it lists', async () => {
  const { command, args } = manifest.server.mcp_config;
  const client = new Client({ name: 'interop', version: '1.0' });
  await client.connect(
    new StdioClientTransport({
      command: command.replace('${__dirname}', folder),
      args,
      env: { HOME: home, XDG_DATA_HOME: join(home, 'data') },
    }),
  );
  const { tools } = await client.listTools();
  const names = (list) => list.map((tool) => tool.name);
  assert.deepEqual(names(manifest.tools), names(tools));
  await client.close();
});

test('the bundle holds every library that a system may lack', { skip: platform() !== 'linux' }, () => {
  const libraries = execFileSync('ldd', [join(folder, manifest.server.entry_point)], {
    encoding: 'utf8',
  });
  const brought = `=> ${folder}/server/`;
  const usual = /^\s*(linux-vdso|lib(c|m|pthread|dl|rt)\.so|\/lib.*\/ld-linux)/;
  const lacking = libraries
    .split('\n')
    .filter((line) => line && !line.includes(brought) && !usual.test(line));
  assert.deepEqual(lacking, []);
});
