// How the timeline's page looks, is printed, and keeps to its policy, in a real browser.

import assert from 'node:assert/strict';
import { readFileSync } from 'node:fs';
import { after, before, test } from 'node:test';

import { Browser, skip } from '../../support/chromium.mjs';
import { User } from './user.mjs';

const users = [];
function userWith(sessions, notes = [], options = {}) {
  const user = new User(options);
  users.push(user);
  user.record(sessions, notes);
  return user;
}

let browser;
let week;

before(() => {
  week = userWith([
    ['Editor', 'main.cc', '2025-03-03T09:00:00Z', '2025-03-03T12:00:00Z'],
    ['An application with a name that is far too long to be shown beside its line',
      'A title without an end '.repeat(40), '2025-03-04T09:00:00Z', '2025-03-04T11:00:00Z'],
    ['Music', '', '2025-03-04T22:00:00Z', '2025-03-05T02:00:00Z'], // over midnight
  ], [['Review of the budget', '2025-03-04T09:00:00Z', '2025-03-04T12:00:00Z']]);
  if (!skip) browser = new Browser();
});

after(async () => {
  await browser?.close();
  for (const user of users) user.remove();
});

const options = { skip, timeout: 120000 };

for (const scheme of ['light', 'dark']) {
  for (const width of [390, 800, 1400]) {
    test(`fits ${width} pixels in ${scheme}`, options, async () => {
      for (const period of ['2025-03-04', '2025-03-03..2025-03-09']) {
        const page = await browser.open(week.page(period), { width, scheme });
        assert.equal(await page.value('document.documentElement.scrollWidth <= innerWidth'), true, period);
        const { card, chart } = await page.value(`(() => { const box = (e) => e.getBoundingClientRect();
          const chart = document.getElementById('chart');
          return { chart: box(chart).toJSON(), card: box(chart.parentElement).toJSON() }; })()`);
        assert.ok(chart.left >= card.left && chart.right <= card.right, period);
        assert.ok(chart.width >= width * 0.75, period);
        const ground = await page.value('getComputedStyle(document.body).backgroundColor');
        assert.equal(/rgb\((\d+)/.exec(ground)[1] > 128, scheme === 'light');
        assert.deepEqual(page.errors, []);
      }
    });
  }
}

// The names that are written on the chart, with the pixels that each takes.
const kWritten = `(() => {
  const written = new Map(); // by text and place, since it may be drawn more than once
  const plain = CanvasRenderingContext2D.prototype.fillText;
  CanvasRenderingContext2D.prototype.fillText = function (text, x, y) {
    const width = this.measureText(text).width;
    const left = x - { left: 0, center: width / 2, right: width }[this.textAlign];
    written.set([text, left, y].join(), { text, left, right: left + width, y });
    plain.call(this, text, x, y);
  };
  document.dispatchEvent(new KeyboardEvent('keydown', { key: 'c' })); // draws without changing a name
  return new Promise((resolve) => requestAnimationFrame(() => requestAnimationFrame(() => resolve([...written.values()]))));
})()`;

test('long names are shortened, and no two labels overlap', options, async () => {
  for (const width of [390, 800, 1400]) {
    const page = await browser.open(week.page('2025-03-03..2025-03-09'), { width });
    const written = await page.value(kWritten);
    assert.ok(written.some(({ text }) => /^An app.*…$/.test(text)), JSON.stringify(written));
    for (const a of written) {
      for (const b of written) {
        if (a === b || Math.abs(a.y - b.y) >= 8) continue;
        assert.ok(a.right <= b.left + 1 || b.right <= a.left + 1, `${a.text} and ${b.text} at ${width}`);
      }
    }
  }
});

const linear = (byte) => (byte <= 10.3 ? byte / 3294.6 : ((byte / 255 + 0.055) / 1.055) ** 2.4);
const rgb = (hex) => [1, 3, 5].map((i) => linear(parseInt(hex.slice(i, i + 2), 16)));
const luminance = ([r, g, b]) => 0.2126 * r + 0.7152 * g + 0.0722 * b;
const contrast = (a, b) => {
  const [low, high] = [luminance(rgb(a)), luminance(rgb(b))].sort((x, y) => x - y);
  return (high + 0.05) / (low + 0.05);
};

// How eyes without one kind of cone see a colour (Machado, Oliveira and Fernandes, 2009).
const kEyes = {
  usual: [[1, 0, 0], [0, 1, 0], [0, 0, 1]],
  protanopia: [[0.152286, 1.052583, -0.204868], [0.114503, 0.786281, 0.099216], [-0.003882, -0.048116, 1.051998]],
  deuteranopia: [[0.367322, 0.860646, -0.227968], [0.280085, 0.672501, 0.047413], [-0.01182, 0.04294, 0.968881]],
  tritanopia: [[1.255528, -0.076749, -0.178779], [-0.078411, 0.930809, 0.147602], [0.004733, 0.691367, 0.3039]],
};
const seen = (eye, colour) => eye.map((row) => Math.min(1, Math.max(0, row.reduce((sum, part, i) => sum + part * colour[i], 0))));
// Oklab, in which equal distances look alike.
function oklab([r, g, b]) {
  const [l, m, s] = [0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b, 0.2119034982 * r + 0.6806995451 * g
    + 0.1073969566 * b, 0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b].map(Math.cbrt);
  return [0.2104542553 * l + 0.793617785 * m - 0.0040720468 * s, 1.9779984951 * l - 2.428592205 * m + 0.4505937099 * s,
    0.0259040371 * l + 0.7827717662 * m - 0.808675766 * s];
}

for (const scheme of ['light', 'dark']) {
  test(`the colours stand out in ${scheme}, for all eyes`, options, async () => {
    const page = await browser.open(week.page('2025-03-04'), { scheme });
    const variable = (name) => page.value(`getComputedStyle(document.documentElement).getPropertyValue('--${name}').trim()`);
    const colours = [];
    for (let i = 0; i < 16; ++i) colours.push(await variable(`c${i}`));
    assert.equal(new Set(colours).size, 16);
    for (const ground of ['paper', 'card', 'lane']) {
      const behind = await variable(ground);
      for (const colour of [...colours, await variable('other')]) {
        assert.ok(contrast(colour, behind) >= 3, `${colour} on ${ground}`);
      }
    }
    for (const [name, eye] of Object.entries(kEyes)) {
      const places = colours.map((colour) => oklab(seen(eye, rgb(colour))));
      for (let i = 0; i < 16; ++i) {
        for (let j = 0; j < i; ++j) {
          const distance = Math.hypot(...places[i].map((part, axis) => part - places[j][axis]));
          assert.ok(distance > 0.04, `${colours[i]} and ${colours[j]} with ${name}: ${distance}`);
        }
      }
    }
    for (const [text, ground] of [['ink', 'card'], ['faint', 'card'], ['faint', 'paper'], ['note-ink', 'note']]) {
      assert.ok(contrast(await variable(text), await variable(ground)) >= 4.5, text);
    }
  });
}

test('the policy lets no other script run and nothing be fetched', options, async () => {
  const page = await browser.open(week.page('2025-03-04'));
  const tried = await page.value(`(async () => {
    const script = document.createElement('script');
    script.textContent = 'window.hasRun = true';
    document.body.append(script);
    const link = document.createElement('div');
    link.innerHTML = '<img src="data:image/gif;base64,R0lGODlhAQABAAAAACw=" onerror="window.hasRun = true">';
    document.body.append(link);
    const fetched = await fetch('http://127.0.0.1:9/').then(() => true, () => false);
    return { hasRun: window.hasRun ?? false, fetched };
  })()`);
  assert.deepEqual(tried, { hasRun: false, fetched: false });
  assert.ok(page.errors.some((text) => text.includes('Content Security Policy')), page.errors.join('\n'));
});

test('a narrowed page says so, and its picture and its tables have only what is meant', options, async () => {
  const file = week.page('2025-03-03..2025-03-09', '--title', 'MAIN');
  for (const hasScripts of [true, false]) {
    const page = await browser.open(file, { hasScripts });
    await page.send('Emulation.setScriptExecutionDisabled', { value: false });
    const shown = await page.value('document.querySelector("main").innerText');
    assert.match(shown, /Only sessions with "MAIN" in the title; 2 others are left out\./);
    assert.match(shown, /3h 0m in 1 session/);
    assert.match(shown, /Titles\s+main\.cc\s+3h 0m\s+100%/);
    assert.doesNotMatch(shown, /Music/);
    assert.match(await page.value('document.querySelector(".still").parentElement.textContent'), /Review of the budget/);
  }
});

test('without scripts it is a picture, with a strip for each day', options, async () => {
  const page = await browser.open(week.page('2025-03-03..2025-03-09'), { hasScripts: false });
  const shown = (selector) => page.value(`[...document.querySelectorAll('${selector}')].filter((e) => e.getClientRects().length > 0).length`);
  await page.send('Emulation.setScriptExecutionDisabled', { value: false });
  assert.equal(await shown('.explorer'), 0);
  assert.equal(await shown('.still svg .lane'), 7);
  // The session over midnight is on two days.
  assert.equal(await shown('.still svg .session'), 4);
  assert.equal(await shown('.still table'), 3);
});

test('paper has the picture and a table of titles, on white', options, async () => {
  const page = await browser.open(week.page('2025-03-03..2025-03-09'), { media: 'print', scheme: 'dark' });
  assert.equal(await page.value('document.querySelector(".explorer").getClientRects().length'), 0);
  assert.equal(await page.value('getComputedStyle(document.body).backgroundColor'), 'rgb(255, 255, 255)');
  const printed = await page.value('document.querySelector("main").innerText');
  assert.match(printed, /Titles\s+Without a title\s+4h 0m\s+44%\s+main\.cc\s+3h 0m/);
  const { data } = await page.send('Page.printToPDF');
  assert.equal(Buffer.from(data, 'base64').subarray(0, 5).toString(), '%PDF-');
});

test('a day with 2,000 sessions has no more spans than pixels', options, async () => {
  const start = Date.parse('2025-03-04T08:00:00Z');
  const text = (seconds) => new Date(start + seconds * 1000).toISOString().replace('.000', '');
  const sessions = [];
  for (let i = 0; i < 2000; ++i) {
    sessions.push([`App ${i % 9}`, `Title ${i}`, text(i * 18), text(i * 18 + (i === 1000 ? 17 : i % 14 + 2))]);
  }
  const file = userWith(sessions).page('2025-03-04');
  const spans = readFileSync(file, 'utf8').match(/class="session/g).length;
  assert.ok(spans > 300 && spans < 3000, `${spans}`);
  const page = await browser.open(file);
  await page.until('document.getElementById("sum").value.endsWith("in 2,000 sessions")');
  // Where several share a pixel, the longest one is pointed at.
  const box = await page.box('#chart');
  await page.mouse('mouseMoved', box.x + 168 + (box.width - 290) / 2 + 0.5, box.y + 70);
  await page.until('document.getElementById("tip").textContent.includes("Title 1000")');
  assert.deepEqual(page.errors, []);
});

test('hours follow the wall where the clock is changed', options, async () => {
  const user = userWith([
    ['Night', '', '2025-03-29T23:00:00Z', '2025-03-30T03:00:00Z'],
    ['Night', '', '2025-10-25T22:00:00Z', '2025-10-26T03:00:00Z'],
  ], [], { zone: 'Europe/Berlin' });
  const hours = async (day) => {
    const page = await browser.open(user.page(day));
    return page.value(`(() => { const history = new History(JSON.parse(document.getElementById('history').textContent));
      const [day] = history.days;
      return { length: (day.end - day.start) / kHour,
        ticks: history.wallTicks(0, 6 * kHour - 1, kHour).map((time) => history.clock(time)) }; })()`);
  };
  assert.deepEqual(await hours('2025-03-30'), { length: 23, ticks: ['00:00', '01:00', '03:00', '04:00', '05:00', '06:00'] });
  assert.deepEqual(await hours('2025-10-26'), { length: 25, ticks: ['00:00', '01:00', '02:00', '02:00', '03:00', '04:00'] });
});
