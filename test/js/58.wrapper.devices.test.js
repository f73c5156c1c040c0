'use strict';
// Devices and audio processing on the engine wrapper: the generated per-method cases, then
// device lists before and after an engine exists, the reverb echo's length check and its
// eighth-element read, and the simulated engine's device state and monitors.

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until, sleep } = require('./support/addon-harness');
const { describeFamily, engineCalls } = require('./support/wrapper-cases');

const U32 = 2 ** 32;
// 2^63 tells a 64-bit read cut to 32 bits (-1, or 4294967295 unsigned) from a 32-bit read (0).
const I64 = 2 ** 63;
const f32 = Math.fround;
const INPUT = 0;
const OUTPUT = 1;

const DEVICES = [{ deviceID: '{0.0.1.00000000}.{ü-1}', deviceName: 'Lautsprecher (Größe) 🎧' }, { deviceID: 'b', deviceName: '' }];
const listCalls = (fn, args) => [[`orva_vantix_get_${fn}_device_list`, args], [`orva_vantix_free_${fn}_device_list`, {}]];

// Methods that take one key and pass it on unchanged (booleans) or cut to 32 bits (numbers).
const SWITCHES = [
  ['muteMicrophone', 'mute', 'mute_microphone'],
  ['muteSpeaker', 'mute', 'mute_speaker'],
  ['enableAudioCaptureDevice', 'enable', 'enable_audio_capture_device'],
  ['enableHeadphoneMonitor', 'enable', 'enable_headphone_monitor'],
  ['enableMixSystemPlayout', 'enable', 'enable_mix_system_playout'],
  ['enableMixEnginePlayout', 'enable', 'enable_mix_engine_playout'],
  ['enableAEC', 'enable', 'enable_aec'],
  ['enableAGC', 'enable', 'enable_agc'],
  ['enableANS', 'enable', 'enable_ans'],
  ['enableTransientANS', 'enable', 'enable_transient_ans'],
].map(([method, key, fn]) => ({
  method, kind: 'U', arg: { [key]: true }, checks: [`${key}:Boolean`], calls: [[`orva_vantix_${fn}`, { [key]: true }]],
}));
const LEVELS = [
  ['setHeadphoneMonitorVolume', 'volume', 'set_headphone_monitor_volume'],
  ['setMixSystemPlayoutVolume', 'volume', 'set_mix_system_playout_volume'],
  ['setCaptureVolume', 'volume', 'set_capture_volume'],
  ['setAudioCaptureStereoMode', 'mode', 'set_audio_capture_stereo_mode'],
  ['setAECMode', 'mode', 'set_aec_mode'],
  ['setANSMode', 'mode', 'set_ans_mode'],
  ['setVoiceChangerPreset', 'preset', 'set_voice_changer_preset'],
  ['setReverbPreset', 'preset', 'set_reverb_preset'],
  ['stopAudioVADStableStateMonitor', 'type', 'stop_audio_vad_stable_state_monitor'],
].map(([method, key, fn]) => ({
  method, kind: 'U', arg: { [key]: U32 + 7 }, checks: [`${key}:Number`], calls: [[`orva_vantix_${fn}`, { [key]: 7 }]],
}));
const NO_ARGUMENT = [
  ['stopSoundLevelMonitor', 'stop_sound_level_monitor'],
  ['stopAudioSpectrumMonitor', 'stop_audio_spectrum_monitor'],
].map(([method, fn]) => ({ method, kind: 'U', arg: {}, checks: [], calls: [[`orva_vantix_${fn}`, {}]] }));
const PER_DEVICE = [
  ['startAudioDeviceVolumeMonitor', 'start_audio_device_volume_monitor'],
  ['stopAudioDeviceVolumeMonitor', 'stop_audio_device_volume_monitor'],
].map(([method, fn]) => ({
  method, kind: 'U', arg: { deviceType: U32 + 1, deviceID: 'sim-speaker-3' }, checks: ['deviceType:Number', 'deviceID:String'],
  calls: [[`orva_vantix_${fn}`, { deviceType: 1, deviceID: 'sim-speaker-3' }]],
}));

