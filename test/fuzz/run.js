#!/usr/bin/env node
'use strict';
// npm run test:fuzz: a seeded fuzzer of the addon's whole script surface.
//
//   node test/fuzz/run.js [--calls N] [--seed S] [--jobs J] [--chunk C]
//   node test/fuzz/run.js --one SEED [--calls N] [--trace]     replays one chunk
//   scripts/run-sanitized.sh asan node test/fuzz/run.js --calls 50000
//
// Defaults: 200,000 calls, a seed from the clock (printed), one job per core up to 8.
// The run is cut into chunks of C calls (default 5000); chunk i runs in a child process of
// its own with a seed derived from S and i, J children at a time. A child that dies by a
// signal or aborts, stops making progress (watchdog), lets an undocumented exception out
// of a call, or keeps running after it has let everything go, is a finding: each kind is
// printed once with the chunk's seed, the call that did it, and the command that replays
// the chunk up to that call. Exit status 1 on any finding.
//
// Other options:
//   --hang-ms MS     watchdog: a step that takes longer is a hang (default 20000, and
//                    four times that under a sanitizer)
//   --trace          (with --one) the child prints every step to stderr
//   --verbose        children's standard output is passed through (addon trace lines)

const fs = require('fs');
const os = require('os');
const path = require('path');
const { spawn } = require('child_process');
const paths = require('../../scripts/paths');
const { chunkSeed } = require('./prng');

const CHILD = path.join(__dirname, 'child.js');
const NODE_FLAGS = ['--expose-gc', '--force-node-api-uncaught-exceptions-policy=true'];

function parseOptions(argv) {
  const o = {
    calls: null, seed: null, jobs: Math.min(8, os.availableParallelism ? os.availableParallelism() : os.cpus().length),
    chunk: 5000, one: null, trace: false, verbose: false, hangMs: null,
  };
  const number = (i) => {
    const v = Number(argv[i]);
    if (!Number.isFinite(v) || v < 0) throw new Error(`fuzz: ${argv[i - 1]} needs a number, got ${argv[i]}`);
    return Math.floor(v);
  };
  for (let i = 0; i < argv.length; i++) {
    switch (argv[i]) {
      case '--calls': o.calls = number(++i); break;
      case '--seed': o.seed = number(++i) >>> 0; break;
      case '--jobs': o.jobs = Math.max(1, number(++i)); break;
      case '--chunk': o.chunk = Math.max(1, number(++i)); break;
      case '--one': o.one = number(++i) >>> 0; break;
      case '--hang-ms': o.hangMs = number(++i); break;
      case '--trace': o.trace = true; break;
      case '--verbose': o.verbose = true; break;
      default: throw new Error(`fuzz: unknown option ${argv[i]} (see the head of ${path.relative(process.cwd(), __filename)})`);
    }
  }
  if (o.seed === null) o.seed = (Date.now() ^ (process.pid << 16)) >>> 0;
  if (o.hangMs === null) o.hangMs = process.env.ORVA_SANITIZER ? 80000 : 20000;
  return o;
}

// The command line that replays chunk `seed` for its first `calls` calls, in the
// environment this run has (build, sanitizer).
function replayCommand(seed, calls) {
  const env = [];
  if (process.env.ORVA_BUILD && !process.env.ORVA_SANITIZER) env.push(`ORVA_BUILD=${process.env.ORVA_BUILD}`);
  const prefix = process.env.ORVA_SANITIZER
    ? `${env.join(' ')}${env.length ? ' ' : ''}scripts/run-sanitized.sh ${process.env.ORVA_SANITIZER} node`
    : `${env.join(' ')}${env.length ? ' ' : ''}node`;
  const relative = path.relative(paths.root, __filename);
  return `cd ${paths.root} && ${prefix} ${relative} --one ${seed} --calls ${calls} --trace`;
}

// Keeps the start and the end of a stream (a sanitizer report starts with what matters).
class Tail {
  constructor(head, tail) {
    this.headLimit = head;
    this.tailLimit = tail;
    this.head = '';
    this.tail = '';
    this.lines = 0;
  }

  add(chunk) {
    const text = chunk.toString();
    for (let i = text.indexOf('\n'); i !== -1; i = text.indexOf('\n', i + 1)) this.lines++;
    if (this.head.length < this.headLimit) {
      const room = this.headLimit - this.head.length;
      this.head += text.slice(0, room);
      if (text.length <= room) return;
      this.tail = (this.tail + text.slice(room)).slice(-this.tailLimit);
    } else {
      this.tail = (this.tail + text).slice(-this.tailLimit);
    }
  }

  text() { return this.tail ? `${this.head}\n[…]\n${this.tail}` : this.head; }
}

