// Sends lines of every kind directly to the server: each must get at most one answer, in valid JSON
// and UTF-8. JavaScript's own JSON reader decides which.

import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { test } from 'node:test';
import { TextDecoder } from 'node:util';

import { User } from './server.mjs';

const { TESSUM_SERVER } = process.env;
const MOST_LEVELS = 512;

// Throws if the bytes are not valid UTF-8.
function decodeUtf8(bytes) {
  return new TextDecoder('utf-8', { fatal: true }).decode(bytes);
}

// Sends `lines`, one buffer each, to a server and resolves to the list of answers to each line. A
// request after every line marks where its answers end.
async function answersTo(lines) {
  const user = new User();
  const server = spawn(TESSUM_SERVER, { env: user.environment, stdio: ['pipe', 'pipe', 'inherit'] });
  const output = [];
  server.stdout.on('data', (chunk) => output.push(chunk));
  const ended = new Promise((resolve) => server.on('close', (...how) => resolve(how)));
  lines.forEach((line, i) => {
    const mark = JSON.stringify({ jsonrpc: '2.0', id: `mark ${i}`, method: 'mark' });
    server.stdin.write(Buffer.concat([line, Buffer.from(`\n${mark}\n`)]));
  });
  server.stdin.end();
  assert.deepEqual(await ended, [0, null], 'the server ends without an error');
  await user.leave();

  const answers = lines.map(() => []);
  let current = 0;
  for (const line of decodeUtf8(Buffer.concat(output)).trimEnd().split('\n')) {
    const answer = JSON.parse(line);
    if (answer.id === `mark ${current}`) current += 1;
    else answers[current].push(answer);
  }
  assert.equal(current, lines.length, 'every line is processed');
  return answers;
}

// The nesting depth of arrays and objects in a value.
function levelsOf(value) {
  let levels = 0;
  for (let layer = [value]; ; levels += 1) {
    const containers = layer.filter((item) => item !== null && typeof item === 'object');
    if (containers.length === 0) return levels;
    layer = containers.flatMap((item) => Object.values(item));
  }
}

const hasLoneSurrogate = (text) => /\p{Surrogate}/u.test(text);

// All strings and keys in a value.
function textsIn(value) {
  if (typeof value === 'string') return [value];
  if (value === null || typeof value !== 'object') return [];
  return Object.entries(value).flatMap(([key, item]) => [key, ...textsIn(item)]);
}

// What a line must get: 'nothing', a 'parse error', or an 'answer' with an id.
function expectedFor(line) {
  if (line.length === 0 || line.equals(Buffer.from('\r'))) return { kind: 'nothing' };
  let message;
  try {
    message = JSON.parse(decodeUtf8(line));
  } catch {
    return { kind: 'parse error' };
  }
  const isRequest =
    message !== null &&
    typeof message === 'object' &&
    typeof message.jsonrpc === 'string' &&
    typeof message.method === 'string' &&
    levelsOf(message) <= MOST_LEVELS &&
    !textsIn(message).some(hasLoneSurrogate);
  if (!isRequest) return { kind: 'parse error' };
  const id = message.id ?? null;
  if (id === null) return { kind: 'nothing' };
  if (typeof id !== 'string' && !Number.isInteger(id)) return { kind: 'parse error' };
  if (Math.abs(id) >= 2 ** 63) return { kind: 'parse error' };
  return { kind: 'answer', id };
}

function check(line, answers) {
  const expected = expectedFor(line);
  const shown = JSON.stringify(line.subarray(0, 200).toString('latin1'));
  if (expected.kind === 'nothing') {
    assert.deepEqual(answers, [], shown);
    return expected.kind;
  }
  assert.equal(answers.length, 1, shown);
  const [answer] = answers;
  assert.equal(answer.jsonrpc, '2.0', shown);
  if (expected.kind === 'parse error') {
    assert.deepEqual(Object.keys(answer).sort(), ['error', 'jsonrpc'], shown);
    assert.equal(answer.error.code, -32700, shown);
    assert.match(answer.error.message, /^Parse error: ./, shown);
  } else {
    // JavaScript compares a large id as a double.
    assert.equal(answer.id, expected.id, shown);
    assert(('result' in answer) !== ('error' in answer), shown);
  }
  return expected.kind;
}

