'use strict';
// Resident size across engine create/destroy cycles: `node cycles-rss.js <warm-up> <cycles>
// <checkpoints>`. Prints one line "RSS {json}" with the size after the warm-up and at each
// checkpoint, every one taken after full collections.
//
// Each cycle registers a frame handler and a capture buffer of 9 KB, sends one event and
// one frame through them and waits for the event: an addon that kept any of them (the
// buffer, the handler, the event function) would grow by kilobytes per cycle.

const { addonModule, simModule, createEngine } = require('../storm/media');
const { collect, gc } = require('./measure');

const [warmUp, cycles, checkpoints] = process.argv.slice(2).map(Number);
const addon = require(addonModule);
const sim = require(simModule);

const turn = () => new Promise((resolve) => setImmediate(resolve));
const SMALL = { width: 48, height: 48 };

async function cycle(n) {
  let delivered = false;
  const engine = createEngine(addon, (name, payload) => {
    if (name === 'onRoomStateUpdate' && payload.extendedData === 'leak-check') delivered = true;
  });
  engine.registerEventHandler({ name: 'tsfn', func: () => {} });
  engine.initVideoCaptureBuffer({ render_buffer: Buffer.alloc(SMALL.width * SMALL.height * 4), ...SMALL, channel: 0 });
  sim.emit('room_state_update', { roomID: `leak-room-${n}`, state: 1, errorCode: 0, extendedData: 'leak-check' });
  sim.frame({ channel: 0 }, { ...SMALL, format: 4 });
  while (!delivered) await turn();
  addon.DestroyEngine();
  // The simulated engine journals every call until reset (some 100 KB per cycle): that is
  // the test instrument's memory, not the addon's.
  sim.reset();
  await turn();  // the event functions finalise on the loop
}

(async () => {
  // A collection every 100 cycles keeps the garbage between collections (wrappers,
  // buffers, payloads) small and alike, so the allocator's high-water mark does not jump
  // with the collector's timing.
  const run = async (from, to, each) => {
    for (let i = from; i < to; i++) {
      await cycle(i);
      if (i % 100 === 99) gc();
      if (each && (i + 1 - from) % each === 0) figures.checkpoints.push({ cycles: i + 1 - from, ...(await collect()) });
    }
  };
  const figures = { warmUp, checkpoints: [] };
  await run(0, warmUp, 0);
  figures.start = await collect();
  await run(warmUp, warmUp + cycles, cycles / checkpoints);
  console.log(`RSS ${JSON.stringify(figures)}`);
  // Nothing is left to keep the process alive: it ends by itself (the runner's timeout
  // catches an event function that was never released).
})().catch((e) => {
  console.error(e);
  process.exitCode = 1;
});
