'use strict';
// The engine wrapper's per-method behaviour, generated from one table per feature family.
//
// A row describes one method as its table in the documents does:
//   method   script name
//   kind     'U' (returns undefined), 'V' (returns a value) or 'P' (returns a promise)
//   name     the name it reports when that differs from `method` (default: method)
//   arg      a valid argument object
//   checks   the keys the argument checker looks at, in check order, as 'path:Type'; a path
//            'user.userID' is the key userID of the nested object user
//   calls    the engine calls a valid call makes: [[C function, C arguments as journaled]]
//   returns  V rows: [value the engine answers (sim.setReturn), value script gets]
//   result   P rows: the resolved object, or a predicate on it
//   throws   a valid call throws this (assert.throws matcher) before any engine call, with an
//            engine or without one
//   alerts   P rows whose failed check also raises the debug alert (default: no alert)
//   withoutEngine  V rows: what script gets with no engine (default: undefined)
//
// A path through an array names the element by its index ('toUserList.1.userName'); the
// checker names the element's keys by the array's key ('param toUserList.userName missing').
//
// For every row it checks:
//   - each checked key missing, then of the wrong type: the checker's exact message, as an
//     "onDebugError" under the reported name (U, V; V then returns undefined) or as the
//     promise's rejection with no alert unless the row says it alerts (P, which also
//     rejects with undefined when called with no argument); no engine call at all;
//   - a valid call: "call func:<reported name>", exactly the expected engine calls (the
//     conversions: 64-bit reads cut to 32 bits, unsigned wrap-around, defaults), the return;
//   - with no engine (after DestroyEngine, and on a wrapper whose engine never came up):
//     no engine call, undefined for U, the row's `withoutEngine` value for V (default
//     undefined), and P rejects with its own argument object (with undefined when called
//     with no argument); a row that throws throws all the same.

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until } = require('./addon-harness');

const WRONG = {
  String: 7,
  Number: '7',
  Boolean: 1,
  Object: 'object',
  Array: {},
  ArrayBuffer: [],
  Buffer: 'buffer',
  Function: {},
};

const clone = (value) => {
  if (value === null || typeof value !== 'object' || value instanceof ArrayBuffer || ArrayBuffer.isView(value)) {
    return value;
  }
  if (Array.isArray(value)) return value.map(clone);
  return Object.fromEntries(Object.entries(value).map(([k, v]) => [k, clone(v)]));
};

// A copy of `arg` with the key at `path` removed, or set to `value`.
function edited(arg, path, edit) {
  const copy = clone(arg);
  const keys = path.split('.');
  const last = keys.pop();
  const holder = keys.reduce((object, key) => object[key], copy);
  edit(holder, last);
  return copy;
}

// The checker's messages: the object name is the key's parent ('' at the top); an array
// element ('inputList.0.streamID') is named by its array.
function messages(path, type) {
  const keys = path.split('.').filter((k) => !/^\d+$/.test(k));
  const key = keys.pop();
  const parents = keys.filter((k) => !/^\d+$/.test(k));
  const objectName = parents.length ? parents[parents.length - 1] : '';
  return {
    missing: `param ${objectName}.${key} missing`,
    wrong: `param ${objectName}.${key} should be type of ${type}`,
  };
}

const engineCalls = (sim) => sim.calls().filter((c) => !c.fn.startsWith('orva_register_'));

// Settles within `ms`, or reports 'pending'.
async function settled(promise, ms = 2000) {
  let timer;
  const pending = new Promise((resolve) => { timer = setTimeout(() => resolve({ state: 'pending' }), ms); });
  try {
    return await Promise.race([
      promise.then((value) => ({ state: 'resolved', value }), (reason) => ({ state: 'rejected', reason })),
      pending,
    ]);
  } finally {
    clearTimeout(timer);
  }
}

// Calls engine[method](arg) and waits for the "onDebugError" it must cause.
// Waits for the "onDebugError" that a failed check raised after `before` alerts.
async function alertAfter(session, before, row, errorInfo) {
  await until(() => session.named('onDebugError').length > before, 5000, `the alert of ${row.method}`);
  const { payload } = session.named('onDebugError')[before];
  assert.strictEqual(payload.funcName, row.name || row.method);
  assert.strictEqual(payload.errorInfo, errorInfo);
  assert.strictEqual(payload.errorCode, -1);
}

async function expectAlert(session, engine, row, arg, errorInfo) {
  const before = session.named('onDebugError').length;
  const returned = engine[row.method](arg);
  assert.strictEqual(returned, undefined, 'a failed check returns undefined');
  await alertAfter(session, before, row, errorInfo);
}

async function expectRejection(session, engine, row, arg, reason) {
  const before = session.named('onDebugError').length;
  const outcome = await settled(engine[row.method](arg));
  assert.deepStrictEqual(outcome, { state: 'rejected', reason });
  if (row.alerts) await alertAfter(session, before, row, reason);
  else assert.strictEqual(session.named('onDebugError').length, before, 'a promise method raises no alert');
}

