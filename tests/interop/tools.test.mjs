// The five tools, listed and called.

import Ajv from 'ajv';
import assert from 'node:assert/strict';
import { after, before, test } from 'node:test';

import { User } from './server.mjs';

let user;
let client;
let tools;
before(async () => {
  user = new User();
  client = await user.connect();
  tools = (await client.listTools()).tools;
});
after(() => user.leave());

// What a call of `name` answers: its one text, or the text of its error.
async function call(name, args) {
  const { content, isError } = await client.callTool({ name, arguments: args });
  assert.equal(content.length, 1);
  assert.equal(content[0].type, 'text');
  return isError ? { error: content[0].text } : content[0].text;
}

function validatorOf(name) {
  const { inputSchema } = tools.find((tool) => tool.name === name);
  return new Ajv({ strict: true, allErrors: true }).compile(inputSchema);
}

test('the tools are listed in their order, each with a description', () => {
  assert.deepEqual(
    tools.map((tool) => tool.name),
    ['get_activities', 'search_activities', 'get_app_usage', 'annotate', 'get_annotations'],
  );
  for (const { description } of tools) assert.match(description, /^[A-Z].*\.$/);
});

test('each schema compiles and tells good arguments from bad ones', () => {
  const cases = {
    get_activities: { good: [{}, { date: '2025-03-04', limit: 3 }], bad: [{ limit: 2.5 }, { date: 4 }] },
    search_activities: { good: [{ query: '' }, { query: 'x', limit: 1 }], bad: [{}, { query: null }] },
    get_app_usage: { good: [{}, { date: '2025-03-04' }], bad: [{ date: false }, []] },
    annotate: { good: [{ text: '' }, { text: 'x', duration: '1h30m' }], bad: [{}, { text: 'x', duration: 90 }] },
    get_annotations: { good: [{}, { date: '2025-03-04' }], bad: [{ date: {} }, 'today'] },
  };
  assert.deepEqual(Object.keys(cases), tools.map((tool) => tool.name));
  for (const [name, { good, bad }] of Object.entries(cases)) {
    const isValid = validatorOf(name);
    for (const args of good) assert(isValid(args), `${name} ${JSON.stringify(args)}`);
    for (const args of bad) assert(!isValid(args), `${name} ${JSON.stringify(args)}`);
  }
});

test('get_activities reports a day, the newest session first', async () => {
  assert.equal(
    await call('get_activities', { date: '2025-03-04' }),
    'Activities (2 sessions):\n' +
      '• Terminal  [2025-03-04T11:32:00 → 2025-03-04T11:45:00]  (13m 0s)\n' +
      '• Safari – Pull request 42  [2025-03-04T11:00:00 → 2025-03-04T11:32:00]  (32m 0s)',
  );
  assert.equal(
    await call('get_activities', { date: '2025-03-04', limit: 1 }),
    'Activities (1 sessions):\n' +
      '• Terminal  [2025-03-04T11:32:00 → 2025-03-04T11:45:00]  (13m 0s)',
  );
});

test('get_activities takes arguments it cannot use for absent ones', async () => {
  const today = /^Activities \(1 sessions\):\n• Notes – Café ☕ \/ tea {2}\[.* → ongoing\] {2}\(ongoing\)$/;
  for (const args of [undefined, { date: 'today' }, { date: '2025/03/04' }, { date: 7 }, { limit: '0' }]) {
    assert.match(await call('get_activities', args), today);
  }
});

test('search_activities looks into names and titles of all days', async () => {
  assert.match(await call('search_activities', { query: 'PULL' }), /^Activities \(1 sessions\):\n• Safari /);
  assert.match(await call('search_activities', { query: 'CAFÉ' }), /^No activities found\.$/);
  assert.match(await call('search_activities', { query: 'é ☕' }), /^Activities \(1 sessions\):\n• Notes /);
  assert.match(await call('search_activities', { query: '' }), /^Activities \(4 sessions\):/);
  assert.match(await call('search_activities', { query: '', limit: 2 }), /^Activities \(2 sessions\):/);
  assert.equal(await call('search_activities', { query: 'nowhere' }), 'No activities found.');
});

test('search_activities needs a query', async () => {
  const refused = { error: "Error: 'query' is required" };
  assert.deepEqual(await call('search_activities', {}), refused);
  assert.deepEqual(await call('search_activities', { query: 42 }), refused);
});

test('get_app_usage sums up a day', async () => {
  assert.equal(
    await call('get_app_usage', { date: '2025-03-04' }),
    'App usage summary (2 apps):\n' +
      '• Safari: 32m across 1 session(s)\n' +
      '• Terminal: 13m across 1 session(s)',
  );
  assert.equal(await call('get_app_usage', { date: '1999-12-31' }), 'No usage data found.');
  assert.match(await call('get_app_usage', { date: 'never' }), /^App usage summary \(1 apps\):\n• Notes: /);
});

test('annotate starts, backdates and ends annotations, and get_annotations shows them', async () => {
  assert.match(
    await call('annotate', { text: '  Reviewing PR #42\n' }),
    /^Annotation started: Reviewing PR #42 \(since \d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ\)$/,
  );
  const since = Date.parse(
    (await call('annotate', { text: 'Fixing auth bug', duration: '1h30m' })).match(/since (.*)\)/)[1],
  );
  const minutesAgo = (Date.now() - since) / 60000;
  assert(minutesAgo >= 90 && minutesAgo < 92, `${minutesAgo}`);
  assert.match(await call('annotate', { text: 'Reading', duration: 'a while' }), /^Annotation started: Reading /);
  assert.equal(await call('annotate', { text: ' ' }), 'Ended current annotation.');
  assert.equal(await call('annotate', {}), 'Ended current annotation.');

  const report = await call('get_annotations');
  assert.match(report, /^Annotations \(3\):/);
  for (const text of ['Reviewing PR #42', 'Fixing auth bug', 'Reading']) assert(report.includes(`\n• ${text}  [`));
  assert.doesNotMatch(report, /ongoing/);
  assert.match(await call('get_activities'), /\(ongoing\)\n\nAnnotations \(3\):\n/);
  assert.equal(await call('get_annotations', { date: '1999-12-31' }), 'No annotations found.');
});

test('text of every script comes back as it was sent', async () => {
  const text = 'Zażółć 日本語 𝄞 👩‍💻 "quoted" back\\slash a/b <&> \u2028 tab\there';
  assert((await call('annotate', { text })).startsWith(`Annotation started: ${text} (since `));
  assert((await call('get_annotations')).includes(`• ${text}  [`));
});

test('an unknown tool is an error of the call', async () => {
  assert.deepEqual(await call('nope', {}), { error: 'Unknown tool: nope' });
});
