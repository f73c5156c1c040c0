'use strict';
// Worker bodies of the storm scenarios, chosen by workerData.role. A worker reports to the
// main thread with { outcome } messages.

const { parentPort, workerData } = require('worker_threads');
const {
  addonModule, simModule, sleep, until, createEngine, startMedia, flood, frameFlood,
} = require('./media');

const REFUSED = 'Calling init is disallowed when engine is already initialized';

const addon = require(addonModule);
const sim = require(simModule);
const report = (outcome) => parentPort.postMessage({ outcome });

// Calls that need no engine object and reach the engine's event function (alerts) in
// whichever environment made the engine.
function callMethods() {
  addon.GetNativeDllVersion();
  addon.SetRoomMode({});
  addon.IsFeatureSupported({ featureType: 'x' });
  addon.setGeoFence({});
  addon.SetLogConfig({ config: {} });
}

// CreateEngine, or null when another environment holds the engine.
function tryCreate(tsfn) {
  try {
    return createEngine(addon, tsfn);
  } catch (e) {
    if (e instanceof TypeError && e.message === REFUSED) return null;
    throw e;
  }
}

// An engine whose preview and played stream copy frames into script buffers.
async function mediaEngine() {
  let frames = 0;
  const engine = createEngine(addon, () => {});
  startMedia(engine, () => { frames++; });
  await until(() => frames > 0, 'frames');
  return engine;
}

const roles = {
  // Makes the engine with frames flowing and floods it until terminated.
  // A frame flood outlives the worker (the process waits for its engine threads), so under
  // a sanitizer, where each frame costs tens of times more, it is kept short.
  async 'flood-until-terminated'() {
    const sanitized = Boolean(process.env.ORVA_SANITIZER);
    await mediaEngine();
    frameFlood(sim, sanitized ? 5000 : 100000);
    const first = flood(sim, sanitized ? 10000 : 50000);
    report('ready');
    await first;
    for (;;) await flood(sim, sanitized ? 10000 : 50000);
  },

  // Makes the engine with frames flowing and waits to be terminated: the main thread
  // floods it.
  async 'engine-until-terminated'() {
    await mediaEngine();
    report('ready');
  },

  // Makes the engine if nobody holds one, floods it until every event arrived, then
  // destroys it (with `hold`, only once the main thread says so). Refused, it calls methods
  // instead. Around its engine's life it counts the engines alive in workerData.live.
  async share() {
    let events = 0;
    const live = new Int32Array(workerData.live);
    const engine = tryCreate(() => { events++; });
    if (!engine) {
      report('refused');
      callMethods();
      return;
    }
    report(Atomics.add(live, 0, 1) === 0 ? 'created' : 'two engines');
    startMedia(engine);
    await flood(sim, 20000);
    await until(() => events >= 80000, 'the flood');
    if (workerData.hold) await new Promise((resolve) => parentPort.once('message', resolve));
    Atomics.sub(live, 0, 1);
    addon.DestroyEngine();
  },

  // Calls methods while another worker holds the engine, then is refused one of its own.
  async guest() {
    callMethods();
    if (tryCreate(() => {})) throw new Error('a second engine was made');
    report('refused');
    callMethods();
    await sleep(5);
  },
};

roles[workerData.role]();
