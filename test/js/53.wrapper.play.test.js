'use strict';
// Playing on the engine wrapper: the generated per-method cases, then the player
// configuration's optional keys and texts, and stopPlayingStream's buffer removal.

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until, sleep } = require('./support/addon-harness');
const { describeFamily, engineCalls } = require('./support/wrapper-cases');

const U32 = 2 ** 32;
// 2^63 tells a 64-bit read cut to 32 bits (-1, or 4294967295 unsigned) from a 32-bit read (0).
const I64 = 2 ** 63;
const PLAYER_DEFAULTS = {
  resourceMode: 0, videoCodecID: 0, sourceResourceType: 0, roomID: '', codecTemplateID: 0, resourceSwitchMode: 0, cdnConfig: null,
};
const isJpegSnapshot = (r) => r.errorCode === 0 && r.image.startsWith('/9j/') && Object.keys(r).join() === 'errorCode,image';

const ROWS = [
  {
    method: 'startPlayingStream', kind: 'U',
    arg: {
      streamID: 's-1',
      config: {
        resourceMode: I64, videoCodecID: 1, sourceResourceType: 2, roomID: 'room-1', codecTemplateID: U32 + 3, resourceSwitchMode: 1,
        cdnConfig: { url: 'https://cdn/s-1.flv', authParam: 'k=1' },
      },
    },
    checks: ['streamID:String', 'config:Object', 'config.cdnConfig.url:String', 'config.cdnConfig.authParam:String'],
    calls: [['orva_vantix_start_playing_stream_with_config', {
      streamID: 's-1',
      canvas: null,
      config: {
        resourceMode: -1, videoCodecID: 1, sourceResourceType: 2, roomID: 'room-1', codecTemplateID: 3, resourceSwitchMode: 1,
        cdnConfig: { url: 'https://cdn/s-1.flv', authParam: 'k=1' },
      },
    }]],
  },
  {
    method: 'stopPlayingStream', kind: 'U', arg: { streamID: 's-1' }, checks: ['streamID:String'],
    calls: [['orva_vantix_stop_playing_stream', { streamID: 's-1' }]],
  },
  {
    method: 'setPlayVolume', kind: 'U', arg: { streamID: 's-1', volume: U32 + 70 }, checks: ['streamID:String', 'volume:Number'],
    calls: [['orva_vantix_set_play_volume', { streamID: 's-1', volume: 70 }]],
  },
  {
    method: 'setAllPlayStreamVolume', kind: 'U', arg: { volume: 50 }, checks: ['volume:Number'],
    calls: [['orva_vantix_set_all_play_stream_volume', { volume: 50 }]],
  },
  {
    method: 'mutePlayStreamAudio', kind: 'U', arg: { streamID: 's-1', mute: true }, checks: ['streamID:String', 'mute:Boolean'],
    calls: [['orva_vantix_mute_play_stream_audio', { streamID: 's-1', mute: true }]],
  },
  {
    method: 'mutePlayStreamVideo', kind: 'U', arg: { streamID: 's-1', mute: false }, checks: ['streamID:String', 'mute:Boolean'],
    calls: [['orva_vantix_mute_play_stream_video', { streamID: 's-1', mute: false }]],
  },
  {
    method: 'muteAllPlayStreamVideo', kind: 'U', arg: { mute: true }, checks: ['mute:Boolean'],
    calls: [['orva_vantix_mute_all_play_stream_video', { mute: true }]],
  },
  {
    method: 'muteAllPlayStreamAudio', kind: 'U', arg: { mute: false }, checks: ['mute:Boolean'],
    calls: [['orva_vantix_mute_all_play_stream_audio', { mute: false }]],
  },
  {
    method: 'enableHardwareDecoder', kind: 'U', arg: { enable: true }, checks: ['enable:Boolean'],
    calls: [['orva_vantix_enable_hardware_decoder', { enable: true }]],
  },
  {
    method: 'enableCheckPoc', kind: 'U', arg: { enable: false }, checks: ['enable:Boolean'],
    calls: [['orva_vantix_enable_check_poc', { enable: false }]],
  },
  {
    method: 'isVideoDecoderSupported', kind: 'V', arg: { codecID: I64, codecBackend: 1 }, checks: ['codecID:Number', 'codecBackend:Number'],
    calls: [['orva_vantix_is_video_decoder_supported', { codecID: -1, codecBackend: 1 }]], returns: [1, 1],
  },
  {
    method: 'setPlayStreamDecryptionKey', kind: 'U', arg: { streamID: 's-1', key: 'k' }, checks: ['streamID:String', 'key:String'],
    calls: [['orva_vantix_set_play_stream_decryption_key', { streamID: 's-1', key: 'k' }]],
  },
  {
    method: 'setPlayStreamFocusOn', kind: 'U', arg: { streamID: 's-1' }, checks: ['streamID:String'],
    calls: [['orva_vantix_set_play_stream_focus_on', { streamID: 's-1' }]],
  },
  {
    method: 'setPlayStreamVideoType', kind: 'U', arg: { streamID: 's-1', streamType: 2 }, checks: ['streamID:String', 'streamType:Number'],
    calls: [['orva_vantix_set_play_stream_video_type', { streamID: 's-1', streamType: 2 }]],
  },
  {
    method: 'setPlayStreamBufferIntervalRange', kind: 'U',
    arg: { streamID: 's-1', minBufferInterval: I64, maxBufferInterval: U32 + 4000 },
    checks: ['streamID:String', 'minBufferInterval:Number', 'maxBufferInterval:Number'],
    calls: [['orva_vantix_set_play_stream_buffer_interval_range', { streamID: 's-1', minBufferInterval: 4294967295, maxBufferInterval: 4000 }]],
  },
  {
    method: 'takePlayStreamSnapshot', kind: 'P', arg: { streamID: 's-1' }, checks: ['streamID:String'],
    calls: [['orva_vantix_take_play_stream_snapshot', { streamID: 's-1' }]], result: isJpegSnapshot,
  },
];

