'use strict';
// The engine wrapper's frame: the script class and its method table, the methods of no family
// (uploadLog, enableDebugAssistant, registerEventHandler) and the frame buffers that script
// registers for rendering.

const test = require('node:test');
const assert = require('node:assert');
const {
  loadAddon, loadSim, createEngine, until, sleep, runNode, countLines,
} = require('./support/addon-harness');
const { describeFamily } = require('./support/wrapper-cases');
const { ENGINE_WRAPPER_METHODS } = require('../fixtures/engine-wrapper-methods');

// Families whose methods are on the class so far. A family joins by being named here.
const JOINED = ['frame', 'rooms', 'publishing', 'playing', 'mixer', 'devices', 'messaging', 'experimental'];

const ROWS = [
  { method: 'uploadLog', kind: 'U', arg: {}, checks: [], calls: [['orva_vantix_upload_log', {}]] },
  {
    method: 'enableDebugAssistant', kind: 'U', arg: { enable: true }, checks: ['enable:Boolean'],
    calls: [['orva_vantix_enable_debug_assistant', { enable: true }]],
  },
  {
    // Named "tsfn" so that engine teardown releases it and the process can end.
    method: 'registerEventHandler', kind: 'U', arg: { name: 'tsfn', func: () => {} }, checks: ['name:String', 'func:Function'],
    calls: [],
  },
  {
    method: 'initVideoCaptureBuffer', kind: 'U', arg: { render_buffer: Buffer.alloc(16), width: 2, height: 2, channel: 3 },
    checks: ['render_buffer:Buffer', 'width:Number', 'height:Number', 'channel:Number'], calls: [],
  },
  {
    method: 'initVideoPlayBuffer', kind: 'U', arg: { render_buffer: Buffer.alloc(16), width: 2, height: 2, streamID: 'p' },
    checks: ['render_buffer:Buffer', 'width:Number', 'height:Number', 'streamID:String'], calls: [],
  },
  {
    method: 'initMediaPlayerBuffer', kind: 'U', arg: { render_buffer: Buffer.alloc(16), width: 2, height: 2, index: 0 },
    checks: ['render_buffer:Buffer', 'width:Number', 'height:Number', 'index:Number'], calls: [],
  },
];

test('the script class lists exactly the joined families\' methods, in the method table\'s order', () => {
  const addon = loadAddon();
  const session = createEngine(addon);
  session.destroy();
  const proto = Object.getPrototypeOf(session.engine);
  assert.strictEqual(proto.constructor.name, 'OrvaVantixEngineWrapper');
  const names = Object.getOwnPropertyNames(proto).filter((n) => n !== 'constructor');
  const expected = ENGINE_WRAPPER_METHODS.filter(([, , family]) => JOINED.includes(family)).map(([name]) => name);
  assert.deepStrictEqual(names, expected);
  for (const name of names) {
    const d = Object.getOwnPropertyDescriptor(proto, name);
    assert.strictEqual(typeof d.value, 'function', name);
    assert.deepStrictEqual([d.writable, d.enumerable, d.configurable], [true, false, true], name);
  }
});

describeFamily('frame', ROWS);

test('trace lines of the class: its definition, and each construction while the debug assistant is on', () => {
  const r = runNode(`
    const addon = require('.');
    const engine = addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'x', electronVersion: 'y' });
    engine.enableDebugAssistant({ enable: true });
    new engine.constructor();
    addon.DestroyEngine();
  `);
  assert.strictEqual(r.status, 0, r.stderr);
  assert.strictEqual(countLines(r.stdout, 'init OrvaVantixEngineWrapper'), 1);
  // CreateEngine switches the assistant off before it makes its instance: only the second shows.
  assert.strictEqual(countLines(r.stdout, 'OrvaVantixEngineWrapper::OrvaVantixEngineWrapper'), 1);
});

test('enableDebugAssistant switches the "onDebugInfo" reports', async () => {
  const addon = loadAddon();
  const session = createEngine(addon);
  try {
    const { engine } = session;
    engine.enableDebugAssistant({ enable: false });
    engine.stopPreview({ channel: 0 });
    engine.enableDebugAssistant({ enable: true });
    engine.stopPreview({ channel: 0 });
    await until(() => session.named('onDebugInfo').length === 1, 5000, 'the report');
    await sleep(30);
    // The call that switches it on reports before the switch, so it is not reported itself.
    assert.deepStrictEqual(session.named('onDebugInfo').map((e) => e.payload.info), ['call func:stopPreview']);
  } finally {
    session.destroy();
  }
});

