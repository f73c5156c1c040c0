'use strict';
// The debug alerts as script receives them through the engine's event function:
// "onDebugError" always, "onDebugInfo" only while the debug assistant is on. (The Chinese
// texts can only be selected natively: test/native/debug_alert_test.cc.)

const test = require('node:test');
const assert = require('node:assert');
const {
  addonModule, loadAddon, createEngine, until, sleep, runNode, countLines,
} = require('./support/addon-harness');

test('onDebugError', async (t) => {
  const addon = loadAddon();
  const session = createEngine(addon);
  t.after(() => session.destroy());

  await t.test('carries the English alert for an argument failure, keys in order', async () => {
    addon.SetRoomMode({});
    await until(() => session.named('onDebugError').length === 1, 5000, 'the alert');
    const [{ payload }] = session.named('onDebugError');
    assert.deepStrictEqual(Object.keys(payload), ['alertTitle', 'alertBody', 'funcName', 'errorCode', 'errorInfo']);
    assert.deepStrictEqual(payload, {
      alertTitle: '[ORVA]Tips',
      alertBody: 'Failed to call function:setRoomMode\n\nError Code:-1\nError Info:param .mode missing' +
        '\n\nYou can see in the debug console for more details.',
      funcName: 'setRoomMode',
      errorCode: -1,
      errorInfo: 'param .mode missing',
    });
  });

  await t.test('arrives as (name, payload) with an undefined receiver', async () => {
    const seen = [];
    addon.DestroyEngine();
    addon.CreateEngine({
      profile: { appID: 1, scenario: 0 },
      // eslint-disable-next-line func-names
      tsfn: function (...args) { seen.push({ receiver: this, args }); },
      SDKVersion: 'x',
      electronVersion: 'y',
    });
    addon.IsFeatureSupported({});
    await until(() => seen.some((s) => s.args[0] === 'onDebugError'), 5000, 'the alert');
    const alert = seen.find((s) => s.args[0] === 'onDebugError');
    assert.strictEqual(alert.args.length, 2);
    assert.strictEqual(alert.receiver, undefined);
  });
});

test('onDebugInfo stays silent while the debug assistant is off; onDebugError does not', async () => {
  const addon = loadAddon();
  const session = createEngine(addon);  // creating the engine switches the assistant off
  try {
    addon.SetRoomMode({ mode: 1 });
    addon.IsFeatureSupported({ featureType: 1 });
    addon.setGeoFence({});
    await until(() => session.named('onDebugError').length === 1, 5000, 'the alert');
    await sleep(50);
    assert.deepStrictEqual(session.named('onDebugInfo'), []);
    assert.strictEqual(session.named('onDebugError').length, 1);
  } finally {
    session.destroy();
  }
});

test('onDebugInfo reports every checked call while the debug assistant is on', async (t) => {
  const addon = loadAddon();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  if (typeof session.engine.enableDebugAssistant !== 'function') {
    t.skip('needs the engine wrapper\'s enableDebugAssistant to switch the assistant back on');
    return;
  }
  session.engine.enableDebugAssistant({ enable: true });
  const start = session.events.length;
  addon.SetRoomMode({ mode: 1 });
  addon.IsFeatureSupported({ featureType: 1 });
  await until(() => session.named('onDebugInfo').length >= 2, 5000, 'info events');
  const infos = session.events.slice(start).filter((e) => e.name === 'onDebugInfo').map((e) => e.payload);
  assert.deepStrictEqual(infos.slice(-2), [{ info: 'call func:setRoomMode' }, { info: 'call func:IsFeatureSupported' }]);
});

test('every onDebugError writes its trace line, with or without an engine', () => {
  const r = runNode(`
    const addon = require(${JSON.stringify(addonModule)});
    addon.SetRoomMode({});
    addon.setGeoFence({});
  `);
  assert.strictEqual(r.status, 0, r.stderr);
  assert.strictEqual(countLines(r.stdout, 'OrvaVantixAddonDataCenter::onDebugError '), 2, r.stdout);
});
