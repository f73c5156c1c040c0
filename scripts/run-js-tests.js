#!/usr/bin/env node
'use strict';
// Runs every test/js/**/*.test.js with Node's test runner. Files are listed explicitly:
// how `node --test <dir>` treats a directory differs between Node versions.
//   node scripts/run-js-tests.js [node --test options...] [test files...]
// Test files given on the command line replace the full list.
// The build under test is the one ORVA_BUILD names (default release).

const fs = require('fs');
const path = require('path');
const { spawnSync } = require('child_process');
const paths = require('./paths');

function findTests(dir) {
  const found = [];
  for (const entry of fs.readdirSync(dir, { withFileTypes: true })) {
    const full = path.join(dir, entry.name);
    if (entry.isDirectory()) found.push(...findTests(full));
    else if (entry.isFile() && entry.name.endsWith('.test.js')) found.push(full);
  }
  return found;
}

const options = [];
let files = [];
for (const arg of process.argv.slice(2)) {
  if (!arg.startsWith('-') && arg.endsWith('.js')) files.push(path.resolve(arg));
  else options.push(arg);
}
const testRoot = path.join(paths.root, 'test', 'js');
if (files.length === 0 && fs.existsSync(testRoot)) files = findTests(testRoot).sort();
if (files.length === 0) {
  console.error(`run-js-tests: no *.test.js files under ${testRoot}`);
  process.exit(1);
}

const args = ['--test', ...options, ...files.map((f) => path.relative(paths.root, f))];

if (process.platform !== 'win32') {
  const r = spawnSync(process.execPath, args, { cwd: paths.root, stdio: 'inherit' });
  process.exit(r.status === null ? 1 : r.status);
}

// Windows node.exe under Wine crashes writing to an inherited Unix pipe, so the runner's
// output is relayed through this process's streams (see scripts/wine/node.sh).
const { spawn } = require('child_process');
const child = spawn(process.execPath, args, { cwd: paths.root, stdio: ['ignore', 'pipe', 'pipe'] });
child.stdout.on('data', (chunk) => process.stdout.write(chunk));
child.stderr.on('data', (chunk) => process.stderr.write(chunk));
child.on('close', (code) => { process.exitCode = code === null ? 1 : code; });
