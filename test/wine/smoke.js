'use strict';
// Windows smoke test: the MinGW build loaded into Windows node.exe under Wine.
//   npm run test:win    (or: scripts/wine/node.sh --expect '^wine smoke: PASS$' test/wine/smoke.js)
// Under Wine a native crash can still end with exit code 0, so success is the final
// "wine smoke: PASS" line, which the runner requires.

const assert = require('assert');
const fs = require('fs');
const path = require('path');

process.env.ORVA_BUILD = process.env.ORVA_BUILD || 'mingw';
const root = path.resolve(__dirname, '..', '..');
const paths = require(path.join(root, 'scripts', 'paths'));

let failed = 0;
function check(name, fn) {
  try {
    fn();
    console.log(`ok - ${name}`);
  } catch (e) {
    failed += 1;
    console.log(`not ok - ${name}\n  ${String((e && e.stack) || e).replace(/\n/g, '\n  ')}`);
  }
}

console.log(`# host ${path.basename(process.execPath)}, node ${process.version}, ${process.platform}/${process.arch}`);
console.log(`# build ${paths.outDir()}`);

let addon;
check('the addon loads through the package entry point', () => {
  addon = require(root);
  assert.strictEqual(typeof addon, 'object');
});

check('the engine DLL sits beside the addon', () => {
  assert.strictEqual(paths.engineLibraryName(), 'OrvaVantixEngine.dll');
  assert.ok(fs.existsSync(paths.engineLibraryPath()), paths.engineLibraryPath());
});

check('before any engine call the engine DLL is not available', () => {
  assert.strictEqual(addon.GetNativeDllVersion(), 'unknow');
});

let sim;
let simVersion;
check('the control module reaches the engine DLL', () => {
  sim = require(path.join(root, 'engine', 'sim'));
  simVersion = sim.version();
  assert.strictEqual(typeof simVersion, 'string');
  assert.ok(simVersion.length > 0 && simVersion !== 'unknow', `version ${JSON.stringify(simVersion)}`);
});

check('an addon call loads the same engine DLL and reaches it', () => {
  sim.reset();
  addon.SetRoomMode({ mode: 1 });
  const calls = sim.calls('orva_vantix_set_room_mode');
  assert.strictEqual(calls.length, 1, JSON.stringify(sim.calls()));
  assert.strictEqual(calls[0].args.mode, 1);
  assert.strictEqual(addon.GetNativeDllVersion(), simVersion);
});

// The simulated engine lists audio devices only to a thread that has initialised COM, and
// engine teardown uninitialises COM once: so the list a wrapper gets shows whether, and how
// often, that wrapper initialised COM for the script thread.
check('getAudioDeviceList initialises COM for the script thread once per wrapper', () => {
  const engineOf = () => addon.CreateEngine({
    profile: { appID: 1, appSign: '', scenario: 0 }, tsfn: () => {}, SDKVersion: 'wine', electronVersion: 'wine',
  });
  const first = engineOf();
  try {
    assert.strictEqual(first.getAudioDeviceList({ deviceType: 0 }).length, 3, 'COM initialised before the first list');
    assert.strictEqual(first.getAudioDeviceList({ deviceType: 0 }).length, 3);
  } finally {
    addon.DestroyEngine();
  }
  const second = engineOf();
  try {
    // Teardown's one CoUninitialize balanced a single CoInitializeEx; the first wrapper, its
    // COM step done, now meets a thread outside COM. A new wrapper initialises it again.
    assert.deepStrictEqual(first.getAudioDeviceList({ deviceType: 0 }), [], 'COM initialised more than once');
    assert.strictEqual(second.getAudioDeviceList({ deviceType: 0 }).length, 3);
  } finally {
    addon.DestroyEngine();
  }
});

if (failed) {
  console.log(`wine smoke: FAIL (${failed} failed)`);
  process.exitCode = 1;
} else {
  console.log('wine smoke: PASS');
}
