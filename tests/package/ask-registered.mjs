// Starts the server that the entry "tessum" of an assistant's configuration file names, exactly as
// the assistant would, and prints today's activities.

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import { readFileSync } from 'node:fs';

const entry = JSON.parse(readFileSync(process.argv[2], 'utf8')).mcpServers.tessum;
const client = new Client({ name: 'package-test', version: '1.0' });
await client.connect(new StdioClientTransport({ command: entry.command, args: entry.args }));
const { content } = await client.callTool({ name: 'get_activities' });
console.log(content[0].text);
await client.close();
