// Starts TessumMCP for the tests of this folder, as an assistant application would: as a child
// process of the official client, with a home folder of its own and a history to ask about.

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const { TESSUM_SERVER, TESSUM_WRITE_HISTORY } = process.env;

// A time zone in which it is about noon, so that no test sees a day end.
function zoneWithNoonNow() {
  return `<noon>${new Date().getUTCHours() - 12}`;
}

// A user with a little history, and any number of clients that ask about it.
export class User {
  #home = mkdtempSync(join(tmpdir(), 'tessum-interop-'));
  #clients = [];

  constructor() {
    execFileSync(TESSUM_WRITE_HISTORY, { env: this.environment });
  }

  get environment() {
    return { HOME: this.#home, XDG_DATA_HOME: join(this.#home, 'data'), TZ: zoneWithNoonNow() };
  }

  // A client connected to a server of its own.
  async connect() {
    const client = new Client({ name: 'interop', version: '1.0' });
    this.#clients.push(client);
    // The client does not tell how its server ended, so a shell around the server notes it down.
    await client.connect(
      new StdioClientTransport({
        command: '/bin/sh',
        args: ['-c', '"$0" 2>"$1/errors"; echo $? >"$1/status"', TESSUM_SERVER, this.#home],
        env: this.environment,
      }),
    );
    return client;
  }

  // How the last server ended: its exit status and what it wrote to standard error.
  lastEnd() {
    const note = (name) => readFileSync(join(this.#home, name), 'utf8');
    return { status: Number(note('status')), errors: note('errors') };
  }

  async leave() {
    for (const client of this.#clients) await client.close();
    rmSync(this.#home, { recursive: true });
  }
}
