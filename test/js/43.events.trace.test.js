'use strict';
// The engine event handler's trace lines on standard output: one "AddonEventHandler::<event>"
// line per event while the debug assistant is on, except for the four events that print none;
// nothing while it is off (CreateEngine switches it off). Run in a child, whose standard
// output is the evidence.

const test = require('node:test');
const assert = require('node:assert');
const path = require('path');
const { addonModule, simModule, runNode, countLines } = require('./support/addon-harness');
const { EVENTS, UNTRACED } = require('./40.events.table');

const tablePath = path.join(__dirname, '40.events.table.js');

// One row per event name, emitted while the assistant is on; one event before it is
// switched on and one after it is switched off again.
const child = `
  const addon = require(${JSON.stringify(addonModule)});
  const sim = require(${JSON.stringify(simModule)});
  const { EVENTS } = require(${JSON.stringify(tablePath)});
  const firstRows = [...new Map(EVENTS.map((row) => [row[0], row])).values()];
  let received = 0;
  const engine = addon.CreateEngine({
    profile: { appID: 1, scenario: 0 }, tsfn: (name) => { if (name.startsWith('on') && name !== 'onDebugInfo') received++; },
    SDKVersion: 't', electronVersion: 't',
  });
  const untilReceived = async (n) => { while (received < n) await new Promise((r) => setTimeout(r, 2)); };
  (async () => {
    sim.emit('room_token_will_expire', { roomID: 'off-before', remainTimeInSecond: 1 });
    await untilReceived(1);
    console.log('--- assistant on');
    engine.enableDebugAssistant({ enable: true });
    for (const [, callback, payload] of firstRows) sim.emit(callback, payload);
    await untilReceived(1 + firstRows.length);
    engine.enableDebugAssistant({ enable: false });
    console.log('--- assistant off');
    sim.emit('room_token_will_expire', { roomID: 'off-after', remainTimeInSecond: 1 });
    await untilReceived(2 + firstRows.length);
    addon.DestroyEngine();
    console.log('--- done');
  })();
`;

test('trace lines follow the debug assistant, four events never print one', () => {
  const r = runNode(child);
  assert.strictEqual(r.status, 0, r.stderr + r.stdout);
  const [before, on, after] = r.stdout.split(/^--- assistant (?:on|off)$/m);
  assert.ok(after && after.includes('--- done'), r.stdout);
  const names = [...new Set(EVENTS.map(([name]) => name))];
  for (const name of names) {
    const line = `AddonEventHandler::${name}`;
    assert.strictEqual(countLines(on, line), UNTRACED.has(name) ? 0 : 1, `${line} while on`);
  }
  assert.doesNotMatch(before + after, /AddonEventHandler::/, 'no trace line while off');
  assert.doesNotMatch(r.stdout, /blocking call failed/);
});
