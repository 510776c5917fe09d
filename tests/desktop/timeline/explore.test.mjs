// The timeline explored with a mouse, fingers and keys.

import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { Browser, skip } from '../../support/chromium.mjs';
import { User } from './user.mjs';

const kMarkup = '</script><img src=x onerror="document.title=\'taken\'"><b>bold</b> & "quoted"';
const kShift = 8;

const user = new User({
  settings: `[[category]]\nname = "Work"\napp = 'Editor|Terminal'\ncolor = "#3a7bd5"\n`,
});
let browser;
let dayFile;
let weekFile;

before(() => {
  user.record([
    ['Editor', 'main.cc', '2025-03-03T09:00:00Z', '2025-03-03T12:00:00Z'],
    ['Music', '', '2025-03-03T22:00:00Z', '2025-03-04T02:00:00Z'], // over midnight
    ['Editor', 'main.cc', '2025-03-04T09:00:00Z', '2025-03-04T11:00:00Z'],
    ['Browser', kMarkup, '2025-03-04T11:00:00Z', '2025-03-04T12:00:00Z'],
    ['Terminal', 'Über das große Öffnen der Σισμοί', '2025-03-04T12:00:00Z', '2025-03-04T13:00:00Z'],
    ['Editor', 'day.cc', '2025-03-05T10:00:00Z', '2025-03-05T11:00:00Z'],
  ], [
    ['Review of the budget', '2025-03-04T09:00:00Z', '2025-03-04T12:00:00Z'],
    ['A call in between', '2025-03-04T10:00:00Z', '2025-03-04T10:30:00Z'],
  ]);
  dayFile = user.page('2025-03-04');
  weekFile = user.page('2025-03-03..2025-03-05');
  if (!skip) browser = new Browser();
});

after(async () => {
  await browser?.close();
  user.remove();
});

// Opens a page, does something with it, and sees that it made no complaint and asked for nothing.
function explore(name, act, options = {}) {
  test(name, { skip, timeout: 120000 }, async () => {
    const page = await browser.open(options.isWeek ? weekFile : dayFile, options);
    await act(page);
    assert.deepEqual(page.errors, []);
    assert.deepEqual(page.requests.filter((url) => !url.startsWith('file:')), []);
    assert.notEqual(await page.value('document.title'), 'taken');
  });
}

const kSum = 'document.getElementById("sum").value';
const rows = (heading) => `[...document.querySelector('table[aria-label="${heading}"]').rows]
  .map((row) => [...row.cells].slice(0, 2).map((cell) => cell.textContent).join(' '))`;
const isSum = (text) => `${kSum} === ${JSON.stringify(text)}`;
const areRows = (heading, expected) => `JSON.stringify(${rows(heading)}) === ${JSON.stringify(JSON.stringify(expected))}`;

// The point of the chart at a share of its plot and a height in it.
async function chartPoint(page, share, y) {
  const box = await page.box('#chart');
  const [left, right] = box.width < 640 ? [0, box.width] : [168, box.width - 122];
  return { x: box.x + left + (right - left) * share, y: box.y + y };
}

explore('a day shows its totals', async (page) => {
  await page.until(isSum('6h 0m in 4 sessions'));
  await page.until(areRows('Applications', ['Editor 2h 0m', 'Music 2h 0m', 'Browser 1h 0m', 'Terminal 1h 0m']));
  await page.until(areRows('Categories', ['Uncategorised 3h 0m', 'Work 3h 0m']));
  await page.until(areRows('Titles', ['main.cc 2h 0m', 'Without a title 2h 0m', `${kMarkup} 1h 0m`, 'Über das große Öffnen der Σισμοί 1h 0m']));
});

explore('the wheel zooms around the pointer, and moves with Shift', async (page) => {
  const point = await chartPoint(page, 0.95, 150); // at about 12:20
  for (let i = 0; i < 6; ++i) await page.wheel(point.x, point.y, -300);
  await page.until(`${rows('Applications')}.length === 1 && ${rows('Applications')}[0].startsWith('Terminal')`);
  await page.until(`/^[0-9]+m in 1 session$/.test(${kSum})`);
  const shown = await page.value('document.getElementById("shown").value');
  await page.wheel(point.x, point.y, -300, kShift);
  await page.until(`document.getElementById("shown").value !== ${JSON.stringify(shown)}`);
  for (let i = 0; i < 12; ++i) await page.wheel(point.x, point.y, 300);
  await page.until(isSum('6h 0m in 4 sessions'));
});

