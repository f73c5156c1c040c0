'use strict';
// The fuzzer's own parts (test/fuzz): a wrong oracle passes bugs or cries wolf, a wrong
// printer or a non-deterministic generator makes its reproducers lie, and a driver that
// misses a crash or a hang makes the whole run worthless.

const test = require('node:test');
const assert = require('node:assert');
const fs = require('fs');
const os = require('os');
const path = require('path');
const { spawnSync } = require('child_process');
const { root, loadAddon, createEngine, sleep, PROFILE } = require('./support/addon-harness');

const fuzz = (name) => require(path.join(root, 'test', 'fuzz', name));
const { Rng, chunkSeed } = fuzz('prng');
const { classify, classifyUncaught, DOCUMENTED } = fuzz('oracle');
const { Values, show, marker } = fuzz('values');
const { harvest, methodNames, isScriptObject, Surface } = fuzz('surface');
const { runChunk, replayCommand, crashHeadline } = fuzz('run');

test('the PRNG', async (t) => {
  await t.test('replays a seed and tells seeds apart', () => {
    const draw = (seed) => { const r = new Rng(seed); return Array.from({ length: 64 }, () => r.u32()); };
    assert.deepStrictEqual(draw(42), draw(42));
    assert.notDeepStrictEqual(draw(42), draw(43));
    const seeds = new Set(Array.from({ length: 2000 }, (_, i) => chunkSeed(7, i)));
    assert.strictEqual(seeds.size, 2000, 'chunks of one run get distinct seeds');
    assert.notStrictEqual(chunkSeed(7, 0), chunkSeed(8, 0));
  });

  await t.test('draws integers over their whole range and never a weight-0 row', () => {
    const r = new Rng(1);
    const seen = new Set();
    for (let i = 0; i < 2000; i++) {
      const x = r.range(-2, 2);
      assert.ok(Number.isInteger(x) && x >= -2 && x <= 2, String(x));
      seen.add(x);
      assert.strictEqual(r.weighted([[0, 'never'], [1, 'a'], [0, 'never'], [2, 'b']]) === 'never', false);
    }
    assert.deepStrictEqual([...seen].sort(), [-1, -2, 0, 1, 2].sort());
  });
});

test('the oracle', async (t) => {
  await t.test('accepts exactly the documented TypeError texts', () => {
    for (const text of DOCUMENTED) {
      assert.strictEqual(classify(new TypeError(text)), 'documented', text);
      assert.strictEqual(classify(new Error(text)), null, `${text} as a plain Error`);
      assert.strictEqual(classify(new TypeError(`${text}.`)), null, `${text} with a dot`);
    }
    assert.strictEqual(classify('Wrong arguments'), null, 'a thrown string');
  });

  await t.test('accepts the errors of a value that cannot be converted, and nothing like them', () => {
    assert.strictEqual(classify(new TypeError('A number was expected')), 'conversion');
    assert.strictEqual(classify(new TypeError('Cannot convert a Symbol value to a string')), 'conversion');
    assert.strictEqual(classify(new Error('Invalid argument')), 'conversion');
    assert.strictEqual(classify(new Error('An array was expected')), 'conversion');
    assert.strictEqual(classify(new TypeError('Invalid argument')), null, 'as a TypeError');
    assert.strictEqual(classify(new Error('A number was expected')), null, 'as a plain Error');
    assert.strictEqual(classify(new RangeError('Invalid argument')), null);
    assert.strictEqual(classify(new TypeError('A number was expected!')), null);
  });

  await t.test("accepts a value's own error by identity only", () => {
    const m = marker();
    assert.strictEqual(classify(m), 'marker');
    assert.strictEqual(classify(new Error(m.message)), null, 'a copy with the same text');
    assert.strictEqual(classifyUncaught(m), 'marker');
    assert.strictEqual(classifyUncaught(new Error(m.message)), null);
    assert.strictEqual(classifyUncaught(new TypeError("Class constructors cannot be invoked without 'new'")), 'callee');
  });

  await t.test("accepts V8's receiver and revoked-proxy errors only where the call earned them", () => {
    const illegal = new TypeError('Illegal invocation');
    assert.strictEqual(classify(illegal), null);
    assert.strictEqual(classify(illegal, { foreignReceiver: true }), 'receiver');
    const revoked = new TypeError("Cannot perform 'has' on a proxy that has been revoked");
    assert.strictEqual(classify(revoked), null);
    assert.strictEqual(classify(revoked, { touchedRevoked: true }), 'revoked');
  });
});

