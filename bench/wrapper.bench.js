'use strict';
// Engine wrapper method calls: what one script call of a wrapper method costs, as a ratio to
// the bare Node-API call measured in the same run. Prints figures; asserts nothing. Run
// through bench/run.js (npm run bench) or alone:  node bench/wrapper.bench.js
//
// Cases (debug assistant off, as after CreateEngine):
//   setPlayVolume   a plain method: two keys checked and read, one engine call
//   loginRoom       a method with nested objects: three checks, nine keys, one engine call
// each timed on a wrapper without an engine (the wrapper's own work: report, checks, reads,
// engine lookup) and, for setPlayVolume, with the simulated engine (adds the engine call,
// which the simulated engine journals). Baselines from bench/native/wrapper_bench_baseline.c,
// built here with cc: empty(arg), a plain Node-API function taking one object, and
// Wrapped.method(arg), the same as an instance method that unwraps its object.
//
// Method: ROUNDS rounds; in each, every case and the baseline run CALLS calls in a loop,
// baseline first; the round's ratio is case time / baseline time. Reported: medians.
//
// Also: a 1080p publish snapshot end to end (takePublishStreamSnapshot until its promise
// resolves: the simulated engine's picture, JPEG encoding and Base64 on the engine thread,
// delivery). The encoding alone is the "image" suite of orva_bench (bench/README.md).

const path = require('path');
const paths = require('../scripts/paths');
const { loadNativeHelper } = require('./native-helper');

const CALLS = 200000;
const ROUNDS = 7;
const SNAPSHOTS = 11;

const buildBaseline = () => loadNativeHelper('wrapper_bench_baseline', []);

const now = () => process.hrtime.bigint();
const median = (xs) => [...xs].sort((a, b) => a - b)[Math.floor(xs.length / 2)];

// Nanoseconds per call of call(arg) over CALLS calls.
function perCall(call, arg) {
  const t0 = now();
  for (let i = 0; i < CALLS; i++) call(arg);
  return Number(now() - t0) / CALLS;
}

async function main() {
  const baseline = buildBaseline();
  const addon = require(paths.root);
  const sim = require(path.join(paths.root, 'engine', 'sim'));
  const profile = { appID: 1, scenario: 0 };
  const create = () => addon.CreateEngine({ profile, tsfn: () => {}, SDKVersion: 'bench', electronVersion: 'bench' });

  const volumeArg = { streamID: 'bench-stream', volume: 50 };
  const loginArg = {
    roomID: 'bench-room',
    user: { userID: 'bench-user', userName: 'Bench User' },
    config: { maxMemberCount: 0, isUserStatusNotify: false, token: 'token' },
  };

  const detached = create();
  addon.DestroyEngine();  // a wrapper without an engine: the wrapper's own work only
  const engine = create();
  const wrapped = new baseline.Wrapped();

  const cases = [
    ['Wrapped.method (unwrap)', (a) => wrapped.method(a), volumeArg],
    ['setPlayVolume, no engine', (a) => detached.setPlayVolume(a), volumeArg],
    ['loginRoom, no engine', (a) => detached.loginRoom(a), loginArg],
    ['setPlayVolume, simulated engine', (a) => engine.setPlayVolume(a), volumeArg],
  ];
  const empty = (a) => baseline.empty(a);

  for (const [, call, arg] of cases) perCall(call, arg);  // warm-up
  perCall(empty, volumeArg);
  const ns = cases.map(() => []);
  const ratios = cases.map(() => []);
  const baseNs = [];
  for (let r = 0; r < ROUNDS; r++) {
    sim.reset();  // the simulated engine journals every call; keep its journal short
    const base = perCall(empty, volumeArg);
    baseNs.push(base);
    cases.forEach(([, call, arg], i) => {
      const t = perCall(call, arg);
      ns[i].push(t);
      ratios[i].push(t / base);
    });
  }
  sim.reset();

  // Every wrapper method is an instance method, so its dispatch includes the unwrap: the
  // second column compares with that floor.
  const unwrapRatios = ratios[0];
  console.log(`== wrapper: one method call (${CALLS.toLocaleString('en')} calls x ${ROUNDS} rounds, medians)`);
  console.log(`${'case'.padEnd(34)} ${'ns/call'.padStart(8)}   ratio to empty(arg)   ratio to Wrapped.method`);
  console.log(`${'empty(arg) (baseline)'.padEnd(34)} ${median(baseNs).toFixed(0).padStart(8)}   1.00x`);
  cases.forEach(([name], i) => {
    const toUnwrap = median(ratios[i].map((r, k) => r / unwrapRatios[k]));
    console.log(`${name.padEnd(34)} ${median(ns[i]).toFixed(0).padStart(8)}   ` +
      `${`${median(ratios[i]).toFixed(2)}x`.padEnd(21)} ${toUnwrap.toFixed(2)}x`);
  });

  engine.setVideoConfig({ config: 5, channel: 0 });  // 1080p preset: 1920 x 1080 snapshots
  const times = [];
  let size = 0;
  for (let i = 0; i < SNAPSHOTS + 1; i++) {
    const t0 = now();
    const { errorCode, image } = await engine.takePublishStreamSnapshot({ channel: 0 });
    if (errorCode !== 0) throw new Error(`snapshot failed with ${errorCode}`);
    if (i > 0) times.push(Number(now() - t0) / 1e6);  // the first one warms up
    size = image.length;
  }
  console.log(`== wrapper: 1080p publish snapshot, end to end (median of ${SNAPSHOTS})`);
  console.log(`takePublishStreamSnapshot 1920x1080  ${median(times).toFixed(1)} ms  (${(size / 1024).toFixed(0)} KiB of Base64)`);
  console.log('  encoding alone: orva_bench image, line "snapshot 1920x1080 JPEG"');

  addon.DestroyEngine();
}

module.exports = { main };

if (require.main === module) {
  main().catch((e) => {
    console.error(e);
    process.exitCode = 1;
  });
}
