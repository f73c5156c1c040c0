'use strict';
// The simulated engine's control module on its own, without the addon: nothing registers
// callbacks in this process, so emits find no receiver.

const test = require('node:test');
const assert = require('node:assert');
const fs = require('fs');
const path = require('path');
const { spawnSync } = require('child_process');
const paths = require('../../scripts/paths');

const SIM = path.join(paths.root, 'engine', 'sim');
const sim = require(SIM);

test('the control module', async (t) => {
  t.beforeEach(() => sim.reset());

  await t.test('has exactly the calls of its contract', () => {
    assert.deepStrictEqual(Object.keys(sim).sort(), ['autoComplete', 'burst', 'calls', 'complete', 'emit', 'frame',
      'pending', 'registered', 'reset', 'setReturn', 'version']);
  });

  await t.test('reports the engine version, scriptable through orva_vantix_get_version', () => {
    assert.strictEqual(sim.version(), '1.0.0-sim');
    sim.setReturn('orva_vantix_get_version', 'vendor 4.2');
    assert.strictEqual(sim.version(), 'vendor 4.2');
    sim.reset();
    assert.strictEqual(sim.version(), '1.0.0-sim');
  });

  await t.test('starts from an empty journal and no registrations', () => {
    assert.deepStrictEqual(sim.calls(), []);
    assert.deepStrictEqual(sim.calls('orva_vantix_set_room_mode'), []);
    assert.deepStrictEqual(sim.registered(), []);
    assert.throws(() => sim.calls(5), TypeError);
  });

  await t.test('emit: false without a registration, TypeError for an unknown name or a bad payload', () => {
    assert.strictEqual(sim.emit('room_state_update', { roomID: 'r', state: 2, errorCode: 0, extendedData: '' }), false);
    assert.strictEqual(sim.emit('engine_uninit'), false);
    assert.throws(() => sim.emit('no_such_callback', {}), { name: 'TypeError', message: /unknown callback name/ });
    assert.throws(() => sim.emit('room_state_update', { state: 'two' }), { name: 'TypeError', message: /state/ });
    assert.throws(() => sim.emit(42), TypeError);
  });

  await t.test('setReturn checks the value against what the entry point returns', () => {
    sim.setReturn('orva_vantix_set_room_mode', 1003);
    sim.setReturn('orva_vantix_is_feature_supported', true);
    sim.setReturn('orva_vantix_get_video_config', { fps: 30 });
    sim.setReturn('orva_vantix_get_audio_device_list', [{ deviceID: 'x', deviceName: 'X' }]);
    sim.setReturn('orva_vantix_call_experimental_api', '{"error_code":0}');
    // BigInt crosses exactly; the same value as a Number is 2^64, out of range.
    sim.setReturn('orva_vantix_media_player_get_total_duration', 2n ** 64n - 1n);
    const refused = [
      ['orva_vantix_media_player_get_total_duration', 2 ** 64, /uint64/],
      ['orva_vantix_no_such_function', 0, /unknown entry point/],
      ['orva_vantix_custom_log', 0, /returns nothing/],
      ['orva_vantix_get_video_config', 5, /object/],
      ['orva_vantix_set_room_mode', undefined, /needs a value/],
    ];
    for (const [fn, value, message] of refused) assert.throws(() => sim.setReturn(fn, value), { name: 'TypeError', message }, fn);
  });

  await t.test('autoComplete, pending and complete without calls in flight', () => {
    sim.autoComplete(false);
    assert.deepStrictEqual(sim.pending(), []);
    assert.strictEqual(sim.complete(1, { errorCode: 0 }), false);
    assert.strictEqual(sim.complete(2 ** 40), false);
    assert.throws(() => sim.complete('1'), TypeError);
    sim.autoComplete(true);
  });

  await t.test('burst resolves with no calls without a registration and rejects bad requests', async () => {
    assert.deepStrictEqual(await sim.burst('room_state_update', {}, { count: 10, threads: 2 }), { calls: 0, seconds: 0 });
    await assert.rejects(sim.burst('no_such_callback', {}, { count: 1 }), TypeError);
    await assert.rejects(sim.burst('room_state_update', {}, { count: -1 }), TypeError);
    await assert.rejects(sim.burst('room_state_update', {}, { count: 1, threads: 0 }), TypeError);
    await assert.rejects(sim.burst('room_state_update', {}, { count: 1, counterKey: 'roomID' }), /counterKey roomID/);
  });

  await t.test('frame: false without a registration, TypeError for a bad target or frame', () => {
    assert.strictEqual(sim.frame({ channel: 0 }, { width: 4, height: 2, format: 4 }), false);
    assert.strictEqual(sim.frame({ streamID: 's' }, { width: 2, height: 1, format: 5, data: Buffer.alloc(8) }), false);
    assert.throws(() => sim.frame({ nothing: 1 }, { width: 4, height: 2 }), { name: 'TypeError', message: /target/ });
    assert.throws(() => sim.frame({ channel: 0 }, { height: 2 }), { name: 'TypeError', message: /width/ });
    assert.throws(() => sim.frame({ channel: 0 }, { width: 1, height: 1, data: 'pixels' }), TypeError);
  });

  await t.test('loads the engine library only on first use', { skip: process.platform !== 'linux' && 'reads /proc/self/maps' }, () => {
    const script = `
      const fs = require('fs');
      const mapped = () => fs.readFileSync('/proc/self/maps', 'utf8').includes(${JSON.stringify(paths.engineLibraryName())});
      const sim = require(${JSON.stringify(SIM)});
      const before = mapped();
      sim.version();
      console.log(JSON.stringify([before, mapped()]));`;
    const r = spawnSync(process.execPath, ['-e', script], { encoding: 'utf8' });
    assert.strictEqual(r.status, 0, r.stderr);
    assert.deepStrictEqual(JSON.parse(r.stdout), [false, true]);
  });

  await t.test('names the missing build', () => {
    const r = spawnSync(process.execPath, ['-e', `require(${JSON.stringify(SIM)}).version()`], {
      env: { ...process.env, ORVA_BUILD: path.join(paths.root, 'build', 'no-such-build') },
      encoding: 'utf8',
    });
    assert.notStrictEqual(r.status, 0);
    assert.match(r.stderr, /orva_sim_control\.node not found/);
    assert.ok(fs.existsSync(paths.controlModulePath()), 'the control module is built');
  });
});
