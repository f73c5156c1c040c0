'use strict';
// Raw video frames: copied into the script buffers registered for their channel or stream
// and announced on the function registered as "tsfn"; size changes announced, buffers that
// no longer fit dropped; the captured and remote paths' different silences; the pixel
// formats byte for byte against a reference written here.

const { describe, it, beforeEach, afterEach } = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, until } = require('./support/addon-harness');

const addon = loadAddon();
const sim = loadSim();

// The frame copy as script expects it: rows bottom-up; format 4 also exchanges bytes 0 and
// 2 of each pixel and reads rows at the plane's stride; format 5 reads packed rows; any
// other format is copied as it is.
function reference(plane, width, height, stride, format) {
  const row = width * 4;
  const out = Buffer.alloc(row * height);
  if (format !== 4 && format !== 5) return Buffer.from(plane.subarray(0, row * height));
  for (let r = 0; r < height; r++) {
    const from = (height - 1 - r) * (format === 4 ? stride : row);
    for (let b = 0; b < row; b++) {
      const k = b % 4;
      const source = format === 4 && k !== 1 && k !== 3 ? b - k + (2 - k) : b;
      out[r * row + b] = plane[from + source];
    }
  }
  return out;
}

function pattern(length, seed) {
  const b = Buffer.alloc(length);
  for (let i = 0; i < length; i++) b[i] = (i * 131 + seed * 17 + (i >> 8)) & 0xff;
  return b;
}

const frameEvent = (target, width, height, flipMode = 0) => ('channel' in target
  ? { name: 'onCapturedVideoFrameRawData', payload: { channel: target.channel, videoFrameParam: { width, height, flipMode } } }
  : { name: 'onRemoteVideoFrameRawData', payload: { streamID: target.streamID, videoFrameParam: { width, height, flipMode } } });
const captureSizeEvent = (width, height, channel) => ({ name: 'onCaptureVideoSizeChanged', payload: { width, height, channel } });
const playSizeEvent = (width, height, streamID) => ({ name: 'onPlayVideoSizeChanged', payload: { width, height, streamID } });

