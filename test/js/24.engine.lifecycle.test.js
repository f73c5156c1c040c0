'use strict';
// Engine configuration, creation and destruction as the engine sees them (the simulated
// engine's journal) and as script sees them (results and TypeErrors).
//
// The order of the tests matters: "enable_toast_on_test_env" goes into CreateEngine's
// configuration only until the process's first SetEngineConfig.

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, PROFILE } = require('./support/addon-harness');

const addon = loadAddon();
const sim = loadSim();

const ARG = {
  profile: PROFILE,
  tsfn: () => {},
  SDKVersion: '9.9.9-test',
  electronVersion: '30.0.0',
};
const without = (key) => Object.fromEntries(Object.entries(ARG).filter(([k]) => k !== key));
const withProfile = (profile) => ({ ...ARG, profile });

const advancedTexts = () => sim.calls('orva_vantix_set_engine_config').map((c) => c.args.config.advancedConfig);
const lastCall = (fn) => sim.calls(fn).slice(-1)[0];

test('CreateEngine', async (t) => {
  sim.reset();

  await t.test('rejects malformed arguments with its TypeErrors, in order, before touching the engine', () => {
    const rows = [
      [[], 'Wrong number of arguments'],
      [[undefined], 'Wrong arguments'],
      [[null], 'Wrong arguments'],
      [['profile'], 'Wrong arguments'],
      [[{}], 'Wrong arguments'],
      [[without('profile')], 'Wrong arguments'],
      [[without('tsfn')], 'Wrong arguments'],
      [[without('SDKVersion')], 'Wrong arguments'],
      [[without('electronVersion')], 'Wrong arguments'],
      // Top-level keys are checked before the profile's.
      [[{ ...without('tsfn'), profile: {} }], 'Wrong arguments'],
      [[withProfile({ scenario: 0 })], 'Wrong profile arguments'],
      [[withProfile({ appID: 1 })], 'Wrong profile arguments'],
      [[withProfile(7)], 'Wrong profile arguments'],
    ];
    for (const [args, message] of rows) {
      assert.throws(() => addon.CreateEngine(...args), { name: 'TypeError', message }, JSON.stringify(args));
    }
    assert.deepStrictEqual(sim.calls(), []);
  });

  await t.test('configures, creates and sets the engine up in order, and returns the engine object', () => {
    const engine = addon.CreateEngine(ARG);
    try {
      assert.strictEqual(engine.constructor.name, 'OrvaVantixEngineWrapper');
      assert.deepStrictEqual(advancedTexts(), [
        'thirdparty_framework_info=electron_v30.0.0;video_data_image_colorspace=rgba;enable_toast_on_test_env=false',
      ]);
      assert.deepStrictEqual(lastCall('orva_vantix_engine_init_with_profile').args.profile, PROFILE);
      const steps = sim.calls().map((c) => c.fn).filter((fn) => [
        'orva_vantix_set_engine_config', 'orva_vantix_engine_init_with_profile',
        'orva_vantix_set_platform_language', 'orva_vantix_custom_log', 'orva_vantix_enable_custom_video_render',
      ].includes(fn));
      // The SDK layer announces the language before init too; the addon again after it.
      assert.deepStrictEqual(steps, [
        'orva_vantix_set_engine_config', 'orva_vantix_set_platform_language',
        'orva_vantix_engine_init_with_profile', 'orva_vantix_set_platform_language',
        'orva_vantix_custom_log', 'orva_vantix_enable_custom_video_render',
      ]);
      assert.deepStrictEqual(lastCall('orva_vantix_set_platform_language').args, { language: 5 });
      assert.deepStrictEqual(lastCall('orva_vantix_custom_log').args,
        { log: '*** Electron SDK Version: 9.9.9-test', module: 'Electron' });
      const render = lastCall('orva_vantix_enable_custom_video_render').args;
      assert.strictEqual(render.enable, true);
      assert.strictEqual(render.config.frameFormatSeries, 1);
      assert.strictEqual(render.config.enableEngineRender, false);
    } finally {
      addon.DestroyEngine();
    }
  });

  await t.test('refuses a second engine', () => {
    addon.CreateEngine(ARG);
    try {
      const inits = sim.calls('orva_vantix_engine_init_with_profile').length;
      for (const args of [[ARG], [], [null]]) {
        assert.throws(() => addon.CreateEngine(...args),
          { name: 'TypeError', message: 'Calling init is disallowed when engine is already initialized' });
      }
      assert.strictEqual(sim.calls('orva_vantix_engine_init_with_profile').length, inits);
    } finally {
      addon.DestroyEngine();
    }
  });

  await t.test('takes an empty appSign when the profile has none', () => {
    addon.CreateEngine(withProfile({ appID: 42, scenario: 3 }));
    addon.DestroyEngine();
    assert.deepStrictEqual(lastCall('orva_vantix_engine_init_with_profile').args.profile,
      { appID: 42, appSign: '', scenario: 3 });
  });

  await t.test('writes the SDK version line once per engine, again after a destroy', () => {
    const logged = () => sim.calls('orva_vantix_custom_log')
      .filter((c) => c.args.log === '*** Electron SDK Version: 9.9.9-test').length;
    const before = logged();
    addon.CreateEngine(ARG);
    addon.DestroyEngine();
    addon.CreateEngine(ARG);
    assert.strictEqual(logged(), before + 2);
    addon.DestroyEngine();
  });

  await t.test('takes the engine back down when its event callback is not a function', () => {
    const uninits = sim.calls('orva_vantix_engine_uninit_async').length;
    assert.throws(() => addon.CreateEngine({ ...ARG, tsfn: 'not a function' }), Error);
    assert.strictEqual(sim.calls('orva_vantix_engine_uninit_async').length, uninits + 1);
    addon.CreateEngine(ARG);  // not refused: no engine was left behind
    addon.DestroyEngine();
  });

  await t.test('returns an engine object but keeps no engine when the engine refuses', () => {
    sim.setReturn('orva_vantix_engine_init_with_profile', 1);
    try {
      const engine = addon.CreateEngine(ARG);
      assert.strictEqual(engine.constructor.name, 'OrvaVantixEngineWrapper');
    } finally {
      sim.reset();
    }
    assert.strictEqual(addon.DestroyEngine(), 0);
    assert.deepStrictEqual(sim.calls('orva_vantix_engine_uninit_async'), []);
  });
});

