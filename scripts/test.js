#!/usr/bin/env node
'use strict';
// npm test: incremental release build, then the native tests (ctest) and the script tests
// (node --test). Both suites always run; the exit code is non-zero if either fails.

const { spawnSync } = require('child_process');
const path = require('path');
const paths = require('./paths');
const { build } = require('./build');

const seconds = (start) => `${Math.round((Date.now() - start) / 1000)}s`;

function run(title, cmd, args, env = process.env) {
  console.log(`\n--- ${title}`);
  const start = Date.now();
  const r = spawnSync(cmd, args, { cwd: paths.root, stdio: 'inherit', env });
  if (r.error) console.error(`cannot run ${cmd}: ${r.error.message}`);
  console.log(`--- ${title}: ${r.status === 0 ? 'ok' : 'FAILED'} (${seconds(start)})`);
  return r.status === 0;
}

console.log('--- build (release)');
const buildStart = Date.now();
let status;
try {
  status = build('release');
} catch (e) {
  console.error(`build: ${e.message}`);
  status = 1;
}
console.log(`--- build (release): ${status === 0 ? 'ok' : 'FAILED'} (${seconds(buildStart)})`);
if (status !== 0) {
  console.error('npm test: the release build failed');
  process.exit(1);
}

const env = { ...process.env, ORVA_BUILD: 'release' };
const nativeOk = run('native tests (ctest)', 'ctest', ['--preset', 'release', '--output-on-failure'], env);
const jsOk = run('script tests (node --test)', process.execPath,
  [path.join(__dirname, 'run-js-tests.js')], env);

if (!nativeOk || !jsOk) {
  console.error(`npm test: FAILED (${[!nativeOk && 'native', !jsOk && 'script'].filter(Boolean).join(' and ')} tests)`);
  process.exit(1);
}
console.log('npm test: all suites passed');
