'use strict';
// stopPlayingStream against frames of the same stream arriving on engine threads: once it
// has returned, no frame writes into the stream's buffer any more, however many are in
// flight. Run under ThreadSanitizer as well (scripts/run-sanitized.sh tsan ...).

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until } = require('./support/addon-harness');

const WIDTH = 64;
const HEIGHT = 48;
const SENTINEL = 0xab;

test('no frame is written into a stream\'s buffer after stopPlayingStream returned', async () => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  try {
    const { engine } = session;
    for (let round = 0; round < 3; round += 1) {
      const streamID = `race-${round}`;
      const buffer = Buffer.alloc(WIDTH * HEIGHT * 4);
      engine.startPlayingStream({ streamID, config: {} });
      engine.initVideoPlayBuffer({ render_buffer: buffer, width: WIDTH, height: HEIGHT, streamID });

      let flooding = true;
      const flood = sim.burst('custom_video_render_remote_frame_data',
        { streamID, videoFrameParam: { width: WIDTH, height: HEIGHT } },
        { count: 40000, threads: 2 }).finally(() => { flooding = false; });
      // Frames are being copied: the pattern is never all zero.
      await until(() => buffer.some((b) => b !== 0), 10000, 'the first copied frame');

      assert.ok(flooding, 'the flood is still running when the stream stops');
      engine.stopPlayingStream({ streamID });
      buffer.fill(SENTINEL);
      const { calls } = await flood;
      assert.strictEqual(calls, 80000);
      assert.ok(buffer.every((b) => b === SENTINEL), `round ${round}: a frame was written after stopPlayingStream`);
    }
  } finally {
    session.destroy();
  }
});