test('DestroyEngine', async (t) => {
  await t.test('without an engine answers 0 and calls nothing', () => {
    sim.reset();
    assert.strictEqual(addon.DestroyEngine(), 0);
    assert.strictEqual(addon.DestroyEngine(), 0);
    assert.deepStrictEqual(sim.calls(), []);
  });

  await t.test('uninitialises the engine once and answers 0', () => {
    addon.CreateEngine(ARG);
    sim.reset();
    assert.strictEqual(addon.DestroyEngine(), 0);
    assert.strictEqual(sim.calls('orva_vantix_engine_uninit_async').length, 1);
    assert.strictEqual(addon.DestroyEngine(), 0);
    assert.strictEqual(sim.calls('orva_vantix_engine_uninit_async').length, 1);
  });
});

test('SetEngineConfig', async (t) => {
  sim.reset();

  await t.test('rejects a missing or non-object config', () => {
    for (const args of [[], [{}], [{ config: 1 }], [{ config: null }], [{ config: 'x' }]]) {
      assert.throws(() => addon.SetEngineConfig(...args), { name: 'TypeError', message: 'Wrong arguments' });
    }
    assert.deepStrictEqual(sim.calls(), []);
  });

  await t.test('hands the engine its advanced text, the toast switch first and unchangeable', () => {
    const rows = [
      [{}, 'enable_toast_on_test_env=false'],
      [{ advancedConfig: {} }, 'enable_toast_on_test_env=false'],
      [{ advancedConfig: { enable_toast_on_test_env: 'true' } }, 'enable_toast_on_test_env=false'],
      [{ advancedConfig: { a: 'x', enable_toast_on_test_env: true, b: 2, c: false } },
        'enable_toast_on_test_env=false;a=x;b=2;c=false'],
    ];
    for (const [config, text] of rows) {
      assert.strictEqual(addon.SetEngineConfig({ config }), undefined);
      assert.strictEqual(lastCall('orva_vantix_set_engine_config').args.config.advancedConfig, text);
    }
  });

  await t.test('takes the log settings as text and number', () => {
    addon.SetEngineConfig({ config: { logConfig: { logPath: '/tmp/orva-logs', logSize: '2048' } } });
    const { logConfig } = lastCall('orva_vantix_set_engine_config').args.config;
    assert.strictEqual(logConfig.logPath, '/tmp/orva-logs');
    assert.strictEqual(logConfig.logSize, 2048);
  });

  await t.test('from then on CreateEngine leaves the toast switch out', () => {
    addon.CreateEngine(ARG);
    addon.DestroyEngine();
    assert.strictEqual(lastCall('orva_vantix_set_engine_config').args.config.advancedConfig,
      'thirdparty_framework_info=electron_v30.0.0;video_data_image_colorspace=rgba');
  });
});
