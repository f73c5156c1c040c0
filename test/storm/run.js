#!/usr/bin/env node
'use strict';
// Teardown storms: runs every scenario of test/storm/scenarios.js many times, each run in a
// child process of its own (test/storm/child.js), `--jobs` at a time.
//
//   node test/storm/run.js [--runs N] [--runs <scenario>=N] [--jobs N] [--only a,b]
//                          [--timeout-scale X]
//   scripts/run-sanitized.sh tsan node test/storm/run.js --runs 20
//
// --runs N (default 100) runs each scenario N times, except that a scenario with a `share`
// runs that fraction of N; --runs <scenario>=N sets one scenario's count.
// A child passes when it exits by itself with its scenario's exit code, printed its closing
// line, and wrote no crash or sanitizer report. Signals, aborts, other exit codes and
// timeouts fail, reported with the scenario, the iteration, the child's standard error tail
// and the command that replays it. Ends with "storm: N passed, M failed"; exits 1 on any
// failure.

const path = require('path');
const { spawn } = require('child_process');
const { scenarios } = require('./scenarios');
const { judge, tail, reasonKind } = require('./verdict');

const CHILD = path.join(__dirname, 'child.js');
const SANITIZED = Boolean(process.env.ORVA_SANITIZER);
const OUTPUT_LIMIT = 256 * 1024;  // of each stream, kept from the end
const SHOWN_PER_KIND = 3;         // failures printed in full per kind of reason

function usage(message) {
  console.error(`storm: ${message}`);
  console.error('usage: run.js [--runs N] [--runs <scenario>=N] [--jobs N] [--only a,b] [--timeout-scale X]');
  process.exit(2);
}

function parseArgs(argv) {
  const opts = { runs: 100, perScenario: {}, jobs: 2, only: null, timeoutScale: SANITIZED ? 10 : 1 };
  for (let i = 0; i < argv.length; i++) {
    const arg = argv[i];
    const value = () => {
      if (i + 1 >= argv.length) usage(`${arg} needs a value`);
      return argv[++i];
    };
    const positive = (text) => {
      const n = Number(text);
      if (!(n > 0) || !Number.isFinite(n)) usage(`${arg}: not a positive number: ${text}`);
      return n;
    };
    if (arg === '--runs') {
      const v = value();
      const m = /^([\w-]+)=(\d+)$/.exec(v);
      if (m) {
        if (!scenarios[m[1]]) usage(`unknown scenario ${m[1]}`);
        opts.perScenario[m[1]] = Number(m[2]);
      } else {
        opts.runs = Math.round(positive(v));
      }
    } else if (arg === '--jobs') {
      opts.jobs = Math.round(positive(value()));
    } else if (arg === '--only') {
      opts.only = value().split(',').filter(Boolean);
      for (const name of opts.only) if (!scenarios[name]) usage(`unknown scenario ${name}`);
    } else if (arg === '--timeout-scale') {
      opts.timeoutScale = positive(value());
    } else {
      usage(`unknown argument ${arg}`);
    }
  }
  return opts;
}

function keepTail(text, chunk) {
  const joined = text + chunk;
  return joined.length > OUTPUT_LIMIT ? joined.slice(-OUTPUT_LIMIT) : joined;
}

function runChild(job) {
  return new Promise((resolve) => {
    const start = process.hrtime.bigint();
    const child = spawn(process.execPath, [CHILD, job.scenario, String(job.iteration)], {
      stdio: ['ignore', 'pipe', 'pipe'],
    });
    let stdout = '';
    let stderr = '';
    let timedOut = false;
    child.stdout.setEncoding('utf8').on('data', (d) => { stdout = keepTail(stdout, d); });
    child.stderr.setEncoding('utf8').on('data', (d) => { stderr = keepTail(stderr, d); });
    const timer = setTimeout(() => {
      timedOut = true;
      child.kill('SIGKILL');
    }, job.timeoutMs);
    child.on('close', (status, signal) => {
      clearTimeout(timer);
      const seconds = Number(process.hrtime.bigint() - start) / 1e9;
      resolve({ ...job, status, signal, timedOut, stdout, stderr, seconds });
    });
  });
}

