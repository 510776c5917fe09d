// A user with a history, and pages of it.

import { execFileSync } from 'node:child_process';
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join } from 'node:path';

const { TESSUM_PROGRAM, TESSUM_WRITE_HISTORY, TESSUM_DEMO_DATA } = process.env;

export class User {
  #folder = mkdtempSync(join(tmpdir(), 'tessum-timeline-user-'));
  #environment = {
    PATH: process.env.PATH,
    HOME: this.#folder,
    XDG_DATA_HOME: join(this.#folder, 'data'),
    XDG_CONFIG_HOME: join(this.#folder, 'config'),
    TZ: 'UTC',
  };
  #pages = 0;

  constructor({ zone = 'UTC', settings = '' } = {}) {
    this.#environment.TZ = zone;
    const linux = join(this.#folder, 'config/Tessum');
    const mac = join(this.#folder, 'Library/Application Support/Tessum');
    const folder = process.platform === 'darwin' ? mac : linux;
    mkdirSync(folder, { recursive: true });
    if (settings) writeFileSync(join(folder, 'settings.toml'), settings);
  }

  // Each session is its application, title, start and end; each note its text, start and end.
  record(sessions, notes = []) {
    const lines = [...sessions.map((one) => ['session', ...one]), ...notes.map((one) => ['note', ...one])];
    const input = lines.map((fields) => `${fields.join('\t')}\n`).join('');
    execFileSync(TESSUM_WRITE_HISTORY, { env: this.#environment, input });
  }

  // An invented history of so many days up to today.
  recordDays(days, sessionsPerDay) {
    const folder = join(this.#folder, 'data/Tessum');
    mkdirSync(folder, { recursive: true });
    execFileSync(TESSUM_DEMO_DATA, [join(folder, 'activities.db'), '--days', `${days}`,
      '--sessions-per-day', `${sessionsPerDay}`], { env: this.#environment });
  }

  // The file of the page of that period, narrowed by those options.
  page(period, ...filter) {
    const file = join(this.#folder, `page${++this.#pages}.html`);
    execFileSync(TESSUM_PROGRAM, ['timeline', period, ...filter, '-o', file], { env: this.#environment });
    return file;
  }

  remove() {
    rmSync(this.#folder, { recursive: true });
  }
}
