'use strict';
// Promise methods of the engine wrapper, generated from one table: how the engine's answer
// settles them (through the simulated engine's pending calls, answered by hand), the order of
// the synchronous rejections, and that an answer arriving after DestroyEngine settles nothing.
// (Rejections for missing or wrong-typed keys are among each family's generated cases.)

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, runNode, engineForTest } = require('./support/addon-harness');
const { settled } = require('./support/wrapper-cases');

const errorCodeOnly = (errorCode) => ({ errorCode });
const failedSnapshot = (errorCode) => ({ errorCode, image: 'snap shot error!' });

// extra: further keys of the engine's answer, which script never sees.
const PROMISES = [
  { method: 'setRoomExtraInfo', arg: { roomID: 'r', key: 'k', value: 'v' }, fn: 'orva_vantix_set_room_extra_info', extra: { roomID: 'r', key: 'k' }, result: errorCodeOnly },
  { method: 'setStreamExtraInfo', arg: { extraInfo: 'e', channel: 0 }, fn: 'orva_vantix_set_stream_extra_info', extra: {}, result: errorCodeOnly },
  { method: 'addPublishCdnUrl', arg: { streamID: 's', targetURL: 't' }, fn: 'orva_vantix_add_publish_cdn_url', extra: { streamID: 's' }, result: errorCodeOnly },
  { method: 'removePublishCdnUrl', arg: { streamID: 's', targetURL: 't' }, fn: 'orva_vantix_remove_publish_cdn_url', extra: { streamID: 's' }, result: errorCodeOnly },
  { method: 'takePublishStreamSnapshot', arg: { channel: 0 }, fn: 'orva_vantix_take_publish_stream_snapshot', extra: { channel: 0 }, result: failedSnapshot },
  { method: 'takePlayStreamSnapshot', arg: { streamID: 's' }, fn: 'orva_vantix_take_play_stream_snapshot', extra: { streamID: 's' }, result: failedSnapshot },
];

test('promise methods with an engine', async (t) => {
  const { sim, session, engine } = engineForTest(t);

  for (const row of PROMISES) {
    await t.test(`${row.method}: settled by the engine's answer, routed by sequence number`, async () => {
      sim.reset();
      sim.autoComplete(false);
      const first = engine[row.method](row.arg);
      const second = engine[row.method](row.arg);
      const pending = sim.pending();
      assert.deepStrictEqual(pending.map((p) => p.fn), [row.fn, row.fn]);
      assert.strictEqual((await settled(first, 50)).state, 'pending', 'not before the engine answers');
      // Answered in reverse order, each with its own error code: engine errors resolve.
      assert.ok(sim.complete(pending[1].seq, { errorCode: 1000002, ...row.extra }));
      assert.ok(sim.complete(pending[0].seq, { errorCode: 1000001, ...row.extra }));
      assert.deepStrictEqual(await settled(second), { state: 'resolved', value: row.result(1000002) });
      assert.deepStrictEqual(await settled(first), { state: 'resolved', value: row.result(1000001) });
    });

    await t.test(`${row.method}: a call the engine refuses resolves at once with the refusal`, async () => {
      sim.reset();
      sim.autoComplete(false);
      sim.setReturn(row.fn, 1000015);
      const promise = engine[row.method](row.arg);
      assert.deepStrictEqual(sim.pending(), []);
      assert.deepStrictEqual(await settled(promise, 100), { state: 'resolved', value: row.result(1000015) });
    });
  }

  await t.test('many calls in flight at once all resolve, each once', async () => {
    sim.reset();
    sim.autoComplete(true);
    const calls = [];
    for (let i = 0; i < 50; i += 1) for (const row of PROMISES.slice(0, 4)) calls.push(engine[row.method](row.arg));
    const outcomes = await Promise.all(calls.map((p) => settled(p, 10000)));
    assert.deepStrictEqual(outcomes.filter((o) => o.state !== 'resolved'), []);
    assert.ok(outcomes.every((o) => o.value.errorCode === 0));
  });
});

test('without an engine a promise method rejects with its own argument, before looking at the keys', async () => {
  const addon = loadAddon();
  const session = createEngine(addon);
  session.destroy();
  for (const row of PROMISES) {
    const wrong = { unrelated: true };
    const outcome = await settled(session.engine[row.method](wrong));
    assert.strictEqual(outcome.state, 'rejected', row.method);
    assert.strictEqual(outcome.reason, wrong, row.method);
  }
});

test('an answer that arrives after DestroyEngine settles nothing and touches no script value', () => {
  // In a child, to see the context guard's trace line on standard output.
  const r = runNode(`
    const addon = require('.');
    const sim = require('./engine/sim');
    const engine = addon.CreateEngine({ profile: { appID: 1, scenario: 0 }, tsfn: () => {}, SDKVersion: 'x', electronVersion: 'y' });
    engine.enableDebugAssistant({ enable: true });
    sim.autoComplete(false);
    const states = {};
    const track = (name, promise) => {
      states[name] = 'pending';
      promise.then(() => { states[name] = 'resolved'; }, () => { states[name] = 'rejected'; });
    };
    track('answeredBefore', engine.setRoomExtraInfo({ roomID: 'r', key: 'k', value: 'v' }));
    track('answeredAfter', engine.takePublishStreamSnapshot({ channel: 0 }));
    const [before, after] = sim.pending();
    // Answered now: its result task is queued for the script thread, which stays blocked
    // while the dispatch worker hands it over, and runs only after the engine is gone.
    sim.complete(before.seq, { errorCode: 0 });
    Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, 300);
    addon.DestroyEngine();
    sim.complete(after.seq, { errorCode: 0, channel: 0 });
    setTimeout(() => console.log('--- ' + JSON.stringify(states)), 300);
  `);
  assert.strictEqual(r.status, 0, r.stderr);
  const [trace, states] = r.stdout.split('--- ');
  assert.deepStrictEqual(JSON.parse(states.split('\n')[0]), { answeredBefore: 'pending', answeredAfter: 'pending' });
  assert.ok(trace.split('\n').includes('checkContextDestroy, operator ()'), trace);
});
