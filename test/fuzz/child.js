'use strict';
// One chunk of the fuzzer, in a process of its own: `--calls N` calls into the addon's
// script surface for seed `--seed S` (see session.js). Started by run.js with node's
// --expose-gc.
//
// Before each step its description is written over --progress, so that a crash or a hang
// leaves the culprit behind; findings (first occurrence of each kind) and the final tally
// are appended to --out as JSON lines. stdout belongs to the addon's trace lines.

const fs = require('fs');
const { Session, sleep } = require('./session');
const { classifyUncaught, describeError } = require('./oracle');

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

function emitLine(record) {
  if (opts.out) fs.appendFileSync(opts.out, `${JSON.stringify(record)}\n`);
}

if (opts.progress) fs.writeFileSync(opts.progress, '');
const session = new Session({
  seed: opts.seed, progressFile: opts.progress, trace: opts.trace, report: emitLine, workers: true,
});

// Errors thrown outside any call: by our own event callbacks (markers) or by the addon on
// the event path.
process.on('uncaughtException', (error) => {
  if (classifyUncaught(error) !== null) return;
  session.finding('uncaught', describeError(error), { error: describeError(error), stack: String(error && error.stack), last: session.current });
});
// Promise methods reject as their documented failure path; nothing to check there.
process.on('unhandledRejection', () => {});

(async () => {
  await session.run(opts.calls);
  if (session.rng.chance(0.3)) {
    // Some chunks end the way many scripts do: exit with the engine up and its frames and
    // events in flight, leaving the teardown to the environment's cleanup.
    emitLine({ type: 'done', ...session.summary() });
    session.progress('process.exit(0) /* with the engine as it is */');
    process.exit(0);
  }
  session.finish();
  await sleep(20);
  emitLine({ type: 'done', ...session.summary() });
  session.progress('/* chunk done: waiting for the process to exit */');
  // Nothing of ours keeps the event loop alive now. If it still runs after the grace
  // period, something the addon made does (a thread-safe function never released).
  setTimeout(() => {
    emitLine({
      type: 'finding', kind: 'exit', signature: 'exit|the process does not exit: the event loop is kept alive after DestroyEngine',
      seed: opts.seed, call: session.calls, step: session.step, last: 'end of chunk',
      error: 'still running 1500 ms after the last call and DestroyEngine',
    });
    process.exit(0);
  }, 1500).unref();
})().catch((error) => {
  emitLine({ type: 'internal', error: String(error && error.stack), last: session.current });
  process.exit(70);
});
