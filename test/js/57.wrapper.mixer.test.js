'use strict';
// Mixer tasks on the engine wrapper: the generated per-method cases over a task that uses every
// key, then the order in which the shared reading routine finds faults, each of its fixed
// texts, the task's defaults, and the engine's answers.

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until } = require('./support/addon-harness');
const { describeFamily, settled, engineCalls } = require('./support/wrapper-cases');

const U32 = 2 ** 32;
// 2^63 tells a 64-bit read cut to 32 bits (-1, or 4294967295 unsigned) from a 32-bit read (0).
const I64 = 2 ** 63;

const layout = (x) => ({ x, y: x + 1, width: 320, height: 180 });

// A task that uses every key, with values that show each conversion.
function fullTask() {
  return {
    taskID: 'task-1',
    inputList: [
      {
        streamID: 'in-1', layout: { x: I64, y: U32 + 2, width: 320, height: 180 },
        contentType: 1, soundLevelID: U32 - 1, cornerRadius: 8,
        imageInfo: { url: 'https://img/a.png', displayMode: 2 },
        renderMode: 1, volume: U32 + 70, isAudioFocus: true, audioDirection: 90,
        label: {
          text: 'Ana ✓', left: 4, top: 6,
          font: { type: 1, size: 24, color: U32 + 0xff, transparency: 50, border: true, borderColor: 0xffffffff },
        },
      },
      { streamID: 'in-2', layout: layout(320) },
    ],
    outputList: [
      { target: 'rtmp://cdn/mix', videoConfig: { videoCodecID: 1, bitrate: 1200, encodeProfile: 2, encodeLatency: 3 } },
      { target: 'mix-stream' },
    ],
    videoConfig: { width: 640, height: 360, fps: 15, bitrate: 1200, quality: 23, rateControlMode: 1 },
    audioConfig: { bitrate: 48, channel: 2, codecID: 1 },
    watermark: { imageURL: 'preset-id://wm.png', layout: layout(10) },
    whiteboard: {
      whiteboardID: 2 ** 40 + 1, horizontalRatio: 16, verticalRatio: 9, isPPTAnimation: true,
      layout: layout(20), zOrder: 3, backgroundColor: 0xf0f0f0f0,
    },
    advancedConfig: { mixMode: 1, label: 'on' },
    backgroundImageURL: 'preset-id://bg.png',
    enableSoundLevel: true,
    streamAlignmentMode: 1,
    userData: new Uint8Array([1, 2, 255]).buffer,
    minPlayStreamBufferLength: 500,
  };
}

const cLayout = (x) => ({ x, y: x + 1, width: 320, height: 180 });
const NO_FONT = { type: 0, size: 0, color: 0, transparency: 0, border: false, borderColor: 0 };
const plainInput = (streamID, l) => ({
  streamID, contentType: 0, layout: l, soundLevelID: 0, cornerRadius: 0, imageInfo: { url: '', displayMode: 0 },
  renderMode: 0, volume: 0, isAudioFocus: false, audioDirection: 0, label: null,
});