const REVERB = { roomSize: 0.1, reverberance: 0.2, damping: 0.3, wetOnly: true, wetGain: 0.4, dryGain: 0.5, toneLow: 0.6, toneHigh: 0.7, preDelay: 0.8, stereoWidth: 0.9 };
const ECHO = { inGain: 0.6, outGain: 0.3, numDelays: 7, delay: [10, 20, 30, 40, 50, 60, 70], decay: [0.9, 0.8, 0.7, 0.6, 0.5, 0.4, 0.3] };

const ROWS = [
  ...SWITCHES, ...LEVELS, ...NO_ARGUMENT, ...PER_DEVICE,
  {
    method: 'isMicrophoneMuted', kind: 'V', arg: {}, checks: [],
    calls: [['orva_vantix_is_microphone_muted', {}]], returns: [true, true],
  },
  {
    method: 'isSpeakerMuted', kind: 'V', arg: {}, checks: [],
    calls: [['orva_vantix_is_speaker_muted', {}]], returns: [true, true],
  },
  {
    method: 'useAudioDevice', kind: 'U', arg: { deviceType: I64, deviceID: 'sim-mic-2' }, checks: ['deviceType:Number', 'deviceID:String'],
    calls: [['orva_vantix_use_audio_device', { deviceType: -1, deviceID: 'sim-mic-2' }]],
  },
  {
    method: 'getAudioDeviceList', kind: 'V', arg: { deviceType: U32 + OUTPUT }, checks: ['deviceType:Number'],
    calls: listCalls('audio', { deviceType: OUTPUT }), returns: [DEVICES, DEVICES], withoutEngine: [],
  },
  {
    method: 'getAudioDeviceVolume', kind: 'V', arg: { deviceType: INPUT, deviceID: 'sim-mic-1' }, checks: ['deviceType:Number', 'deviceID:String'],
    calls: [['orva_vantix_get_audio_device_volume', { deviceType: INPUT, deviceID: 'sim-mic-1' }]], returns: [55, 55],
  },
  {
    method: 'setAudioDeviceVolume', kind: 'U', arg: { deviceType: OUTPUT, deviceID: 'sim-speaker-1', volume: U32 + 35 },
    checks: ['deviceType:Number', 'deviceID:String', 'volume:Number'],
    calls: [['orva_vantix_set_audio_device_volume', { deviceType: OUTPUT, deviceID: 'sim-speaker-1', volume: 35 }]],
  },
  {
    method: 'muteAudioDevice', kind: 'U', arg: { deviceType: INPUT, deviceID: 'sim-mic-1', mute: true },
    checks: ['deviceType:Number', 'deviceID:String', 'mute:Boolean'],
    calls: [['orva_vantix_mute_audio_device', { deviceType: INPUT, deviceID: 'sim-mic-1', mute: true }]],
  },
  {
    method: 'setSpeakerVolumeInAPP', kind: 'U', arg: { deviceID: 'sim-speaker-2', volume: I64 }, checks: ['deviceID:String', 'volume:Number'],
    calls: [['orva_vantix_set_speaker_volume_in_app', { deviceID: 'sim-speaker-2', volume: -1 }]],
  },
  {
    method: 'getSpeakerVolumeInAPP', kind: 'V', arg: { deviceID: 'sim-speaker-2' }, checks: ['deviceID:String'],
    calls: [['orva_vantix_get_speaker_volume_in_app', { deviceID: 'sim-speaker-2' }]], returns: [30, 30],
  },
  {
    method: 'startAudioVADStableStateMonitor', kind: 'U', arg: { type: 1, millisecond: U32 + 200 }, checks: ['type:Number', 'millisecond:Number'],
    calls: [['orva_vantix_start_audio_vad_stable_state_monitor', { type: 1, millisecond: 200 }]],
  },
  {
    // Reported as "enableCheckPoc"; the engine call is the camera switch all the same.
    method: 'enableCamera', name: 'enableCheckPoc', kind: 'U', arg: { enable: false, channel: U32 + 2 },
    checks: ['enable:Boolean', 'channel:Number'], calls: [['orva_vantix_enable_camera', { enable: false, channel: 2 }]],
  },
  {
    method: 'setLowlightEnhancement', kind: 'U', arg: { mode: 2, channel: 1 }, checks: ['mode:Number', 'channel:Number'],
    calls: [['orva_vantix_set_low_light_enhancement', { mode: 2, channel: 1 }]],
  },
  {
    method: 'useVideoDevice', kind: 'U', arg: { deviceID: 'sim-camera-2', channel: I64 }, checks: ['deviceID:String', 'channel:Number'],
    calls: [['orva_vantix_use_video_device', { deviceID: 'sim-camera-2', channel: -1 }]],
  },
  {
    method: 'getVideoDeviceList', kind: 'V', arg: {}, checks: [],
    calls: listCalls('video', {}), returns: [DEVICES, DEVICES], withoutEngine: [],
  },
  {
    // The interval alone: the engine's configured start without voice activity detection.
    method: 'startSoundLevelMonitor', kind: 'U', arg: { millisecond: U32 + 100 }, checks: ['millisecond:Number'],
    calls: [['orva_vantix_start_sound_level_monitor_with_config', { config: { millisecond: 100, enableVAD: false } }]],
  },
  {
    method: 'startSoundLevelMonitorWithConfig', kind: 'U', arg: { config: { millisecond: I64, enableVAD: true } },
    checks: ['config:Object', 'config.millisecond:Number', 'config.enableVAD:Boolean'],
    calls: [['orva_vantix_start_sound_level_monitor_with_config', { config: { millisecond: U32 - 1, enableVAD: true } }]],
  },
  {
    method: 'startAudioSpectrumMonitor', kind: 'U', arg: { millisecond: U32 + 50 }, checks: ['millisecond:Number'],
    calls: [['orva_vantix_start_audio_spectrum_monitor', { millisecond: 50 }]],
  },
  {
    method: 'getCurrentAudioDevice', kind: 'V', arg: { deviceType: INPUT }, checks: ['deviceType:Number'],
    calls: [['orva_vantix_get_current_audio_device', { deviceType: INPUT }]], returns: [DEVICES[0], DEVICES[0]],
  },
  {
    method: 'getDefaultAudioDeviceID', kind: 'V', arg: { deviceType: OUTPUT }, checks: ['deviceType:Number'],
    calls: [['orva_vantix_get_default_audio_device_id', { deviceType: OUTPUT }]], returns: [DEVICES[0].deviceID, DEVICES[0].deviceID],
  },
  {
    method: 'getDefaultVideoDeviceID', kind: 'V', arg: {}, checks: [],
    calls: [['orva_vantix_get_default_video_device_id', {}]], returns: ['cam-ü', 'cam-ü'],
  },
  {
    method: 'setVoiceChangerParam', kind: 'U', arg: { param: { pitch: 0.1 } }, checks: ['param:Object', 'param.pitch:Number'],
    calls: [['orva_vantix_set_voice_changer_param', { param: { pitch: f32(0.1) } }]],
  },
  {
    method: 'setReverbAdvancedParam', kind: 'U', arg: { param: REVERB },
    checks: ['param:Object', ...Object.keys(REVERB).map((k) => `param.${k}:${k === 'wetOnly' ? 'Boolean' : 'Number'}`)],
    calls: [['orva_vantix_set_reverb_advanced_param', {
      param: Object.fromEntries(Object.entries(REVERB).map(([k, v]) => [k, typeof v === 'number' ? f32(v) : v])),
    }]],
  },
  {
    // Two seven-element arrays: the eighth read fails before the engine is called.
    method: 'setReverbEchoParam', kind: 'U', arg: ECHO,
    checks: ['inGain:Number', 'outGain:Number', 'numDelays:Number', 'delay:Array', 'decay:Array'],
    throws: { name: 'TypeError', message: 'A number was expected' },
  },
  {
    method: 'enableVirtualStereo', kind: 'U', arg: { enable: true, angle: U32 + 90 }, checks: ['enable:Boolean', 'angle:Number'],
    calls: [['orva_vantix_enable_virtual_stereo', { enable: true, angle: 90 }]],
  },
  {
    method: 'setAudioEqualizerGain', kind: 'U', arg: { bandIndex: I64, bandGain: -2.7 }, checks: ['bandIndex:Number', 'bandGain:Number'],
    calls: [['orva_vantix_set_audio_equalizer_gain', { bandIndex: -1, bandGain: f32(-2.7) }]],
  },
];

