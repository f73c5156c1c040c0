'use strict';
// Publishing on the engine wrapper: the generated per-method cases, then the rules of this
// family (optional publish configuration, the two configuration forms of setVideoConfig and
// setAudioConfig with their presets and texts, optional CDN and watermark objects, the
// audio source mix configuration).

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until } = require('./support/addon-harness');
const { describeFamily, engineCalls } = require('./support/wrapper-cases');

const U32 = 2 ** 32;
// 2^63 tells a 64-bit read cut to 32 bits (-1, or 4294967295 unsigned) from a 32-bit read (0).
const I64 = 2 ** 63;
const VIDEO = { captureWidth: U32 + 640, captureHeight: 360, encodeWidth: 640, encodeHeight: 360, fps: 15, bitrate: 600, codecID: 2 };
const ENGINE_VIDEO = { ...VIDEO, captureWidth: 640 };
const VIDEO_CHECKS = Object.keys(VIDEO).map((k) => `config.${k}:Number`);
const isJpegSnapshot = (r) => r.errorCode === 0 && r.image.startsWith('/9j/') && Object.keys(r).join() === 'errorCode,image';

const ROWS = [
  {
    method: 'startPublishingStream', kind: 'U',
    arg: { streamID: 's-1', channel: U32 + 1, config: { roomID: 'room-1', forceSynchronousNetworkTime: U32 + 1, streamCensorshipMode: 2 } },
    checks: ['streamID:String', 'channel:Number'],
    calls: [['orva_vantix_start_publishing_stream_with_config',
      { streamID: 's-1', config: { roomID: 'room-1', forceSynchronousNetworkTime: 1, streamCensorshipMode: 2 }, channel: 1 }]],
  },
  {
    method: 'stopPublishingStream', kind: 'U', arg: { channel: U32 + 1 }, checks: ['channel:Number'],
    calls: [['orva_vantix_stop_publishing_stream', { channel: 1 }]],
  },
  {
    method: 'setStreamExtraInfo', kind: 'P', arg: { extraInfo: 'hello', channel: 0 }, checks: ['extraInfo:String', 'channel:Number'],
    calls: [['orva_vantix_set_stream_extra_info', { extraInfo: 'hello', channel: 0 }]], result: { errorCode: 0 },
  },
  {
    method: 'startPreview', kind: 'U', arg: { channel: 0, viewMode: U32 + 2 }, checks: ['channel:Number', 'viewMode:Number'],
    calls: [['orva_vantix_start_preview', { canvas: { view: 0, viewMode: 2, backgroundColor: 0 }, channel: 0 }]],
  },
  {
    method: 'stopPreview', kind: 'U', arg: { channel: 0 }, checks: ['channel:Number'],
    calls: [['orva_vantix_stop_preview', { channel: 0 }]],
  },
  {
    method: 'setVideoConfig', kind: 'U', arg: { config: VIDEO, channel: 1 }, checks: [...VIDEO_CHECKS, 'channel:Number'],
    calls: [['orva_vantix_set_video_config', { config: ENGINE_VIDEO, channel: 1 }]],
  },
  {
    method: 'getVideoConfig', kind: 'V', arg: { channel: U32 + 1 }, checks: ['channel:Number'],
    calls: [['orva_vantix_get_video_config', { channel: 1 }]],
    returns: [ENGINE_VIDEO, ENGINE_VIDEO],
  },
  {
    method: 'setVideoMirrorMode', kind: 'U', arg: { mirrorMode: I64, channel: 0 }, checks: ['mirrorMode:Number', 'channel:Number'],
    calls: [['orva_vantix_set_video_mirror_mode', { mirrorMode: -1, channel: 0 }]],
  },
  {
    method: 'setAudioConfig', kind: 'U', arg: { config: { bitrate: U32 + 64, channel: 2, codecID: 1 }, channel: 1 },
    checks: ['config.bitrate:Number', 'config.channel:Number', 'config.codecID:Number'],
    calls: [['orva_vantix_set_audio_config_by_channel', { config: { bitrate: 64, channel: 2, codecID: 1 }, channel: 1 }]],
  },
  {
    method: 'getAudioConfig', kind: 'V', arg: {}, checks: [],
    calls: [['orva_vantix_get_audio_config_by_channel', { channel: 0 }]],
    returns: [{ bitrate: 48, channel: 1, codecID: 3 }, { bitrate: 48, channel: 1, codecID: 3 }],
  },
  {
    method: 'mutePublishStreamAudio', kind: 'U', arg: { mute: true, channel: 0 }, checks: ['mute:Boolean', 'channel:Number'],
    calls: [['orva_vantix_mute_publish_stream_audio', { mute: true, channel: 0 }]],
  },
  {
    method: 'mutePublishStreamVideo', kind: 'U', arg: { mute: false, channel: 1 }, checks: ['mute:Boolean', 'channel:Number'],
    calls: [['orva_vantix_mute_publish_stream_video', { mute: false, channel: 1 }]],
  },
  {
    method: 'enableTrafficControl', kind: 'U', arg: { enable: true, property: I64, channel: 0 },
    checks: ['enable:Boolean', 'property:Number', 'channel:Number'],
    calls: [['orva_vantix_enable_traffic_control_by_channel', { enable: true, property: -1, channel: 0 }]],
  },
  {
    // No channel key: the main channel.
    method: 'setMinVideoBitrateForTrafficControl', kind: 'U', arg: { bitrate: 200, mode: 1 }, checks: ['bitrate:Number', 'mode:Number'],
    calls: [['orva_vantix_set_min_video_bitrate_for_traffic_control_by_channel', { bitrate: 200, mode: 1, channel: 0 }]],
  },
  {
    method: 'setMinVideoFpsForTrafficControl', kind: 'U', arg: { fps: 5, channel: 1 }, checks: ['fps:Number', 'channel:Number'],
    calls: [['orva_vantix_set_min_video_fps_for_traffic_control_by_channel', { fps: 5, channel: 1 }]],
  },
  {
    method: 'setMinVideoResolutionForTrafficControl', kind: 'U', arg: { width: 320, height: 180, channel: 0 },
    checks: ['width:Number', 'height:Number', 'channel:Number'],
    calls: [['orva_vantix_set_min_video_resolution_for_traffic_control_by_channel', { width: 320, height: 180, channel: 0 }]],
  },
  {
    method: 'addPublishCdnUrl', kind: 'P', arg: { streamID: 's-1', targetURL: 'rtmp://cdn/a' }, checks: ['streamID:String', 'targetURL:String'],
    calls: [['orva_vantix_add_publish_cdn_url', { streamID: 's-1', targetURL: 'rtmp://cdn/a' }]], result: { errorCode: 0 },
  },
  {
    method: 'removePublishCdnUrl', kind: 'P', arg: { streamID: 's-1', targetURL: 'rtmp://cdn/a' }, checks: ['streamID:String', 'targetURL:String'],
    calls: [['orva_vantix_remove_publish_cdn_url', { streamID: 's-1', targetURL: 'rtmp://cdn/a' }]], result: { errorCode: 0 },
  },
  {
    method: 'enablePublishDirectToCDN', kind: 'U', arg: { enable: true, channel: 0, config: { url: 'rtmp://cdn/b', authParam: 'p=1' } },
    checks: ['enable:Boolean', 'channel:Number', 'config.url:String', 'config.authParam:String'],
    calls: [['orva_vantix_enable_publish_direct_to_cdn', { enable: true, config: { url: 'rtmp://cdn/b', authParam: 'p=1' }, channel: 0 }]],
  },
  {
    method: 'setPublishWatermark', kind: 'U',
    arg: { isPreviewVisible: true, channel: 0, watermark: { imageURL: 'file:///w.png', layout: { x: 1, y: 2, width: 30, height: U32 + 40 } } },
    checks: ['isPreviewVisible:Boolean', 'channel:Number', 'watermark.imageURL:String', 'watermark.layout:Object',
      'watermark.layout.x:Number', 'watermark.layout.y:Number', 'watermark.layout.width:Number', 'watermark.layout.height:Number'],
    calls: [['orva_vantix_set_publish_watermark',
      { isPreviewVisible: true, watermark: { imageURL: 'file:///w.png', layout: { x: 1, y: 2, width: 30, height: 40 } }, channel: 0 }]],
  },
  {
    method: 'sendSEI', kind: 'U', arg: { data: new Uint8Array([1, 2, 250]).buffer, channel: 0 }, checks: ['data:ArrayBuffer', 'channel:Number'],
    calls: [['orva_vantix_send_sei', { data: [1, 2, 250], channel: 0 }]],
  },
  {
    method: 'enableHardwareEncoder', kind: 'U', arg: { enable: true }, checks: ['enable:Boolean'],
    calls: [['orva_vantix_enable_hardware_encoder', { enable: true }]],
  },
  {
    method: 'enableH265EncodeFallback', kind: 'U', arg: { enable: false }, checks: ['enable:Boolean'],
    calls: [['orva_vantix_enable_h_265_encode_fallback', { enable: false }]],
  },
  {
    method: 'isVideoEncoderSupported', kind: 'V', arg: { codecID: 1, codecBackend: U32 + 2 }, checks: ['codecID:Number', 'codecBackend:Number'],
    calls: [['orva_vantix_is_video_encoder_supported', { codecID: 1, codecBackend: 2 }]], returns: [2, 2],
  },
  {
    method: 'setCapturePipelineScaleMode', kind: 'U', arg: { mode: 1 }, checks: ['mode:Number'],
    calls: [['orva_vantix_set_capture_pipeline_scale_mode', { mode: 1 }]],
  },
  {
    method: 'setStreamAlignmentProperty', kind: 'U', arg: { alignment: 1, channel: 1 }, checks: ['alignment:Number', 'channel:Number'],
    calls: [['orva_vantix_set_stream_alignment_property', { alignment: 1, channel: 1 }]],
  },
  {
    method: 'setPublishStreamEncryptionKey', kind: 'U', arg: { key: 'secret', channel: 0 }, checks: ['key:String', 'channel:Number'],
    calls: [['orva_vantix_set_publish_stream_encryption_key', { key: 'secret', channel: 0 }]],
  },
  {
    method: 'setTrafficControlFocusOn', kind: 'U', arg: { mode: 1, channel: 0 }, checks: ['mode:Number', 'channel:Number'],
    calls: [['orva_vantix_set_traffic_control_focus_on_by_channel', { mode: 1, channel: 0 }]],
  },
  {
    method: 'setSEIConfig', kind: 'U', arg: { config: { type: U32 + 1 } }, checks: ['config:Object', 'config.type:Number'],
    calls: [['orva_vantix_set_sei_config', { config: { type: 1 } }]],
  },
  {
    method: 'takePublishStreamSnapshot', kind: 'P', arg: { channel: 0 }, checks: ['channel:Number'],
    calls: [['orva_vantix_take_publish_stream_snapshot', { channel: 0 }]], result: isJpegSnapshot,
  },
  {
    method: 'setVideoSource', kind: 'V', arg: { source: 1, instanceID: I64, channel: 0 },
    checks: ['source:Number', 'instanceID:Number', 'channel:Number'],
    calls: [['orva_vantix_set_video_source', { source: 1, instanceID: 4294967295, channel: 0 }]], returns: [5, 5],
  },
  {
    method: 'setAudioSource', kind: 'V', arg: { source: 2, channel: 1 }, checks: ['source:Number', 'channel:Number'],
    calls: [['orva_vantix_set_audio_source', { source: 2, channel: 1 }]], returns: [0, 0],
  },
  {
    method: 'setAudioSourceWithConfig', name: 'setAudioSource', kind: 'V',
    arg: { source: 2, config: { mediaPlayerIndexList: [0, U32 + 1], audioEffectPlayerIndexList: [2], enableMixSystemPlayout: true, enableMixEnginePlayout: false } },
    checks: ['source:Number'],
    calls: [['orva_vantix_set_audio_source_with_config', {
      source: 2,
      config: { mediaPlayerIndexList: [0, 1], audioEffectPlayerIndexList: [2], enableMixSystemPlayout: true, enableMixEnginePlayout: false },
    }]],
    returns: [-3, -3],
  },
];

