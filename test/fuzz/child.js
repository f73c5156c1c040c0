'use strict';
// One chunk of the fuzzer, in a process of its own: `--calls N` calls into the addon's
// script surface for seed `--seed S`, with frames, engine events, garbage collections and
// engine restarts mixed in. Started by run.js (node --expose-gc child.js ...).
//
// Before each step its description is written over --progress, so that a crash or a hang
// leaves the culprit behind; findings (first occurrence of each kind) and the final tally
// are appended to --out as JSON lines. stdout belongs to the addon's trace lines.

const fs = require('fs');
const path = require('path');
const { Rng } = require('./prng');
const { harvest, fixtureKeys, Surface } = require('./surface');
const { Values, show, tag } = require('./values');
const { classify, describeError } = require('./oracle');

const root = path.resolve(__dirname, '..', '..');

const opts = { seed: 1, calls: 1000, progress: null, out: null, trace: false };
for (let i = 2; i < process.argv.length; i++) {
  const a = process.argv[i];
  if (a === '--seed') opts.seed = Number(process.argv[++i]) >>> 0;
  else if (a === '--calls') opts.calls = Number(process.argv[++i]);
  else if (a === '--progress') opts.progress = process.argv[++i];
  else if (a === '--out') opts.out = process.argv[++i];
  else if (a === '--trace') opts.trace = true;
  else throw new Error(`child: unknown option ${a}`);
}

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

const addon = load(root);
const sim = load(path.join(root, 'engine', 'sim'));
const { ENGINE_FUNCTIONS } = require(path.join(root, 'test', 'fixtures', 'engine-names.js'));

const info = harvest(path.join(root, 'src'));
const keyPool = [...new Set([...info.all.keys(), ...fixtureKeys([path.join(root, 'test', 'fixtures'), path.join(root, 'test', 'js')])])];
const rng = new Rng(opts.seed);
const surface = new Surface(addon, info);
const values = new Values(rng, surface, { keyPool });
tag(addon, 'addon');

// ---- reporting ----------------------------------------------------------------------------

const progressFd = opts.progress ? fs.openSync(opts.progress, 'w') : null;
let step = 0;
let calls = 0;
let failedCalls = 0;
let current = '';
const counts = new Map();  // finding signature → occurrences
const coverage = {};       // class → method → calls

function emitLine(record) {
  if (opts.out) fs.appendFileSync(opts.out, `${JSON.stringify(record)}\n`);
}

function progress(text) {
  current = text.length > 4000 ? `${text.slice(0, 4000)} /* … */` : text;
  if (progressFd !== null) {
    const line = `${step}\t${calls}\t${current}\n`;
    fs.writeSync(progressFd, line, 0);
    fs.ftruncateSync(progressFd, Buffer.byteLength(line));
  }
  if (opts.trace) process.stderr.write(`[${calls}] ${current}\n`);
}

const findingMethods = new Map();  // finding signature → Set(methods)

function finding(kind, signature, details) {
  const key = `${kind}|${signature}`;
  const n = (counts.get(key) || 0) + 1;
  counts.set(key, n);
  if (details.method) {
    if (!findingMethods.has(key)) findingMethods.set(key, new Set());
    findingMethods.get(key).add(details.method);
  }
  if (n === 1) emitLine({ type: 'finding', kind, signature: key, seed: opts.seed, call: calls, step, ...details });
}

// Errors thrown outside any call: by our own event callbacks (markers) or by the addon on
// the event path.
process.on('uncaughtException', (error) => {
  if (classify(error) === 'marker') return;
  finding('uncaught', describeError(error), { error: describeError(error), stack: String(error && error.stack), last: current });
});
// Promise methods reject as their documented failure path; nothing to check there.
process.on('unhandledRejection', () => {});

// ---- one call ---------------------------------------------------------------------------

let instanceCount = 0;
const tagged = new WeakSet();

// A script object a call handed back joins the targets, printed by class and number.
function noteResult(result) {
  if (surface.note(result) && !tagged.has(result)) {
    tagged.add(result);
    tag(result, `<${Object.getPrototypeOf(result).constructor.name} #${++instanceCount}>`);
  }
}