describeFamily('devices', ROWS);

const SIM_MICS = [
  { deviceID: 'sim-mic-1', deviceName: 'Sim Microphone 1' },
  { deviceID: 'sim-mic-2', deviceName: 'Sim Microphone 2' },
  { deviceID: 'sim-mic-3', deviceName: '麦克风 (USB)' },
];
const SIM_SPEAKERS = [
  { deviceID: 'sim-speaker-1', deviceName: 'Sim Speaker 1' },
  { deviceID: 'sim-speaker-2', deviceName: 'Sim Speaker 2' },
  { deviceID: 'sim-speaker-3', deviceName: 'Kopfhörer' },
];
const SIM_CAMERAS = [
  { deviceID: 'sim-camera-1', deviceName: 'Sim Camera 1' },
  { deviceID: 'sim-camera-2', deviceName: 'Sim Camera 2' },
  { deviceID: 'sim-camera-3', deviceName: 'Caméra intégrée' },
];

test('devices: lists before and after an engine exists', () => {
  const addon = loadAddon();
  const sim = loadSim();
  sim.reset();
  sim.setReturn('orva_vantix_engine_init_with_profile', 1);
  const early = createEngine(addon);
  early.destroy();
  sim.reset();
  // No engine: empty lists, the audio list's COM step done all the same.
  assert.deepStrictEqual(early.engine.getAudioDeviceList({ deviceType: INPUT }), []);
  assert.deepStrictEqual(early.engine.getVideoDeviceList(), []);
  assert.deepStrictEqual(engineCalls(sim), []);

  const session = createEngine(addon);
  try {
    sim.reset();
    assert.deepStrictEqual(session.engine.getAudioDeviceList({ deviceType: INPUT }), SIM_MICS);
    assert.deepStrictEqual(session.engine.getAudioDeviceList({ deviceType: OUTPUT }), SIM_SPEAKERS);
    assert.deepStrictEqual(session.engine.getVideoDeviceList(), SIM_CAMERAS);
    // The wrapper made before the engine reaches it now, its COM step behind it.
    assert.deepStrictEqual(early.engine.getAudioDeviceList({ deviceType: INPUT }), SIM_MICS);
    // Each list the engine handed out went back through its free function, and the COM step
    // (once per instance; here nothing but the calls shows) adds no engine call.
    assert.deepStrictEqual(engineCalls(sim).map((c) => c.fn), [
      'orva_vantix_get_audio_device_list', 'orva_vantix_free_audio_device_list',
      'orva_vantix_get_audio_device_list', 'orva_vantix_free_audio_device_list',
      'orva_vantix_get_video_device_list', 'orva_vantix_free_video_device_list',
      'orva_vantix_get_audio_device_list', 'orva_vantix_free_audio_device_list',
    ]);
  } finally {
    session.destroy();
  }
});

