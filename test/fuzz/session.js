'use strict';
// One fuzzing session in one script environment: the steps (calls into the script surface,
// frames and events from the simulated engine, garbage collections, engine restarts, short
// lived worker environments) drawn from one seed, and the oracle applied to every call.
// child.js runs one in a process; worker.js runs one in a worker thread.
//
// Everything a step chooses comes from the session's PRNG and from state the session's own
// calls decide, never from timing, so a seed replays the same steps: promise settlements and
// events are not looked at, only errors.

const fs = require('fs');
const path = require('path');
const { Rng } = require('./prng');
const { harvest, fixtureKeys, Surface } = require('./surface');
const { Values, show, tag } = require('./values');
const { classify, describeError } = require('./oracle');

const root = path.resolve(__dirname, '..', '..');

// The build may be replaced under us by a rebuild: a load that fails is tried again.
function load(what) {
  for (let attempt = 1; ; attempt++) {
    try {
      return require(what);
    } catch (e) {
      if (attempt >= 10) throw e;
      Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 1000);
    }
  }
}

let projectKeys = null;

// Harvested once per environment: the sources do not change under a run.
function keys() {
  if (!projectKeys) {
    const info = harvest(path.join(root, 'src'));
    const pool = [...new Set([...info.all.keys(),
      ...fixtureKeys([path.join(root, 'test', 'fixtures'), path.join(root, 'test', 'js')])])];
    projectKeys = { info, pool };
  }
  return projectKeys;
}

const PROFILE = { appID: 1234567, appSign: 'fuzz-sign', scenario: 0 };
const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

// Teardown methods (DestroyEngine, destroy*, ...) are picked a tenth as often as others:
// calls should mostly run with the objects alive.
const methodWeight = (name) => (/^destroy/i.test(name) ? 0.1 : 1);

class Session {
  // seed; progressFile: where each step is written before it runs (or null); trace: steps
  // to stderr too; label: prefix of the step descriptions; report(record): gets the first
  // occurrence of each finding; workers: whether steps may start worker environments.
  constructor({ seed, progressFile = null, trace = false, label = '', report = () => {}, workers = false }) {
    this.seed = seed >>> 0;
    this.trace = trace;
    this.label = label;
    this.report = report;
    this.workers = workers;
    this.progressFile = progressFile;
    this.progressFd = progressFile ? fs.openSync(progressFile, 'r+') : null;
    this.addon = load(root);
    this.sim = load(path.join(root, 'engine', 'sim'));
    this.engineFunctions = require(path.join(root, 'test', 'fixtures', 'engine-names.js')).ENGINE_FUNCTIONS;
    const { info, pool } = keys();
    this.rng = new Rng(this.seed);
    this.surface = new Surface(this.addon, info);
    this.values = new Values(this.rng, this.surface, { keyPool: pool });
    tag(this.addon, 'addon');

    this.step = 0;
    this.calls = 0;
    this.failedCalls = 0;
    this.current = '';
    this.engineUp = false;
    this.counts = new Map();          // finding signature → occurrences
    this.findingMethods = new Map();  // finding signature → Set(methods)
    this.coverage = {};               // class → method → calls
    this.instanceCount = 0;
    this.tagged = new WeakSet();
  }

  // ---- reporting

  progress(text) {
    const t = this.label + text;
    this.current = t.length > 4000 ? `${t.slice(0, 4000)} /* … */` : t;
    if (this.progressFd !== null) {
      const line = `${this.step}\t${this.calls}\t${this.current}\n`;
      fs.writeSync(this.progressFd, line, 0);
      fs.ftruncateSync(this.progressFd, Buffer.byteLength(line));
    }
    if (this.trace) process.stderr.write(`[${this.calls}] ${this.current}\n`);
  }

