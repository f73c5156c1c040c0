'use strict';
// Every engine name the addon relies on is declared by the header and exported by the built
// simulated engine, so the addon's loader finds a complete table.

const test = require('node:test');
const assert = require('node:assert');
const { spawnSync } = require('child_process');
const paths = require('../../scripts/paths');
const { parseHeaderFile, DEFAULT_HEADER } = require('../../engine/tools/api_parser');
const { ENGINE_FUNCTIONS, ALL_REGISTRATIONS } = require('../fixtures/engine-names');

const model = parseHeaderFile(DEFAULT_HEADER);
const registrationSymbol = (name) => `orva_register_${name}_callback`;

test('engine names', async (t) => {
  await t.test('the header declares every entry point and registration the addon uses', () => {
    const declared = new Set(model.functions.map((f) => f.name));
    assert.deepStrictEqual(ENGINE_FUNCTIONS.filter((n) => !declared.has(n)), []);
    const registrations = new Set(model.registrations);
    assert.deepStrictEqual(ALL_REGISTRATIONS.filter((n) => !registrations.has(n)), []);
    assert.strictEqual(new Set(ALL_REGISTRATIONS).size, model.registrations.length, 'registrations the addon does not know');
  });

  await t.test('the simulated engine exports all of them', { skip: process.platform !== 'linux' && 'reads ELF symbols' }, () => {
    const r = spawnSync('nm', ['-D', '--defined-only', paths.engineLibraryPath()], { encoding: 'utf8' });
    assert.strictEqual(r.status, 0, r.stderr);
    const exported = new Set(r.stdout.split('\n').map((l) => l.trim().split(/\s+/)[2]).filter(Boolean));
    const wanted = [...ENGINE_FUNCTIONS, ...model.functions.map((f) => f.name), ...ALL_REGISTRATIONS.map(registrationSymbol)];
    assert.deepStrictEqual(wanted.filter((n) => !exported.has(n)), []);
    for (const n of ['orva_sim_reset', 'orva_sim_emit', 'orva_sim_burst', 'orva_sim_frame', 'orva_sim_free']) {
      assert.ok(exported.has(n), n);
    }
  });
});