async function checkAll(lines) {
  const answers = await answersTo(lines);
  const kinds = {};
  lines.forEach((line, i) => {
    const kind = check(line, answers[i]);
    kinds[kind] = (kinds[kind] ?? 0) + 1;
  });
  return kinds;
}

const request = (id) => `{"jsonrpc":"2.0","id":${id},"method":"tools/list"}`;
const nested = (levels) => '['.repeat(levels) + ']'.repeat(levels);

test('malformed lines are parse errors', async () => {
  const texts = [
    ...[' ', '\t', '\u0000', 'hello', '{', '}', '[', '{}', '[]', 'null', '5', '"text"', 'nul', 'NaN'],
    ...['01', '1.', '.5', '+1', '1e', '-', '0x10', 'tru', 'truefalse', '{} {}', '{},', '[1,]', '{"a":1,}'],
    ...['"', '"\\', '"\\u12"', '"\\x41"', "'text'", '{"a"}', '{"a":}', '{a:1}', '/* */ {}', '\uFEFF', '\uFEFF{}'],
    ...['{"jsonrpc":2,"id":1,"method":"x"}', '{"jsonrpc":"2.0","id":1}', '{"id":1,"method":"x"}'],
    ...['{"jsonrpc":"2.0","id":1,"method":null}', '{"jsonrpc":"2.0","id":1,"method":["x"]}'],
    ...['1.5', 'true', '{}', '[]', '[1]', '9223372036854775808', '-1e300', '1e999', '-'].map(request),
    `[${request(1)},${request(2)}]`,
    request(1) + request(2),
    request('"\\ud800"'),
    request('"\\udc00\\ud800"'),
    request('"a\u0007"'),
    request(1).slice(0, -1),
  ];
  const { 'parse error': errors } = await checkAll(texts.map((text) => Buffer.from(text)));
  assert.equal(errors, texts.length);
});

test('invalid UTF-8 is a parse error', async () => {
  const bad = ['80', 'ff', 'c0af', 'c3', 'e28289c3', 'eda080', 'f0808080', 'f4908080', 'e282'];
  const lines = bad.map((hex) =>
    Buffer.concat([Buffer.from('{"jsonrpc":"2.0","id":"'), Buffer.from(hex, 'hex'), Buffer.from('","method":"x"}')]),
  );
  const { 'parse error': errors } = await checkAll(lines);
  assert.equal(errors, lines.length);
});

test('unusual requests are answered', async () => {
  const texts = [
    ...['0', '-1', '10.0', '1e2', '9007199254740992', '-4611686018427387904', '""', '"\\ud834\\udd1e"'].map(request),
    `\uFEFF${request(1)}`,
    ` \t${request(1)} \r`,
    `${request(1)}\r`,
    '{"jsonrpc":"1.0","id":1,"method":"","params":1e999}',
    '{"jsonrpc":"","id":1,"id":2,"method":"x","method":"tools/list","__proto__":{"id":null}}',
    '{"jsonrpc":"2.0","id":1,"method":"tools/call","params":[{"name":"annotate"}]}',
    '{"jsonrpc":"2.0","id":1,"method":"tools/call","params":{"name":"annotate","arguments":"text"}}',
    '{"jsonrpc":"2.0","id":1,"method":"\\u0000\\"\\\\/\\u2028"}',
  ];
  const { answer } = await checkAll(texts.map((text) => Buffer.from(text)));
  assert.equal(answer, texts.length);
});

test('notifications and empty lines get no answer', async () => {
  const texts = [
    ...['', '\r', '{"jsonrpc":"2.0","method":"tools/list"}', request('null'), request('1,"id":null')],
    '{"jsonrpc":"2.0","method":"notifications/initialized","params":{}}',
  ];
  const { nothing } = await checkAll(texts.map((text) => Buffer.from(text)));
  assert.equal(nothing, texts.length);
});