test('devices: setReverbEchoParam', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const { engine } = session;
  const seven = (n) => Array.from({ length: 7 }, (_, i) => n + i);

  await t.test('delay and decay need exactly seven elements each', async () => {
    for (const [delay, decay] of [[seven(1).slice(1), seven(1)], [seven(1), [...seven(1), 8]], [[], []], [[...seven(1), 8], seven(1)]]) {
      sim.reset();
      const before = session.named('onDebugError').length;
      assert.strictEqual(engine.setReverbEchoParam({ ...ECHO, delay, decay }), undefined);
      await until(() => session.named('onDebugError').length > before, 5000, 'the alert');
      const { payload } = session.named('onDebugError')[before];
      assert.deepStrictEqual([payload.funcName, payload.errorInfo], ['setReverbEchoParam', 'delay or decay param error']);
      assert.deepStrictEqual(engineCalls(sim), []);
    }
  });

  await t.test('seven and seven: the eighth element\'s read throws, no alert, no engine call', async () => {
    sim.reset();
    const before = session.named('onDebugError').length;
    assert.throws(() => engine.setReverbEchoParam({ ...ECHO, decay: seven(0) }), { name: 'TypeError', message: 'A number was expected' });
    // A non-numeric element fails the same read earlier.
    assert.throws(() => engine.setReverbEchoParam({ ...ECHO, delay: ['10', ...seven(1).slice(1)] }), { name: 'TypeError' });
    await sleep(50);
    assert.strictEqual(session.named('onDebugError').length, before);
    assert.deepStrictEqual(engineCalls(sim), []);
  });
});