test('printed arguments', async (t) => {
  const info = harvest(path.join(root, 'src'));
  const surface = { info, classList: () => [], addon: {} };

  await t.test('rebuild the valid-looking values they print', () => {
    const values = new Values(new Rng(5), surface, { keyPool: [...info.all.keys()] });
    const methods = [...info.methods.values()];
    // Functions print as functions of the same kind; compare everything else exactly.
    const plain = (v) => JSON.parse(JSON.stringify(v, (k, x) => (typeof x === 'function' ? 'fn' : x)));
    for (let i = 0; i < 500; i++) {
      const v = values.validFor(methods[i % methods.length]);
      const text = show(v);
      // eslint-disable-next-line no-eval
      const rebuilt = eval(`(${text})`);
      assert.deepStrictEqual(plain(rebuilt), plain(v), text);
    }
    const ownProto = Object.defineProperty({}, '__proto__', { value: 5, enumerable: true, configurable: true, writable: true });
    const tricky = [-0, NaN, -Infinity, 2 ** 53 + 2, 12n, '\ud800', 'a\u0000b', '中文', Buffer.alloc(3), new ArrayBuffer(5),
      ownProto, { ['k'.repeat(1000)]: 'y'.repeat(4097) }];
    for (const v of tricky) {
      // eslint-disable-next-line no-eval
      assert.deepStrictEqual(eval(`(${show(v)})`), v, show(v));
    }
  });

  await t.test('never run a getter or a trap of the value', () => {
    const values = new Values(new Rng(9), surface, { keyPool: [...info.all.keys()] });
    for (let i = 0; i < 3000; i++) {
      const args = i % 2 ? [values.value(0)] : values.argsFor(null);
      // A getter or trap run by the printer throws its marker, which prints as unprintable.
      for (const a of args) assert.doesNotMatch(show(a), /unprintable/);
    }
  });
});

test('the key harvest', async (t) => {
  const dir = fs.mkdtempSync(path.join(os.tmpdir(), 'orva-harvest-'));
  t.after(() => fs.rmSync(dir, { recursive: true, force: true }));
  fs.writeFileSync(path.join(dir, 'w.cc'), `
    bool checkShared(MethodCall& call) { return call.check("config", {{"token", T::String}}); }
    Napi::Value W::first(const Napi::CallbackInfo& info) {
      MethodCall call(info, "first", errors_);
      if (!call.check({{"roomID", T::String}, {"config", T::Object}}) ||
          !call.check("user", {{"userID", T::String}, {"age", T::Number}}) || !checkShared(call)) return x;
      const ArgObject& a = call.args();
      ArgObject layout = a.object("layout");
      int w = layout.truncatedInt32("width");
      Napi::Function f = a.get("func").As<Napi::Function>();
      for (const char* key : {"p", "q"}) {}
      keys.text("loose", v, "param loose type error!");
    }
    Napi::Value W::second(const Napi::CallbackInfo& info) {
      MethodCall call(info, "second", errors_);
      return callEngine(call, &E::x, truncatedUint32(a, "count"));
    }`);
  const info = harvest(dir);
  const tree = (node) => Object.fromEntries([...node.children].map(([k, n]) => [k, { t: [...n.types].sort().join('|'), c: tree(n) }]));

  await t.test('places keys where the method reads them, with their types', () => {
    assert.deepStrictEqual(tree(info.methods.get('W::first').top), {
      user: { t: 'Object', c: { userID: { t: 'String', c: {} }, age: { t: 'Number', c: {} } } },
      roomID: { t: 'String', c: {} },
      config: { t: 'Object', c: { token: { t: 'String', c: {} } } },  // from the file's shared helper
      p: { t: '', c: {} },
      q: { t: '', c: {} },
      layout: { t: 'Object', c: { width: { t: 'Number', c: {} } } },
      func: { t: 'Function', c: {} },
    });
    assert.deepStrictEqual([...info.methods.get('W::first').loose.keys()], ['loose']);
    assert.deepStrictEqual(tree(info.methods.get('W::second').top), { count: { t: 'Number', c: {} } });
  });

  await t.test('finds every method the addon hands to script', (tt) => {
    const real = harvest(path.join(root, 'src'));
    const addon = loadAddon();
    const engine = addon.CreateEngine({ profile: PROFILE, tsfn: () => {}, SDKVersion: 't', electronVersion: 't' });
    tt.after(() => addon.DestroyEngine());
    const surfaceOf = new Surface(addon, real);
    assert.ok(surfaceOf.note(engine));
    const missing = [
      ...surfaceOf.addonMethods.filter((m) => !surfaceOf.keysOf('OrvaVantixAddon', m)),
      ...surfaceOf.classList().flatMap((c) => c.methods.filter((m) => !surfaceOf.keysOf(c.name, m))),
    ];
    assert.deepStrictEqual(missing, []);
    // The reads of a method that takes nested objects reach the nested keys.
    assert.ok(surfaceOf.keysOf('OrvaVantixEngineWrapper', 'loginRoom').top.children.get('user').children.has('userID'));
  });
});