// Calls fn on receiver (or constructs it) and applies the oracle: { result, threw }.
function invoke({ label, className, method, fn, receiver, args, instance = receiver, construct = false }) {
  const receiverText = receiver === instance ? '' : ` /* called on ${show(receiver)} */`;
  progress(`${construct ? 'new ' : ''}${label}${construct ? '' : `.${method}`}(${args.map((a) => show(a)).join(', ')})${receiverText}`);
  const touchedRevoked = values.revokedInCall;
  const unstable = values.unstableInCall;
  let result;
  let threw = false;
  try {
    result = construct ? Reflect.construct(fn, args) : Reflect.apply(fn, receiver, args);
  } catch (error) {
    threw = true;
    if (classify(error, { touchedRevoked, foreignReceiver: receiver !== instance }) === null) {
      failedCalls++;
      // Values that read differently each time make one kind per error text, whatever the
      // method: the addon checked one value and read another.
      const signature = unstable
        ? `${describeError(error)} (argument values change between reads)`
        : `${className}.${method}: ${describeError(error)}`;
      finding('exception', signature, {
        method: `${className}.${method}`, error: describeError(error), last: current,
      });
    }
  }
  calls++;
  const cls = coverage[className] || (coverage[className] = {});
  cls[method] = (cls[method] || 0) + 1;
  if (!threw) {
    if (result instanceof Promise) result.then(() => {}, () => {});
    else noteResult(result);
  }
  return { result, threw };
}

// ---- the engine -------------------------------------------------------------------------

let engineUp = false;
const PROFILE = { appID: 1234567, appSign: 'fuzz-sign', scenario: 0 };

function createEngine() {
  const arg = { profile: { ...PROFILE }, tsfn: values.callback(), SDKVersion: 'fuzz', electronVersion: '30.0.0' };
  values.revokedInCall = false;
  values.unstableInCall = false;
  const { threw } = invoke({ label: 'addon', className: 'addon', method: 'CreateEngine', fn: surface.addonFunctions.CreateEngine, receiver: addon, args: [arg] });
  if (!threw) engineUp = true;
}

// ---- the steps ----------------------------------------------------------------------------

// The receiver of an instance method: mostly the instance, sometimes something else (a
// plain object, another class's instance, an object inheriting from the instance).
function receiverFor(instance) {
  if (!rng.chance(0.06)) return instance;
  const others = surface.classList().flatMap((c) => c.instances);
  switch (rng.int(5)) {
    case 0: return undefined;
    case 1: return {};
    case 2: return addon;
    case 3: return others.length ? rng.pick(others) : instance;
    default: return Object.create(instance);
  }
}

// Teardown methods (DestroyEngine, destroy*, ...) are picked a tenth as often as others:
// calls should mostly run with the objects alive.
const methodWeight = (name) => (/^destroy/i.test(name) ? 0.1 : 1);

function pickMethod(names) {
  return rng.weighted(names.map((n) => [methodWeight(n), n]));
}

function callSomething() {
  const classes = surface.classList().filter((c) => c.instances.length);
  const targets = [['addon', Math.sqrt(surface.addonMethods.length)],
    ...classes.map((c) => [c, Math.sqrt(c.methods.length + 1)])];
  const target = rng.weighted(targets.map(([t, w]) => [w, t]));
  values.revokedInCall = false;
  values.unstableInCall = false;
  if (target === 'addon') {
    const method = pickMethod(surface.addonMethods);
    const args = values.argsFor(surface.keysOf('OrvaVantixAddon', method));
    const receiver = rng.chance(0.05) ? values.value(1) : addon;
    const { threw } = invoke({ label: 'addon', className: 'addon', method, fn: surface.addonFunctions[method], receiver, instance: addon, args });
    if (method === 'DestroyEngine') engineUp = false;
    if (method === 'CreateEngine' && !threw) engineUp = true;
    return;
  }
  const cls = target;
  const instance = rng.pick(cls.instances);
  if (rng.chance(0.01)) {
    // The class's constructor itself, as script can reach it.
    invoke({ label: cls.name, className: cls.name, method: 'new', fn: cls.ctor, args: values.argsFor(null), construct: true });
    return;
  }
  const method = rng.pick(cls.methods);
  const fn = Object.getPrototypeOf(instance)[method] || cls.ctor.prototype[method];
  const args = values.argsFor(surface.keysOf(cls.name, method));
  invoke({ label: show(instance), className: cls.name, method, fn, receiver: receiverFor(instance), instance, args });
}

