'use strict';
// Engine teardown through the environment cleanup hook, and silence after DestroyEngine.

const test = require('node:test');
const assert = require('node:assert');
const {
  addonModule, simModule, loadAddon, loadSim, createEngine, sleep, runNode, countLines,
} = require('./support/addon-harness');

test('a worker torn down without DestroyEngine takes its engine down exactly once', () => {
  const r = runNode(`
    const addonPath = ${JSON.stringify(addonModule)};
    const { Worker } = require('worker_threads');
    const sim = require(${JSON.stringify(simModule)});
    const addon = require(${JSON.stringify(addonModule)});
    sim.reset();
    const w = new Worker(\`
      const addon = require(\${JSON.stringify(addonPath)});
      addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'w', electronVersion: 'w' });
      require('worker_threads').parentPort.postMessage('created');
    \`, { eval: true });
    // The engine's event function keeps the worker alive: it ends only when terminated.
    w.on('message', () => w.terminate());
    w.on('exit', () => {
      const count = (fn) => sim.calls(fn).length;
      console.log('after worker: inits=' + count('orva_vantix_engine_init_with_profile') +
        ' uninits=' + count('orva_vantix_engine_uninit_async'));
      // The engine is gone, so this environment may make its own.
      addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'm', electronVersion: 'm' });
      addon.DestroyEngine();
      console.log('after main: inits=' + count('orva_vantix_engine_init_with_profile') +
        ' uninits=' + count('orva_vantix_engine_uninit_async'));
    });
  `);
  assert.strictEqual(r.status, 0, r.stderr + r.stdout);
  assert.match(r.stdout, /^after worker: inits=1 uninits=1$/m);
  assert.match(r.stdout, /^after main: inits=2 uninits=2$/m);
  assert.strictEqual(countLines(r.stdout, 'OrvaVantixAddon tsfn finalizer '), 2, r.stdout);
});

test('a worker that destroyed its engine leaves nothing for its cleanup hook', () => {
  const r = runNode(`
    const addonPath = ${JSON.stringify(addonModule)};
    const { Worker } = require('worker_threads');
    const sim = require(${JSON.stringify(simModule)});
    sim.reset();
    const w = new Worker(\`
      const addon = require(\${JSON.stringify(addonPath)});
      addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'w', electronVersion: 'w' });
      addon.DestroyEngine();
    \`, { eval: true });
    w.on('exit', (code) => console.log('exit ' + code + ' uninits=' + sim.calls('orva_vantix_engine_uninit_async').length));
  `);
  assert.strictEqual(r.status, 0, r.stderr + r.stdout);
  assert.match(r.stdout, /^exit 0 uninits=1$/m);
});

test('nothing reaches script after DestroyEngine', async () => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  session.destroy();
  const seen = session.events.length;  // whatever the engine said before it was destroyed
  sim.emit('room_state_update', { roomID: 'r', state: 2, errorCode: 0, extendedData: '' });
  sim.emit('room_token_will_expire', { roomID: 'r', remainTimeInSecond: 30 });  // stays registered
  addon.SetRoomMode({});
  await sleep(100);
  assert.strictEqual(session.events.length, seen);
});

// Events still queued for a worker that is being terminated cannot reach its script; they
// must be dropped without an exception escaping into the host (which aborts the process).
test('terminating a worker while engine events flow leaves the process intact', () => {
  const r = runNode(`
    const addonPath = ${JSON.stringify(addonModule)};
    const { Worker } = require('worker_threads');
    const sim = require(${JSON.stringify(simModule)});
    async function round() {
      sim.reset();
      const w = new Worker(\`
        const addon = require(\${JSON.stringify(addonPath)});
        addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'w', electronVersion: 'w' });
        require('worker_threads').parentPort.postMessage('created');
      \`, { eval: true });
      await new Promise((resolve) => w.once('message', resolve));
      const burst = sim.burst('room_state_update', { roomID: 'r', state: 1 }, { count: 200000, threads: 2 });
      await new Promise((resolve) => setTimeout(resolve, 30));
      await w.terminate();
      await burst;
    }
    (async () => {
      for (let i = 0; i < 3; i++) await round();
      console.log('survived');
    })();
  `, { timeout: 120000 });
  assert.strictEqual(r.signal, null, r.stderr.slice(-2000));
  assert.strictEqual(r.status, 0, r.stderr.slice(-2000));
  assert.match(r.stdout, /^survived$/m);
});

// An event still on its way when its engine is destroyed belongs to no engine: neither the
// old callback nor the next engine's may see it, however soon the next engine comes up.
test('events sent before DestroyEngine never reach script, even with a new engine up', async () => {
  const addon = loadAddon();
  const sim = loadSim();
  const late = [];
  for (let round = 0; round < 20; round++) {
    let destroyed = false;
    addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, SDKVersion: 'o', electronVersion: 'o',
      tsfn: (name, p) => { if (destroyed && name === 'onRoomStateUpdate') late.push(['old', round]); } });
    sim.emit('room_state_update', { roomID: `old-${round}`, state: 1 });
    addon.DestroyEngine();
    destroyed = true;
    addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, SDKVersion: 'n', electronVersion: 'n',
      tsfn: (name, p) => { if (p && String(p.roomID).startsWith('old-')) late.push(['new', round]); } });
    await sleep(20);
    addon.DestroyEngine();
  }
  assert.deepStrictEqual(late, []);
});

test('one environment cleanup hook however many engines an environment creates', () => {
  const r = runNode(`
    const addon = require(${JSON.stringify(addonModule)});
    const P = { profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'x', electronVersion: 'x' };
    for (let i = 0; i < 50; i++) { addon.CreateEngine(P); addon.DestroyEngine(); }
    // The debug assistant makes the hook's line visible; it is off after CreateEngine.
    addon.CreateEngine(P).enableDebugAssistant({ enable: true });
    addon.DestroyEngine();
  `);
  assert.strictEqual(r.status, 0, r.stderr);
  assert.strictEqual(countLines(r.stdout, 'clean vantix electron env!'), 1, r.stdout.slice(-500));
});
