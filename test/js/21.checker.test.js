'use strict';
// Argument checking through the addon's own methods: the exact messages, which failure is
// reported, that a failed check never reaches the engine, and the conversions a passing
// check leads to. Alerts arrive through the engine's event function, so an engine exists
// throughout.

const test = require('node:test');
const assert = require('node:assert');
const {
  addonModule, loadAddon, loadSim, createEngine, until, runNode,
} = require('./support/addon-harness');

// [call, reported name, message, engine function that must not be called]
const FAILURES = [
  [(a) => a.SetRoomMode({}), 'setRoomMode', 'param .mode missing', 'orva_vantix_set_room_mode'],
  [(a) => a.SetRoomMode(), 'setRoomMode', 'param .mode missing', 'orva_vantix_set_room_mode'],
  [(a) => a.SetRoomMode(5), 'setRoomMode', 'param .mode missing', 'orva_vantix_set_room_mode'],
  [(a) => a.SetRoomMode({ mode: '1' }), 'setRoomMode', 'param .mode should be type of Number', 'orva_vantix_set_room_mode'],
  [(a) => a.SetRoomMode({ mode: null }), 'setRoomMode', 'param .mode should be type of Number', 'orva_vantix_set_room_mode'],
  [(a) => a.SetRoomMode({ mode: undefined }), 'setRoomMode', 'param .mode should be type of Number', 'orva_vantix_set_room_mode'],
  [(a) => a.IsFeatureSupported({ featureType: '1' }), 'IsFeatureSupported', 'param .featureType should be type of Number', 'orva_vantix_is_feature_supported'],
  [(a) => a.IsFeatureSupported({}), 'IsFeatureSupported', 'param .featureType missing', 'orva_vantix_is_feature_supported'],
  [(a) => a.setGeoFence({}), 'setGeoFence', 'param .type missing', 'orva_vantix_set_geo_fence'],
  // The first failing key decides: areaList is missing too, but never looked at.
  [(a) => a.setGeoFence({ type: 'x' }), 'setGeoFence', 'param .type should be type of Number', 'orva_vantix_set_geo_fence'],
  [(a) => a.setGeoFence({ type: 1 }), 'setGeoFence', 'param .areaList missing', 'orva_vantix_set_geo_fence'],
  [(a) => a.setGeoFence({ type: 1, areaList: {} }), 'setGeoFence', 'param .areaList should be type of Array', 'orva_vantix_set_geo_fence'],
  [(a) => a.setGeoFence({ type: 1, areaList: new Int32Array(2) }), 'setGeoFence', 'param .areaList should be type of Array', 'orva_vantix_set_geo_fence'],
  [(a) => a.setGeoFence({ type: 1, areaList: { length: 1, 0: 1 } }), 'setGeoFence', 'param .areaList should be type of Array', 'orva_vantix_set_geo_fence'],
  [(a) => a.SetLogConfig({ config: {} }), 'SetLogConfig', 'param .logPath missing', 'orva_vantix_set_log_config'],
  [(a) => a.SetLogConfig({ config: { logSize: 'x' } }), 'SetLogConfig', 'param .logPath missing', 'orva_vantix_set_log_config'],
  [(a) => a.SetLogConfig({ config: { logPath: 1, logSize: 1 } }), 'SetLogConfig', 'param .logPath should be type of String', 'orva_vantix_set_log_config'],
  [(a) => a.SetLogConfig({ config: { logPath: '/tmp', logSize: '1' } }), 'SetLogConfig', 'param .logSize should be type of Number', 'orva_vantix_set_log_config'],
];

