// Starts TessumMCP as an assistant application does: as a child process of the official client. It gets
// a temporary home folder with a history.

import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';
import { execFileSync } from 'node:child_process';
import { mkdtempSync, readFileSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const { TESSUM_SERVER, TESSUM_WRITE_HISTORY } = process.env;

// A time zone in which it is about noon now, so that no day ends during a test.
function zoneWithNoonNow() {
  return `<noon>${new Date().getUTCHours() - 12}`;
}

// A user with a small history, and any number of clients that read it.
export class User {
  #home = mkdtempSync(join(tmpdir(), 'tessum-interop-'));
  #clients = [];

  constructor() {
    execFileSync(TESSUM_WRITE_HISTORY, { env: this.environment });
  }

  get environment() {
    return { HOME: this.#home, XDG_DATA_HOME: join(this.#home, 'data'), TZ: zoneWithNoonNow() };
  }

  // Returns a client that is connected to a new server.
  async connect() {
    const client = new Client({ name: 'interop', version: '1.0' });
    this.#clients.push(client);
    // The client does not say how its server ended, so a shell around the server writes it down.
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
