'use strict';
// The event bridge seen from script: order, delivery only through an existing engine
// function, and the guard that stops queued tasks once the engine context is destroyed.

const test = require('node:test');
const assert = require('node:assert');
const {
  addonModule, simModule, loadAddon, createEngine, until, sleep, blockScriptThread, runNode, countLines,
} = require('./support/addon-harness');

// Failing calls whose alerts tell them apart.
const BAD_CALLS = [
  [(a) => a.SetRoomMode({}), 'setRoomMode'],
  [(a) => a.IsFeatureSupported({}), 'IsFeatureSupported'],
  [(a) => a.setGeoFence({}), 'setGeoFence'],
  [(a) => a.SetLogConfig({ config: {} }), 'SetLogConfig'],
];

test('events arrive in the order they were posted', async () => {
  const addon = loadAddon();
  const session = createEngine(addon);
  try {
    const expected = [];
    for (let i = 0; i < 400; i++) {
      const [call, name] = BAD_CALLS[i % BAD_CALLS.length];
      call(addon);
      expected.push(name);
    }
    const alerts = () => session.named('onDebugError');
    await until(() => alerts().length >= expected.length, 10000, 'all alerts');
    assert.deepStrictEqual(alerts().map((e) => e.payload.funcName), expected);
  } finally {
    session.destroy();
  }
});

test('nothing reaches script while no engine event function exists', async () => {
  const addon = loadAddon();
  for (const [call] of BAD_CALLS) call(addon);  // no engine yet: dropped by the worker
  await sleep(50);
  const session = createEngine(addon);
  try {
    addon.SetRoomMode({});
    await until(() => session.named('onDebugError').length >= 1, 5000, 'the alert after CreateEngine');
    await sleep(50);
    assert.deepStrictEqual(session.named('onDebugError').map((e) => e.payload.funcName), ['setRoomMode']);
  } finally {
    session.destroy();
  }
  const seen = session.events.length;
  addon.SetRoomMode({});  // engine gone: dropped again
  await sleep(50);
  assert.strictEqual(session.events.length, seen);
});

test('tasks queued on the engine function drop themselves once the context is destroyed', async (t) => {
  const addon = loadAddon();
  const session = createEngine(addon);
  for (let i = 0; i < 20; i++) addon.SetRoomMode({});
  // Let the dispatch worker hand every alert to the engine function while no script
  // callback can run, then destroy the engine before any of them does.
  blockScriptThread(200);
  assert.strictEqual(addon.DestroyEngine(), 0);
  await sleep(100);
  assert.deepStrictEqual(session.events, []);

  await t.test('each writes the guard line while the debug assistant is on', (tt) => {
    if (typeof session.engine.enableDebugAssistant !== 'function') {
      tt.skip('needs the engine wrapper\'s enableDebugAssistant to switch the assistant back on');
      return;
    }
    const r = runNode(`
      const addon = require(${JSON.stringify(addonModule)});
      const engine = addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => console.log('CALLED'),
        SDKVersion: 'x', electronVersion: 'y' });
      engine.enableDebugAssistant({ enable: true });
      for (let i = 0; i < 5; i++) addon.SetRoomMode({});
      Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 200);
      addon.DestroyEngine();
    `);
    assert.strictEqual(r.status, 0, r.stderr);
    // Five "onDebugInfo" and five "onDebugError" tasks at least.
    assert.ok(countLines(r.stdout, 'checkContextDestroy, operator ()') >= 10, r.stdout);
    assert.strictEqual(countLines(r.stdout, 'CALLED'), 0);
  });
});

test('the engine function is finalised after DestroyEngine, and only then', () => {
  const r = runNode(`
    const addon = require(${JSON.stringify(addonModule)});
    addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'x', electronVersion: 'y' });
    console.log('created');
    addon.DestroyEngine();
    console.log('destroyed');
  `);
  assert.strictEqual(r.status, 0, r.stderr);
  const lines = r.stdout.split('\n');
  assert.strictEqual(countLines(r.stdout, 'OrvaVantixAddon tsfn finalizer '), 1, r.stdout);
  assert.ok(lines.indexOf('OrvaVantixAddon tsfn finalizer ') > lines.indexOf('destroyed'), r.stdout);
});

test('events for a name nobody registered are dropped silently; "tsfn" goes at teardown', () => {
  // Frame events go to the function registered under "tsfn". Each frame below is the first
  // of its channel, so each makes a size event and a frame event.
  const r = runNode(`
    const addon = require(${JSON.stringify(addonModule)});
    const sim = require(${JSON.stringify(simModule)});
    const seen = { engine: [], other: [], tsfn: [] };
    const engine = addon.CreateEngine({ profile: { appID: 1, scenario: 0 },
      tsfn: (name) => seen.engine.push(name), SDKVersion: 'x', electronVersion: 'y' });
    engine.registerEventHandler({ name: 'other', func: (name) => seen.other.push(name) });
    sim.frame({ channel: 0 }, { width: 4, height: 2, format: 1 });
    setTimeout(() => {
      console.log('unregistered: ' + JSON.stringify(seen));
      engine.registerEventHandler({ name: 'tsfn', func: (name) => seen.tsfn.push(name) });
      sim.frame({ channel: 1 }, { width: 4, height: 2, format: 1 });
      setTimeout(() => {
        console.log('registered: ' + JSON.stringify(seen.tsfn));
        addon.DestroyEngine();
        console.log('destroyed');
        // "other" is never released (only "tsfn" is) and would keep the process alive.
        setTimeout(() => process.exit(0), 200);
      }, 200);
    }, 200);
  `);
  assert.strictEqual(r.status, 0, r.stderr);
  assert.match(r.stdout, /^unregistered: \{"engine":\[\],"other":\[\],"tsfn":\[\]\}$/m);
  assert.match(r.stdout, /^registered: \["onCaptureVideoSizeChanged","onCapturedVideoFrameRawData"\]$/m);
  assert.doesNotMatch(r.stdout, /blocking call failed/);
  const lines = r.stdout.split('\n');
  assert.ok(lines.indexOf('tsfn finalizer ') > lines.indexOf('destroyed'), r.stdout);
});

// A named function that nothing can call any more (overwritten, or its engine torn down)
// stays registered and unreleased, but must not keep the process from exiting.
test('functions of registerEventHandler do not keep a finished process alive', () => {
  for (const names of [['x'], ['tsfn', 'tsfn'], ['a', 'a', 'b']]) {
    const r = runNode(`
      const addon = require(${JSON.stringify(addonModule)});
      const e = addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 't', electronVersion: 't' });
      for (const name of ${JSON.stringify(names)}) e.registerEventHandler({ name, func: () => {} });
      addon.DestroyEngine();
      console.log('script done');
    `, { timeout: 20000 });
    assert.strictEqual(r.signal, null, `${names}: still running after its script ended`);
    assert.strictEqual(r.status, 0, r.stderr);
    assert.match(r.stdout, /^script done$/m);
  }
});
