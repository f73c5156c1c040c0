'use strict';
// Messaging and utilities on the engine wrapper: the generated per-method cases, then the
// rules of this family (message IDs as number and as text, the optional keys of video
// object segmentation and custom audio processing with their own texts, the region-of-
// interest count). The screen capture source list has its own file.

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until, engineForTest } = require('./support/addon-harness');
const { describeFamily, engineCalls, settled } = require('./support/wrapper-cases');

const U32 = 2 ** 32;
const RECT = (x) => ({ x, y: x + 1, width: 64, height: 32, strength: 3 });
const is = (keys, check) => (r) => Object.keys(r).join() === keys && check(r);

const ROWS = [
  {
    method: 'getNetworkTimeInfo', kind: 'V', arg: {}, checks: [],
    calls: [['orva_vantix_get_network_time_info', {}]],
    returns: [{ timestamp: 1700000000123, maxDeviation: -12 }, { timestamp: 1700000000123, maxDeviation: -12 }],
  },
  {
    method: 'sendBroadcastMessage', kind: 'P', arg: { roomID: 'room-1', message: 'hello' },
    checks: ['roomID:String', 'message:String'],
    calls: [['orva_vantix_send_broadcast_message', { roomID: 'room-1', message: 'hello' }]],
    result: is('errorCode,messageID', (r) => r.errorCode === 0 && typeof r.messageID === 'number' && r.messageID > 0),
  },
  {
    method: 'sendBarrageMessage', kind: 'P', arg: { roomID: 'room-1', message: 'hello' },
    checks: ['roomID:String', 'message:String'],
    calls: [['orva_vantix_send_barrage_message', { roomID: 'room-1', message: 'hello' }]],
    result: is('errorCode,messageID', (r) => r.errorCode === 0 && /^sim-barrage-\d+$/.test(r.messageID)),
  },
  {
    method: 'sendCustomCommand', kind: 'P',
    arg: { roomID: 'room-1', command: 'raise-hand', toUserList: [{ userID: 'u1', userName: 'Ann' }, { userID: 'u2', userName: 'Bo' }] },
    // Every element is checked, not just the first.
    checks: ['roomID:String', 'command:String', 'toUserList:Array', 'toUserList.0.userID:String', 'toUserList.1.userName:String'],
    calls: [['orva_vantix_send_custom_command', {
      roomID: 'room-1', command: 'raise-hand', toUserList: [{ userID: 'u1', userName: 'Ann' }, { userID: 'u2', userName: 'Bo' }],
    }]],
    result: { errorCode: 0 },
  },
  {
    method: 'startRecordingCapturedData', kind: 'U', arg: { config: { filePath: '/tmp/rec.mp4', recordType: U32 + 2 }, channel: 1 },
    checks: ['config:Object', 'channel:Number', 'config.filePath:String', 'config.recordType:Number'],
    calls: [['orva_vantix_start_recording_captured_data', { config: { filePath: '/tmp/rec.mp4', recordType: 2 }, channel: 1 }]],
  },
  {
    method: 'stopRecordingCapturedData', kind: 'U', arg: { channel: U32 + 1 }, checks: ['channel:Number'],
    calls: [['orva_vantix_stop_recording_captured_data', { channel: 1 }]],
  },
  {
    method: 'enableVideoObjectSegmentation', kind: 'U',
    arg: {
      enable: true, channel: 0,
      config: { objectSegmentationType: 1, backgroundConfig: { processType: 2, color: -1, imageURL: 'file:///bg.png', blurLevel: U32 + 3 } },
    },
    checks: ['enable:Boolean', 'config:Object', 'channel:Number'],
    // color is unsigned: -1 reaches the engine as 2^32 - 1.
    calls: [['orva_vantix_enable_video_object_segmentation_with_config', {
      enable: true,
      config: { objectSegmentationType: 1, backgroundConfig: { processType: 2, color: U32 - 1, imageURL: 'file:///bg.png', blurLevel: 3 } },
      channel: 0,
    }]],
  },
  {
    method: 'enableAlphaChannelVideoEncoder', kind: 'U', arg: { enable: true, alphaLayout: 2, channel: 1 },
    checks: ['enable:Boolean', 'alphaLayout:Number', 'channel:Number'],
    calls: [['orva_vantix_enable_alpha_channel_video_encoder', { enable: true, alphaLayout: 2, channel: 1 }]],
  },
  {
    // Frames come in as plain pixel buffers: the raw-data buffer type (1).
    method: 'enableCustomVideoCapture', kind: 'U', arg: { enable: true, channel: 1 }, checks: ['enable:Boolean', 'channel:Number'],
    calls: [['orva_vantix_enable_custom_video_capture', { enable: true, config: { bufferType: 1 }, channel: 1 }]],
  },
  {
    method: 'enableCustomVideoProcessing', kind: 'U', arg: { enable: false, channel: 0 }, checks: ['enable:Boolean', 'channel:Number'],
    calls: [['orva_vantix_enable_custom_video_processing', { enable: false, config: { bufferType: 1 }, channel: 0 }]],
  },
  {
    method: 'setDummyCaptureImagePath', kind: 'U', arg: { filePath: '/tmp/camera-off.png', channel: 0 },
    checks: ['filePath:String', 'channel:Number'],
    calls: [['orva_vantix_set_dummy_capture_image_path', { filePath: '/tmp/camera-off.png', channel: 0 }]],
  },
  {
    method: 'setCustomVideoCaptureFillMode', kind: 'U', arg: { mode: 2, channel: 1 }, checks: ['mode:Number', 'channel:Number'],
    calls: [['orva_vantix_set_custom_video_capture_fill_mode', { mode: 2, channel: 1 }]],
  },
  {
    method: 'startNetworkSpeedTest', kind: 'U',
    arg: { config: { testUplink: true, expectedUplinkBitrate: U32 + 800, testDownlink: false, expectedDownlinkBitrate: -1 }, interval: 1000 },
    checks: ['config:Object', 'interval:Number', 'config.testUplink:Boolean', 'config.expectedUplinkBitrate:Number',
      'config.testDownlink:Boolean', 'config.expectedDownlinkBitrate:Number'],
    calls: [['orva_vantix_start_network_speed_test', {
      config: { testUplink: true, expectedUplinkBitrate: 800, testDownlink: false, expectedDownlinkBitrate: U32 - 1 }, interval: 1000,
    }]],
  },
  { method: 'stopNetworkSpeedTest', kind: 'U', arg: {}, checks: [], calls: [['orva_vantix_stop_network_speed_test', {}]] },
  {
    method: 'enableCustomAudioCaptureProcessing', kind: 'U', arg: { enable: true, config: { sampleRate: 48000, channel: 2, samples: 480 } },
    checks: ['enable:Boolean'],
    calls: [['orva_vantix_enable_custom_audio_capture_processing', { enable: true, config: { sampleRate: 48000, channel: 2, samples: 480 } }]],
  },
  {
    // No config: the engine's defaults (NULL).
    method: 'enableCustomAudioCaptureProcessingAfterHeadphoneMonitor', kind: 'U', arg: { enable: false }, checks: ['enable:Boolean'],
    calls: [['orva_vantix_enable_custom_audio_capture_processing_after_headphone_monitor', { enable: false, config: null }]],
  },
  {
    method: 'setCustomVideoCaptureRegionOfInterest', kind: 'U', arg: { rectList: [RECT(1), RECT(5)], rectCount: 2, channel: 0 },
    checks: ['rectList:Array', 'rectCount:Number', 'channel:Number', 'rectList.0.x:Number', 'rectList.0.y:Number',
      'rectList.1.width:Number', 'rectList.1.height:Number', 'rectList.1.strength:Number'],
    calls: [['orva_vantix_set_custom_video_capture_region_of_interest', { rectList: [RECT(1), RECT(5)], channel: 0 }]],
  },
  {
    method: 'enableCustomAudioIO', kind: 'U', arg: { enable: true, config: { sourceType: 1 }, channel: 1 },
    checks: ['enable:Boolean', 'config:Object', 'channel:Number', 'config.sourceType:Number'],
    calls: [['orva_vantix_enable_custom_audio_io', { enable: true, config: { sourceType: 1 }, channel: 1 }]],
  },
  {
    // The one promise method whose failed check also raises the alert.
    method: 'getScreenCaptureSources', kind: 'P', alerts: true,
    arg: { thumbnailWidth: 32, thumbnailHeight: 18, iconWidth: 8, iconHeight: U32 + 8 },
    checks: ['thumbnailWidth:Number', 'thumbnailHeight:Number', 'iconWidth:Number', 'iconHeight:Number'],
    calls: [
      ['orva_vantix_get_screen_capture_sources', { thumbnailWidth: 32, thumbnailHeight: 18, iconWidth: 8, iconHeight: 8 }],
      ['orva_vantix_free_screen_capture_source_list', {}],
    ],
    result: (sources) => sources.map((s) => s.sourceName).join() === 'Sim Screen 1,Sim Screen 2,Sim Window',
  },
];