// The task as the engine receives it.
const FULL_TASK_C = {
  taskID: 'task-1',
  inputList: [
    {
      streamID: 'in-1', contentType: 1, layout: { x: -1, y: 2, width: 320, height: 180 }, soundLevelID: U32 - 1,
      cornerRadius: 8, imageInfo: { url: 'https://img/a.png', displayMode: 2 }, renderMode: 1, volume: 70,
      isAudioFocus: true, audioDirection: 90,
      label: {
        text: 'Ana ✓', left: 4, top: 6,
        font: { type: 1, size: 24, color: 0xff, transparency: 50, border: true, borderColor: 0xffffffff },
      },
    },
    plainInput('in-2', cLayout(320)),
  ],
  outputList: [
    { target: 'rtmp://cdn/mix', videoConfig: { videoCodecID: 1, bitrate: 1200, encodeProfile: 2, encodeLatency: 3 } },
    { target: 'mix-stream', videoConfig: { videoCodecID: 0, bitrate: 0, encodeProfile: 0, encodeLatency: 0 } },
  ],
  videoConfig: { width: 640, height: 360, fps: 15, bitrate: 1200, quality: 23, rateControlMode: 1 },
  audioConfig: { bitrate: 48, channel: 2, codecID: 1 },
  watermark: { imageURL: 'preset-id://wm.png', layout: cLayout(10) },
  whiteboard: {
    whiteboardID: 2 ** 40 + 1, horizontalRatio: 16, verticalRatio: 9, isPPTAnimation: true,
    layout: cLayout(20), zOrder: 3, backgroundColor: 0xf0f0f0f0,
  },
  backgroundImageURL: 'preset-id://bg.png',
  enableSoundLevel: true,
  streamAlignmentMode: 1,
  userData: [1, 2, 255],
  minPlayStreamBufferLength: 500,
  advancedConfig: 'mixMode=1;label=on',
};

// Every key the argument checker looks at, in check order (the optional keys with fixed
// texts are the next test's).
const CHECKS = [
  'task:Object',
  ...['taskID:String', 'inputList:Array', 'outputList:Array', 'videoConfig:Object', 'audioConfig:Object'].map((k) => `task.${k}`),
  'task.inputList.0.streamID:String', 'task.inputList.0.layout:Object',
  ...['x', 'y', 'width', 'height'].map((k) => `task.inputList.0.layout.${k}:Number`),
  'task.inputList.0.label.text:String',
  'task.outputList.0.target:String',
  ...['width', 'height', 'fps', 'bitrate'].map((k) => `task.videoConfig.${k}:Number`),
  ...['bitrate', 'channel', 'codecID'].map((k) => `task.audioConfig.${k}:Number`),
  'task.watermark.imageURL:String', 'task.watermark.layout:Object',
  ...['x', 'y', 'width', 'height'].map((k) => `task.watermark.layout.${k}:Number`),
  ...['whiteboardID:Number', 'horizontalRatio:Number', 'verticalRatio:Number', 'isPPTAnimation:Boolean', 'layout:Object',
    'zOrder:Number', 'backgroundColor:Number'].map((k) => `task.whiteboard.${k}`),
  ...['x', 'y', 'width', 'height'].map((k) => `task.whiteboard.layout.${k}:Number`),
];

const started = JSON.stringify({ taskID: 'task-1', inputCount: 2, outputs: ['rtmp://cdn/mix', 'mix-stream'] });
const ROWS = [
  {
    method: 'startMixerTask', kind: 'P', arg: { task: fullTask() }, checks: CHECKS,
    calls: [['orva_vantix_start_mixer_task', { task: FULL_TASK_C }]],
    result: { errorCode: 0, extendedData: started },
  },
  {
    // The engine runs no such task here: it stops no outputs.
    method: 'stopMixerTask', kind: 'P', arg: { task: fullTask() }, checks: CHECKS,
    calls: [['orva_vantix_stop_mixer_task', { task: FULL_TASK_C }]],
    result: { errorCode: 0, extendedData: JSON.stringify({ taskID: 'task-1', outputs: [] }) },
  },
];

describeFamily('mixer', ROWS);

// A copy of the full task changed by edit(task).
function taskWith(edit) {
  const task = fullTask();
  edit(task);
  return task;
}