// The first line of a sanitizer or runtime report in `stderr`, to tell crashes apart.
function crashHeadline(stderr) {
  const patterns = [
    /ERROR: AddressSanitizer: [^\n]*/, /runtime error: [^\n]*/, /ERROR: LeakSanitizer: [^\n]*/,
    /FATAL ERROR: [^\n]*/, /terminate called [^\n]*/, /Assertion [^\n]*failed[^\n]*/, /Segmentation fault/,
  ];
  for (const p of patterns) {
    const m = p.exec(stderr);
    if (m) return m[0].replace(/0x[0-9a-f]+/g, '0x…').replace(/pc 0x…[^\n]*/, '').slice(0, 200);
  }
  return '';
}

// Runs one chunk (options.child: the script to run instead of child.js); resolves with
// { seed, calls, findings, done, counts, coverage, methods, stdoutLines, failedCalls }.
function runChunk(seed, calls, options) {
  const dir = fs.mkdtempSync(path.join(os.tmpdir(), 'orva-fuzz-'));
  const progressFile = path.join(dir, 'progress');
  const outFile = path.join(dir, 'out.jsonl');
  const args = [...NODE_FLAGS, options.child || CHILD, '--seed', String(seed), '--calls', String(calls),
    '--progress', progressFile, '--out', outFile];
  if (options.trace) args.push('--trace');
  const child = spawn(process.execPath, args, { cwd: paths.root, stdio: ['ignore', 'pipe', 'pipe'] });
  const stdout = new Tail(2000, 4000);
  const stderr = new Tail(48000, 16000);
  child.stdout.on('data', (c) => { stdout.add(c); if (options.verbose) process.stdout.write(c); });
  child.stderr.on('data', (c) => { stderr.add(c); if (options.trace) process.stderr.write(c); });

  const readProgress = () => {
    try {
      const [step, call, ...rest] = fs.readFileSync(progressFile, 'utf8').split('\n')[0].split('\t');
      return { step: Number(step), call: Number(call), text: rest.join('\t') };
    } catch {
      return null;
    }
  };
  let lastStep = -1;
  let lastChange = Date.now();
  let hung = false;
  const watchdog = setInterval(() => {
    const p = readProgress();
    const step = p ? p.step : -1;
    if (step !== lastStep) {
      lastStep = step;
      lastChange = Date.now();
    } else if (Date.now() - lastChange > options.hangMs) {
      hung = true;
      child.kill('SIGKILL');
    }
  }, 250);

  return new Promise((resolve) => {
    child.on('close', (code, signal) => {
      clearInterval(watchdog);
      const records = [];
      try {
        for (const line of fs.readFileSync(outFile, 'utf8').split('\n')) if (line) records.push(JSON.parse(line));
      } catch {
        // no output at all: the child died before its first finding
      }
      const progress = readProgress();
      fs.rmSync(dir, { recursive: true, force: true });
      const done = records.find((r) => r.type === 'done');
      const findings = records.filter((r) => r.type === 'finding');
      const internal = records.find((r) => r.type === 'internal');
      const last = progress ? progress.text : '(no step recorded)';
      // The method, without the instance's number, tells crashes and hangs apart.
      const where = last.replace(/\(.*$/s, '').replace(/ #\d+>/g, '>');
      const callIndex = progress ? progress.call : 0;
      if (hung) {
        findings.push({
          kind: 'hang', signature: `hang|${where}`, seed, call: callIndex, last,
          error: `no progress for ${options.hangMs} ms`, stderr: stderr.text(),
        });
      } else if (internal) {
        findings.push({ kind: 'internal', signature: 'internal|the fuzzer itself failed', seed, call: callIndex, last, error: internal.error });
      } else if (signal || code !== 0 || !done) {
        const headline = crashHeadline(stderr.text());
        const how = signal ? `killed by ${signal}` : `exit code ${code}${done ? '' : ' before the end of the chunk'}`;
        findings.push({
          kind: 'crash', signature: `crash|${how}|${headline}|${where}`, seed, call: callIndex, last,
          error: `${how}${headline ? `: ${headline}` : ''}`, stderr: stderr.text(),
        });
      }
      // A dead or hung child still made the calls before the one that stopped it.
      const made = done ? done.calls : callIndex + (hung || signal || code !== 0 ? 1 : 0);
      resolve({
        seed, calls: made, findings, done: Boolean(done), counts: done ? done.counts : {},
        coverage: done ? done.coverage : {}, methods: done ? done.methods : {}, stdoutLines: stdout.lines, failedCalls: done ? done.failedCalls : 0,
      });
    });
  });
}

// Runs `chunks` ([{seed, calls}]) `jobs` at a time.
async function runAll(chunks, options, onResult) {
  let next = 0;
  const worker = async () => {
    while (next < chunks.length) {
      const { seed, calls } = chunks[next++];
      onResult(await runChunk(seed, calls, options));
    }
  };
  await Promise.all(Array.from({ length: Math.min(options.jobs, chunks.length) }, worker));
}

function indent(text, pad = '    ') {
  return text.split('\n').map((l) => pad + l).join('\n');
}

async function main() {
  const options = parseOptions(process.argv.slice(2));
  const addonFile = paths.addonPath();
  if (!fs.existsSync(addonFile)) {
    console.error(`fuzz: no addon at ${addonFile} (build "${paths.preset()}" first)`);
    process.exit(2);
  }
  let chunks;
  if (options.one !== null) {
    chunks = [{ seed: options.one, calls: options.calls ?? options.chunk }];
  } else {
    chunks = [];
    for (let i = 0, left = options.calls ?? 200000; left > 0; i++, left -= options.chunk) {
      chunks.push({ seed: chunkSeed(options.seed, i), calls: Math.min(options.chunk, left) });
    }
  }
  const total = chunks.reduce((n, c) => n + c.calls, 0);
  const what = options.one !== null ? `chunk ${options.one}` : `seed ${options.seed}`;
  console.log(`fuzz: ${what}, ${total} calls in ${chunks.length} chunk(s), ${options.jobs} job(s), ` +
    `build ${paths.outDir()}${process.env.ORVA_SANITIZER ? ` (${process.env.ORVA_SANITIZER})` : ''}`);

  const started = Date.now();
  const groups = new Map();  // signature → { first, occurrences, chunks }
  const coverage = {};
  let calls = 0;
  let failed = 0;
  let chunksDone = 0;
  let stdoutLines = 0;
  await runAll(chunks, options, (r) => {
    chunksDone++;
    calls += r.calls;
    stdoutLines += r.stdoutLines;
    failed += r.failedCalls;
    for (const [cls, methods] of Object.entries(r.coverage)) {
      const c = coverage[cls] || (coverage[cls] = {});
      for (const [m, n] of Object.entries(methods)) c[m] = (c[m] || 0) + n;
    }
    for (const f of r.findings) {
      if (f.kind !== 'exception') failed++;
      const g = groups.get(f.signature) || { first: f, occurrences: 0, chunks: 0, methods: new Set() };
      g.occurrences += r.counts[f.signature] || 1;
      g.chunks++;
      for (const m of (r.methods && r.methods[f.signature]) || [f.method].filter(Boolean)) g.methods.add(m);
      if (!groups.has(f.signature)) groups.set(f.signature, g);
    }
    if (process.stderr.isTTY && options.one === null) {
      process.stderr.write(`\rfuzz: ${chunksDone}/${chunks.length} chunks, ${calls} calls, ${groups.size} finding kind(s)`);
    }
  });
  if (process.stderr.isTTY && options.one === null) process.stderr.write('\n');

  const seconds = ((Date.now() - started) / 1000).toFixed(1);
  const classes = Object.entries(coverage).map(([cls, m]) => `${cls} ${Object.keys(m).length}`).join(', ');
  console.log(`fuzz: ${seconds} s; methods called: ${classes}; ${stdoutLines} addon stdout lines discarded`);

  let n = 0;
  const ordered = [...groups.values()].sort((a, b) => {
    const rank = { crash: 0, hang: 1, uncaught: 2, exit: 3, exception: 4, internal: 5 };
    return (rank[a.first.kind] ?? 9) - (rank[b.first.kind] ?? 9) || a.first.signature.localeCompare(b.first.signature);
  });
  for (const g of ordered) {
    const f = g.first;
    n++;
    console.log(`\nfuzz: finding ${n} of ${groups.size}: ${f.kind}: ${f.signature.split('|').slice(1).filter(Boolean).join(' | ')}`);
    if (g.methods.size > 1) console.log(`  in ${[...g.methods].sort().join(', ')}`);
    console.log(`  ${g.occurrences} time(s) in ${g.chunks} chunk(s); first in chunk ${f.seed}, call ${f.call}:`);
    console.log(indent(f.last || '', '    '));
    if (f.workerSeed !== undefined) console.log(`  (in the worker that step started: worker seed ${f.workerSeed}, its call ${f.workerCall})`);
    if (f.error) console.log(`  error: ${f.error}`);
    // With --trace the child's stderr is the trace, already on the terminal.
    if (f.stderr && !options.trace) console.log(`  child's stderr:\n${indent(f.stderr.trim().split('\n').slice(0, 60).join('\n'), '    | ')}`);
    // Up to and including the call; an exit finding comes after the chunk's last call.
    console.log(`  replay: ${replayCommand(f.seed, f.kind === 'exit' ? f.call : f.call + 1)}`);
  }
  console.log(`fuzz: ${calls - failed} passed, ${failed} failed`);
  process.exitCode = groups.size ? 1 : 0;
}

if (require.main === module) {
  main().catch((e) => {
    console.error(e.message);
    process.exit(2);
  });
}

module.exports = { parseOptions, replayCommand, crashHeadline, runChunk, Tail };
