// Chromium, driven through its debugging pipe: real input, and what a page shows.

import { spawn, spawnSync } from 'node:child_process';
import { once } from 'node:events';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { setTimeout } from 'node:timers/promises';
import { pathToFileURL } from 'node:url';

const kBrowser = 'chromium';

// The option of a test that needs the browser.
export const skip = spawnSync(kBrowser, ['--version']).status === 0 ? false : `there is no ${kBrowser}`;

// Removes the folder of a browser that has ended: its helpers may write for a moment longer. The
// retries of rmSync itself do not see files that come meanwhile.
async function removeFolder(folder) {
  const kPatience = 20000;
  const start = performance.now();
  for (;;) {
    try {
      return rmSync(folder, { recursive: true, force: true });
    } catch (error) {
      if (performance.now() - start > kPatience) throw error;
    }
    await setTimeout(20);
  }
}

export class Browser {
  #folder = mkdtempSync(join(tmpdir(), 'tessum-browser-'));
  #process;
  #answers = new Map();
  #listeners = new Map(); // by session
  #rest = '';

  constructor(...options) {
    this.#process = spawn(kBrowser, [
      ...['--headless', '--no-sandbox', '--disable-gpu', '--disable-quic', '--no-first-run'],
      ...['--disable-background-networking', '--disable-component-update', '--disable-sync'],
      ...['--remote-debugging-pipe', `--user-data-dir=${this.#folder}`, ...options, 'about:blank'],
    ], { stdio: ['ignore', 'ignore', 'ignore', 'pipe', 'pipe'] });
    this.ended = once(this.#process, 'exit');
    this.#process.stdio[4].setEncoding('utf8').on('data', (text) => {
      const messages = (this.#rest + text).split('\0');
      this.#rest = messages.pop();
      for (const message of messages) this.#take(JSON.parse(message));
    });
  }

  #take({ id, result, error, method, params, sessionId }) {
    if (!id) return this.#listeners.get(sessionId)?.(method, params);
    const { resolve, reject } = this.#answers.get(id);
    this.#answers.delete(id);
    if (error) reject(new Error(error.message)); else resolve(result);
  }

  send(method, params = {}, sessionId = undefined) {
    const id = (this.last = (this.last ?? 0) + 1);
    this.#process.stdio[3].write(`${JSON.stringify({ id, method, params, sessionId })}\0`);
    return new Promise((resolve, reject) => this.#answers.set(id, { resolve, reject }));
  }

  // Opens the page in `file`. `scheme` is light or dark; `media` print as on paper.
  async open(file, { width = 1400, height = 900, scheme = 'light', media = '', hasScripts = true, hasTouch = false } = {}) {
    const { targetId } = await this.send('Target.createTarget', { url: 'about:blank' });
    const { sessionId } = await this.send('Target.attachToTarget', { targetId, flatten: true });
    const page = new Page((method, params) => this.send(method, params, sessionId));
    this.#listeners.set(sessionId, (method, params) => page.take(method, params));
    for (const domain of ['Page', 'Runtime', 'Log', 'Network']) await page.send(`${domain}.enable`);
    await page.send('Emulation.setDeviceMetricsOverride', { width, height, deviceScaleFactor: 1, mobile: hasTouch });
    if (hasTouch) await page.send('Emulation.setTouchEmulationEnabled', { enabled: true, maxTouchPoints: 2 });
    await page.send('Emulation.setEmulatedMedia', {
      media,
      features: [{ name: 'prefers-color-scheme', value: scheme }, { name: 'prefers-reduced-motion', value: 'reduce' }],
    });
    if (!hasScripts) await page.send('Emulation.setScriptExecutionDisabled', { value: true });
    await page.load(pathToFileURL(file).href);
    return page;
  }

  async close() {
    this.send('Browser.close').catch(() => {});
    await this.ended;
    await removeFolder(this.#folder);
  }
}

export class Page {
  errors = []; // of the console, and exceptions
  requests = [];
  #onLoad = () => {};

  constructor(send) {
    this.send = send;
  }

  take(method, params) {
    if (method === 'Page.loadEventFired') this.#onLoad();
    if (method === 'Runtime.exceptionThrown') this.errors.push(params.exceptionDetails.exception?.description);
    if (method === 'Log.entryAdded') this.errors.push(params.entry.text);
    if (method === 'Runtime.consoleAPICalled') this.errors.push(params.args.map((arg) => arg.value).join(' '));
    if (method === 'Network.requestWillBeSent') this.requests.push(params.request.url);
  }

  // Goes to `url` and waits until it has loaded. Gives the milliseconds that took.
  async load(url) {
    const loaded = new Promise((resolve) => { this.#onLoad = resolve; });
    const start = performance.now();
    await this.send('Page.navigate', { url });
    await loaded;
    return performance.now() - start;
  }

  // The value of a JavaScript expression in the page.
  async value(expression) {
    const { result, exceptionDetails } = await this.send('Runtime.evaluate',
      { expression, returnByValue: true, awaitPromise: true });
    if (exceptionDetails) throw new Error(exceptionDetails.exception?.description ?? exceptionDetails.text);
    return result.value;
  }

  text(selector) {
    return this.value(`document.querySelector(${JSON.stringify(selector)}).textContent`);
  }

  // Waits until the expression is true.
  async until(expression) {
    const kPatience = 20000;
    const start = performance.now();
    while (!(await this.value(expression))) {
      if (performance.now() - start > kPatience) throw new Error(`never true: ${expression}`);
      await this.value('new Promise((resolve) => requestAnimationFrame(resolve))');
    }
  }

  box(selector) {
    return this.value(`(() => { const e = document.querySelector(${JSON.stringify(selector)});
      e.scrollIntoView({ block: 'nearest' }); const b = e.getBoundingClientRect();
      return { x: b.x, y: b.y, width: b.width, height: b.height }; })()`);
  }

  mouse(type, x, y, more = {}) {
    return this.send('Input.dispatchMouseEvent', { type, x, y, ...more });
  }

  async click(x, y, modifiers = 0) {
    const button = { button: 'left', clickCount: 1, modifiers };
    await this.mouse('mouseMoved', x, y);
    await this.mouse('mousePressed', x, y, { ...button, buttons: 1 });
    await this.mouse('mouseReleased', x, y, button);
  }

  async clickOn(selector, modifiers = 0) {
    const box = await this.box(selector);
    await this.click(box.x + Math.min(box.width / 2, 30), box.y + box.height / 2, modifiers);
  }

  async drag(from, to) {
    await this.mouse('mouseMoved', from.x, from.y);
    await this.mouse('mousePressed', from.x, from.y, { button: 'left', buttons: 1, clickCount: 1 });
    for (let i = 1; i <= 8; ++i) {
      const [x, y] = [from.x + (to.x - from.x) * i / 8, from.y + (to.y - from.y) * i / 8];
      await this.mouse('mouseMoved', x, y, { button: 'left', buttons: 1 });
    }
    await this.mouse('mouseReleased', to.x, to.y, { button: 'left', clickCount: 1 });
  }

  wheel(x, y, deltaY, modifiers = 0) {
    return this.mouse('mouseWheel', x, y, { deltaX: 0, deltaY, modifiers });
  }

  async key(key) {
    const text = key.length === 1 ? key : undefined;
    await this.send('Input.dispatchKeyEvent', { type: text ? 'keyDown' : 'rawKeyDown', key, text });
    await this.send('Input.dispatchKeyEvent', { type: 'keyUp', key });
  }

  type(text) {
    return this.send('Input.insertText', { text });
  }

  // Moves fingers, each from its first point to its second one.
  async touch(...fingers) {
    const points = (share) => fingers.map(([from, to], id) => ({
      id, x: from.x + (to.x - from.x) * share, y: from.y + (to.y - from.y) * share,
    }));
    await this.send('Input.dispatchTouchEvent', { type: 'touchStart', touchPoints: points(0) });
    for (let i = 1; i <= 8; ++i) {
      await this.send('Input.dispatchTouchEvent', { type: 'touchMove', touchPoints: points(i / 8) });
    }
    await this.send('Input.dispatchTouchEvent', { type: 'touchEnd', touchPoints: [] });
  }
}