// Every fixed text of the reading routine: [where, the wrong value's edit, the text].
const FIXED_TEXTS = [
  ['input contentType', (t) => { t.inputList[0].contentType = '1'; }, 'contentType shoule be a number!'],
  ['input soundLevelID', (t) => { t.inputList[0].soundLevelID = '1'; }, 'soundLevelID shoule be a number!'],
  ['input cornerRadius', (t) => { t.inputList[0].cornerRadius = '1'; }, 'cornerRadius shoule be a number!'],
  ['input imageInfo.url', (t) => { t.inputList[0].imageInfo.url = 1; }, 'image url shoule be a string!'],
  ['input imageInfo.displayMode', (t) => { t.inputList[0].imageInfo.displayMode = '1'; }, 'image displayMode shoule be a Number!'],
  ['input renderMode', (t) => { t.inputList[0].renderMode = '1'; }, 'renderMode shoule be a number!'],
  ['input volume', (t) => { t.inputList[0].volume = '50'; }, 'volume shoule be a number!'],
  ['input isAudioFocus', (t) => { t.inputList[0].isAudioFocus = 1; }, 'isAudioFocus shoule be a boolean!'],
  ['input audioDirection', (t) => { t.inputList[0].audioDirection = '1'; }, 'audioDirection shoule be a number!'],
  ['input label', (t) => { t.inputList[0].label = 'Ana'; }, 'label shoule be a Object!'],
  ['label left', (t) => { t.inputList[0].label.left = '1'; }, 'left shoule be a number!'],
  ['label top', (t) => { t.inputList[0].label.top = '1'; }, 'top shoule be a number!'],
  ['label font', (t) => { t.inputList[0].label.font = 1; }, 'font shoule be a object!'],
  ['font type', (t) => { t.inputList[0].label.font.type = '1'; }, 'type shoule be a number!'],
  ['font size', (t) => { t.inputList[0].label.font.size = '1'; }, 'size shoule be a number!'],
  ['font color', (t) => { t.inputList[0].label.font.color = '1'; }, 'color shoule be a number!'],
  ['font transparency', (t) => { t.inputList[0].label.font.transparency = '1'; }, 'transparency shoule be a number!'],
  ['font border', (t) => { t.inputList[0].label.font.border = 1; }, 'border shoule be a boolean!'],
  ['font borderColor', (t) => { t.inputList[0].label.font.borderColor = '1'; }, 'borderColor shoule be a number!'],
  ['output videoCodecID', (t) => { t.outputList[0].videoConfig.videoCodecID = '1'; }, 'videoCodecID shoule be a number!'],
  ['output bitrate', (t) => { t.outputList[0].videoConfig.bitrate = '1'; }, 'bitrate shoule be a number!'],
  ['output encodeProfile', (t) => { t.outputList[0].videoConfig.encodeProfile = '1'; }, 'encodeProfile shoule be a number!'],
  ['output encodeLatency', (t) => { t.outputList[0].videoConfig.encodeLatency = '1'; }, 'encodeLatency shoule be a number!'],
  ['mix video quality', (t) => { t.videoConfig.quality = '1'; }, 'quality shoule be a number!'],
  ['mix video rateControlMode', (t) => { t.videoConfig.rateControlMode = '1'; }, 'rateControlMode shoule be a number!'],
  ['backgroundImageURL', (t) => { t.backgroundImageURL = 1; }, 'param backgroundImageURL type error, it should be a string!'],
  ['enableSoundLevel', (t) => { t.enableSoundLevel = 1; }, 'param enableSoundLevel type error, it should be a boolean!'],
  ['streamAlignmentMode', (t) => { t.streamAlignmentMode = '1'; }, 'param streamAlignmentMode type error, it should be a number!'],
  ['userData', (t) => { t.userData = [1, 2]; }, 'param userData type error, it should be a ArrayBuffer!'],
  // The text names jitterBufferLength although the key read is minPlayStreamBufferLength.
  ['minPlayStreamBufferLength', (t) => { t.minPlayStreamBufferLength = 'x'; },
    'param jitterBufferLength type error, it should be a number!'],
];