test('generated arguments', async (t) => {
  const info = harvest(path.join(root, 'src'));

  await t.test('never change an object the generator did not make', () => {
    // The addon object and script objects are handed out as argument values; breaking keys
    // of those would break the fuzzer's own later calls.
    const addon = { CreateEngine() {}, DestroyEngine() {} };
    const instance = new (class Wrapper { a() {} })();
    const surface = { info, addon, classList: () => [{ instances: [instance] }] };
    const before = [addon, instance].map((o) => Object.getOwnPropertyDescriptors(o));
    const values = new Values(new Rng(3), surface, { keyPool: ['CreateEngine', 'DestroyEngine', 'a', ...info.all.keys()] });
    const methods = [...info.methods.values(), null];
    for (let i = 0; i < 5000; i++) values.argsFor(methods[i % methods.length]);
    assert.deepStrictEqual([addon, instance].map((o) => Object.getOwnPropertyDescriptors(o)), before);
    assert.ok(Object.isExtensible(addon) && Object.isExtensible(instance));
  });

  await t.test('get past the checks of every engine wrapper method', async (tt) => {
    // A valid-looking argument must look valid to the addon, else the fuzzer never gets
    // deeper than the argument checks.
    const addon = loadAddon();
    const session = createEngine(addon);
    tt.after(() => session.destroy());
    const surface = new Surface(addon, info);
    surface.note(session.engine);
    const [cls] = surface.classList();
    const values = new Values(new Rng(11), surface, { keyPool: [...info.all.keys()] });
    const refused = [];
    // registerEventHandler is left out: a registration under a new name outlives the engine
    // and would keep this process alive (the fuzzer reports that as a finding of its own).
    for (const method of cls.methods.filter((m) => m !== 'registerEventHandler')) {
      const alerts = session.named('onDebugError').length;
      let passed = 0;
      for (let i = 0; i < 12; i++) {
        const before = session.named('onDebugError').length;
        let outcome = session.engine[method](values.validFor(surface.keysOf(cls.name, method)));
        if (outcome instanceof Promise) {
          // A check failure rejects at once with its message; an engine answer may take long.
          outcome = await Promise.race([
            outcome.then(() => 'ok', (reason) => (typeof reason === 'string' ? 'refused' : 'ok')), sleep(50).then(() => 'ok')]);
        }
        await sleep(1);
        if (outcome !== 'refused' && session.named('onDebugError').length === before) passed++;
      }
      // Alerts arrive on the event path; let the last ones in before counting.
      await sleep(20);
      if (passed === 0 || session.named('onDebugError').length - alerts >= 12) refused.push(method);
    }
    // Arguments scraped keys cannot build: whole mixer tasks (lists of objects with fixed
    // texts per key), the echo parameters' fixed-length number lists and the experimental
    // API's JSON request text. Their checks are
    // fuzzed like any other; their deeper paths have tests of their own.
    const STRUCTURED = ['startMixerTask', 'stopMixerTask', 'setReverbEchoParam', 'callExperimentalAPI'];
    assert.deepStrictEqual(refused.filter((m) => !STRUCTURED.includes(m)), []);
  });
});

test('run-time discovery', () => {
  class Base { a() {} }
  class Derived extends Base { b() {} get c() { return 1; } }
  assert.deepStrictEqual(methodNames(new Derived()), ['b', 'a']);
  assert.strictEqual(isScriptObject(new Derived()), true);
  for (const v of [{}, [], Object.create(null), Promise.resolve(), Buffer.alloc(1), new Error('e'), null, 1, new (class {})()]) {
    assert.strictEqual(isScriptObject(v), false, show(v));
  }
});

// The fuzzer runs on Linux: it tells crashes by POSIX signals and prints POSIX commands.
const posixOnly = process.platform === 'win32' && 'the fuzzer runs on Linux (POSIX signals and commands)';