test('devices: the simulated engine keeps device state and runs the monitors', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const { engine } = session;
  sim.reset();

  await t.test('current device, volumes and mutes', () => {
    assert.deepStrictEqual(engine.getCurrentAudioDevice({ deviceType: INPUT }), SIM_MICS[0]);
    engine.useAudioDevice({ deviceType: INPUT, deviceID: 'sim-mic-3' });
    assert.deepStrictEqual(engine.getCurrentAudioDevice({ deviceType: INPUT }), SIM_MICS[2]);
    assert.strictEqual(engine.getDefaultAudioDeviceID({ deviceType: OUTPUT }), 'sim-speaker-1');
    assert.strictEqual(engine.getDefaultVideoDeviceID(), 'sim-camera-1');
    assert.strictEqual(engine.getAudioDeviceVolume({ deviceType: OUTPUT, deviceID: 'sim-speaker-3' }), 80);
    engine.setAudioDeviceVolume({ deviceType: OUTPUT, deviceID: 'sim-speaker-3', volume: 35 });
    assert.strictEqual(engine.getAudioDeviceVolume({ deviceType: OUTPUT, deviceID: 'sim-speaker-3' }), 35);
    engine.setSpeakerVolumeInAPP({ deviceID: 'sim-speaker-3', volume: 60 });
    assert.strictEqual(engine.getSpeakerVolumeInAPP({ deviceID: 'sim-speaker-3' }), 60);
    assert.strictEqual(engine.isMicrophoneMuted(), false);
    engine.muteMicrophone({ mute: true });
    assert.strictEqual(engine.isMicrophoneMuted(), true);
    engine.muteSpeaker({ mute: true });
    assert.strictEqual(engine.isSpeakerMuted(), true);
  });

  await t.test('the device volume monitor reports while it runs', async () => {
    const reports = () => session.named('onAudioDeviceVolumeChanged').map((e) => e.payload);
    engine.startAudioDeviceVolumeMonitor({ deviceType: OUTPUT, deviceID: 'sim-speaker-3' });
    await until(() => reports().length >= 2, 5000, 'volume reports');
    assert.deepStrictEqual(reports()[0], { deviceType: OUTPUT, deviceID: 'sim-speaker-3', volume: 35 });
    engine.muteAudioDevice({ deviceType: OUTPUT, deviceID: 'sim-speaker-3', mute: true });
    await until(() => reports().some((r) => r.volume === 0), 5000, 'a muted report');
    engine.stopAudioDeviceVolumeMonitor({ deviceType: OUTPUT, deviceID: 'sim-speaker-3' });
    await sleep(150); // a report already on its way arrives
    const stopped = reports().length;
    await sleep(300);
    assert.strictEqual(reports().length, stopped);
  });

  await t.test('the voice activity monitor reports its type at its interval until stopped', async () => {
    const reports = () => session.named('onAudioVADStateUpdate').map((e) => e.payload);
    engine.startAudioVADStableStateMonitor({ type: 1, millisecond: 20 });
    await until(() => reports().length >= 3, 5000, 'VAD reports');
    // The microphone is muted (above): silence only.
    assert.ok(reports().every((r) => r.type === 1 && r.state === 0), JSON.stringify(reports()));
    engine.stopAudioVADStableStateMonitor({ type: 1 });
    await sleep(150);
    const stopped = reports().length;
    await sleep(200);
    assert.strictEqual(reports().length, stopped);

    // With the microphone open, five silent reports, then speech.
    engine.muteMicrophone({ mute: false });
    engine.startAudioVADStableStateMonitor({ type: 0, millisecond: 10 });
    const open = () => reports().filter((r) => r.type === 0).map((r) => r.state);
    await until(() => open().length >= 6, 5000, 'speech');
    engine.stopAudioVADStableStateMonitor({ type: 0 });
    assert.deepStrictEqual(open().slice(0, 6), [0, 0, 0, 0, 0, 1]);
  });
});