// A raw frame from an engine thread into whatever is registered for the target.
function emitFrame() {
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
  if (rng.chance(0.15)) frame.data = Buffer.alloc(rng.pick([0, 1, width * height * 4, width * height * 4 - 1, width * height * 2]));
  progress(`sim.frame(${show(target)}, ${show(frame)})`);
  try {
    sim.frame(target, frame);
  } catch {
    // the simulated engine refusing a frame is not the addon's business
  }
}

const simRegistered = () => { try { return sim.registered(); } catch { return []; } };

function simStep() {
  const kind = rng.weighted([[6, 'emit'], [3, 'reset'], [1, 'setReturn'], [1, 'autoComplete']]);
  try {
    if (kind === 'emit') {
      const names = simRegistered();
      if (!names.length) return;
      const name = rng.pick(names);
      progress(`sim.emit(${JSON.stringify(name)}, {})`);
      sim.emit(name, {});
    } else if (kind === 'reset') {
      progress('sim.reset()');
      sim.reset();
    } else if (kind === 'setReturn') {
      const fn = rng.pick(ENGINE_FUNCTIONS);
      const value = rng.pick([1, -1, 0, 2 ** 31 - 1, -(2 ** 31)]);
      progress(`sim.setReturn(${JSON.stringify(fn)}, ${value})`);
      sim.setReturn(fn, value);
    } else {
      const on = rng.chance(0.6);
      progress(`sim.autoComplete(${on})`);
      sim.autoComplete(on);
    }
  } catch {
    // scripted returns the entry point cannot take, payloads it refuses: the simulated
    // engine's own checks
  }
}

const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

async function main() {
  while (calls < opts.calls) {
    step++;
    const r = rng.float();
    if (r < 0.002) {
      progress('gc()');
      global.gc();
    } else if (r < 0.022) {
      emitFrame();
    } else if (r < 0.03) {
      simStep();
    } else if (!engineUp && r < 0.1) {
      createEngine();
    } else {
      callSomething();
    }
    // Let queued events, frames and promise settlements reach script now and then.
    if (step % 32 === 0) await new Promise(setImmediate);
    if (step % 997 === 0) await sleep(rng.int(5));
  }
  progress('addon.DestroyEngine() /* end of chunk */');
  try {
    addon.DestroyEngine();
  } catch (error) {
    finding('exception', `addon.DestroyEngine: ${describeError(error)}`, { error: describeError(error), last: current });
  }
  await sleep(20);
  emitLine({
    type: 'done', seed: opts.seed, calls, failedCalls, steps: step,
    counts: Object.fromEntries(counts), coverage,
    methods: Object.fromEntries([...findingMethods].map(([k, v]) => [k, [...v]])),
  });
  progress('/* chunk done: waiting for the process to exit */');
  // Nothing of ours keeps the event loop alive now. If it still runs after the grace
  // period, something the addon made does (a thread-safe function never released).
  setTimeout(() => {
    emitLine({
      type: 'finding', kind: 'exit', signature: 'exit|the process does not exit: the event loop is kept alive after DestroyEngine',
      seed: opts.seed, call: calls, step, last: 'end of chunk', error: 'still running 1500 ms after the last call and DestroyEngine',
    });
    process.exit(0);
  }, 1500).unref();
}

main().catch((error) => {
  emitLine({ type: 'internal', error: String(error && error.stack), last: current });
  process.exit(70);
});