test('the driver', { skip: posixOnly }, async (t) => {
  const dir = fs.mkdtempSync(path.join(os.tmpdir(), 'orva-driver-'));
  t.after(() => fs.rmSync(dir, { recursive: true, force: true }));
  // A child in the real one's protocol: writes a step to --progress, then does `body`.
  const fake = (name, body) => {
    const file = path.join(dir, `${name}.js`);
    fs.writeFileSync(file, `
      const fs = require('fs');
      const arg = (k) => process.argv[process.argv.indexOf(k) + 1];
      const out = (r) => fs.appendFileSync(arg('--out'), JSON.stringify(r) + '\\n');
      fs.writeFileSync(arg('--progress'), '3\\t2\\taddon.SetRoomMode({ mode: 1 })\\n');
      ${body}`);
    return file;
  };
  const run = (child, extra = {}) => runChunk(77, 10, { jobs: 1, hangMs: 20000, child, ...extra });

  await t.test('reports a child killed by a signal, with its last call', async () => {
    const r = await run(fake('segv', "process.stderr.write('ERROR: AddressSanitizer: heap-use-after-free on address 0x602\\n'); process.kill(process.pid, 'SIGSEGV');"));
    assert.strictEqual(r.findings.length, 1);
    const [f] = r.findings;
    assert.strictEqual(f.kind, 'crash');
    assert.match(f.error, /killed by SIGSEGV: ERROR: AddressSanitizer: heap-use-after-free/);
    assert.strictEqual(f.last, 'addon.SetRoomMode({ mode: 1 })');
    assert.strictEqual(f.call, 2);
    assert.strictEqual(f.seed, 77);
  });

  await t.test('reports a child that ends without finishing its chunk', async () => {
    const r = await run(fake('quiet', ''));
    assert.deepStrictEqual(r.findings.map((f) => [f.kind, f.error]), [['crash', 'exit code 0 before the end of the chunk']]);
  });

  await t.test('kills a child that stops making progress', async () => {
    const started = Date.now();
    const r = await run(fake('hang', 'for (;;) {}'), { hangMs: 600 });
    assert.deepStrictEqual(r.findings.map((f) => f.kind), ['hang']);
    assert.ok(Date.now() - started < 10000);
  });

  await t.test("passes a finished child's findings and tally through", async () => {
    const r = await run(fake('done', `
      out({ type: 'finding', kind: 'exception', signature: 'exception|x', seed: 77, call: 1, last: 'x()' });
      out({ type: 'done', calls: 10, failedCalls: 4, counts: { 'exception|x': 4 }, coverage: { addon: { x: 10 } }, methods: {} });`));
    assert.strictEqual(r.done, true);
    assert.strictEqual(r.calls, 10);
    assert.deepStrictEqual(r.findings.map((f) => f.signature), ['exception|x']);
    assert.deepStrictEqual(r.counts, { 'exception|x': 4 });
  });

  await t.test('prints a replay command for the chunk up to the call', () => {
    const command = replayCommand(123, 45);
    assert.match(command, /node test\/fuzz\/run\.js --one 123 --calls 45 --trace$/);
    assert.ok(command.startsWith(`cd ${root} && `));
    assert.strictEqual(crashHeadline('noise\n../x.cc:12:3: runtime error: signed integer overflow\n'), 'runtime error: signed integer overflow');
  });
});

test('a chunk replays the same steps for its seed',
  { skip: posixOnly || (process.env.ORVA_SANITIZER === 'tsan' && 'spawns fuzz children; minutes under TSan') }, () => {
    const trace = (calls) => {
      const r = spawnSync(process.execPath,
        ['--expose-gc', '--force-node-api-uncaught-exceptions-policy=true', path.join(root, 'test', 'fuzz', 'child.js'), '--seed', '31337', '--calls', String(calls), '--trace'],
        { cwd: root, encoding: 'utf8', timeout: 120000, maxBuffer: 64 << 20 });
      assert.strictEqual(r.status, 0, r.stderr.slice(-2000));
      // The steps, without the end of the chunk.
      return r.stderr.split('\n').filter((l) => l.startsWith('[') && !/end of the session|chunk done|process\.exit\(0\)/.test(l));
    };
    const full = trace(400);
    assert.ok(full.length >= 400);
    assert.deepStrictEqual(trace(400), full);
    const prefix = trace(150);
    assert.deepStrictEqual(prefix, full.slice(0, prefix.length));
  });
