#!/usr/bin/env node
'use strict';
// Configures (first time only) and builds one CMake preset:
//   node scripts/build.js [release|debug|asan|tsan|mingw]
// Later builds are incremental; Ninja re-runs CMake by itself when the build files change.

const fs = require('fs');
const path = require('path');
const { spawnSync } = require('child_process');
const paths = require('./paths');

const PRESETS = ['release', 'debug', 'asan', 'tsan', 'mingw'];

function run(cmd, args) {
  const r = spawnSync(cmd, args, { cwd: paths.root, stdio: 'inherit' });
  if (r.error) throw new Error(`cannot run ${cmd}: ${r.error.message}`);
  return r.status === null ? 1 : r.status;
}

function checkNodeDeps() {
  for (const pkg of ['node-addon-api/package.json', 'node-api-headers/package.json']) {
    try {
      require.resolve(pkg, { paths: [paths.root] });
    } catch {
      throw new Error(`${path.dirname(pkg)} is not installed: run scripts/setup.sh first`);
    }
  }
}

function build(preset) {
  if (!PRESETS.includes(preset)) {
    throw new Error(`unknown preset "${preset}" (one of ${PRESETS.join(', ')})`);
  }
  checkNodeDeps();
  const dir = paths.buildDir(preset);
  const configured = fs.existsSync(path.join(dir, 'CMakeCache.txt')) &&
    fs.existsSync(path.join(dir, 'build.ninja'));
  if (!configured && run('cmake', ['--preset', preset]) !== 0) return 1;
  return run('cmake', ['--build', '--preset', preset]);
}

module.exports = { build, PRESETS };

if (require.main === module) {
  try {
    process.exitCode = build(process.argv[2] || 'release');
  } catch (e) {
    console.error(`build: ${e.message}`);
    process.exitCode = 1;
  }
}
