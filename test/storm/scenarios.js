'use strict';
// The storm scenarios. A child process runs exactly one (test/storm/child.js) and must end
// with `exitCode`; anything else it finds wrong it reports by throwing, which exits 1.
// `iteration` varies the moment of the teardown from run to run, so that a failure can be
// replayed with the same iteration.

const path = require('path');
const { Worker } = require('worker_threads');
const {
  addonModule, simModule, sleep, until, createEngine, startMedia, scriptFrames, flood, frameFlood,
} = require('./media');

const WORKER = path.join(__dirname, 'worker.js');
const EXIT_CODE = 7;

function check(condition, message) {
  if (!condition) throw new Error(message);
}

const untouched = (buffer, fill) => buffer.every((b) => b === fill);
const count = (sim, fn) => sim.calls(fn).length;

// Resolves with the worker's exit code; an uncaught error in it fails the scenario.
function exited(worker, name) {
  return new Promise((resolve, reject) => {
    worker.on('error', (e) => reject(new Error(`${name} worker: ${(e && e.stack) || e}`)));
    worker.on('exit', resolve);
  });
}

// Starts a worker of test/storm/worker.js; `outcomes` collects what it reports.
function startWorker(role, outcomes, data = {}, onOutcome = () => {}) {
  const worker = new Worker(WORKER, { workerData: { role, ...data } });
  worker.on('message', (m) => {
    if (m && m.outcome) {
      outcomes.push(m.outcome);
      onOutcome();
    }
  });
  return worker;
}

// A worker in `role` makes the engine, reports 'ready' and is terminated 10..49 ms later
// (by iteration). Its environment's cleanup must take the engine down exactly once, after
// which the main thread makes and destroys an engine of its own.
async function terminateWorker(iteration, role, floodFromMain = false) {
  const addon = require(addonModule);
  const sim = require(simModule);
  sim.reset();
  const outcomes = [];
  const worker = startWorker(role, outcomes);
  const exit = exited(worker, role);
  await until(() => outcomes.includes('ready'), 'the worker\'s engine');
  const floods = floodFromMain ? [flood(sim, 100000), frameFlood(sim, 5000)] : [];
  await sleep(10 + ((iteration * 7) % 40));
  await worker.terminate();
  await exit;
  await Promise.all(floods);
  const inits = count(sim, 'orva_vantix_engine_init_with_profile');
  const uninits = count(sim, 'orva_vantix_engine_uninit_async');
  check(inits === 1 && uninits === 1, `after the worker: ${inits} inits, ${uninits} uninits`);

  let events = 0;
  createEngine(addon, () => { events++; });
  sim.emit('room_state_update', { roomID: 'main', state: 1, errorCode: 0, extendedData: '' });
  await until(() => events > 0, 'an event of the main thread\'s engine');
  addon.DestroyEngine();
}

