'use strict';
// The module entry: the addon object's method table, one addon object per script
// environment, and what loading and environment teardown write while the debug assistant
// is on (it is, until an engine is created).

const test = require('node:test');
const assert = require('node:assert');
const { addonModule, loadAddon, runNode, countLines } = require('./support/addon-harness');

const METHODS = [
  'GetNativeDllVersion', 'SetLogConfig', 'SetRoomMode', 'SetEngineConfig', 'CreateEngine',
  'DestroyEngine', 'IsFeatureSupported', 'setGeoFence',
];
// Arrive with the sub-object factories; until then they must not exist at all.
const NOT_YET = [
  'CreateMediaPlayer', 'DestroyMediaPlayer', 'CreateAudioEffectPlayer', 'DestroyAudioEffectPlayer',
  'CreateCopyrightedMusic', 'DestroyCopyrightedMusic', 'createScreenCaptureSource',
  'destroyScreenCaptureSource',
];

// What one environment writes while its addon object is made, in order.
const LOAD_LINES = [
  'OrvaVantixAddon construct!',
  'init OrvaVantixEngineWrapper',
  'init OrvaVantixMediaPlayerWrapper ',
  '',
  'init OrvaVantixAudioEffectPlayerWrapper!',
  'OrvaVantixScreenCaptureSourceWrapper Init!',
];

test('the addon object', async (t) => {
  await t.test('exposes exactly the methods of its table, in order, with their exact names', () => {
    const addon = loadAddon();
    assert.deepStrictEqual(Object.keys(addon), METHODS);
    for (const name of METHODS) assert.strictEqual(typeof addon[name], 'function', name);
    for (const name of NOT_YET) assert.strictEqual(name in addon, false, name);
  });

  await t.test('writes its construction and the class definitions in order on load', () => {
    const r = runNode(`require(${JSON.stringify(addonModule)})`);
    assert.strictEqual(r.status, 0, r.stderr);
    const lines = r.stdout.split('\n');
    const start = lines.indexOf(LOAD_LINES[0]);
    assert.notStrictEqual(start, -1, r.stdout);
    assert.deepStrictEqual(lines.slice(start, start + LOAD_LINES.length), LOAD_LINES);
  });

  await t.test('answers "unknow" for the engine version before the engine library is loaded', () => {
    const r = runNode(`process.stdout.write('version=' + require(${JSON.stringify(addonModule)}).GetNativeDllVersion() + '\\n')`);
    assert.strictEqual(r.status, 0, r.stderr);
    assert.match(r.stdout, /^version=unknow$/m);
  });
});

test('script environments', async (t) => {
  // Two workers load the addon while the main thread holds its own; each environment's
  // teardown deletes its addon object before the main thread goes on.
  const script = `
    const { Worker } = require('worker_threads');
    const addon = require(${JSON.stringify(addonModule)});
    const code = 'const a = require(' + JSON.stringify(${JSON.stringify(addonModule)}) + ');' +
      'require("worker_threads").parentPort.postMessage(Object.keys(a).length);';
    const run = () => new Promise((resolve, reject) => {
      const w = new Worker(code, { eval: true });
      let keys = 0;
      w.on('message', (m) => { keys = m; });
      w.on('error', reject);
      w.on('exit', (c) => (c === 0 ? resolve(keys) : reject(new Error('exit ' + c))));
    });
    Promise.all([run(), run()]).then((keys) => {
      console.log('workers done ' + keys.join(','));
      console.log('main keys ' + Object.keys(addon).length);
    });
  `;
  const r = runNode(script);

  await t.test('each environment gets its own addon object with the full table', () => {
    assert.strictEqual(r.status, 0, r.stderr);
    assert.strictEqual(countLines(r.stdout, 'OrvaVantixAddon construct!'), 3, r.stdout);
    assert.strictEqual(countLines(r.stdout, 'init OrvaVantixEngineWrapper'), 3);
    assert.match(r.stdout, /^workers done 8,8$/m);
    assert.match(r.stdout, /^main keys 8$/m);
  });

  await t.test("a worker's teardown deletes its addon object", () => {
    const lines = r.stdout.split('\n');
    const done = lines.indexOf('workers done 8,8');
    const destructs = lines.map((l, i) => (l === 'OrvaVantixAddon destruct!' ? i : -1)).filter((i) => i >= 0);
    assert.strictEqual(destructs.filter((i) => i < done).length, 2, r.stdout);
    // The main thread's own addon object goes with the main environment, at exit.
    assert.strictEqual(destructs.length, 3, r.stdout);
  });
});

test('the module stays loaded after the only environment that loaded it is gone',
  { skip: process.platform !== 'linux' && 'reads /proc/self/maps' }, () => {
    // Its dispatch thread, exit hook and engine callbacks outlive every environment.
    const r = runNode(`
      const { Worker } = require('worker_threads');
      const fs = require('fs');
      const w = new Worker('require(' + JSON.stringify(${JSON.stringify(addonModule)}) + ').SetRoomMode({});',
        { eval: true });
      w.on('exit', () => {
        const mapped = fs.readFileSync('/proc/self/maps', 'utf8').includes('OrvaVantixNodeNative.node');
        console.log('mapped after the worker: ' + mapped);
      });
    `);
    assert.strictEqual(r.status, 0, r.stderr);
    assert.match(r.stdout, /^mapped after the worker: true$/m);
  });
