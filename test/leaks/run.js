#!/usr/bin/env node
'use strict';
// Leak checks of the release build, each measured in a child process of its own:
//
//   cycles    RSS after 10,000 create/destroy cycles, against the RSS after 2,000 warm-up
//             cycles: within CYCLES_BOUNDS (all of it, the part outside V8's heap, and
//             what V8's heap and external memory keep after full collections).
//   events    RSS after 1,000,000 engine events delivered to script, drained and
//             collected, against the RSS after a 200,000-event warm-up: at most EVENTS_BOUND
//             above it.
//   memcheck  valgrind --leak-check=full on 40 cycles (events, frames, a capture buffer):
//             no "definitely lost" block whose stack passes through our binaries.
//   held      the same under valgrind after 10 and after 40 cycles, ended by process.exit()
//             so that the environment's cleanup does not run: what our code allocated and
//             still holds must not grow with the cycles.
//
//   node test/leaks/run.js [--only cycles,events,memcheck,held] [--jobs N]
//
// Children run with one malloc arena (MALLOC_ARENA_MAX=1): with an arena per thread the
// size creeps by MBs as each arena fragments in its own way, which would hide a small leak.
// Ends with "leaks: N passed, M failed"; exits 1 on any failure.

const fs = require('fs');
const os = require('os');
const path = require('path');
const { spawn, spawnSync } = require('child_process');
const vg = require('./valgrind');

const MB = 1024 * 1024;
const WARM_UP_CYCLES = 2000;
const CYCLES = 10000;
// Bounds on the growth over 10,000 cycles. RSS moves in steps of MBs when V8 grows its heap
// (measured: +2.6 to +4.7 MB in all, of which -1.1 to +2.2 MB outside V8's heap), so the
// tight bound is on the RSS outside V8's heap, where the addon's own allocations live: 3 MB
// is what a leak of 300 bytes a cycle adds. What script keeps alive shows in V8's used heap
// and in external memory (buffers) after full collections: 1 MB each, 100 bytes a cycle.
const CYCLES_BOUNDS = { rss: 8 * MB, native: 3 * MB, heapUsed: 1 * MB, external: 1 * MB };
const WARM_UP_EVENTS = 200000;
const EVENTS = 1000000;
// Measured: +0.5 MB after 1,000,000 events. Keeping one allocation (32 bytes at least)
// for every eighth event would add 4 MB.
const EVENTS_BOUND = 4 * MB;
const MEMCHECK_CYCLES = 40;
const HELD_CYCLES = [10, 40];
const VALGRIND_ARGS = [
  '--leak-check=full', '--show-leak-kinds=all', '--num-callers=40',
  // node compiles code at run time: memcheck must notice code written to the heap.
  '--smc-check=all-non-file',
  '--xml=yes',
];
const SANITIZED = Boolean(process.env.ORVA_SANITIZER);

const here = __dirname;
const mb = (bytes) => `${(bytes / MB).toFixed(2)} MB`;

function parseArgs(argv) {
  const opts = { only: null, jobs: 2 };
  for (let i = 0; i < argv.length; i++) {
    if (argv[i] === '--only' && argv[i + 1]) opts.only = argv[++i].split(',');
    else if (argv[i] === '--jobs' && Number(argv[i + 1]) > 0) opts.jobs = Number(argv[++i]);
    else {
      console.error('usage: run.js [--only cycles,events,memcheck,held] [--jobs N]');
      process.exit(2);
    }
  }
  return opts;
}

// Runs one child to its end: { status, signal, stdout, stderr, seconds, timedOut }.
function run(command, args, { timeoutMs, env = {} }) {
  return new Promise((resolve) => {
    const start = Date.now();
    const child = spawn(command, args, {
      cwd: path.resolve(here, '..', '..'),
      env: { ...process.env, MALLOC_ARENA_MAX: '1', ...env },
      stdio: ['ignore', 'pipe', 'pipe'],
    });
    let stdout = '';
    let stderr = '';
    let timedOut = false;
    child.stdout.setEncoding('utf8').on('data', (d) => { stdout += d; });
    child.stderr.setEncoding('utf8').on('data', (d) => { stderr = (stderr + d).slice(-64 * 1024); });
    const timer = setTimeout(() => { timedOut = true; child.kill('SIGKILL'); }, timeoutMs);
    child.on('close', (status, signal) => {
      clearTimeout(timer);
      resolve({ status, signal, stdout, stderr, timedOut, seconds: (Date.now() - start) / 1000 });
    });
  });
}

// Throws unless the child ended well; returns the JSON of its "RSS {...}" line.
function figuresOf(name, r) {
  const how = r.timedOut ? 'timed out' : r.signal ? `was killed by ${r.signal}` : `exited ${r.status}`;
  if (r.timedOut || r.signal || r.status !== 0) {
    throw new Error(`${name}: the child ${how}\n${r.stderr.trim().split('\n').slice(-10).join('\n')}`);
  }
  const m = /^RSS (.*)$/m.exec(r.stdout);
  if (!m) throw new Error(`${name}: no RSS line in the child's output`);
  return JSON.parse(m[1]);
}

