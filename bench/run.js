'use strict';
// npm run bench: the native benchmarks (orva_bench, built from bench/*.cc in the build that
// ORVA_BUILD selects, release by default) and the script benchmarks (bench/*.bench.js), each
// printing its own figures. Nothing is asserted.
//
//   node bench/run.js              everything
//   node bench/run.js frame_copy   only the named suites: orva_bench suite names (--list)
//   node bench/run.js events       or script bench names (the file name without .bench.js)
//
// Each script bench runs in its own process, so that one bench's engine, threads and heap
// cannot colour another's figures.

const fs = require('fs');
const path = require('path');
const { spawnSync } = require('child_process');
const paths = require('../scripts/paths');

const wanted = process.argv.slice(2);
const exe = path.join(paths.outDir(), process.platform === 'win32' ? 'orva_bench.exe' : 'orva_bench');
const scripts = fs.readdirSync(__dirname).filter((f) => f.endsWith('.bench.js')).sort()
  .map((f) => ({ name: f.slice(0, -'.bench.js'.length), file: path.join(__dirname, f) }));

let failed = false;
function run(title, cmd, args, options) {
  const r = spawnSync(cmd, args, { stdio: 'inherit', ...options });
  if (r.status !== 0) {
    console.error(`bench/run.js: ${title} ended with ${r.error ? r.error.message : r.status ?? r.signal}`);
    failed = true;
  }
}

const suites = fs.existsSync(exe)
  ? spawnSync(exe, ['--list'], { encoding: 'utf8' }).stdout.split('\n').filter(Boolean)
  : [];
if (suites.length === 0) console.log(`bench/run.js: ${exe} not built; native benchmarks skipped`);

for (const name of wanted) {
  if (!suites.includes(name) && !scripts.some((s) => s.name === name)) {
    console.error(`bench/run.js: no benchmark named "${name}"`);
    failed = true;
  }
}

const native = wanted.length === 0 ? suites : wanted.filter((n) => suites.includes(n));
if (native.length > 0) run('orva_bench', exe, wanted.length === 0 ? [] : native, { cwd: paths.outDir() });

for (const { name, file } of scripts) {
  if (wanted.length > 0 && !wanted.includes(name)) continue;
  run(name, process.execPath, [file], { cwd: paths.root });
  console.log();
}

process.exit(failed ? 1 : 0);