function reproducer(result) {
  const env = [
    process.env.ORVA_BUILD && `ORVA_BUILD=${process.env.ORVA_BUILD}`,
  ].filter(Boolean).join(' ');
  const node = `node ${path.relative(process.cwd(), CHILD) || CHILD} ${result.scenario} ${result.iteration}`;
  const command = SANITIZED ? `scripts/run-sanitized.sh ${process.env.ORVA_SANITIZER} ${node}` : node;
  return env ? `${env} ${command}` : command;
}

async function main() {
  const opts = parseArgs(process.argv.slice(2));
  const names = opts.only || Object.keys(scenarios);

  // Round-robin over the scenarios, so that the children running side by side differ.
  const jobs = [];
  // A scenario with a `share` runs that fraction of --runs (the long cycles scenario).
  const runsOf = (name) => opts.perScenario[name] ??
    Math.max(1, Math.ceil(opts.runs * (scenarios[name].share ?? 1)));
  const most = Math.max(...names.map(runsOf));
  for (let i = 0; i < most; i++) {
    for (const name of names) {
      if (i < runsOf(name)) {
        jobs.push({
          scenario: name, iteration: i, expectedCode: scenarios[name].exitCode,
          timeoutMs: scenarios[name].timeoutMs * opts.timeoutScale,
        });
      }
    }
  }

  console.log(`storm: ${jobs.length} children (${names.map((n) => `${n} x${runsOf(n)}`).join(', ')}), ` +
    `${opts.jobs} at a time${SANITIZED ? `, ${process.env.ORVA_SANITIZER} build` : ''}`);
  const started = Date.now();
  const stats = Object.fromEntries(names.map((n) => [n, { passed: 0, failed: 0, seconds: [] }]));
  const kinds = new Map();  // reason kind -> { count, examples: [result] }
  let next = 0;

  function record(result) {
    const s = stats[result.scenario];
    s.seconds.push(result.seconds);
    const reason = judge(result);
    if (!reason) {
      s.passed++;
    } else {
      s.failed++;
      const key = `${result.scenario}: ${reasonKind(reason)}`;
      const kind = kinds.get(key) || { count: 0, iterations: [] };
      kinds.set(key, kind);
      kind.count++;
      kind.iterations.push(result.iteration);
      if (kind.count <= SHOWN_PER_KIND) {
        console.log(`FAIL ${result.scenario} #${result.iteration} (${result.seconds.toFixed(2)} s): ${reason}`);
        console.log(`  replay: ${reproducer(result)}`);
        const errTail = tail(result.stderr, 15);
        if (errTail) console.log(errTail.replace(/^/gm, '  | '));
      }
    }
    if (s.passed + s.failed === runsOf(result.scenario)) {
      const sorted = [...s.seconds].sort((a, b) => a - b);
      const mean = sorted.reduce((a, b) => a + b, 0) / sorted.length;
      console.log(`  ${result.scenario.padEnd(28)} ${String(s.passed).padStart(4)} passed ${String(s.failed).padStart(4)} failed` +
        `   child time mean ${mean.toFixed(2)} s, max ${sorted[sorted.length - 1].toFixed(2)} s`);
    }
  }

  async function lane() {
    while (next < jobs.length) {
      const job = jobs[next++];
      record(await runChild(job));
    }
  }
  await Promise.all(Array.from({ length: Math.min(opts.jobs, jobs.length) }, lane));

  const passed = Object.values(stats).reduce((a, s) => a + s.passed, 0);
  const failed = Object.values(stats).reduce((a, s) => a + s.failed, 0);
  if (kinds.size) {
    console.log('failures by kind:');
    for (const [key, kind] of kinds) {
      const its = kind.iterations.slice(0, 12).join(', ') + (kind.iterations.length > 12 ? ', ...' : '');
      console.log(`  ${kind.count} x ${key} (iterations ${its})`);
    }
  }
  console.log(`storm: wall time ${((Date.now() - started) / 1000).toFixed(1)} s`);
  console.log(`storm: ${passed} passed, ${failed} failed`);
  process.exitCode = failed ? 1 : 0;
}

main().catch((e) => {
  console.error(e);
  process.exit(1);
});