  finding(kind, signature, details) {
    const key = `${kind}|${signature}`;
    const n = (this.counts.get(key) || 0) + 1;
    this.counts.set(key, n);
    if (details.method) {
      if (!this.findingMethods.has(key)) this.findingMethods.set(key, new Set());
      this.findingMethods.get(key).add(details.method);
    }
    if (n === 1) {
      this.report({ type: 'finding', kind, signature: key, seed: this.seed, call: this.calls, step: this.step, ...details });
    }
  }

  summary() {
    return {
      seed: this.seed, calls: this.calls, failedCalls: this.failedCalls, steps: this.step,
      counts: Object.fromEntries(this.counts), coverage: this.coverage,
      methods: Object.fromEntries([...this.findingMethods].map(([k, v]) => [k, [...v]])),
    };
  }

  // ---- one call

  // A script object a call handed back joins the targets, printed by class and number.
  noteResult(result) {
    if (this.surface.note(result) && !this.tagged.has(result)) {
      this.tagged.add(result);
      tag(result, `<${Object.getPrototypeOf(result).constructor.name} #${++this.instanceCount}>`);
    }
  }

  // Calls fn on receiver (or constructs it) and applies the oracle: { result, threw }.
  invoke({ label, className, method, fn, receiver, args, instance = receiver, construct = false }) {
    const { values } = this;
    const receiverText = receiver === instance ? '' : ` /* called on ${show(receiver)} */`;
    this.progress(`${construct ? 'new ' : ''}${label}${construct ? '' : `.${method}`}(${args.map((a) => show(a)).join(', ')})${receiverText}`);
    const touchedRevoked = values.revokedInCall;
    const unstable = values.unstableInCall;
    let result;
    let threw = false;
    try {
      result = construct ? Reflect.construct(fn, args) : Reflect.apply(fn, receiver, args);
    } catch (error) {
      threw = true;
      if (classify(error, { touchedRevoked, foreignReceiver: receiver !== instance }) === null) {
        this.failedCalls++;
        // Values that read differently each time make one kind per error text, whatever
        // the method: the addon checked one value and read another.
        // Values quoted in V8's messages ("'0.5' returned for property ...") vary.
        const text = describeError(error).replace(/'[^']*'/g, "'…'");
        const signature = unstable
          ? `${text} (argument values change between reads)`
          : `${className}.${method}: ${text}`;
        this.finding('exception', signature, {
          method: `${className}.${method}`, error: describeError(error), last: this.current,
        });
      }
    }
    this.calls++;
    const cls = this.coverage[className] || (this.coverage[className] = {});
    cls[method] = (cls[method] || 0) + 1;
    if (!threw) {
      if (result instanceof Promise) result.then(() => {}, () => {});
      else this.noteResult(result);
    }
    return { result, threw };
  }

  newCall() {
    this.values.revokedInCall = false;
    this.values.unstableInCall = false;
  }

  // ---- the engine

  createEngine() {
    this.newCall();
    const arg = { profile: { ...PROFILE }, tsfn: this.values.callback(), SDKVersion: 'fuzz', electronVersion: '30.0.0' };
    const { threw } = this.invoke({
      label: 'addon', className: 'addon', method: 'CreateEngine', fn: this.surface.addonFunctions.CreateEngine,
      receiver: this.addon, args: [arg],
    });
    if (!threw) this.engineUp = true;
  }

  destroyEngine() {
    this.newCall();
    this.invoke({
      label: 'addon', className: 'addon', method: 'DestroyEngine', fn: this.surface.addonFunctions.DestroyEngine,
      receiver: this.addon, args: [],
    });
    this.engineUp = false;
  }

  // ---- calls

  // The receiver of an instance method: mostly the instance, sometimes something else (a
  // plain object, another class's instance, an object inheriting from the instance).
  receiverFor(instance) {
    const { rng } = this;
    if (!rng.chance(0.06)) return instance;
    const others = this.surface.classList().flatMap((c) => c.instances);
    switch (rng.int(5)) {
      case 0: return undefined;
      case 1: return {};
      case 2: return this.addon;
      case 3: return others.length ? rng.pick(others) : instance;
      default: return Object.create(instance);
    }
  }