// Two faults in one task: the reading reports the one it meets first.
const FIRST_OF_TWO = [
  ['an input\'s layout before its optional keys',
    (t) => { delete t.inputList[0].layout.width; t.inputList[0].contentType = 'x'; }, 'param layout.width missing'],
  ['optional input keys in table order', (t) => { t.inputList[0].soundLevelID = 'x'; t.inputList[0].contentType = 'x'; },
    'contentType shoule be a number!'],
  ['the image before renderMode', (t) => { t.inputList[0].renderMode = 'x'; t.inputList[0].imageInfo.url = 1; },
    'image url shoule be a string!'],
  ['label last among the input keys', (t) => { delete t.inputList[0].label.text; t.inputList[0].audioDirection = 'x'; },
    'audioDirection shoule be a number!'],
  ['every input before the outputs', (t) => { t.inputList[1].volume = 'x'; delete t.outputList[0].target; },
    'volume shoule be a number!'],
  ['the first input before the second', (t) => { delete t.inputList[1].streamID; t.inputList[0].volume = 'x'; },
    'volume shoule be a number!'],
  ['outputs before the mix video configuration', (t) => { t.outputList[1].videoConfig = { bitrate: 'x' }; delete t.videoConfig.fps; },
    'bitrate shoule be a number!'],
  ['mix video before mix audio', (t) => { t.videoConfig.quality = 'x'; delete t.audioConfig.bitrate; },
    'quality shoule be a number!'],
  ['mix audio before the watermark', (t) => { delete t.audioConfig.codecID; delete t.watermark.imageURL; },
    'param audioConfig.codecID missing'],
  ['watermark before whiteboard', (t) => { delete t.watermark.layout.y; delete t.whiteboard.zOrder; }, 'param layout.y missing'],
  ['whiteboard before the optional task keys', (t) => { t.whiteboard.isPPTAnimation = 1; t.backgroundImageURL = 1; },
    'param whiteboard.isPPTAnimation should be type of Boolean'],
  ['backgroundImageURL before enableSoundLevel', (t) => { t.enableSoundLevel = 1; t.backgroundImageURL = 1; },
    'param backgroundImageURL type error, it should be a string!'],
  ['enableSoundLevel before streamAlignmentMode', (t) => { t.streamAlignmentMode = 'x'; t.enableSoundLevel = 1; },
    'param enableSoundLevel type error, it should be a boolean!'],
  ['streamAlignmentMode before userData', (t) => { t.userData = 'x'; t.streamAlignmentMode = 'x'; },
    'param streamAlignmentMode type error, it should be a number!'],
  ['userData before minPlayStreamBufferLength', (t) => { t.minPlayStreamBufferLength = 'x'; t.userData = 'x'; },
    'param userData type error, it should be a ArrayBuffer!'],
];