test('registerEventHandler', async (t) => {
  await t.test('the function receives the events sent under its name', async () => {
    const addon = loadAddon();
    const sim = loadSim();
    const session = createEngine(addon);
    try {
      const seen = [];
      session.engine.registerEventHandler({ name: 'tsfn', func: (name, payload) => seen.push({ name, payload }) });
      sim.frame({ channel: 2 }, { width: 8, height: 4, format: 4, flipMode: 1 });
      await until(() => seen.some((e) => e.name === 'onCapturedVideoFrameRawData'), 5000, 'the frame event');
      assert.deepStrictEqual(seen.find((e) => e.name === 'onCapturedVideoFrameRawData').payload,
        { channel: 2, videoFrameParam: { width: 8, height: 4, flipMode: 1 } });
    } finally {
      session.destroy();
    }
  });

  await t.test('a second registration of a name replaces the first without releasing it', () => {
    // In a child: the first function is never released, so it would keep this process alive.
    const r = runNode(`
      const addon = require('.');
      const sim = require('./engine/sim');
      const engine = addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'x', electronVersion: 'y' });
      const calls = { first: 0, second: 0 };
      engine.registerEventHandler({ name: 'tsfn', func: () => { calls.first += 1; } });
      engine.registerEventHandler({ name: 'tsfn', func: () => { calls.second += 1; } });
      sim.frame({ channel: 0 }, { width: 2, height: 2, format: 4 });
      setTimeout(() => {
        addon.DestroyEngine();        // releases the second, the one now named "tsfn"
        setTimeout(() => {
          console.log('--- ' + JSON.stringify(calls));
          process.exit(0);
        }, 200);
      }, 200);
    `);
    assert.strictEqual(r.status, 0, r.stderr);
    const [before, after] = r.stdout.split('--- ');
    assert.deepStrictEqual(JSON.parse(after.split('\n')[0]), { first: 0, second: 2 });  // size change, then frame
    assert.strictEqual(countLines(before, 'tsfn finalizer '), 1);
  });
});

test('frame buffers reach the renderer with their address and stated size', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const { engine } = session;
  // Two rows of two pixels; pixel (x, y) has bytes [10x + y, 1, 2, 255].
  const plane = Buffer.from([0, 1, 2, 255, 10, 1, 2, 255, 1, 1, 2, 255, 11, 1, 2, 255]);

  await t.test('initVideoCaptureBuffer: captured frames of its channel, rows reversed, blue and red swapped', () => {
    const buffer = Buffer.alloc(16);
    engine.initVideoCaptureBuffer({ render_buffer: buffer, width: 2 ** 32 + 2, height: 2, channel: 1 });
    sim.frame({ channel: 0 }, { width: 2, height: 2, format: 4, data: plane });
    assert.deepStrictEqual(buffer, Buffer.alloc(16), 'another channel\'s frame');
    sim.frame({ channel: 1 }, { width: 2, height: 2, format: 4, stride: 8, data: plane });
    assert.deepStrictEqual([...buffer], [2, 1, 1, 255, 2, 1, 11, 255, 2, 1, 0, 255, 2, 1, 10, 255]);
  });

  await t.test('initVideoPlayBuffer: frames of its stream; a larger frame drops the buffer instead of overflowing it', () => {
    const buffer = Buffer.alloc(16);
    engine.initVideoPlayBuffer({ render_buffer: buffer, width: 2, height: 2, streamID: 'cam' });
    sim.frame({ streamID: 'cam' }, { width: 2, height: 2, format: 5, data: plane });
    assert.deepStrictEqual([...buffer], [1, 1, 2, 255, 11, 1, 2, 255, 0, 1, 2, 255, 10, 1, 2, 255]);
    buffer.fill(7);
    sim.frame({ streamID: 'cam' }, { width: 3, height: 2, format: 5 });
    sim.frame({ streamID: 'cam' }, { width: 2, height: 2, format: 5, data: plane });
    assert.deepStrictEqual(buffer, Buffer.alloc(16, 7));
  });
});
