'use strict';
// Engine events under load: several engine threads flooding one callback, every event
// arriving once and in each thread's order; and none reaching script after DestroyEngine,
// even while a flood is still running.

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, until, sleep } = require('./support/addon-harness');

const addon = loadAddon();
const sim = loadSim();

const THREADS = 4;
const PER_THREAD = 100000;
// Sanitized builds are several times slower; the counts stay, the patience grows.
const PATIENCE_MS = process.env.ORVA_SANITIZER ? 600000 : 120000;

// Counts room_state_update floods: roomID names the engine thread, state carries its counter.
function floodCounter() {
  const next = new Map();
  const c = { total: 0, outOfOrder: 0, other: 0, afterDestroy: 0, destroyed: false };
  c.tsfn = (name, payload) => {
    if (c.destroyed) c.afterDestroy++;
    if (name !== 'onRoomStateUpdate') {
      c.other++;
      return;
    }
    c.total++;
    const expected = next.get(payload.roomID) || 0;
    if (payload.state !== expected) c.outOfOrder++;
    next.set(payload.roomID, payload.state + 1);
  };
  c.perThread = () => Object.fromEntries([...next].sort());
  return c;
}

function create(tsfn) {
  return addon.CreateEngine({
    profile: { appID: 1, scenario: 0 }, tsfn, SDKVersion: 'order', electronVersion: 'order',
  });
}

const flood = (count) => sim.burst('room_state_update',
  { roomID: '', state: 0, errorCode: -1, extendedData: 'x' },
  { count, threads: THREADS, counterKey: 'state', threadKey: 'roomID' });

test(`${THREADS} engine threads x ${PER_THREAD} events: all arrive, each thread in order`, async () => {
  sim.reset();
  const c = floodCounter();
  create(c.tsfn);
  try {
    const { calls } = await flood(PER_THREAD);
    assert.strictEqual(calls, THREADS * PER_THREAD);
    await until(() => c.total >= THREADS * PER_THREAD, PATIENCE_MS, 'every flooded event');
    await sleep(50);  // a duplicate would show as an extra event
    assert.strictEqual(c.total, THREADS * PER_THREAD);
    assert.strictEqual(c.outOfOrder, 0);
    const expected = Object.fromEntries(Array.from({ length: THREADS }, (_, t) => [String(t), PER_THREAD]));
    assert.deepStrictEqual(c.perThread(), expected);
  } finally {
    addon.DestroyEngine();
  }
});

test('no event reaches script after DestroyEngine, mid-flood', async () => {
  sim.reset();
  const c = floodCounter();
  create(c.tsfn);
  const done = flood(PER_THREAD);
  await until(() => c.total > 1000, PATIENCE_MS, 'the flood to reach script');
  addon.DestroyEngine();
  c.destroyed = true;
  const deliveredBeforeDestroy = c.total;
  await done;
  await sleep(200);
  assert.strictEqual(c.afterDestroy, 0);
  assert.ok(deliveredBeforeDestroy < THREADS * PER_THREAD, 'the engine went down mid-flood');
});
