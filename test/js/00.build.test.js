'use strict';
// Loading the built addon through the package entry point: the first thing every other
// script test relies on.

const test = require('node:test');
const assert = require('node:assert');
const fs = require('fs');
const path = require('path');
const { spawnSync } = require('child_process');
const { Worker } = require('worker_threads');
const paths = require('../../scripts/paths');

const root = paths.root;

function engineMapped() {
  const maps = fs.readFileSync('/proc/self/maps', 'utf8');
  return maps.includes(paths.engineLibraryName());
}

test('the package entry point', async (t) => {
  await t.test('gives the addon exports', () => {
    const addon = require(root);
    assert.strictEqual(typeof addon, 'object');
    assert.ok(addon !== null);
  });

  await t.test('does not load the engine library just by being required', { skip: process.platform !== 'linux' && 'reads /proc/self/maps' }, () => {
    require(root);
    assert.ok(fs.existsSync(paths.engineLibraryPath()), 'the engine library is built beside the addon');
    assert.strictEqual(engineMapped(), false);
  });

  await t.test('names the missing binary and the build command when nothing is built', () => {
    const r = spawnSync(process.execPath, ['-e', `require(${JSON.stringify(root)})`], {
      env: { ...process.env, ORVA_BUILD: path.join(root, 'build', 'no-such-build') },
      encoding: 'utf8',
    });
    assert.notStrictEqual(r.status, 0);
    assert.match(r.stderr, /OrvaVantixNodeNative\.node/);
    assert.match(r.stderr, /npm run build/);
  });

  await t.test('loads in worker threads, side by side and one after another', async () => {
    const load = () => new Promise((resolve, reject) => {
      const w = new Worker(`require(${JSON.stringify(root)}); require('worker_threads').parentPort.postMessage('loaded');`,
        { eval: true });
      let message;
      w.on('message', (m) => { message = m; });
      w.on('error', reject);
      w.on('exit', (code) => (code === 0 && message === 'loaded' ? resolve() : reject(new Error(`worker exit ${code}`))));
    });
    await Promise.all([load(), load()]);
    await load();
  });
});
