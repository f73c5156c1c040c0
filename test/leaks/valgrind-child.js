'use strict';
// Run under valgrind by test/leaks/run.js: `node valgrind-child.js <cycles> [exit]` creates
// and destroys the engine that many times, each time with a frame handler and a capture
// buffer, frames copied into it, events from a small flood and an emit delivered to script.
// Prints "done <cycles> <events>" at the end.

const { addonModule, simModule, createEngine, flood, CAPTURE } = require('../storm/media');
const { collect } = require('./measure');

const cycles = Number(process.argv[2] || 30);
// 'exit': end with process.exit(), which skips the environment's cleanup: what the addon
// still holds per cycle then stays reachable, where valgrind can count it.
const hardExit = process.argv[3] === 'exit';
const addon = require(addonModule);
const sim = require(simModule);
const turn = () => new Promise((resolve) => setImmediate(resolve));

(async () => {
  let events = 0;
  for (let c = 0; c < cycles; c++) {
    let mine = 0;
    const engine = createEngine(addon, () => { events++; mine++; });
    let frames = 0;
    engine.registerEventHandler({ name: 'tsfn', func: () => { frames++; } });
    engine.initVideoCaptureBuffer({ render_buffer: Buffer.alloc(CAPTURE.width * CAPTURE.height * 4), ...CAPTURE, channel: 0 });
    sim.emit('room_state_update', { roomID: `valgrind-${c}`, state: 1, errorCode: 0, extendedData: 'leak-check' });
    sim.frame({ channel: 0 }, { ...CAPTURE, format: 4 });
    sim.frame({ channel: 0 }, { ...CAPTURE, format: 4 });
    await flood(sim, 25, 2);
    while (mine < 51 || frames < 2) await turn();
    addon.DestroyEngine();
    sim.reset();
    await turn();
  }
  console.log(`done ${cycles} ${events}`);
  if (hardExit) {
    await collect();  // engine wrappers of past cycles are finalised, not counted as held
    process.exit(0);
  }
})().catch((e) => {
  console.error(e);
  process.exitCode = 1;
});