  callSomething() {
    const { rng, surface, values } = this;
    const classes = surface.classList().filter((c) => c.instances.length);
    const targets = [['addon', Math.sqrt(surface.addonMethods.length)],
      ...classes.map((c) => [c, Math.sqrt(c.methods.length + 1)])];
    const target = rng.weighted(targets.map(([t, w]) => [w, t]));
    this.newCall();
    if (target === 'addon') {
      const method = rng.weighted(surface.addonMethods.map((n) => [methodWeight(n), n]));
      const args = values.argsFor(surface.keysOf('OrvaVantixAddon', method));
      const receiver = rng.chance(0.05) ? values.value(1) : this.addon;
      const { threw } = this.invoke({
        label: 'addon', className: 'addon', method, fn: surface.addonFunctions[method], receiver, instance: this.addon, args,
      });
      if (method === 'DestroyEngine') this.engineUp = false;
      if (method === 'CreateEngine' && !threw) this.engineUp = true;
      return;
    }
    const cls = target;
    const instance = rng.pick(cls.instances);
    if (rng.chance(0.01)) {
      // The class's constructor itself, as script can reach it.
      this.invoke({ label: cls.name, className: cls.name, method: 'new', fn: cls.ctor, args: values.argsFor(null), construct: true });
      return;
    }
    const method = rng.weighted(cls.methods.map((n) => [methodWeight(n), n]));
    const fn = cls.ctor.prototype[method];
    const args = values.argsFor(surface.keysOf(cls.name, method));
    this.invoke({ label: show(instance), className: cls.name, method, fn, receiver: this.receiverFor(instance), instance, args });
  }

  // ---- the simulated engine's side

  // A raw frame from an engine thread into whatever is registered for the target.
  emitFrame() {
    const { rng, values } = this;
    const target = rng.weighted([
      [4, () => ({ channel: rng.chance(0.9) ? rng.int(4) : rng.pick([-1, 4, 2 ** 31 - 1]) })],
      [4, () => ({ streamID: values.hintString('streamID') })],
      [2, () => ({ mediaPlayerIndex: rng.chance(0.9) ? rng.int(4) : rng.pick([-1, 7]) })],
    ])();
    const [width, height] = rng.weighted([
      [60, () => [rng.range(1, 64), rng.range(1, 64)]],
      [25, () => rng.pick([[160, 90], [320, 180], [640, 360], [360, 640]])],
      [10, () => [rng.range(1, 8), rng.range(1, 8)]],
      [1, () => [1920, 1080]],
    ])();
    const frame = { width, height, format: rng.chance(0.9) ? rng.pick([4, 5]) : rng.pick([0, 1, 6, 7]) };
    if (rng.chance(0.3)) frame.flipMode = rng.int(3);
    if (rng.chance(0.2)) frame.stride = width * 4 + rng.pick([0, 4, 60, -4]);
    if (rng.chance(0.15)) frame.data = Buffer.alloc(Math.max(0, rng.pick([0, 1, width * height * 4, width * height * 4 - 1, width * height * 2])));
    this.progress(`sim.frame(${show(target)}, ${show(frame)})`);
    try {
      this.sim.frame(target, frame);
    } catch {
      // the simulated engine refusing a frame is not the addon's business
    }
  }