explore('dragging moves the view', async (page) => {
  await page.clickOn('#zoomIn');
  await page.clickOn('#zoomIn');
  await page.until('document.getElementById("shown").value !== "00:00–13:00"');
  const before = await page.value('document.getElementById("shown").value');
  const from = await chartPoint(page, 0.2, 150);
  await page.drag(from, { x: from.x + 2000, y: from.y });
  await page.until('document.getElementById("shown").value.startsWith("00:00")');
  assert.notEqual(before, await page.value('document.getElementById("shown").value'));
  assert.equal(await page.value('document.getElementById("details").hidden'), true, 'a drag is no click');
});

explore('keys zoom, move and go back', async (page) => {
  const shown = 'document.getElementById("shown").value';
  const start = await page.value(shown);
  await page.key('+');
  await page.until(`${shown} !== ${JSON.stringify(start)}`);
  const zoomed = await page.value(shown);
  await page.key('ArrowRight');
  await page.until(`${shown} !== ${JSON.stringify(zoomed)}`);
  await page.key('ArrowLeft');
  await page.until(`${shown} === ${JSON.stringify(zoomed)}`);
  await page.key('0');
  await page.until(`${shown} === ${JSON.stringify(start)}`);
});

explore('? shows the keys', async (page) => {
  await page.key('?');
  await page.until('document.getElementById("keys").open');
  assert.match(await page.text('#keys'), /Zoom in/);
  await page.clickOn('#closeKeys');
  await page.until('!document.getElementById("keys").open');
});

explore('the filter narrows the chart and the totals', async (page) => {
  await page.key('/');
  await page.type('MAIN');
  await page.until(isSum('2h 0m in 1 session · filtered'));
  await page.until(areRows('Titles', ['main.cc 2h 0m']));
  await page.key('Escape');
  await page.until(isSum('6h 0m in 4 sessions'));
  await page.key('/');
  await page.type('offnen GROSSE terminal σις'); // without its marks, in any order
  await page.until(areRows('Applications', ['Terminal 1h 0m']));
  await page.clickOn('#reset');
  await page.until(isSum('6h 0m in 4 sessions'));
  assert.equal(await page.value('document.getElementById("filter").value'), '');
});

explore('applications and categories are switched off and on', async (page) => {
  await page.clickOn('[data-key="app0"]');
  await page.until(`document.querySelector('[data-key="app0"]').getAttribute('aria-pressed') === 'false'`);
  const off = await page.text('[data-key="app0"]');
  await page.until(`!${kSum}.startsWith('6h')`);
  await page.until(`${rows('Applications')}.includes(${JSON.stringify(`${off} –`)})`);
  await page.clickOn('[data-key="app0"]');
  await page.until(isSum('6h 0m in 4 sessions'));
  await page.clickOn('[data-key="category0"]');
  await page.until(areRows('Applications', ['Music 2h 0m', 'Browser 1h 0m']));
  await page.key('Escape');
  await page.until(isSum('6h 0m in 4 sessions'));
  await page.clickOn('[data-key="category0"]', kShift); // alone
  await page.until(isSum('3h 0m in 2 sessions · filtered'));
});

explore('totals that change while a button is pressed do not lose the click', async (page) => {
  const box = await page.box('[data-key="app0"]');
  const [x, y] = [box.x + 10, box.y + box.height / 2];
  const button = { button: 'left', clickCount: 1 };
  await page.mouse('mouseMoved', x, y);
  await page.mouse('mousePressed', x, y, { ...button, buttons: 1 });
  await page.key('+');
  await page.until(`!(${isSum('6h 0m in 4 sessions')})`);
  // The totals follow the sum after 60 ms; timers that are equally long end in order.
  await page.value('new Promise((resolve) => setTimeout(resolve, 60))');
  await page.mouse('mouseReleased', x, y, button);
  await page.until(`document.querySelector('[data-key="app0"]')?.getAttribute('aria-pressed') === 'false'`);
  await page.until(`document.querySelector('table[aria-label="Applications"]').rows.length === 2`);
});