// [call, expected result, engine function, its journaled arguments]
const CONVERSIONS = [
  [(a) => a.SetRoomMode({ mode: 2 }), undefined, 'orva_vantix_set_room_mode', { mode: 2 }],
  // A 64-bit read narrowed to the engine's 32 bits.
  [(a) => a.SetRoomMode({ mode: 2 ** 32 + 1 }), undefined, 'orva_vantix_set_room_mode', { mode: 1 }],
  [(a) => a.IsFeatureSupported({ featureType: 3 }), true, 'orva_vantix_is_feature_supported', { featureType: 3 }],
  [(a) => a.setGeoFence({ type: 2, areaList: [1, 2, 3] }), undefined, 'orva_vantix_set_geo_fence', { type: 2, areaList: [1, 2, 3] }],
  [(a) => a.setGeoFence({ type: 2, areaList: [] }), undefined, 'orva_vantix_set_geo_fence', { type: 2, areaList: [] }],
  [(a) => a.SetLogConfig({ config: { logPath: '/tmp/logs', logSize: 5242880, logCount: 7 } }), undefined,
    'orva_vantix_set_log_config', { config: { logPath: '/tmp/logs', logSize: 5242880, logCount: 7 } }],
];

test('argument checks of the addon methods', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  sim.reset();
  const session = createEngine(addon);
  t.after(() => session.destroy());

  await t.test('report each failure once, in call order, with its exact message', async () => {
    const before = new Map(FAILURES.map(([, , , fn]) => [fn, sim.calls(fn).length]));
    const start = session.named('onDebugError').length;
    for (const [call] of FAILURES) call(addon);
    await until(() => session.named('onDebugError').length >= start + FAILURES.length, 5000, 'alerts');
    const alerts = session.named('onDebugError').slice(start).map((e) => e.payload);
    assert.deepStrictEqual(
      alerts.map((p) => [p.funcName, p.errorInfo, p.errorCode]),
      FAILURES.map(([, name, message]) => [name, message, -1]));
    for (const [fn, n] of before) assert.strictEqual(sim.calls(fn).length, n, `${fn} was called`);
  });

  await t.test('a failed boolean query answers false', async () => {
    const start = session.named('onDebugError').length;
    assert.strictEqual(addon.IsFeatureSupported({ featureType: '1' }), false);
    assert.strictEqual(addon.IsFeatureSupported(), false);
    await until(() => session.named('onDebugError').length === start + 2, 5000, 'both alerts');
  });

  await t.test('a passing check hands the converted values to the engine', () => {
    sim.setReturn('orva_vantix_is_feature_supported', true);
    for (const [call, result, fn, args] of CONVERSIONS) {
      const n = sim.calls(fn).length;
      assert.deepStrictEqual(call(addon), result);
      const calls = sim.calls(fn);
      assert.strictEqual(calls.length, n + 1, fn);
      assert.deepStrictEqual(calls[calls.length - 1].args, args);
    }
  });

  await t.test('SetLogConfig throws "Wrong arguments" for a missing config and a bad logCount', async () => {
    const n = sim.calls('orva_vantix_set_log_config').length;
    const start = session.named('onDebugError').length;
    for (const arg of [undefined, {}, { configs: {} }]) {
      assert.throws(() => addon.SetLogConfig(arg), { name: 'TypeError', message: 'Wrong arguments' });
    }
    assert.throws(() => addon.SetLogConfig({ config: { logPath: '/tmp', logSize: 1, logCount: '3' } }),
      { name: 'TypeError', message: 'Wrong arguments' });
    // Only the bad logCount is also reported.
    await until(() => session.named('onDebugError').length > start, 5000, 'the logCount alert');
    const alerts = session.named('onDebugError').slice(start).map((e) => [e.payload.funcName, e.payload.errorInfo]);
    assert.deepStrictEqual(alerts, [['SetLogConfig', 'SetLogConfig: Wrong arguments logCount']]);
    assert.strictEqual(sim.calls('orva_vantix_set_log_config').length, n);
  });
});

test('SetLogConfig writes the bad logCount to standard output', () => {
  const r = runNode(`
    const addon = require(${JSON.stringify(addonModule)});
    try { addon.SetLogConfig({ config: { logPath: '/tmp', logSize: 1, logCount: 'many' } }); }
    catch (e) { console.log('threw ' + e.name + ': ' + e.message); }
  `);
  assert.strictEqual(r.status, 0, r.stderr);
  const lines = r.stdout.split('\n');
  const line = lines.indexOf('SetLogConfig: Wrong arguments -> SetLogConfig: Wrong arguments logCount');
  assert.notStrictEqual(line, -1, r.stdout);
  assert.ok(lines.indexOf('threw TypeError: Wrong arguments') > line, r.stdout);
});
