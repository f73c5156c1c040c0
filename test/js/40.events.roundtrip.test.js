'use strict';
// Every engine event that reaches script, round-tripped through the simulated engine: one
// emitted callback gives exactly one script event of that name whose payload equals what was
// emitted, keys in order. Callbacks without a script event give nothing.

const { describe, it, before, after } = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until } = require('./support/addon-harness');
const { EVENTS, UNFORWARDED, toScript, shape } = require('./40.events.table');

const addon = loadAddon();
const sim = loadSim();

// A forwarded event emitted after the one under test: everything between the two came
// from the one under test, because one emitting thread's events arrive in order.
let sentinelCount = 0;
async function emitThenSentinel(session, callback, payload) {
  const from = session.events.length;
  const mark = ++sentinelCount;
  assert.strictEqual(sim.emit(callback, payload), true, `${callback} is registered`);
  assert.strictEqual(sim.emit('network_mode_changed', { mode: -mark }), true);
  const isSentinel = (e) => e.name === 'onNetworkModeChanged' && e.payload.mode === -mark;
  await until(() => session.events.slice(from).some(isSentinel), 10000, `the sentinel after ${callback}`);
  return session.events.slice(from, session.events.findIndex((e, i) => i >= from && isSentinel(e)));
}

describe('engine events round-trip to script', () => {
  let session;
  before(() => {
    sim.reset();
    session = createEngine(addon);
  });
  after(() => session.destroy());

  it('the table covers every forwarded event', () => {
    assert.strictEqual(new Set(EVENTS.map(([name]) => name)).size, 53);
  });

  for (const [name, callback, payload] of EVENTS) {
    it(`${callback} -> ${name}`, async () => {
      const got = await emitThenSentinel(session, callback, payload);
      assert.deepStrictEqual(got.map((e) => e.name), [name], 'exactly one event of that name');
      const expected = toScript(payload);
      assert.deepStrictEqual(got[0].payload, expected);
      assert.deepStrictEqual(shape(got[0].payload), shape(expected), 'keys in order, values of the right kind');
    });
  }

  it('a 64-bit counter above 2^53 arrives as a rounded number, not text', async () => {
    const big = 2n ** 60n + 1n;
    const [e] = await emitThenSentinel(session, 'publisher_quality_update', { streamID: 's', quality: { totalSendBytes: big } });
    assert.strictEqual(e.payload.quality.totalSendBytes, 2 ** 60);
  });

  it('callbacks without a script event give none', async () => {
    for (const [callback, payload] of UNFORWARDED) {
      assert.deepStrictEqual(await emitThenSentinel(session, callback, payload), [], callback);
    }
  });
});
