'use strict';
// The experimental API: the generated per-method cases, every refusal with its request and
// message, requests passed to the engine byte for byte, and the two methods that the wrapper
// carries out itself (the microphone fed into another publish channel, the auxiliary audio
// source).

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until } = require('./support/addon-harness');
const { describeFamily, engineCalls } = require('./support/wrapper-cases');

const REFUSED = '{"error_code":1001091}';
const request = (method, params) => JSON.stringify(params === undefined ? { method } : { method, params });
const MICROPHONE = 'vantix.set_microphone_in_designated_channel';
const AUX = 'vantix.set_aux_audio_source';
const UNKNOWN = request('vantix.get_something', { a: 1 });

describeFamily('experimental', [
  {
    method: 'callExperimentalAPI', kind: 'V', arg: { params: UNKNOWN }, checks: ['params:String'],
    calls: [['orva_vantix_call_experimental_api', { params: UNKNOWN }], ['orva_vantix_free_call_experimental_api_result', {}]],
    returns: ['{"error_code":0,"answer":[1,2]}', '{"error_code":0,"answer":[1,2]}'],
    withoutEngine: REFUSED,
  },
]);

// [request text, message of the step that refuses it]
const REFUSALS = [
  ['{"method":', 'param parse error'],
  ['', 'param parse error'],
  ['{}', 'param .method missing'],
  ['[]', 'param .method missing'],
  ['"vantix.x"', 'param .method missing'],
  [request(5, {}), 'param .method type error'],
  [request(null, {}), 'param .method type error'],
  [request('vantix', {}), 'param .method format error'],
  [request('other.get_something', {}), 'param .method format error'],
  [request('vantix.a.b', {}), 'param .method format error'],
  [request('Vantix.get_something', {}), 'param .method format error'],
  [request('vantix.get_something'), 'param .params missing'],
  [request('vantix.get_something', 5), 'param .params format error'],
  [request('vantix.get_something', [1]), 'param .params format error'],
  [request(MICROPHONE, {}), 'param params.channel missing'],
  [request(MICROPHONE, { channel: '1' }), 'param params.channel type error'],
  [request(MICROPHONE, { channel: 1.5 }), 'param params.channel type error'],
  [request(AUX, { source: 1 }), 'param params.enable missing'],
  [request(AUX, { enable: 1, source: 1 }), 'param params.enable type error'],
  // The message names the wrong key; it is kept as it is.
  [request(AUX, { enable: true }), 'param source.enable missing'],
  [request(AUX, { enable: true, source: 'microphone' }), 'param params.source type error'],
];

// Calls callExperimentalAPI and collects the alerts it raised.
async function call(session, params) {
  const before = session.named('onDebugError').length;
  const answer = session.engine.callExperimentalAPI({ params });
  // Alerts arrive in order: a marker alert after this call's (a failed check, no engine call)
  // says that all of them are in.
  session.engine.stopPreview({ marker: true });
  const isMarker = (e) => e.payload.funcName === 'stopPreview';
  await until(() => session.named('onDebugError').slice(before).some(isMarker), 5000, 'the marker alert');
  const alerts = session.named('onDebugError').slice(before);
  return { answer, alerts: alerts.slice(0, alerts.findIndex(isMarker)).map((e) => e.payload) };
}