explore('totals still change after a press that opened a menu', async (page) => {
  const box = await page.box('[data-key="app0"]');
  const [x, y] = [box.x + 10, box.y + box.height / 2];
  await page.mouse('mouseMoved', x, y);
  await page.mouse('mousePressed', x, y, { button: 'right', buttons: 2, clickCount: 1 });
  await page.key('/');
  await page.type('MAIN');
  await page.until(areRows('Applications', ['Editor 2h 0m']));
});

explore('a click keeps the details, and a title with markup is text', async (page) => {
  // From 00:00 to 13:00; the row of all applications is below two lanes of notes.
  const point = await chartPoint(page, 11.5 / 13, 130);
  await page.click(point.x, point.y);
  await page.until('!document.getElementById("details").hidden');
  const details = await page.text('#details');
  assert.ok(details.includes(kMarkup), details);
  assert.match(details, /Browser.*11:00:00–12:00:00.*1h 0m.*Review of the budget/);
  assert.equal(await page.value('document.images.length'), 0);
  assert.equal(await page.value('document.querySelectorAll("#details b").length'), 0);
  await page.key('.');
  await page.until('document.getElementById("details").textContent.includes("Über das große Öffnen der Σισμοί")');
  await page.key('Escape');
  await page.until('document.getElementById("details").hidden');
});

explore('pointing shows what is there; notes that overlap have lanes', async (page) => {
  const tip = 'document.getElementById("tip")';
  const first = await chartPoint(page, 10.2 / 13, 56);
  await page.mouse('mouseMoved', first.x, first.y);
  await page.until(`!${tip}.hidden && ${tip}.textContent.includes('Review of the budget')`);
  await page.mouse('mouseMoved', first.x, first.y + 28);
  await page.until(`${tip}.textContent.includes('A call in between')`);
  await page.until(`${tip}.textContent.includes('10:00–10:30')`);
});

explore('two fingers zoom, and one moves', async (page) => {
  const shown = 'document.getElementById("shown").value';
  const start = await page.value(shown);
  const at = async (share) => chartPoint(page, share, 120);
  await page.touch([await at(0.45), await at(0.1)], [await at(0.55), await at(0.9)]);
  await page.until(`${shown} !== ${JSON.stringify(start)}`);
  const zoomed = await page.value(shown);
  assert.doesNotMatch(await page.value(kSum), /^6h/);
  await page.touch([await at(0.3), await at(0.8)]);
  await page.until(`${shown} !== ${JSON.stringify(zoomed)}`);
  const tapped = await chartPoint(page, 0.5, 130);
  await page.key('0');
  await page.until(`${shown} === ${JSON.stringify(start)}`);
  await page.touch([{ ...tapped, x: (await at(10 / 13)).x }, { ...tapped, x: (await at(10 / 13)).x }]);
  await page.until('document.getElementById("details").textContent.includes("main.cc")');
}, { width: 390, height: 844, hasTouch: true });

explore('days of the period follow each other, and a night is on both', async (page) => {
  const shown = 'document.getElementById("shown").value';
  assert.equal(await page.value('document.getElementById("previous").disabled'), false);
  await page.clickOn('#next');
  await page.until(`${shown} === 'Mon 3 Mar'`);
  await page.until(areRows('Applications', ['Editor 3h 0m', 'Music 2h 0m']));
  assert.equal(await page.value('document.getElementById("previous").disabled'), true);
  await page.key(']');
  await page.until(`${shown} === 'Tue 4 Mar'`);
  await page.until(areRows('Applications', ['Editor 2h 0m', 'Music 2h 0m', 'Browser 1h 0m', 'Terminal 1h 0m']));
  await page.key(']');
  await page.until(`${shown} === 'Wed 5 Mar'`);
  assert.equal(await page.value('document.getElementById("next").disabled'), true);
  await page.key('[');
  await page.until(`${shown} === 'Tue 4 Mar'`);
  await page.key('+');
  await page.until(`/^Tue 4 Mar \\d\\d:\\d\\d–\\d\\d:\\d\\d$/.test(${shown})`); // a part of it
  await page.clickOn('#whole');
  await page.until(`${shown} === 'Mon 3 Mar – Wed 5 Mar'`);
}, { isWeek: true });