describe('raw video frames', () => {
  let engine;
  let frames;
  let sentinels = 0;

  beforeEach(() => {
    sim.reset();
    frames = [];
    engine = addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'f', electronVersion: 'f' });
    engine.registerEventHandler({ name: 'tsfn', func: (name, payload) => frames.push({ name, payload }) });
  });
  afterEach(() => addon.DestroyEngine());

  // Delivers [target, frame] pairs from an engine thread, then a frame for a stream nobody
  // registered (always announced) as a marker: returns the frame events in between.
  async function deliver(...pairs) {
    const from = frames.length;
    for (const [target, frame] of pairs) assert.strictEqual(sim.frame(target, frame), true);
    const marker = `marker-${++sentinels}`;
    sim.frame({ streamID: marker }, { width: 1, height: 1, format: 5 });
    const isMarker = (e) => e.payload.streamID === marker;
    await until(() => frames.slice(from).some(isMarker), 10000, 'the marker frame');
    return frames.slice(from, frames.findIndex((e, i) => i >= from && isMarker(e)));
  }

  const registerCapture = (channel, width, height, fill = 0xee) => {
    const buffer = Buffer.alloc(width * height * 4, fill);
    engine.initVideoCaptureBuffer({ render_buffer: buffer, width, height, channel });
    return buffer;
  };
  const registerPlay = (streamID, width, height, fill = 0xee) => {
    const buffer = Buffer.alloc(width * height * 4, fill);
    engine.initVideoPlayBuffer({ render_buffer: buffer, width, height, streamID });
    return buffer;
  };

  describe('captured', () => {
    it('first frame with nothing registered: size event and frame event, then silence', async () => {
      const f = { width: 320, height: 180, format: 4, flipMode: 1 };
      assert.deepStrictEqual(await deliver([{ channel: 0 }, f], [{ channel: 0 }, f], [{ channel: 0 }, { ...f, width: 16 }]),
        [captureSizeEvent(320, 180, 0), frameEvent({ channel: 0 }, 320, 180, 1)]);
      const buffer = registerCapture(0, 320, 180);
      assert.deepStrictEqual(await deliver([{ channel: 0 }, f]), [frameEvent({ channel: 0 }, 320, 180, 1)]);
      assert.notDeepStrictEqual(buffer, Buffer.alloc(buffer.length, 0xee), 'copied once registered');
    });

    it('a frame of exactly the registered size is copied', async () => {
      const buffer = registerCapture(1, 7, 5);
      const data = pattern(7 * 5 * 4, 1);
      assert.deepStrictEqual(await deliver([{ channel: 1 }, { width: 7, height: 5, format: 5, data }]),
        [frameEvent({ channel: 1 }, 7, 5)]);
      assert.deepStrictEqual(buffer, reference(data, 7, 5, 28, 5));
    });

    it('a shrinking frame keeps being copied, packed at its own width', async () => {
      const buffer = registerCapture(2, 8, 8);
      const data = pattern(32 * 3, 2);  // 5 x 3 at a stride of 32
      await deliver([{ channel: 2 }, { width: 5, height: 3, format: 4, stride: 32, data }]);
      const head = reference(data, 5, 3, 32, 4);
      assert.deepStrictEqual(buffer.subarray(0, head.length), head);
      assert.deepStrictEqual(buffer.subarray(head.length), Buffer.alloc(buffer.length - head.length, 0xee));
    });

    it('a growing frame drops the buffer untouched and announces the new size', async () => {
      const buffer = registerCapture(3, 4, 4);
      const f = { width: 4, height: 5, format: 4 };
      assert.deepStrictEqual(await deliver([{ channel: 3 }, f], [{ channel: 3 }, f]),
        [captureSizeEvent(4, 5, 3), frameEvent({ channel: 3 }, 4, 5)]);
      assert.deepStrictEqual(buffer, Buffer.alloc(buffer.length, 0xee));
    });

    it('channel 4 frames are announced every time and never copied', async () => {
      const buffer = registerCapture(4, 2, 2);
      const f = { width: 2, height: 2, format: 5 };
      assert.deepStrictEqual(await deliver([{ channel: 4 }, f], [{ channel: 4 }, f]),
        [frameEvent({ channel: 4 }, 2, 2), frameEvent({ channel: 4 }, 2, 2)]);
      assert.deepStrictEqual(buffer, Buffer.alloc(buffer.length, 0xee));
    });
  });

  describe('remote', () => {
    it('a stream without a slot is announced on every frame, without size events', async () => {
      const f = { width: 64, height: 32, format: 5, flipMode: 2 };
      assert.deepStrictEqual(await deliver([{ streamID: 'ü-☃' }, f], [{ streamID: 'ü-☃' }, f]),
        [frameEvent({ streamID: 'ü-☃' }, 64, 32, 2), frameEvent({ streamID: 'ü-☃' }, 64, 32, 2)]);
    });

    it('a stream with a slot: copied, dropped on growth, silent until registered again', async () => {
      let buffer = registerPlay('s', 6, 4);
      const data = pattern(6 * 4 * 4, 3);
      assert.deepStrictEqual(await deliver([{ streamID: 's' }, { width: 6, height: 4, format: 5, data }]),
        [frameEvent({ streamID: 's' }, 6, 4)]);
      assert.deepStrictEqual(buffer, reference(data, 6, 4, 24, 5));

      const big = { width: 6, height: 5, format: 5 };
      assert.deepStrictEqual(await deliver([{ streamID: 's' }, big], [{ streamID: 's' }, big]),
        [playSizeEvent(6, 5, 's'), frameEvent({ streamID: 's' }, 6, 5)]);
      assert.deepStrictEqual(buffer, reference(data, 6, 4, 24, 5), 'untouched once dropped');

      buffer = registerPlay('s', 6, 5);
      assert.deepStrictEqual(await deliver([{ streamID: 's' }, big]), [frameEvent({ streamID: 's' }, 6, 5)]);
      assert.notDeepStrictEqual(buffer, Buffer.alloc(buffer.length, 0xee));
    });

    it('after stopPlayingStream frames are announced but no longer copied', async () => {
      const buffer = registerPlay('gone', 3, 3);
      engine.stopPlayingStream({ streamID: 'gone' });
      assert.deepStrictEqual(await deliver([{ streamID: 'gone' }, { width: 3, height: 3, format: 5 }]),
        [frameEvent({ streamID: 'gone' }, 3, 3)]);
      assert.deepStrictEqual(buffer, Buffer.alloc(buffer.length, 0xee));
    });
  });

  // [format, width, height, stride]: odd sides, strides wider than the row, widths that
  // end the SIMD loops in their tails.
  const FORMATS = [
    [4, 1, 1, 4], [4, 7, 5, 28], [4, 13, 9, 13 * 4 + 12], [4, 33, 3, 33 * 4 + 4], [4, 17, 2, 17 * 4 + 1],
    [5, 1, 1, 4], [5, 7, 5, 28], [5, 13, 9, 13 * 4 + 12], [5, 33, 3, 33 * 4],
    [6, 5, 3, 20], [0, 9, 7, 36],
  ];
  for (const [format, width, height, stride] of FORMATS) {
    it(`format ${format}, ${width} x ${height}, stride ${stride}: byte for byte`, async () => {
      const data = pattern(stride * height, format + width);
      const channelBuffer = registerCapture(1, width, height);
      const streamBuffer = registerPlay('bytes', width, height);
      const f = { width, height, format, stride, data };
      await deliver([{ channel: 1 }, f], [{ streamID: 'bytes' }, f]);
      const expected = reference(data, width, height, stride, format);
      assert.deepStrictEqual(channelBuffer, expected);
      assert.deepStrictEqual(streamBuffer, expected);
    });
  }

  it('DestroyEngine forgets every registered buffer', async () => {
    const capture = registerCapture(0, 4, 4);
    const play = registerPlay('kept', 4, 4);
    addon.DestroyEngine();
    engine = addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'f', electronVersion: 'f' });
    engine.registerEventHandler({ name: 'tsfn', func: (name, payload) => frames.push({ name, payload }) });
    const f = { width: 4, height: 4, format: 5 };
    assert.deepStrictEqual(await deliver([{ channel: 0 }, f], [{ streamID: 'kept' }, f]),
      [captureSizeEvent(4, 4, 0), frameEvent({ channel: 0 }, 4, 4), frameEvent({ streamID: 'kept' }, 4, 4)]);
    assert.deepStrictEqual(capture, Buffer.alloc(capture.length, 0xee));
    assert.deepStrictEqual(play, Buffer.alloc(play.length, 0xee));
  });
});