  simStep() {
    const { rng, sim } = this;
    const kind = rng.weighted([[6, 'emit'], [3, 'reset'], [1, 'setReturn'], [1, 'autoComplete']]);
    try {
      if (kind === 'emit') {
        // Any registered engine callback, with every key zero or empty.
        const names = sim.registered();
        if (!names.length) return;
        const name = rng.pick(names);
        this.progress(`sim.emit(${JSON.stringify(name)}, {})`);
        sim.emit(name, {});
      } else if (kind === 'reset') {
        this.progress('sim.reset()');
        sim.reset();
      } else if (kind === 'setReturn') {
        const fn = rng.pick(this.engineFunctions);
        const value = rng.pick([1, -1, 0, 2 ** 31 - 1, -(2 ** 31)]);
        this.progress(`sim.setReturn(${JSON.stringify(fn)}, ${value})`);
        sim.setReturn(fn, value);
      } else {
        const on = rng.chance(0.6);
        this.progress(`sim.autoComplete(${on})`);
        sim.autoComplete(on);
      }
    } catch {
      // scripted returns the entry point cannot take, payloads it refuses: the simulated
      // engine's own checks
    }
  }

  // ---- worker environments

  // A session of its own in a worker thread, which creates the engine in its environment,
  // and is terminated after a few milliseconds (events still arriving) or left to finish.
  // Runs only while this environment has no engine, and is waited for, so that what this
  // session does next does not depend on how far the worker got.
  async workerStep() {
    const { rng } = this;
    if (this.engineUp) this.destroyEngine();
    const seed = rng.u32();
    const calls = rng.range(5, 80);
    const terminateAfter = rng.chance(0.6) ? rng.int(40) : null;
    this.progress(`worker(seed ${seed}, ${calls} calls${terminateAfter === null ? '' : `, terminated after ${terminateAfter} ms`})`);
    const { Worker } = require('worker_threads');
    const worker = new Worker(path.join(__dirname, 'worker.js'), {
      workerData: { seed, calls, progressFile: this.progressFile, label: `${this.label}worker ${seed}: ` },
    });
    await new Promise((resolve) => {
      const timers = [];
      const end = () => worker.terminate();
      if (terminateAfter !== null) timers.push(setTimeout(end, terminateAfter));
      // A worker whose environment the addon keeps alive would never exit by itself.
      timers.push(setTimeout(end, 5000));
      worker.on('message', (m) => {
        if (m.type === 'finding') {
          // Replayed through this session: its chunk and call, and the worker's own place.
          const { kind, signature, seed: workerSeed, call: workerCall, step: workerStep, type, ...details } = m;
          this.finding(kind, `${signature.slice(kind.length + 1)} (in a worker)`, { ...details, workerSeed, workerCall });
        } else if (m.type === 'done') {
          timers.push(setTimeout(end, 200));
        }
      });
      worker.on('error', (error) => {
        this.finding('uncaught', `in a worker: ${describeError(error)}`, { error: describeError(error), last: this.current });
      });
      worker.on('exit', () => {
        for (const t of timers) clearTimeout(t);
        resolve();
      });
    });
  }

  // ---- the session

  async run(calls) {
    const { rng } = this;
    while (this.calls < calls) {
      this.step++;
      const r = rng.float();
      if (r < 0.003) {
        this.progress('gc()');
        global.gc();
      } else if (r < 0.033) {
        this.emitFrame();
      } else if (r < 0.041) {
        this.simStep();
      } else if (r < 0.0415 && this.workers) {
        await this.workerStep();
      } else if (!this.engineUp && r < 0.11) {
        this.createEngine();
      } else {
        this.callSomething();
      }
      // Let queued events, frames and promise settlements reach script now and then, and
      // sometimes long enough for the engine's own preview and playback frames.
      if (this.step % 16 === 0) await new Promise(setImmediate);
      if (this.step % 997 === 0) await sleep(rng.chance(0.2) ? rng.range(30, 120) : rng.int(5));
    }
  }

  // Takes the engine down at the end, as a last call.
  finish() {
    this.progress('addon.DestroyEngine() /* end of the session */');
    try {
      this.surface.addonFunctions.DestroyEngine.call(this.addon);
    } catch (error) {
      this.finding('exception', `addon.DestroyEngine: ${describeError(error)}`, { error: describeError(error), last: this.current });
    }
    this.engineUp = false;
  }
}

module.exports = { Session, sleep };
