'use strict';
// Engine event delivery: how fast engine events reach a script callback, and how late.
// Prints figures; asserts nothing. Run through bench/run.js (npm run bench) or alone:
//   node bench/events.bench.js
//
// Throughput: the simulated engine floods room_state_update (1,000,000 events, from 1 and
// from 4 engine threads) at a callback that counts. The baseline, measured in the same run
// and interleaved with it, is the bare Node-API floor: native threads making the same number
// of blocking calls of one thread-safe function whose hook calls a counting function with a
// number (bench/native/events_bench_helper.c). It is built here, outside the addon, because
// the addon carries nothing for benchmarks; the simulated engine cannot stand in for it,
// since everything it emits goes through the addon's whole event path.
//
// Latency: native pacer threads hand room_state_update to the simulated engine on a fixed
// schedule (10,000 and 100,000 events a second), each carrying the monotonic time at which
// it was handed over; the callback takes the difference with process.hrtime.bigint() (the
// same clock). That includes the simulated engine's own share (payload conversion, the hop
// to an engine thread), shown separately as the time its emit call took.

const path = require('path');
const paths = require('../scripts/paths');
const { loadNativeHelper } = require('./native-helper');

const EVENTS = 1000000;
const ROUNDS = 3;
const LATENCY_SECONDS = 2;

const buildHelper = () => loadNativeHelper('events_bench_helper', ['-lpthread', '-ldl']);

const now = () => process.hrtime.bigint();
const seconds = (from) => Number(now() - from) / 1e9;
const median = (xs) => [...xs].sort((a, b) => a - b)[Math.floor(xs.length / 2)];
function quantile(values, q) {
  const sorted = Float64Array.from(values).sort();
  return sorted[Math.min(sorted.length - 1, Math.floor(q * sorted.length))];
}
const fmtRate = (x) => `${(x / 1e6).toFixed(2)} M/s`;
const fmtUs = (ns) => `${(ns / 1000).toFixed(1)} us`;

async function main() {
  const helper = buildHelper();
  const addon = require(paths.root);
  const sim = require(path.join(paths.root, 'engine', 'sim'));

  // One engine for the whole run; the callback is swapped per measurement.
  let onEvent = () => {};
  addon.CreateEngine({
    profile: { appID: 1, scenario: 0 }, tsfn: (name, payload) => onEvent(name, payload),
    SDKVersion: 'bench', electronVersion: 'bench',
  });

  const counted = (total, start) => new Promise((resolve) => {
    let n = 0;
    start(() => { if (++n === total) resolve(); });
  });

  async function addonRate(threads) {
    const t0 = now();
    await counted(EVENTS, (tick) => {
      onEvent = tick;
      sim.burst('room_state_update', { roomID: 'bench-room', state: 0, errorCode: 0, extendedData: '' },
        { count: EVENTS / threads, threads, counterKey: 'state' });
    });
    return EVENTS / seconds(t0);
  }

  async function pingRate(threads) {
    const t0 = now();
    await counted(EVENTS, (tick) => helper.ping(EVENTS / threads, threads, tick));
    return EVENTS / seconds(t0);
  }

  await addonRate(1);  // warm-up
  console.log(`== events: engine event delivery (room_state_update, ${EVENTS.toLocaleString('en')} events)`);
  console.log('threads   addon events/s   ping calls/s   time ratio (addon / ping)');
  for (const threads of [1, 4]) {
    const addonRates = [];
    const ratios = [];
    const pingRates = [];
    for (let r = 0; r < ROUNDS; r++) {
      const p = await pingRate(threads);
      const a = await addonRate(threads);
      pingRates.push(p);
      addonRates.push(a);
      ratios.push(p / a);
    }
    console.log(`${String(threads).padEnd(9)} ${fmtRate(median(addonRates)).padEnd(16)} ` +
      `${fmtRate(median(pingRates)).padEnd(14)} ${median(ratios).toFixed(2)}x`);
  }

  console.log('rate (target)   achieved     latency p50   p99        max        emit call p50   p99');
  for (const [rate, threads] of [[10000, 1], [100000, 4]]) {
    const count = rate * LATENCY_SECONDS;
    const latencies = new Float64Array(count);
    let k = 0;
    onEvent = (name, payload) => {
      if (name === 'onRoomStateUpdate') latencies[k++] = Number(now() - BigInt(payload.extendedData));
    };
    const result = await new Promise((resolve) => helper.paced(paths.engineLibraryPath(), rate, count, threads, resolve));
    while (k < count) await new Promise((r) => setTimeout(r, 5));
    const emitNs = new Float64Array(result.emitNs);
    console.log(`${`${rate / 1000}k/s`.padEnd(15)} ${`${(count / result.seconds / 1000).toFixed(1)}k/s`.padEnd(12)} ` +
      `${fmtUs(quantile(latencies, 0.5)).padEnd(13)} ${fmtUs(quantile(latencies, 0.99)).padEnd(10)} ` +
      `${fmtUs(quantile(latencies, 1)).padEnd(10)} ${fmtUs(quantile(emitNs, 0.5)).padEnd(15)} ${fmtUs(quantile(emitNs, 0.99))}`);
  }

  addon.DestroyEngine();
}

module.exports = { main };

if (require.main === module) {
  main().catch((e) => {
    console.error(e);
    process.exitCode = 1;
  });
}