test('mixer: the reading routine', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const { engine } = session;

  // Rejects with `reason`, no alert, no engine call.
  async function rejects(method, arg, reason) {
    sim.reset();
    const alerts = session.named('onDebugError').length;
    assert.deepStrictEqual(await settled(engine[method](arg)), { state: 'rejected', reason });
    assert.deepStrictEqual(engineCalls(sim), []);
    assert.strictEqual(session.named('onDebugError').length, alerts);
  }

  await t.test('each fixed text, for start and stop alike', async () => {
    for (const [, edit, text] of FIXED_TEXTS) {
      for (const method of ['startMixerTask', 'stopMixerTask']) await rejects(method, { task: taskWith(edit) }, text);
    }
  });

  await t.test('a task with two faults reports the first in reading order', async (st) => {
    for (const [what, edit, text] of FIRST_OF_TWO) {
      await st.test(what, () => rejects('startMixerTask', { task: taskWith(edit) }, text));
    }
  });

  await t.test('stopMixerTask requires the whole task, not only its ID', async () => {
    await rejects('stopMixerTask', { task: { taskID: 't' } }, 'param task.inputList missing');
    await rejects('stopMixerTask', { task: taskWith((task) => { delete task.audioConfig; }) }, 'param task.audioConfig missing');
  });

  await t.test('arrays are walked by length: a hole fails like a missing element', async () => {
    const task = fullTask();
    task.inputList = [, task.inputList[0]]; // eslint-disable-line no-sparse-arrays
    await rejects('startMixerTask', { task }, 'param inputList.streamID missing');
    await rejects('startMixerTask', { task: taskWith((x) => { x.outputList.push(7); }) }, 'param outputList.target missing');
  });

  await t.test('a minimal task: absent optional keys and non-object extras take the engine\'s defaults', async () => {
    sim.reset();
    const task = {
      taskID: 'm', inputList: [{ streamID: 's', layout: layout(0), imageInfo: 5 }],
      outputList: [{ target: 't', videoConfig: 'fast' }],
      videoConfig: { width: 2, height: 2, fps: 1, bitrate: 1 }, audioConfig: { bitrate: 1, channel: 1, codecID: 0 },
      watermark: 'none', whiteboard: null, advancedConfig: 'k=v',
    };
    const outcome = await settled(engine.startMixerTask({ task }), 5000);
    assert.strictEqual(outcome.state, 'resolved');
    assert.deepStrictEqual(sim.calls('orva_vantix_start_mixer_task')[0].args.task, {
      taskID: 'm',
      inputList: [plainInput('s', cLayout(0))],
      outputList: [{ target: 't', videoConfig: { videoCodecID: 0, bitrate: 0, encodeProfile: 0, encodeLatency: 0 } }],
      videoConfig: { width: 2, height: 2, fps: 1, bitrate: 1, quality: 0, rateControlMode: 0 },
      audioConfig: { bitrate: 1, channel: 1, codecID: 0 },
      watermark: null, whiteboard: null, backgroundImageURL: '', enableSoundLevel: false, streamAlignmentMode: 0,
      userData: [], minPlayStreamBufferLength: 0, advancedConfig: '',
    });
  });
});

test('mixer: answers', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();

  await t.test('a stop after a start names the outputs that stopped', async () => {
    const session = createEngine(addon);
    try {
      sim.reset();
      const task = fullTask();
      assert.deepStrictEqual(await session.engine.startMixerTask({ task }), { errorCode: 0, extendedData: started });
      assert.deepStrictEqual(await session.engine.stopMixerTask({ task }),
        { errorCode: 0, extendedData: JSON.stringify({ taskID: 'task-1', outputs: ['rtmp://cdn/mix', 'mix-stream'] }) });
    } finally {
      session.destroy();
    }
  });

  await t.test('the engine\'s error code and extended data reach the promise; a refusal resolves at once', async () => {
    const session = createEngine(addon);
    try {
      sim.reset();
      sim.autoComplete(false);
      const promise = session.engine.stopMixerTask({ task: fullTask() });
      await until(() => sim.pending().length === 1, 5000, 'the pending stop');
      const [{ fn, seq }] = sim.pending();
      assert.strictEqual(fn, 'orva_vantix_stop_mixer_task');
      sim.complete(seq, { errorCode: 150, extendedData: '{"reason":"no such task"}' });
      assert.deepStrictEqual(await promise, { errorCode: 150, extendedData: '{"reason":"no such task"}' });

      sim.setReturn('orva_vantix_start_mixer_task', 1000);
      assert.deepStrictEqual(await settled(session.engine.startMixerTask({ task: fullTask() })),
        { state: 'resolved', value: { errorCode: 1000, extendedData: '' } });
    } finally {
      sim.reset();
      session.destroy();
    }
  });

  await t.test('without an engine the task is still read first: a bad task rejects with its fault', async () => {
    const session = createEngine(addon);
    session.destroy();
    sim.reset();
    assert.deepStrictEqual(await settled(session.engine.startMixerTask({ task: { taskID: 1 } })),
      { state: 'rejected', reason: 'param task.taskID should be type of String' });
    assert.deepStrictEqual(engineCalls(sim), []);
  });
});