describeFamily('publishing', ROWS);

test('publishing: edge cases', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const { engine } = session;

  async function alertOf(method, arg, funcName = method) {
    const before = session.named('onDebugError').length;
    assert.strictEqual(engine[method](arg), undefined);
    await until(() => session.named('onDebugError').length > before, 5000, 'the alert');
    const { payload } = session.named('onDebugError')[before];
    assert.strictEqual(payload.funcName, funcName);
    return payload.errorInfo;
  }
  const argsOf = (fn) => sim.calls(fn).map((c) => c.args);

  await t.test('startPublishingStream: config keys one by one, present-as-undefined counts, a non-object config is ignored', async () => {
    const base = { streamID: 's', channel: 0 };
    sim.reset();
    for (const [config, message] of [
      [{ roomID: 7 }, 'param roomID type error!'],
      [{ roomID: undefined }, 'param roomID type error!'],
      [{ roomID: 1, streamCensorshipMode: 'x' }, 'param roomID type error!'],
      [{ roomID: 'r', forceSynchronousNetworkTime: '1' }, 'param forceSynchronousNetworkTime type error!'],
      [{ streamCensorshipMode: true }, 'param streamCensorshipMode type error!'],
    ]) {
      assert.strictEqual(await alertOf('startPublishingStream', { ...base, config }), message);
    }
    assert.deepStrictEqual(engineCalls(sim), []);
    engine.startPublishingStream({ ...base, config: 'x' });
    engine.startPublishingStream({ ...base, config: { streamCensorshipMode: 1 } });
    const defaults = { roomID: '', forceSynchronousNetworkTime: 0, streamCensorshipMode: 0 };
    assert.deepStrictEqual(argsOf('orva_vantix_start_publishing_stream_with_config').map((a) => a.config),
      [defaults, { ...defaults, streamCensorshipMode: 1 }]);
    engine.stopPublishingStream({ channel: 0 });
  });

  await t.test('setVideoConfig: missing config, presets, fps outside 1..120, and the Number-or-Object TypeError', async () => {
    sim.reset();
    assert.strictEqual(await alertOf('setVideoConfig', { channel: 0 }), 'param config is missing');
    assert.strictEqual(await alertOf('setVideoConfig', { config: 2, channel: '0' }), 'param .channel should be type of Number');
    // The configuration's keys are checked before the channel.
    assert.strictEqual(await alertOf('setVideoConfig', { config: { ...VIDEO, fps: undefined } }), 'param config.fps should be type of Number');
    for (const config of ['x', null, undefined, true]) {
      assert.throws(() => engine.setVideoConfig({ config, channel: 0 }),
        { name: 'TypeError', message: 'config should be a [Number | Object] for calling:setVideoConfig' });
    }
    assert.deepStrictEqual(engineCalls(sim), []);
    const ladder = [[320, 180, 300], [480, 270, 400], [640, 360, 600], [960, 540, 1200], [1280, 720, 1500], [1920, 1080, 3000]];
    for (const preset of [0, 1, 2, 3, 4, 5, 4.7, -1, 6, U32 + 1]) engine.setVideoConfig({ config: preset, channel: 0 });
    engine.setVideoConfig({ config: { ...VIDEO, fps: 121 }, channel: 0 });
    const asPreset = ([w, h, bitrate]) => ({ captureWidth: w, captureHeight: h, encodeWidth: w, encodeHeight: h, fps: 15, bitrate, codecID: 0 });
    assert.deepStrictEqual(argsOf('orva_vantix_set_video_config').map((a) => a.config), [
      ...ladder.map(asPreset),
      asPreset(ladder[4]),                                   // 4.7 is cut to 4
      asPreset(ladder[2]), asPreset(ladder[2]),              // no such preset: 360p
      asPreset(ladder[1]),                                   // 2^32 + 1 is cut to 1
      { ...ENGINE_VIDEO, fps: 121 },                         // the engine judges frame rates
    ]);
  });

  await t.test('setAudioConfig: presets, its own channel text, and its TypeError with the extra blank', async () => {
    sim.reset();
    assert.strictEqual(await alertOf('setAudioConfig', { channel: 0 }), 'param config is missing');
    assert.strictEqual(await alertOf('setAudioConfig', { config: 1, channel: '0' }),
      'channel should be a Number for calling: setAudioConfigWithChannel');
    assert.strictEqual(await alertOf('setAudioConfig', { config: 1 }),
      'channel should be a Number for calling: setAudioConfigWithChannel');
    assert.strictEqual(await alertOf('setAudioConfig', { config: { bitrate: 1, channel: 1 }, channel: 0 }), 'param config.codecID missing');
    assert.throws(() => engine.setAudioConfig({ config: 'x', channel: 0 }),
      { name: 'TypeError', message: 'config should be a [Number | Object ] for calling:setAudioConfig' });
    assert.deepStrictEqual(engineCalls(sim), []);
    for (const preset of [0, 1, 2, 3, 4, 9]) engine.setAudioConfig({ config: preset, channel: 1 });
    assert.deepStrictEqual(argsOf('orva_vantix_set_audio_config_by_channel'), [
      [16, 1], [48, 1], [56, 2], [128, 1], [192, 2], [48, 1],
    ].map(([bitrate, channel]) => ({ config: { bitrate, channel, codecID: 0 }, channel: 1 })));
  });

  await t.test('getAudioConfig asks the numeric channel it is given, else the main channel', () => {
    sim.reset();
    engine.getAudioConfig({ channel: U32 + 2 });
    engine.getAudioConfig({ channel: '2' });
    engine.getAudioConfig();
    assert.deepStrictEqual(argsOf('orva_vantix_get_audio_config_by_channel'), [{ channel: 2 }, { channel: 0 }, { channel: 0 }]);
  });

  await t.test('CDN configuration and watermark are passed only when they are objects', () => {
    sim.reset();
    engine.enablePublishDirectToCDN({ enable: false, channel: 0 });
    engine.enablePublishDirectToCDN({ enable: false, channel: 0, config: 5 });
    engine.setPublishWatermark({ isPreviewVisible: false, channel: 0 });
    engine.setPublishWatermark({ isPreviewVisible: false, channel: 0, watermark: 'w' });
    assert.deepStrictEqual(argsOf('orva_vantix_enable_publish_direct_to_cdn').map((a) => a.config), [null, null]);
    assert.deepStrictEqual(argsOf('orva_vantix_set_publish_watermark').map((a) => a.watermark), [null, null]);
  });

  await t.test('setAudioSourceWithConfig: its four texts and the config text, reported as setAudioSource', async () => {
    sim.reset();
    for (const [config, message] of [
      [undefined, 'param.config type error. it should be a object!'],
      [5, 'param.config type error. it should be a object!'],
      [{ mediaPlayerIndexList: 1 }, 'config.mediaPlayerIndexList type error. it should be a array!'],
      [{ mediaPlayerIndexList: undefined }, 'config.mediaPlayerIndexList type error. it should be a array!'],
      [{ audioEffectPlayerIndexList: {} }, 'config.audioEffectPlayerIndexList type error. it should be a array!'],
      [{ enableMixSystemPlayout: 1 }, 'config.enableMixSystemPlayout type error. it should be a boolean!'],
      [{ enableMixEnginePlayout: 'yes' }, 'config.enableMixEnginePlayout type error. it should be a boolean!'],
    ]) {
      const arg = config === undefined ? { source: 1 } : { source: 1, config };
      assert.strictEqual(await alertOf('setAudioSourceWithConfig', arg, 'setAudioSource'), message);
    }
    assert.deepStrictEqual(engineCalls(sim), []);
    sim.setReturn('orva_vantix_set_audio_source_with_config', 0);
    assert.strictEqual(engine.setAudioSourceWithConfig({ source: 1, config: {} }), 0);
    assert.deepStrictEqual(argsOf('orva_vantix_set_audio_source_with_config'), [{
      source: 1,
      config: { mediaPlayerIndexList: [], audioEffectPlayerIndexList: [], enableMixSystemPlayout: false, enableMixEnginePlayout: false },
    }]);
  });
});