function valgrindRun(tag, cycles, hardExit) {
  const xml = path.join(os.tmpdir(), `orva-leaks-${process.pid}-${tag}.xml`);
  const args = [...VALGRIND_ARGS, `--xml-file=${xml}`, process.execPath,
    path.join(here, 'valgrind-child.js'), String(cycles), ...(hardExit ? ['exit'] : [])];
  return run('valgrind', args, { timeoutMs: 900000 }).then((r) => {
    let errors = null;
    if (fs.existsSync(xml)) {
      errors = vg.parseErrors(fs.readFileSync(xml, 'utf8'));
      fs.unlinkSync(xml);
    }
    return { ...r, errors, cycles, command: `valgrind ${args.join(' ').replace(xml, '<xml>')}` };
  });
}

function valgrindEnded(name, r) {
  if (r.timedOut || r.signal || r.status !== 0 || !/^done /m.test(r.stdout) || !r.errors) {
    const how = r.timedOut ? 'timed out' : r.signal ? `was killed by ${r.signal}` : `exited ${r.status}`;
    throw new Error(`${name}: the child under valgrind ${how}\n  ${r.command}\n` +
      `${r.stderr.trim().split('\n').slice(-10).join('\n')}`);
  }
}

// Each check: its children, as functions that start one (run two at a time across all
// checks), then a judge of their results that prints the figures and throws on failure.
const CHECKS = {
  cycles: {
    jobs: [() => run(process.execPath,
      [path.join(here, 'cycles-rss.js'), String(WARM_UP_CYCLES), String(CYCLES), '5'], { timeoutMs: 300000 })],
    judge([r]) {
      const f = figuresOf('cycles', r);
      const end = f.checkpoints[f.checkpoints.length - 1];
      const growthOf = (c) => ({
        rss: c.rss - f.start.rss,
        native: (c.rss - c.heapTotal) - (f.start.rss - f.start.heapTotal),
        heapUsed: c.heapUsed - f.start.heapUsed,
        external: c.external - f.start.external,
      });
      const growth = growthOf(end);
      const signed = (bytes) => `${bytes >= 0 ? '+' : ''}${mb(bytes)}`;
      console.log(`  after ${f.warmUp} warm-up cycles: RSS ${mb(f.start.rss)} (V8 heap ${mb(f.start.heapTotal)}); ` +
        `after ${end.cycles} more: RSS ${mb(end.rss)} (V8 heap ${mb(end.heapTotal)}) (${r.seconds.toFixed(1)} s)`);
      for (const [what, label] of [['rss', 'RSS'], ['native', 'RSS outside V8\'s heap'],
        ['heapUsed', 'V8 heap used'], ['external', 'external memory']]) {
        console.log(`  ${label}: ${signed(growth[what])} (${Math.round(growth[what] / end.cycles)} bytes a cycle), ` +
          `bound +${mb(CYCLES_BOUNDS[what])}`);
      }
      console.log(`  RSS along the way: ${f.checkpoints.map((c) => `${c.cycles}: ${signed(growthOf(c).rss)}`).join(', ')}`);
      const over = Object.keys(CYCLES_BOUNDS).filter((what) => growth[what] > CYCLES_BOUNDS[what]);
      if (over.length) throw new Error(`over ${end.cycles} cycles: ${over.map((w) => `${w} ${signed(growth[w])}`).join(', ')}`);
    },
  },

  events: {
    jobs: [() => run(process.execPath,
      [path.join(here, 'events-rss.js'), String(WARM_UP_EVENTS), String(EVENTS)], { timeoutMs: 300000 })],
    judge([r]) {
      const f = figuresOf('events', r);
      const growth = f.end.rss - f.start.rss;
      console.log(`  RSS after ${f.warmUp.toLocaleString('en-US')} warm-up events ${mb(f.start.rss)}, after ` +
        `${f.delivered.toLocaleString('en-US')} more (delivered in ${f.seconds.toFixed(1)} s) ${mb(f.end.rss)}: ` +
        `${growth >= 0 ? '+' : ''}${mb(growth)}, bound +${mb(EVENTS_BOUND)}`);
      if (f.delivered !== f.events) throw new Error(`${f.delivered} of ${f.events} events delivered`);
      if (growth > EVENTS_BOUND) throw new Error(`RSS grew by ${mb(growth)} over ${f.events} events (bound ${mb(EVENTS_BOUND)})`);
    },
  },

  memcheck: {
    jobs: [() => valgrindRun('memcheck', MEMCHECK_CYCLES, false)],
    judge([r]) {
      valgrindEnded('memcheck', r);
      const summary = vg.leakSummary(r.errors);
      console.log(`  ${MEMCHECK_CYCLES} cycles under memcheck (${r.seconds.toFixed(0)} s). LEAK SUMMARY: ${vg.formatSummary(summary)}`);
      const ours = r.errors.filter(vg.passesThroughProject);
      const oursSummary = vg.leakSummary(ours);
      console.log(`  through our binaries: ${vg.formatSummary(oursSummary)}`);
      const others = r.errors.filter((e) => !e.kind.startsWith('Leak_'));
      const ourOthers = others.filter(vg.passesThroughProject);
      console.log(`  other memcheck errors: ${others.length} (${others.map((e) => e.kind).join(', ') || 'none'}), ` +
        `${ourOthers.length} through our binaries`);
      const lost = ours.filter((e) => e.kind === 'Leak_DefinitelyLost');
      for (const e of [...lost, ...ourOthers]) {
        console.log(`  ${e.kind}: ${e.what}`);
        for (const line of vg.describeStack(e)) console.log(`      ${line}`);
      }
      if (lost.length || ourOthers.length) {
        throw new Error(`${oursSummary['definitely lost'].bytes} bytes definitely lost and ` +
          `${ourOthers.length} other errors through our binaries`);
      }
    },
  },

  held: {
    jobs: HELD_CYCLES.map((n) => () => valgrindRun(`held-${n}`, n, true)),
    judge(results) {
      results.forEach((r) => valgrindEnded('held', r));
      const [few, many] = results.map((r) => vg.heldByProject(r.errors));
      const extra = HELD_CYCLES[1] - HELD_CYCLES[0];
      const total = (held) => [...held.values()].reduce((a, e) => a + e.bytes, 0);
      console.log(`  held by allocations of our code at process.exit(): ${total(few).toLocaleString('en-US')} bytes after ` +
        `${HELD_CYCLES[0]} cycles, ${total(many).toLocaleString('en-US')} after ${HELD_CYCLES[1]}`);
      // One block more per cycle on one allocation path is something each cycle leaves.
      const growing = [...many].filter(([key, e]) => e.blocks - ((few.get(key) || {}).blocks || 0) >= extra);
      for (const [key, e] of growing) {
        const before = few.get(key) || { bytes: 0, blocks: 0 };
        console.log(`  grows with the cycles: ${before.blocks} blocks (${before.bytes} bytes) -> ${e.blocks} blocks ` +
          `(${e.bytes} bytes), ${((e.bytes - before.bytes) / extra).toFixed(0)} bytes a cycle, allocated at`);
        for (const line of vg.describeStack(e.example)) console.log(`      ${line}`);
      }
      if (growing.length) throw new Error(`${growing.length} allocation paths of our code keep a block per cycle`);
    },
  },
};