async function checkFailures(sim, session, engine, row) {
  if (row.kind === 'P') assert.deepStrictEqual(await settled(engine[row.method]()), { state: 'rejected', reason: undefined });
  for (const check of row.checks || []) {
    const [path, type] = check.split(':');
    const text = messages(path, type);
    for (const [arg, message] of [
      [edited(row.arg, path, (o, k) => { delete o[k]; }), text.missing],
      [edited(row.arg, path, (o, k) => { o[k] = WRONG[type]; }), text.wrong],
    ]) {
      sim.reset();
      if (row.kind === 'P') await expectRejection(session, engine, row, arg, message);
      else await expectAlert(session, engine, row, arg, message);
      assert.deepStrictEqual(engineCalls(sim), [], `${message}: no engine call`);
    }
  }
}

async function checkValidCall(sim, session, engine, row) {
  sim.reset();
  if (row.returns) sim.setReturn(row.calls[0][0], row.returns[0]);
  const infos = session.named('onDebugInfo').length;
  if (row.throws) {
    assert.throws(() => engine[row.method](clone(row.arg)), row.throws);
    assert.deepStrictEqual(engineCalls(sim), [], 'no engine call');
    await until(() => session.named('onDebugInfo').length > infos, 5000, 'the debug info');
    return;
  }
  const returned = engine[row.method](clone(row.arg));
  if (row.kind === 'P') {
    assert.ok(returned instanceof Promise);
    const outcome = await settled(returned, 5000);
    assert.strictEqual(outcome.state, 'resolved');
    if (typeof row.result === 'function') assert.ok(row.result(outcome.value), JSON.stringify(outcome.value).slice(0, 200));
    else assert.deepStrictEqual(outcome.value, row.result);
  } else if (row.kind === 'V') {
    assert.deepStrictEqual(returned, row.returns[1]);
  } else {
    assert.strictEqual(returned, undefined);
  }
  const expected = row.calls.map(([fn, args]) => ({ fn, args }));
  assert.deepStrictEqual(engineCalls(sim).filter((c) => expected.some((e) => e.fn === c.fn)), expected);
  assert.deepStrictEqual(engineCalls(sim).map((c) => c.fn), expected.map((c) => c.fn), 'no other engine call');
  await until(() => session.named('onDebugInfo').length > infos, 5000, 'the debug info');
  assert.deepStrictEqual(session.named('onDebugInfo')[infos].payload, { info: `call func:${row.name || row.method}` });
}

async function checkWithoutEngine(sim, engine, row) {
  sim.reset();
  const arg = clone(row.arg);
  if (row.throws) {
    assert.throws(() => engine[row.method](arg), row.throws);
    assert.deepStrictEqual(engineCalls(sim), [], 'no engine call');
    return;
  }
  const returned = engine[row.method](arg);
  if (row.kind === 'P') {
    const outcome = await settled(returned);
    assert.strictEqual(outcome.state, 'rejected');
    assert.strictEqual(outcome.reason, arg, 'rejected with the very object given');
    assert.deepStrictEqual(await settled(engine[row.method]()), { state: 'rejected', reason: undefined });
  } else {
    assert.deepStrictEqual(returned, row.withoutEngine);
  }
  assert.deepStrictEqual(engineCalls(sim), [], 'no engine call');
}

// Declares the generated tests of one family. `rows` in table order.
function describeFamily(family, rows) {
  const addon = loadAddon();
  const sim = loadSim();

  test(`${family}: every method with an engine`, async (t) => {
    const session = createEngine(addon);
    t.after(() => session.destroy());
    // On, so that each call's "call func:" report can be checked.
    session.engine.enableDebugAssistant({ enable: true });
    for (const row of rows) {
      await t.test(`${row.method}: missing and wrong-typed keys are reported, the engine is not called`,
        () => checkFailures(sim, session, session.engine, row));
      await t.test(`${row.method}: a valid call reaches the engine with the converted values`,
        () => checkValidCall(sim, session, session.engine, row));
    }
  });

  test(`${family}: every method without an engine`, async (t) => {
    const session = createEngine(addon);
    session.destroy();
    await t.test('after DestroyEngine', async () => {
      for (const row of rows) await checkWithoutEngine(sim, session.engine, row);
    });
    await t.test('on a wrapper whose engine was refused', async () => {
      sim.reset();
      sim.setReturn('orva_vantix_engine_init_with_profile', 1);
      const refused = createEngine(addon);
      try {
        for (const row of rows) await checkWithoutEngine(sim, refused.engine, row);
      } finally {
        refused.destroy();
        sim.reset();
      }
    });
  });
}

module.exports = { describeFamily, settled, engineCalls, WRONG };