describeFamily('messaging', ROWS);

test('messaging: the rules of the family', async (t) => {
  const { sim, session, engine } = engineForTest(t);
  const alertsOf = async (method, arg) => {
    const before = session.named('onDebugError').length;
    assert.strictEqual(engine[method](arg), undefined);
    await until(() => session.named('onDebugError').length > before, 5000, `the alert of ${method}`);
    return session.named('onDebugError').slice(before).map((e) => e.payload.errorInfo);
  };

  await t.test('a message ID is the engine\'s number for a broadcast and its text for a barrage', async () => {
    const ROOM = { roomID: 'room-1', message: 'm' };
    for (const [method, messageID, refusedID] of [
      ['sendBroadcastMessage', 2 ** 40 + 7, 0],
      ['sendBarrageMessage', 'barrage-77', ''],
    ]) {
      sim.reset();
      sim.autoComplete(false);
      const promise = engine[method](ROOM);
      const [{ seq }] = sim.pending();
      assert.ok(sim.complete(seq, { errorCode: 5, roomID: 'room-1', messageID }));
      assert.deepStrictEqual(await settled(promise), { state: 'resolved', value: { errorCode: 5, messageID } });
      // A send the engine refuses is never answered: resolved at once, with no ID.
      sim.setReturn(`orva_vantix_${method === 'sendBroadcastMessage' ? 'send_broadcast_message' : 'send_barrage_message'}`, 1000015);
      assert.deepStrictEqual(await settled(engine[method](ROOM)),
        { state: 'resolved', value: { errorCode: 1000015, messageID: refusedID } });
    }
  });

  // [method, argument, the text of the first wrong optional key]
  const SEGMENTATION = { enable: true, channel: 0 };
  const PROCESSING = { enable: true };
  const OPTIONAL_KEY_TEXTS = [
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { objectSegmentationType: '1' } }, 'param objectSegmentationType should be a number!'],
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { backgroundConfig: 1 } }, 'param backgroundConfig should be a Object!'],
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { backgroundConfig: null } }, 'param backgroundConfig should be a Object!'],
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { backgroundConfig: { processType: true } } }, 'param processType should be a number!'],
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { backgroundConfig: { color: '#fff' } } }, 'param color should be a number!'],
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { backgroundConfig: { imageURL: 5 } } }, 'param imageURL should be a string!'],
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { backgroundConfig: { blurLevel: {} } } }, 'param blurLevel should be a number!'],
    // The first wrong key decides.
    ['enableVideoObjectSegmentation', { ...SEGMENTATION, config: { objectSegmentationType: 'x', backgroundConfig: 1 } }, 'param objectSegmentationType should be a number!'],
    ['enableCustomAudioCaptureProcessing', { ...PROCESSING, config: 5 }, 'param config should be a object!'],
    ['enableCustomAudioCaptureProcessing', { ...PROCESSING, config: { sampleRate: '48000' } }, 'param sampleRate should be a number!'],
    ['enableCustomAudioCaptureProcessing', { ...PROCESSING, config: { channel: null } }, 'param channel should be a number!'],
    ['enableCustomAudioCaptureProcessingAfterHeadphoneMonitor', { ...PROCESSING, config: { samples: [480] } }, 'param samples should be a number!'],
    ['enableCustomAudioCaptureProcessingAfterHeadphoneMonitor', { ...PROCESSING, config: 'defaults' }, 'param config should be a object!'],
  ];
  await t.test('optional keys of the wrong type have their own texts and enable nothing', async () => {
    for (const [method, arg, text] of OPTIONAL_KEY_TEXTS) {
      sim.reset();
      assert.deepStrictEqual(await alertsOf(method, arg), [text], method);
      assert.deepStrictEqual(engineCalls(sim), [], `${text}: no engine call`);
    }
  });

  await t.test('absent optional keys reach the engine as zeros', () => {
    sim.reset();
    engine.enableVideoObjectSegmentation({ ...SEGMENTATION, config: {} });
    engine.enableCustomAudioCaptureProcessing({ ...PROCESSING, config: {} });
    assert.deepStrictEqual(engineCalls(sim).map((c) => c.args.config), [
      { objectSegmentationType: 0, backgroundConfig: { processType: 0, color: 0, imageURL: '', blurLevel: 0 } },
      { sampleRate: 0, channel: 0, samples: 0 },
    ]);
  });

  await t.test('rectCount says how many of the listed rectangles apply', () => {
    const rectList = [RECT(1), RECT(2), RECT(3)];
    for (const [rectCount, sent] of [[3, 3], [1, 1], [0, 0], [7, 3], [-2, 0]]) {
      sim.reset();
      engine.setCustomVideoCaptureRegionOfInterest({ rectList, rectCount, channel: 0 });
      assert.deepStrictEqual(sim.calls('orva_vantix_set_custom_video_capture_region_of_interest')[0].args.rectList,
        rectList.slice(0, sent), `rectCount ${rectCount}`);
    }
  });
});