test('experimental API requests', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  // Alerts that earlier tests raised with no engine may still be on their way, and reach the
  // engine that exists when they are delivered: let them all in first.
  await call(session, '{}');

  await t.test('each malformed request is refused with its step\'s message, and the engine is not asked', async () => {
    for (const [text, message] of REFUSALS) {
      sim.reset();
      const { answer, alerts } = await call(session, text);
      assert.strictEqual(answer, REFUSED, text);
      assert.deepStrictEqual(alerts.map((a) => [a.funcName, a.errorCode, a.errorInfo]), [['callExperimentalAPI', -1, message]], text);
      assert.deepStrictEqual(engineCalls(sim), [], text);
    }
  });

  await t.test('an unknown method reaches the engine byte for byte, and its answer is released', async () => {
    // Spacing, key order, an extra member and characters that a parser would rewrite.
    const text = '{ "params" : {"b":[1, 2.50, 1e3], "s":"\\u00e9\\n"}, "method":"vantix.do_thing" , "extra": "ünï"}';
    sim.reset();
    sim.setReturn('orva_vantix_call_experimental_api', '{"error_code":7,"text":"é"}');
    const { answer, alerts } = await call(session, text);
    assert.strictEqual(answer, '{"error_code":7,"text":"é"}');
    assert.deepStrictEqual(alerts, []);
    assert.deepStrictEqual(engineCalls(sim), [
      { fn: 'orva_vantix_call_experimental_api', args: { params: text } },
      { fn: 'orva_vantix_free_call_experimental_api_result', args: {} },
    ]);
  });

  await t.test('set_microphone_in_designated_channel turns on custom audio on the channel and feeds it the microphone', async () => {
    sim.reset();
    const { answer, alerts } = await call(session, request(MICROPHONE, { channel: 2 }));
    assert.strictEqual(answer, '{"error_code":0}');
    assert.deepStrictEqual(alerts, []);
    assert.deepStrictEqual(engineCalls(sim), [
      { fn: 'orva_vantix_enable_custom_audio_io', args: { enable: true, config: { sourceType: 1 }, channel: 2 } },
      { fn: 'orva_vantix_enable_custom_audio_capture_processing', args: { enable: true, config: null } },
    ]);
    // A captured microphone frame goes into channel 2 as it is, and stays as it was.
    sim.reset();
    const frame = { data: [1, 2, 250, 251], param: { sampleRate: 48000, channel: 1 }, timestamp: 5 };
    assert.ok(sim.emit('process_captured_audio_data', frame));
    assert.deepStrictEqual(sim.calls('orva_vantix_send_custom_audio_capture_pcm_data').map((c) => c.args),
      [{ data: frame.data, param: frame.param, channel: 2 }]);
    // Asked again, the new channel replaces the old.
    await call(session, request(MICROPHONE, { channel: 3 }));
    sim.reset();
    sim.emit('process_captured_audio_data', frame);
    assert.deepStrictEqual(sim.calls('orva_vantix_send_custom_audio_capture_pcm_data').map((c) => c.args.channel), [3]);
  });

  await t.test('set_microphone_in_designated_channel stops at the first engine refusal and answers its code', async () => {
    sim.reset();
    sim.setReturn('orva_vantix_enable_custom_audio_io', 1000017);
    const { answer } = await call(session, request(MICROPHONE, { channel: 1 }));
    assert.strictEqual(answer, '{"error_code":1000017}');
    assert.deepStrictEqual(engineCalls(sim).map((c) => c.fn),
      ['orva_vantix_enable_custom_audio_io']);
  });

  const AUX_CALLS = (enable, source) => [
    `{"method":"vantix.set_aux_audio_source_type","params":{"source":${source}}}`,
    `{"method":"vantix.enable_aux_audio_source","params":{"enable":${enable}}}`,
  ];
  const experimentalCalls = () => sim.calls('orva_vantix_call_experimental_api').map((c) => c.args.params);

  await t.test('set_aux_audio_source makes its two engine requests and answers with the second answer', async () => {
    for (const [enable, source] of [[true, 3], [false, 0]]) {
      sim.reset();
      const { answer, alerts } = await call(session, request(AUX, { enable, source }));
      assert.deepStrictEqual(alerts, []);
      assert.deepStrictEqual(experimentalCalls(), AUX_CALLS(enable, source));
      assert.strictEqual(sim.calls('orva_vantix_free_call_experimental_api_result').length, 2, 'both answers released');
      // The simulated engine echoes the method it was asked.
      assert.strictEqual(answer, '{"error_code":0,"method":"vantix.enable_aux_audio_source"}');
    }
  });

  await t.test('set_aux_audio_source stops after a first answer that reports a failure', async () => {
    sim.reset();
    sim.setReturn('orva_vantix_call_experimental_api', '{"error_code":1000005}');
    const { answer } = await call(session, request(AUX, { enable: true, source: 2 }));
    assert.strictEqual(answer, '{"error_code":1000005}');
    assert.deepStrictEqual(experimentalCalls(), AUX_CALLS(true, 2).slice(0, 1));
  });
});

test('experimental API with no engine', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const first = createEngine(addon);
  // The microphone is fed into channel 2 of this engine only.
  first.engine.callExperimentalAPI({ params: request(MICROPHONE, { channel: 2 }) });
  first.destroy();

  await t.test('every well-formed request is refused, without a call ("Engine is not exist!")', () => {
    // The alert itself reaches no script: with no engine there is no event function.
    for (const text of [request(MICROPHONE, { channel: 1 }), request(AUX, { enable: true, source: 1 }), UNKNOWN]) {
      sim.reset();
      assert.strictEqual(first.engine.callExperimentalAPI({ params: text }), REFUSED, text);
      assert.deepStrictEqual(engineCalls(sim), [], text);
    }
  });

  await t.test('the microphone of a later engine is not fed into the earlier engine\'s channel', () => {
    const session = createEngine(addon);
    try {
      sim.reset();
      assert.ok(sim.emit('process_captured_audio_data', { data: [1, 2], param: { sampleRate: 16000, channel: 1 } }));
      assert.deepStrictEqual(sim.calls('orva_vantix_send_custom_audio_capture_pcm_data'), []);
    } finally {
      session.destroy();
    }
  });
});
