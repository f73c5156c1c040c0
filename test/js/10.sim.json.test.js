'use strict';
// The JSON the control module exchanges with the simulated engine: 64-bit integers stay
// exact both ways, binary data becomes byte blocks.

const test = require('node:test');
const assert = require('node:assert');
const { toJson, parseJson } = require('../../engine/sim/json');

test('payloads to JSON', async (t) => {
  const cases = [
    ['BigInt beyond 2^53 as an exact integer', { id: 2n ** 64n - 1n, n: -(2n ** 63n) }, '{"id":18446744073709551615,"n":-9223372036854775808}'],
    ['numbers as JSON writes them', { a: 1.5, b: -0, c: 2 ** 60 }, '{"a":1.5,"b":0,"c":1152921504606846976}'],
    ['non-finite numbers as null', [NaN, Infinity], '[null,null]'],
    ['undefined and functions left out of objects', { a: undefined, f() {}, b: 1 }, '{"b":1}'],
    ['Buffer as a byte block', { data: Buffer.from([1, 2, 255]) }, '{"data":{"$bytes":"AQL/"}}'],
    ['a typed array view: only its own bytes', new Uint8Array([9, 1, 2, 9]).subarray(1, 3), '{"$bytes":"AQI="}'],
    ['ArrayBuffer', new Uint8Array([7]).buffer, '{"$bytes":"Bw=="}'],
    ['Float32Array: its bytes', new Float32Array([1]), '{"$bytes":"AACAPw=="}'],
    ['nested lists and texts', { list: [{ s: 'é"' }], t: true }, '{"list":[{"s":"é\\""}],"t":true}'],
  ];
  for (const [what, value, json] of cases) {
    await t.test(what, () => assert.strictEqual(toJson(value), json));
  }
  await t.test('a payload that contains itself is refused', () => {
    const loop = { a: 1 };
    loop.self = loop;
    assert.throws(() => toJson(loop), TypeError);
  });
  await t.test('a value shared twice is not a cycle', () => {
    const shared = { x: 1 };
    assert.strictEqual(toJson([shared, shared]), '[{"x":1},{"x":1}]');
  });
});

test('answers from JSON', async (t) => {
  const cases = [
    ['integers a double cannot hold become BigInt', '{"a":18446744073709551615,"b":-9007199254740993}',
      { a: 18446744073709551615n, b: -9007199254740993n }],
    ['large integers a double holds exactly stay numbers', '[1152921504606846976,9007199254740992]', [2 ** 60, 2 ** 53]],
    ['digits inside strings are text', '{"s":"18446744073709551615","t":"x\\"18446744073709551615"}',
      { s: '18446744073709551615', t: 'x"18446744073709551615' }],
    ['long fractions and exponents are reals', '[0.12345678901234567,1e-12345678901234567,1.2345678901234567e5]',
      [0.12345678901234567, 0, 123456.78901234567]],
    ['everything else as JSON.parse', '{"fn":"f","args":{"x":[1,2.5,null,true]}}', { fn: 'f', args: { x: [1, 2.5, null, true] } }],
  ];
  for (const [what, json, value] of cases) {
    await t.test(what, () => assert.deepStrictEqual(parseJson(json), value));
  }
});