test('nesting is answered up to its limit and refused beyond', async () => {
  const withParams = (params) => Buffer.from(`{"jsonrpc":"2.0","id":1,"method":"x","params":${params}}`);
  const lines = [1, 511, 512, 513, 100000].map((levels) => withParams(nested(levels)));
  const deepest = '{"a":'.repeat(511) + '1' + '}'.repeat(511);
  lines.push(withParams(deepest), withParams(`{"a":${deepest}}`));
  lines.push(Buffer.from('['.repeat(1000000)), Buffer.from('{"a":'.repeat(200000)));
  assert.deepEqual(await checkAll(lines), { answer: 3, 'parse error': 6 });
});

test('lines of two megabytes are answered', async () => {
  const large = 'x'.repeat(2 << 20);
  const lines = [
    `{"jsonrpc":"2.0","id":1,"method":"${large}"}`,
    `{"jsonrpc":"2.0","id":2,"method":"tools/list","params":{"a":"${large}"}}`,
    `{"jsonrpc":"2.0","id":3,"method":"tools/call","params":{"name":"annotate","arguments":{"text":"${large}"}}}`,
    `{"jsonrpc":"2.0","method":"tools/list","params":"${large}"}`,
    `{"jsonrpc":"2.0","id":5,"method":"tools/list","params":[${'0,'.repeat(1 << 20)}0]}`,
    large,
    `"${large}`,
    ' '.repeat(2 << 20),
  ];
  const kinds = await checkAll(lines.map((line) => Buffer.from(line)));
  assert.deepEqual(kinds, { answer: 4, nothing: 1, 'parse error': 3 });
});

// A generator of numbers below a limit that gives the same ones in every run.
function randomNumbers(seed) {
  let state = seed;
  return (limit) => {
    state = (Math.imul(state, 1664525) + 1013904223) >>> 0;
    return Math.floor((state / 2 ** 32) * limit);
  };
}

test('random lines get the expected answers', async () => {
  const random = randomNumbers(20250304);
  const pick = (list) => list[random(list.length)];
  // No tool that takes a limit: one of many digits stops the process by design.
  const seeds = [
    request(7),
    '{"jsonrpc":"2.0","method":"notifications/cancelled","params":{"requestId":3}}',
    '{"jsonrpc":"2.0","id":"é☕𝄞","method":"tools/call","params":{"name":"annotate","arguments":{"text":"a/b","duration":"1h30m"}}}',
    '{"jsonrpc":"2.0","id":-12,"method":"tools/call","params":{"name":"get_app_usage","arguments":{"date":"2025-03-04"}}}',
    '{"jsonrpc":"2.0","id":0,"method":"resources/read","params":{"uri":"tessum://activities/today"}}',
    '{"a":[1.5,-0.1e2,true,false,null,"\\u00e9\\ud834\\udd1e\\n",{"":[]}],"jsonrpc":"2.0","id":"x","method":"initialize"}',
  ].map((text) => Buffer.from(text));
  const tokens = ['"', '\\', '{', '}', '[', ']', ',', ':', 'null', '"id":', '\\u', '\xC3\xA9', '\xED', '-', 'e', ' '];

  function mutate(line) {
    const at = random(line.length + 1);
    const [head, tail] = [line.subarray(0, at), line.subarray(at)];
    const inserted = Buffer.from(pick(tokens), 'latin1');
    switch (random(5)) {
      case 0: // one byte changed
        return Buffer.concat([head, Buffer.from([random(256)]), tail.subarray(1)]);
      case 1: // a piece lost
        return Buffer.concat([head, tail.subarray(random(10))]);
      case 2: // a token put in
        return Buffer.concat([head, inserted, tail]);
      case 3: // the end of another
        return Buffer.concat([head, pick(seeds).subarray(random(60))]);
      default: // two bytes swapped
        return Buffer.concat([head, tail.subarray(1, 2), tail.subarray(0, 1), tail.subarray(2)]);
    }
  }

  const lines = Array.from({ length: 2000 }, () => {
    if (random(10) === 0) return Buffer.from(Array.from({ length: random(80) }, () => random(256)));
    let line = pick(seeds);
    for (let count = random(4); count > 0; count -= 1) line = mutate(line);
    return line;
  }).map((line) => line.map((byte) => (byte === 10 ? 32 : byte)));

  const kinds = await checkAll(lines);
  for (const kind of ['answer', 'parse error', 'nothing']) assert(kinds[kind] > 100, JSON.stringify(kinds));
});