describeFamily('playing', ROWS);

test('playing: edge cases', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const { engine } = session;

  async function alertOf(arg) {
    const before = session.named('onDebugError').length;
    engine.startPlayingStream(arg);
    await until(() => session.named('onDebugError').length > before, 5000, 'the alert');
    const { payload } = session.named('onDebugError')[before];
    assert.strictEqual(payload.funcName, 'startPlayingStream');
    return payload.errorInfo;
  }
  const configs = () => sim.calls('orva_vantix_start_playing_stream_with_config').map((c) => c.args.config);

  await t.test('startPlayingStream: the six texts, one by one, for the first bad key only', async () => {
    sim.reset();
    for (const [config, message] of [
      [{ resourceMode: '1' }, 'param resourceMode type error, it should be a number!'],
      [{ resourceMode: '1', videoCodecID: '2' }, 'param resourceMode type error, it should be a number!'],
      [{ videoCodecID: undefined }, 'param videoCodecID type error, it should be a number!'],
      [{ videoCodecID: 1, sourceResourceType: null }, 'param sourceResourceType type error, it should be a number!'],
      [{ roomID: 5 }, 'param roomID type error!'],
      [{ codecTemplateID: true }, 'param codecTemplateID type error, it should be a number!'],
      [{ resourceSwitchMode: {} }, 'param resourceSwitchMode type error, it should be a number!'],
      // The plain keys are all looked at before cdnConfig.
      [{ cdnConfig: { url: 'u' }, resourceSwitchMode: 'x' }, 'param resourceSwitchMode type error, it should be a number!'],
      [{ cdnConfig: { url: 'u' } }, 'param cdnConfig.authParam missing'],
    ]) {
      assert.strictEqual(await alertOf({ streamID: 's', config }), message);
    }
    assert.strictEqual(await alertOf({ streamID: 's' }), 'param .config missing');
    assert.deepStrictEqual(engineCalls(sim), []);
  });

  await t.test('startPlayingStream: config {} keeps the engine defaults; a cdnConfig that is not an object is ignored', () => {
    sim.reset();
    engine.startPlayingStream({ streamID: 's', config: {} });
    engine.startPlayingStream({ streamID: 's', config: { cdnConfig: 5, roomID: 'r' } });
    assert.deepStrictEqual(configs(), [PLAYER_DEFAULTS, { ...PLAYER_DEFAULTS, roomID: 'r' }]);
    engine.stopPlayingStream({ streamID: 's' });
  });

  await t.test('after stopPlayingStream frames reach the buffer only once it is registered again', async () => {
    const streamID = 'replay';
    const frame = { width: 4, height: 2, format: 5 };  // R,G,B,A rows, copied as they are
    const seen = [];
    engine.registerEventHandler({ name: 'tsfn', func: (name, payload) => seen.push({ name, payload }) });
    const buffer = Buffer.alloc(4 * 2 * 4);
    engine.initVideoPlayBuffer({ render_buffer: buffer, width: 4, height: 2, streamID });
    sim.frame({ streamID }, frame);
    assert.notDeepStrictEqual(buffer, Buffer.alloc(buffer.length), 'the registered buffer receives the frame');

    engine.stopPlayingStream({ streamID });
    buffer.fill(0);
    sim.frame({ streamID }, frame);
    assert.deepStrictEqual(buffer, Buffer.alloc(buffer.length), 'no copy once the stream is stopped');
    // Frame events still come for a stream without a buffer.
    await until(() => seen.filter((e) => e.name === 'onRemoteVideoFrameRawData').length === 2, 5000, 'the frame events');

    engine.initVideoPlayBuffer({ render_buffer: buffer, width: 4, height: 2, streamID });
    sim.frame({ streamID }, frame);
    assert.notDeepStrictEqual(buffer, Buffer.alloc(buffer.length), 'registered again, copied again');
    await sleep(20);
  });
});
