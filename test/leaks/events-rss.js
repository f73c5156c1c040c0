'use strict';
// Resident size across engine events delivered to script: `node events-rss.js <warm-up>
// <events>`. Prints one line "RSS {json}" with the size after the warm-up and after the
// events, both once every event arrived and after full collections.
//
// Events come from four engine threads in bursts of 25,000, each delivered before the next
// is sent: a flood's backlog raises the allocator's high-water mark by however far the
// engine threads ran ahead, which differs from run to run; small bursts keep that mark low
// and alike, so growth means something was left behind per event.

const { addonModule, simModule, createEngine } = require('../storm/media');
const { collect, sleep } = require('./measure');

const THREADS = 4;
const BURST = 25000;
const [warmUp, events] = process.argv.slice(2).map(Number);
const addon = require(addonModule);
const sim = require(simModule);

let delivered = 0;
// Texts longer than any small-string buffer, so that each event allocates on its way.
const payload = {
  roomID: 'leak-check-room-with-a-long-name', state: 0, errorCode: 0,
  extendedData: '{"reason":"leak-check","detail":"a text longer than a small string"}',
};

async function send(count) {
  for (let sent = 0; sent < count; sent += BURST) {
    const target = delivered + BURST;
    await sim.burst('room_state_update', payload, { count: BURST / THREADS, threads: THREADS, counterKey: 'state' });
    while (delivered < target) await sleep(1);
  }
}

(async () => {
  createEngine(addon, (name, p) => {
    if (name === 'onRoomStateUpdate' && p.extendedData === payload.extendedData) delivered++;
  });
  await send(warmUp);
  const start = await collect();
  const t0 = Date.now();
  await send(events);
  const seconds = (Date.now() - t0) / 1000;
  const end = await collect();
  addon.DestroyEngine();
  console.log(`RSS ${JSON.stringify({ warmUp, events, delivered: delivered - warmUp, seconds, start, end })}`);
})().catch((e) => {
  console.error(e);
  process.exitCode = 1;
});