async function main() {
  const opts = parseArgs(process.argv.slice(2));
  const names = opts.only || Object.keys(CHECKS);
  for (const name of names) {
    if (!CHECKS[name]) {
      console.error(`leaks: unknown check ${name}`);
      process.exit(2);
    }
  }
  const skipped = new Map();
  if (SANITIZED) {
    // The sanitizers' allocators keep freed memory on purpose and cannot run under valgrind.
    for (const name of names) skipped.set(name, `not under ${process.env.ORVA_SANITIZER}`);
  } else if (spawnSync('valgrind', ['--version']).status !== 0) {
    for (const name of ['memcheck', 'held']) skipped.set(name, 'valgrind is not installed');
  }
  const active = names.filter((n) => !skipped.has(n));
  for (const [name, why] of skipped) console.log(`${name}: skipped (${why})`);

  // The valgrind runs are the longest: they go first.
  const order = ['memcheck', 'held', 'cycles', 'events'].filter((n) => active.includes(n));
  const results = Object.fromEntries(order.map((n) => [n, []]));
  const jobs = order.flatMap((name) => CHECKS[name].jobs.map((start, index) => ({ name, index, start })));
  const started = Date.now();
  let next = 0;
  async function lane() {
    while (next < jobs.length) {
      const { name, index, start } = jobs[next++];
      results[name][index] = await start();
    }
  }
  await Promise.all(Array.from({ length: Math.min(opts.jobs, jobs.length) }, lane));

  let passed = 0;
  let failed = 0;
  for (const name of order) {
    console.log(`${name}:`);
    try {
      CHECKS[name].judge(results[name]);
      console.log(`${name}: ok`);
      passed++;
    } catch (e) {
      console.log(`${name}: FAILED: ${e.message}`);
      failed++;
    }
  }
  console.log(`leaks: wall time ${((Date.now() - started) / 1000).toFixed(0)} s`);
  console.log(`leaks: ${passed} passed, ${failed} failed`);
  process.exitCode = failed ? 1 : 0;
}

main().catch((e) => {
  console.error(e);
  process.exit(1);
});
