'use strict';
// Memory under floods of engine events: every task that carried an event is freed once
// delivered, so the resident size settles instead of growing with the number of events.
//
// The queues are unbounded by design, so a flood raises the peak (script is slower than four
// engine threads) and the allocator keeps that high-water mark; how high depends on how far
// the engine threads ran ahead, which differs from flood to flood. So growth is judged on
// floods sent in chunks (each delivered before the next is sent), whose backlog stays small:
// after them the size is flat unless events leave something behind.
//
// Everything runs in a child with one malloc arena (glibc's MALLOC_ARENA_MAX): with an arena
// per engine thread, each flood leaves them fragmented differently and the size creeps by
// MBs for a while, which would hide a small leak.

const test = require('node:test');
const assert = require('node:assert');
const { addonModule, simModule, runNode } = require('./support/addon-harness');

const THREADS = 4;
const MB = 1024 * 1024;
const CHUNKED_ROUNDS = 10;
const EVENTS_PER_ROUND = 400000;

const child = `
  const v8 = require('v8');
  v8.setFlagsFromString('--expose-gc');
  const gc = require('vm').runInNewContext('gc');
  const addon = require(${JSON.stringify(addonModule)});
  const sim = require(${JSON.stringify(simModule)});
  const sleep = (ms) => new Promise((r) => setTimeout(r, ms));
  let total = 0;
  addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => { total++; }, SDKVersion: 'm', electronVersion: 'm' });
  const payload = { roomID: 'room-with-a-name-longer-than-sso', state: 0, errorCode: 0, extendedData: '{"k":"v"}' };
  // 'chunks' bursts of 'perThread' events from each of ${THREADS} threads, each delivered
  // before the next; then the resident size after a full collection.
  async function flood(perThread, chunks) {
    for (let c = 0; c < chunks; c++) {
      const target = total + ${THREADS} * perThread;
      await sim.burst('room_state_update', payload, { count: perThread, threads: ${THREADS}, counterKey: 'state' });
      while (total < target) await sleep(1);
    }
    for (let i = 0; i < 3; i++) { gc(); await sleep(20); }
    return process.memoryUsage().rss;
  }
  (async () => {
    const start = await flood(1000, 1);  // warm: pools and code paths
    // Chunks first: space that a flood's backlog freed would absorb a small leak for a while.
    const chunked = [];
    for (let r = 0; r < ${CHUNKED_ROUNDS}; r++) chunked.push(await flood(${EVENTS_PER_ROUND} / ${THREADS} / 40, 40));
    const floods = [await flood(100000, 1), await flood(100000, 1)];
    addon.DestroyEngine();
    console.log('RSS ' + JSON.stringify({ start, floods, chunked }));
  })();
`;

test('floods of events leave no growing residue', {
  skip: process.env.ORVA_SANITIZER && 'the sanitizers\' allocators keep freed memory on purpose',
}, (t) => {
  const r = runNode(child, { env: { MALLOC_ARENA_MAX: '1' }, timeout: 300000 });
  assert.strictEqual(r.status, 0, r.stderr);
  const { start, floods, chunked } = JSON.parse(r.stdout.match(/^RSS (.*)$/m)[1]);
  const mb = (xs) => xs.map((x) => (x / MB).toFixed(1)).join(', ');
  const figures = `start ${mb([start])} MB; after rounds of ${EVENTS_PER_ROUND} in chunks: ${mb(chunked)} MB; ` +
    `after two floods of ${THREADS * 100000}: ${mb(floods)} MB`;
  t.diagnostic(figures);
  // 2.8 million events after the third round: one allocation kept per event (32 bytes at
  // least) would add 85 MB.
  assert.ok(chunked[CHUNKED_ROUNDS - 1] - chunked[2] < 4 * MB, `grows with the events: ${figures}`);
  // What stays above the start is the allocator's high-water mark of a flood's backlog.
  assert.ok(floods[1] - start < 192 * MB, `does not settle near its start: ${figures}`);
});
