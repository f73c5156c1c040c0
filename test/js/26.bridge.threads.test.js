'use strict';
// Many threads feeding the bridge at once: script threads of several workers raise alerts
// while engine threads flood callbacks. Meant to be run under ThreadSanitizer as well
// (scripts/run-sanitized.sh tsan ...): the assertions are about completeness and order,
// the sanitizer's about the locking behind them.

const test = require('node:test');
const assert = require('node:assert');
const { Worker } = require('worker_threads');
const {
  addonModule, loadAddon, loadSim, createEngine, until,
} = require('./support/addon-harness');

const PER_WORKER = process.env.ORVA_SANITIZER ? 200 : 1000;
const FLOOD_THREADS = 4;

// Each worker raises alerts of its own method, so the main thread can count them apart.
const WORKER_CALLS = [
  ['setRoomMode', 'a.SetRoomMode({})'],
  ['IsFeatureSupported', 'a.IsFeatureSupported({})'],
  ['setGeoFence', 'a.setGeoFence({})'],
  ['SetLogConfig', 'a.SetLogConfig({ config: {} })'],
];

function raiseAlertsInWorker(call) {
  return new Promise((resolve, reject) => {
    const w = new Worker(`
      const a = require(${JSON.stringify(addonModule)});
      for (let i = 0; i < ${PER_WORKER}; i++) ${call};
    `, { eval: true });
    w.on('error', reject);
    w.on('exit', (code) => (code === 0 ? resolve() : reject(new Error(`worker exit ${code}`))));
  });
}

test('alerts from several workers and engine-thread floods all arrive, each source in order', async () => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  try {
    // Each engine thread numbers its events (state) and signs them (roomID).
    const floods = [
      sim.burst('room_state_update', { roomID: '', state: 0, errorCode: 0, extendedData: 'flood' },
        { count: PER_WORKER, threads: FLOOD_THREADS, counterKey: 'state', threadKey: 'roomID' }),
    ];
    // The main thread's own alerts interleave with the workers'; their order is kept.
    for (let i = 0; i < PER_WORKER; i++) {
      if (i % 2 === 0) addon.SetRoomMode({ mode: 'x' });
      else addon.IsFeatureSupported({ featureType: 'x' });
    }
    await Promise.all([...WORKER_CALLS.map(([, call]) => raiseAlertsInWorker(call)), ...floods]);

    const alerts = () => session.named('onDebugError');
    const expected = PER_WORKER * (WORKER_CALLS.length + 1);
    await until(() => alerts().length >= expected, 30000, 'every alert');

    for (const [name] of WORKER_CALLS) {
      const missing = alerts().filter((e) => e.payload.funcName === name && / missing$/.test(e.payload.errorInfo));
      assert.strictEqual(missing.length, PER_WORKER, name);
    }
    const mine = alerts().filter((e) => / should be type of Number$/.test(e.payload.errorInfo));
    assert.deepStrictEqual(mine.map((e) => e.payload.funcName),
      Array.from({ length: PER_WORKER }, (_, i) => (i % 2 === 0 ? 'setRoomMode' : 'IsFeatureSupported')));

    const flood = () => session.named('onRoomStateUpdate').filter((e) => e.payload.extendedData === 'flood');
    await until(() => flood().length >= FLOOD_THREADS * PER_WORKER, 30000, 'every engine event');
    const inOrder = Array.from({ length: PER_WORKER }, (_, i) => i);
    for (let thread = 0; thread < FLOOD_THREADS; thread++) {
      const states = flood().filter((e) => e.payload.roomID === String(thread)).map((e) => e.payload.state);
      assert.deepStrictEqual(states, inOrder, `engine thread ${thread}`);
    }
  } finally {
    session.destroy();
  }
});
