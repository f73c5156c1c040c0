'use strict';
// The storm and leak harnesses' own judgement: a crash that a host reports as a clean exit,
// an abort, a sanitizer report or a missing closing line must fail a storm child; memcheck
// records must be told apart by whether our binaries allocated them.

const test = require('node:test');
const assert = require('node:assert');
const { spawnSync } = require('child_process');
const { judge, markLine } = require('../storm/verdict');
const vg = require('../leaks/valgrind');

const clean = (over = {}) => ({
  scenario: 'destroy-mid-burst',
  iteration: 3,
  expectedCode: 0,
  status: 0,
  signal: null,
  timedOut: false,
  timeoutMs: 20000,
  stdout: `OrvaVantixAddon CreateEngine\n${markLine('destroy-mid-burst', 3, 0)}\n`,
  stderr: '',
  ...over,
});

test('storm verdicts', async (t) => {
  await t.test('a clean child passes, with the addon\'s teardown lines after its closing line', () => {
    assert.strictEqual(judge(clean()), null);
    const stdout = `${markLine('destroy-mid-burst', 3, 0)}\ntsfn finalizer \nOrvaVantixAddon tsfn finalizer \n`;
    assert.strictEqual(judge(clean({ stdout })), null);
    assert.strictEqual(judge(clean({ expectedCode: 7, status: 7, stdout: markLine('destroy-mid-burst', 3, 7) })), null);
  });

  await t.test('fails whatever the exit code says when the child crashed or a sanitizer spoke', () => {
    const rows = [
      [{ signal: 'SIGABRT', status: null }, /^killed by SIGABRT$/],
      [{ signal: 'SIGABRT', status: null, stderr: "terminate called after throwing an instance of 'Napi::Error'\n  what():\n" },
        /^killed by SIGABRT: terminate called after throwing an instance of 'Napi::Error'$/],
      // A host that reports a crash as exit 0 (Wine) still prints what happened.
      [{ stderr: "terminate called after throwing an instance of 'Napi::Error'\n" }, /^exit 0, fatal message: terminate called/],
      [{ stderr: '==1==WARNING: ThreadSanitizer: data race (pid=1)\n' }, /ThreadSanitizer: data race/],
      [{ stderr: 'FATAL ERROR: v8::HandleScope::CreateHandle() Cannot create a handle without a HandleScope\n' }, /FATAL ERROR/],
      [{ timedOut: true, status: null, signal: 'SIGKILL' }, /^timed out after 20 s$/],
    ];
    for (const [over, reason] of rows) assert.match(judge(clean(over)) || 'passed', reason, JSON.stringify(over));
  });

  await t.test('fails a wrong exit code, naming what the scenario reported', () => {
    const stderr = 'destroy-mid-burst #3: Error: 2 events or frames reached script after DestroyEngine\n    at check (x.js:1:1)\n';
    assert.strictEqual(judge(clean({ status: 1, stderr })),
      'exit 1, expected 0: Error: 2 events or frames reached script after DestroyEngine');
    assert.strictEqual(judge(clean({ expectedCode: 7, status: 0 })), 'exit 0, expected 7');
  });

  await t.test('a finding that brought down more is reported with what followed it', () => {
    const stderr = 'destroy-mid-burst #3: Error: both workers made an engine\n' +
      "terminate called after throwing an instance of 'Napi::Error'\n";
    assert.strictEqual(judge(clean({ status: null, signal: 'SIGABRT', stderr })),
      "killed by SIGABRT: terminate called after throwing an instance of 'Napi::Error'; " +
      'the scenario had failed: Error: both workers made an engine');
  });

  await t.test('fails a missing or foreign closing line: the child did not get to exit in order', () => {
    assert.match(judge(clean({ stdout: 'OrvaVantixAddon CreateEngine\n' })), /^last line null/);
    assert.match(judge(clean({ stdout: markLine('destroy-mid-burst', 4, 0) })), /^last line .*#4/);
    assert.match(judge(clean({ stdout: markLine('destroy-mid-burst', 3, 1) })), /exit 1", expected/);
  });

  await t.test('a real child that aborts after its closing line is caught', () => {
    const child = `process.on('exit', () => { require('fs').writeSync(1, ${JSON.stringify(markLine('x', 0, 0))} + '\\n'); });
      setImmediate(() => process.abort());`;
    const r = spawnSync(process.execPath, ['-e', child], { encoding: 'utf8' });
    const verdict = judge({
      scenario: 'x', iteration: 0, expectedCode: 0, status: r.status, signal: r.signal, timedOut: false,
      stdout: r.stdout, stderr: r.stderr,
    });
    // Windows has no signals: an abort is an exit code there.
    assert.match(verdict || 'passed', process.platform === 'win32' ? /^exit \d+, expected 0/ : /^killed by SIGABRT/);
  });
});

// Two leak records and one read error as memcheck writes them, trimmed.
const frame = (fn, obj) => `<frame><ip>0x1</ip><obj>${obj}</obj><fn>${fn}</fn></frame>`;
const ADDON = '/b/out/OrvaVantixNodeNative.node';
const NODE = '/usr/bin/node';
const XML = `<?xml version="1.0"?><valgrindoutput>
<error><unique>0x1</unique><tid>1</tid><kind>Leak_DefinitelyLost</kind>
  <xwhat><text>48 bytes in 2 blocks are definitely lost in loss record 3 of 9</text><leakedbytes>48</leakedbytes><leakedblocks>2</leakedblocks></xwhat>
  <stack>${frame('operator new(unsigned long)', '/usr/libexec/valgrind/vgpreload_memcheck-amd64-linux.so')}${frame('orva::OrvaVantixAddon::CreateEngine(Napi::CallbackInfo const&amp;)', ADDON)}${frame('main', NODE)}</stack>
</error>
<error><unique>0x2</unique><tid>1</tid><kind>Leak_StillReachable</kind>
  <xwhat><text>100 bytes in 1 blocks are still reachable</text><leakedbytes>100</leakedbytes><leakedblocks>1</leakedblocks></xwhat>
  <stack>${frame('malloc', '/usr/libexec/valgrind/vgpreload_memcheck-amd64-linux.so')}${frame('node::Start(int, char**)', NODE)}</stack>
</error>
<error><unique>0x3</unique><tid>1</tid><kind>InvalidRead</kind><what>Invalid read of size 8</what>
  <stack>${frame('strncmp', '/lib/ld-linux-x86-64.so.2')}</stack>
</error>
</valgrindoutput>`;

test('memcheck records', async (t) => {
  const errors = vg.parseErrors(XML);

  await t.test('are read with their kind, size and frames, entities decoded', () => {
    assert.deepStrictEqual(errors.map((e) => [e.kind, e.bytes, e.blocks]),
      [['Leak_DefinitelyLost', 48, 2], ['Leak_StillReachable', 100, 1], ['InvalidRead', 0, 0]]);
    assert.strictEqual(errors[0].stacks[0][1].fn, 'orva::OrvaVantixAddon::CreateEngine(Napi::CallbackInfo const&)');
    assert.strictEqual(errors[2].what, 'Invalid read of size 8');
  });

  await t.test('are ours only when a frame is in one of our binaries', () => {
    assert.deepStrictEqual(errors.map(vg.passesThroughProject), [true, false, false]);
    assert.deepStrictEqual(vg.leakSummary(errors.filter(vg.passesThroughProject))['definitely lost'], { bytes: 48, blocks: 2 });
    assert.deepStrictEqual(vg.leakSummary(errors)['still reachable'], { bytes: 100, blocks: 1 });
  });

  await t.test('held allocations are summed by the path into our code', () => {
    const twice = vg.parseErrors(XML + XML);
    const held = vg.heldByProject(twice);
    assert.deepStrictEqual([...held.keys()],
      ['operator new(unsigned long) <- orva::OrvaVantixAddon::CreateEngine(Napi::CallbackInfo const&)']);
    assert.deepStrictEqual([...held.values()].map((e) => [e.bytes, e.blocks]), [[96, 4]]);
    // Our frame too deep below the allocation: node's own business.
    assert.strictEqual(vg.heldByProject(twice, 1).size, 0);
  });
});
