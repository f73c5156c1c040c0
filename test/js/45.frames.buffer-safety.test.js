'use strict';
// Frame buffers script hands over are safe whatever script does with them afterwards: a
// registered buffer stays alive while registered even if script drops every reference, is
// let go once replaced, removed or torn down, and a buffer shorter than its stated sides is
// never written past its end (the mistake is reported and frames announce the size needed).

const { describe, it, beforeEach, afterEach } = require('node:test');
const assert = require('node:assert');
const v8 = require('node:v8');
const vm = require('node:vm');
const { loadAddon, loadSim, createEngine, until, sleep } = require('./support/addon-harness');

v8.setFlagsFromString('--expose-gc');
const gc = vm.runInNewContext('gc');

const addon = loadAddon();
const sim = loadSim();

// Buffers registered in a scope of their own, watched by a FinalizationRegistry. Tags carry
// the test's number: buffers of an earlier test may be collected during a later one.
const finalized = new Set();
const registry = new FinalizationRegistry((tag) => finalized.add(tag));
let testNumber = 0;
const collected = () => [...finalized].filter((t) => t.startsWith(`${testNumber}:`))
  .map((t) => t.slice(t.indexOf(':') + 1)).sort();

async function collect() {
  for (let i = 0; i < 6; i++) {
    gc();
    await sleep(5);  // finalization callbacks run from the event loop
  }
}

describe('registered frame buffers', () => {
  let session;
  let frames;

  beforeEach(() => {
    sim.reset();
    testNumber++;
    session = createEngine(addon);
    frames = [];
    session.engine.registerEventHandler({ name: 'tsfn', func: (name, payload) => frames.push({ name, payload }) });
  });
  afterEach(() => session.destroy());

  // Registers a fresh buffer that nothing in script refers to afterwards.
  function registerDropped(method, key, tag, width = 640, height = 360) {
    const buffer = Buffer.alloc(width * height * 4);
    registry.register(buffer, `${testNumber}:${tag}`);
    session.engine[method]({ render_buffer: buffer, width, height, ...key });
  }

  async function deliverFrames(target, count, width = 640, height = 360) {
    const from = frames.length;
    for (let i = 0; i < count; i++) sim.frame(target, { width, height, format: 4 });
    await until(() => frames.length >= from + count, 10000, 'frame events');
  }

  it('a buffer script let go is kept alive while registered, and written safely', async () => {
    registerDropped('initVideoCaptureBuffer', { channel: 0 }, 'capture');
    registerDropped('initVideoPlayBuffer', { streamID: 's' }, 'play');
    registerDropped('initMediaPlayerBuffer', { index: 0 }, 'media player');
    await collect();
    await deliverFrames({ channel: 0 }, 20);
    await deliverFrames({ streamID: 's' }, 20);
    await collect();
    assert.deepStrictEqual(collected(), []);
  });

  it('is let go once replaced, removed or torn down', async () => {
    registerDropped('initVideoCaptureBuffer', { channel: 1 }, 'replaced');
    registerDropped('initVideoCaptureBuffer', { channel: 1 }, 'replacement');
    registerDropped('initVideoPlayBuffer', { streamID: 'gone' }, 'removed');
    session.engine.stopPlayingStream({ streamID: 'gone' });
    registerDropped('initMediaPlayerBuffer', { index: 2 }, 'torn down');
    await collect();
    assert.deepStrictEqual(collected(), ['removed', 'replaced']);
    session.destroy();
    await collect();
    assert.deepStrictEqual(collected(), ['removed', 'replaced', 'replacement', 'torn down']);
    session = createEngine(addon);  // for afterEach
  });

  it('any view passing the Buffer check renders into its own bytes, offset and length', async () => {
    const backing = new ArrayBuffer(8 + 2 * 2 * 4 + 8);
    const views = [new DataView(backing, 8, 16), new Float64Array(backing, 8, 2), new Uint32Array(backing, 8, 4)];
    for (const view of views) {
      new Uint8Array(backing).fill(0xee);
      session.engine.initVideoCaptureBuffer({ render_buffer: view, width: 2, height: 2, channel: 2 });
      await deliverFrames({ channel: 2 }, 1, 2, 2);
      const bytes = new Uint8Array(backing);
      assert.ok(bytes.subarray(8, 24).some((b) => b !== 0xee), `${view.constructor.name}: frame copied`);
      assert.deepStrictEqual([...bytes.subarray(0, 8), ...bytes.subarray(24)], new Array(16).fill(0xee),
        `${view.constructor.name}: nothing written outside the view`);
    }
  });

  it('a channel without a capture slot holds nothing', async () => {
    registerDropped('initVideoCaptureBuffer', { channel: 7 }, 'no slot', 2, 2);
    await collect();
    assert.deepStrictEqual(collected(), ['no slot']);
  });
});

describe('a buffer shorter than its stated sides', () => {
  let session;
  let frames;

  beforeEach(() => {
    sim.reset();
    session = createEngine(addon);
    frames = [];
    session.engine.registerEventHandler({ name: 'tsfn', func: (name, payload) => frames.push({ name, payload }) });
  });
  afterEach(() => session.destroy());

  const cases = [
    { method: 'initVideoCaptureBuffer', key: { channel: 0 }, target: { channel: 0 },
      sizeEvent: { name: 'onCaptureVideoSizeChanged', payload: { width: 1920, height: 1080, channel: 0 } } },
    { method: 'initVideoPlayBuffer', key: { streamID: 'small' }, target: { streamID: 'small' },
      sizeEvent: { name: 'onPlayVideoSizeChanged', payload: { width: 1920, height: 1080, streamID: 'small' } } },
    { method: 'initMediaPlayerBuffer', key: { index: 1 } },
  ];

  for (const { method, key, target, sizeEvent } of cases) {
    it(`${method}: reported, and frames announce the size instead of overrunning`, async () => {
      const small = Buffer.alloc(16, 0xab);
      const alerts = session.named('onDebugError').length;
      session.engine[method]({ render_buffer: small, width: 1920, height: 1080, ...key });
      await until(() => session.named('onDebugError').length > alerts, 5000, 'the alert');
      const alert = session.named('onDebugError').at(-1).payload;
      assert.strictEqual(alert.funcName, method);
      assert.strictEqual(alert.errorInfo,
        'render_buffer holds 16 bytes, fewer than width * height * 4 = 8294400; frames are not copied into it');
      if (!target) return;  // media player frames arrive with the media player
      for (let i = 0; i < 3; i++) sim.frame(target, { width: 1920, height: 1080, format: 4 });
      await until(() => frames.length >= 2, 10000, 'frame events');
      await sleep(20);
      assert.deepStrictEqual(frames.slice(0, 1), [sizeEvent]);
      assert.deepStrictEqual(small, Buffer.alloc(16, 0xab));
    });
  }

  it('a buffer exactly as long as stated is not reported', async () => {
    session.engine.initVideoCaptureBuffer({ render_buffer: Buffer.alloc(2 * 2 * 4), width: 2, height: 2, channel: 0 });
    session.engine.setPlayVolume({ streamID: 's' });  // a failing check as a marker
    await until(() => session.named('onDebugError').length > 0, 5000, 'the marker alert');
    assert.deepStrictEqual(session.named('onDebugError').map((e) => e.payload.funcName), ['setPlayVolume']);
  });
});
