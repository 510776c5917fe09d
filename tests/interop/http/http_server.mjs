// Starts an HTTP server on a free port, with an empty history.

import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface } from 'node:readline';

export class HTTPServer {
  #folder = mkdtempSync(join(tmpdir(), 'tessum-http-'));
  #process;

  async start() {
    this.#process = spawn(process.env.TESSUM_HTTP_SERVER, [join(this.#folder, 'activities.db')], {
      stdio: ['pipe', 'pipe', 'inherit'],
    });
    const [url] = await once(createInterface(this.#process.stdout), 'line');
    this.url = url;
  }

  // Returns the server's exit status.
  async stop() {
    const ended = once(this.#process, 'exit');
    this.#process.stdin.end();
    const [status] = await ended;
    rmSync(this.#folder, { recursive: true });
    return status;
  }
}