const scenarios = {
  // DestroyEngine while four engine threads flood events, two flood captured frames, and
  // the preview and the peer's stream copy into script buffers by themselves. After it
  // returns no event may reach script and no frame may touch a registered buffer.
  'destroy-mid-burst': {
    exitCode: 0,
    timeoutMs: 20000,
    async run(iteration) {
      const addon = require(addonModule);
      const sim = require(simModule);
      const seen = { late: 0, captured: 0, remote: 0 };
      let destroyed = false;
      const onEvent = () => { if (destroyed) seen.late++; };
      const onFrame = (name) => {
        if (destroyed) seen.late++;
        else if (name === 'onCapturedVideoFrameRawData') seen.captured++;
        else if (name === 'onRemoteVideoFrameRawData') seen.remote++;
      };
      const engine = createEngine(addon, onEvent);
      const buffers = startMedia(engine, onFrame);
      await until(() => seen.captured > 0 && seen.remote > 0, 'the preview\'s and the peer\'s frames');
      scriptFrames(sim);

      const bursts = [flood(sim, 200000), frameFlood(sim, 20000)];
      // Every fourth run destroys at once, while the burst threads start; the others after
      // 1..24 ms, with events queued, being delivered and frames being copied.
      const delay = iteration % 25;
      if (iteration % 4 !== 0 && delay > 0) await sleep(delay);
      addon.DestroyEngine();
      destroyed = true;
      for (const b of Object.values(buffers)) b.fill(0x5a);

      await Promise.all(bursts);
      scriptFrames(sim);  // whatever is still registered must not reach the old buffers
      await sleep(50);
      check(seen.late === 0, `${seen.late} events or frames reached script after DestroyEngine`);
      for (const [name, b] of Object.entries(buffers)) {
        check(untouched(b, 0x5a), `the ${name} buffer was written after DestroyEngine`);
      }
    },
  },

  // process.exit() in the middle of a flood, frames flowing, the engine never destroyed:
  // the process ends with the code passed, whether exit is called from a timer or from
  // inside an event callback.
  'exit-mid-burst': {
    exitCode: EXIT_CODE,
    timeoutMs: 20000,
    async run(iteration) {
      const addon = require(addonModule);
      const sim = require(simModule);
      let events = 0;
      let frames = 0;
      const fromCallback = iteration % 2 === 1;
      const exitAfter = 1 + ((iteration * 131) % 5000);
      const engine = createEngine(addon, () => {
        events++;
        if (fromCallback && events === exitAfter) process.exit(EXIT_CODE);
      });
      startMedia(engine, () => { frames++; });
      await until(() => frames > 0, 'frames');
      // Exit waits for the burst threads (they run on the libuv pool, which exit joins), so
      // the floods last a few hundred ms: long enough to exit in their middle.
      flood(sim, 50000);
      frameFlood(sim, 2000);
      if (!fromCallback) {
        await sleep(iteration % 20);
        process.exit(EXIT_CODE);
      }
      await until(() => false, `event ${exitAfter} of the flood (got ${events})`);
    },
  },

  // A worker that made the engine and floods it through the control module is terminated
  // from the main thread a few tens of ms in.
  'worker-terminate': {
    exitCode: 0,
    timeoutMs: 20000,
    run: (iteration) => terminateWorker(iteration, 'flood-until-terminated'),
  },

  // The same, with the floods started from the main thread: the worker's environment dies
  // while engine threads still deliver into it, but no burst of the control module is
  // waiting to complete in it.
  'worker-terminate-main-floods': {
    exitCode: 0,
    timeoutMs: 20000,
    run: (iteration) => terminateWorker(iteration, 'engine-until-terminated', true),
  },

  // Two workers load the addon. Even runs: one makes the engine and floods it while the
  // other calls methods and is refused a second engine. Odd runs: both race to make one;
  // each either makes it or is refused with the addon's message. Both end by themselves,
  // and so does the process.
  'two-workers': {
    exitCode: 0,
    timeoutMs: 20000,
    async run(iteration) {
      const race = iteration % 2 === 1;
      const outcomes = [];
      // Engines alive at once, counted by the workers around their CreateEngine and
      // DestroyEngine: two is wrong at once, and one of the workers would wait forever.
      const live = new SharedArrayBuffer(4);
      let twoEngines;
      const bothCreated = new Promise((_, reject) => { twoEngines = reject; });
      const onOutcome = () => {
        if (outcomes.includes('two engines')) {
          twoEngines(new Error('both workers\' CreateEngine succeeded: two engines at once'));
        }
      };
      const a = startWorker('share', outcomes, { hold: !race, live }, onOutcome);
      const aExit = exited(a, 'a');
      const normal = (async () => {
        // Held, a keeps its engine until told the other worker is done.
        if (!race) await until(() => outcomes.includes('created'), 'the first worker\'s engine');
        const b = startWorker(race ? 'share' : 'guest', outcomes, { live }, onOutcome);
        const bCode = await exited(b, 'b');
        if (!race) a.postMessage('guest done');
        const aCode = await aExit;
        check(aCode === 0 && bCode === 0, `worker exit codes ${aCode}, ${bCode}`);
      })();
      await Promise.race([normal, bothCreated]);
      check(outcomes.length === 2, `two outcomes expected: ${outcomes}`);
      if (race) check(outcomes.includes('created'), `neither worker made the engine: ${outcomes}`);
      else check(outcomes.join() === 'created,refused', `the guest was not refused: ${outcomes}`);
    },
  },

  // Create/destroy cycles with events and frames in flight at each destroy. What an engine
  // sent must reach its own callback before its DestroyEngine returns, or never: not that
  // callback later, and not the callback of the engine created next. The events each cycle
  // sends carry its number in extendedData to tell them apart.
  //
  // A child makes 1,000 cycles in about 3 s (release): at a quarter of the runs of the
  // others, a release storm of 100 runs still makes 25,000 cycles and stays within a few
  // minutes.
  'cycles': {
    exitCode: 0,
    timeoutMs: 120000,
    share: 0.25,
    async run(iteration) {
      const cycles = 1000;
      const addon = require(addonModule);
      const sim = require(simModule);
      sim.reset();
      // The simulated engine journals every call (some 100 KB per cycle) until reset, so
      // the counts are taken and the journal dropped every 50 cycles.
      let inits = 0;
      let uninits = 0;
      const takeCounts = () => {
        inits += count(sim, 'orva_vantix_engine_init_with_profile');
        uninits += count(sim, 'orva_vantix_engine_uninit_async');
        sim.reset();
      };
      const tag = (c) => `cycle-${c}`;
      let current = -1;
      let delivered = 0;
      const wrong = { count: 0, examples: new Map() };
      const misdelivered = (what) => {
        wrong.count++;
        if (wrong.examples.size < 5 || wrong.examples.has(what)) wrong.examples.set(what, (wrong.examples.get(what) || 0) + 1);
      };
      const during = () => (current < 0 ? 'between cycles' : `during cycle ${current}`);
      for (let c = 0; c < cycles; c++) {
        const cycle = c;
        const engine = createEngine(addon, (name, payload) => {
          if (cycle !== current) {
            misdelivered(`${name} to the callback of destroyed engine ${cycle} ${during()}`);
          } else if (typeof payload.extendedData === 'string' && payload.extendedData.startsWith('cycle-') &&
                     payload.extendedData !== tag(cycle)) {
            misdelivered(`${name} of engine ${payload.extendedData.slice(6)} to the callback of engine ${cycle}`);
          } else {
            delivered++;
          }
        });
        current = cycle;
        engine.registerEventHandler({
          name: 'tsfn',
          func: (name) => { if (cycle !== current) misdelivered(`${name} to the frame handler of destroyed engine ${cycle} ${during()}`); },
        });
        const capture = Buffer.alloc(320 * 180 * 4);
        engine.initVideoCaptureBuffer({ render_buffer: capture, width: 320, height: 180, channel: 0 });
        // Every tenth cycle has the engine's own threads running as well: preview, login,
        // the peer's stream.
        if ((c + iteration) % 10 === 0) startMedia(engine);
        sim.emit('room_state_update', { roomID: 'cycle', state: 1, errorCode: 0, extendedData: tag(c) });
        sim.frame({ channel: 0 }, { width: 320, height: 180, format: 4 });
        const burst = flood(sim, 50, 4, tag(c));
        const frames = frameFlood(sim, 5);
        // Half the cycles destroy with the floods still running, half after them.
        if ((c + iteration) % 2 === 0) await Promise.all([burst, frames]);
        addon.DestroyEngine();
        current = -1;
        await Promise.all([burst, frames]);
        if (c % 50 === 49) takeCounts();
      }
      takeCounts();
      await sleep(50);
      check(wrong.count === 0, `${wrong.count} events reached the wrong callback, e.g. ${JSON.stringify([...wrong.examples])}`);
      check(delivered > 0, 'no event reached script at all');
      check(inits === cycles && uninits === cycles, `${cycles} cycles: ${inits} inits, ${uninits} uninits`);
    },
  },
};

module.exports = { scenarios, EXIT_CODE };
