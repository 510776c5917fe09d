// A web page that wants the history, in a real browser, against the program's endpoint. The browser
// takes any name for this computer, as it does when the owner of a name has it lead here.

import assert from 'node:assert/strict';
import { spawn, spawnSync } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { test } from 'node:test';

import { resultsOfPage, skip } from './browser.mjs';

const kPort = 7384;
const kName = 'rebound.example';

// `Tessum serve` with an empty history of its own.
class Endpoint {
  #folder = mkdtempSync(join(tmpdir(), 'tessum-hostile-'));
  #environment = { ...process.env, HOME: this.#folder, XDG_DATA_HOME: join(this.#folder, 'data') };
  #process;

  // False when another program has the port.
  async start(...options) {
    this.#process = spawn(process.env.TESSUM_PROGRAM, ['serve', ...options], {
      stdio: ['ignore', 'pipe', 'ignore'],
      env: this.#environment,
    });
    const lines = createInterface(this.#process.stdout);
    return Promise.race([
      once(lines, 'line').then(() => true),
      once(this.#process, 'exit').then(() => false),
    ]);
  }

  notes() {
    const { stdout } = spawnSync(process.env.TESSUM_PROGRAM, ['notes', '--plain'], {
      env: this.#environment,
      encoding: 'utf8',
    });
    return stdout;
  }

  async stop() {
    if (this.#process.exitCode === null) {
      const ended = once(this.#process, 'exit');
      this.#process.kill();
      await ended;
    }
    rmSync(this.#folder, { recursive: true });
  }
}

// The script of the page: every way to ask that a page has. Each adds a note that names it, and
// tries to read the answer.
async function attack(port, name) {
  const message = (text) =>
    JSON.stringify({
      jsonrpc: '2.0',
      id: 1,
      method: 'tools/call',
      params: { name: 'annotate', arguments: { text } },
    });
  const ask = async (label, host, options) => {
    try {
      const body = message(label);
      const response = await fetch(`http://${host}:${port}/mcp`, { method: 'POST', body, ...options });
      return `${response.status} ${await response.text()}`;
    } catch {
      return 'nothing';
    }
  };
  const form = (label) =>
    new Promise((resolve) => {
      const frame = document.createElement('iframe');
      frame.name = 'answer';
      document.body.append(frame);
      const sent = document.createElement('form');
      Object.assign(sent, { method: 'POST', enctype: 'text/plain', target: 'answer' });
      sent.action = `http://localhost:${port}/mcp`;
      // The form sends name=value; the sign between them lies within a text of the message.
      const [before, after] = message(`${label} =`).split('=');
      const field = document.createElement('input');
      Object.assign(field, { name: before, value: after });
      sent.append(field);
      document.body.append(sent);
      frame.onload = resolve;
      sent.submit();
    });
  const answers = {
    json: await ask('json', 'localhost', { headers: { 'Content-Type': 'application/json' } }),
    text: await ask('text', 'localhost', { headers: { 'Content-Type': 'text/plain' } }),
    address: await ask('address', '127.0.0.1'),
    blind: await ask('blind', 'localhost', { mode: 'no-cors' }),
    rebound: await ask('rebound', name),
    blindRebound: await ask('blind rebound', name, { mode: 'no-cors' }),
  };
  await form('form');
  navigator.sendBeacon(`http://localhost:${port}/mcp`, message('beacon'));
  await ask('last', 'localhost', { mode: 'no-cors' }); // the beacon was sent before
  await fetch('/results', { method: 'POST', body: JSON.stringify(answers) });
}

const resultsOfAttack = () =>
  resultsOfPage(`(${attack})(${kPort}, ${JSON.stringify(kName)})`, kName);

const kWays = ['json', 'text', 'address', 'blind', 'rebound', 'blind rebound', 'form', 'beacon', 'last'];
const options = { skip, timeout: 240000 };

test('a page reads nothing and writes nothing', options, async (context) => {
  const endpoint = new Endpoint();
  try {
    if (!(await endpoint.start())) return context.skip('another program has the port');
    const answers = await resultsOfAttack();
    for (const [way, answer] of Object.entries(answers)) {
      // A blind request gets an answer that a page cannot look into.
      assert.equal(answer, way.startsWith('blind') ? '0 ' : 'nothing', way);
    }
    for (const way of kWays) assert.ok(!endpoint.notes().includes(way), way);

    const response = await fetch(`http://localhost:${kPort}/`); // a program of this computer
    assert.equal(response.status, 200);
  } finally {
    await endpoint.stop();
  }
});

test('the same page reads and writes where the endpoint is open', options, async (context) => {
  const endpoint = new Endpoint();
  try {
    if (!(await endpoint.start('--open'))) return context.skip('another program has the port');
    const answers = await resultsOfAttack();
    for (const way of ['json', 'text', 'address', 'rebound']) assert.match(answers[way], /^200 /, way);
    const notes = endpoint.notes();
    for (const way of kWays) assert.ok(notes.includes(way), `${way} is missing in ${notes}`);
  } finally {
    await endpoint.stop();
  }
});
