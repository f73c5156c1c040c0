'use strict';
// Build-time generator: node gen_api.js <header> <outdir>
// Parses the engine header once and hands the model to each emitter. An emitter module
// exports emit(model, outdir) and writes its own files; emitters that do not exist yet are
// skipped so the build stays usable while they are written.
const fs = require('fs');
const path = require('path');
const { parseHeaderFile } = require('./api_parser');

const [, , header, outdir] = process.argv;
if (!header || !outdir) {
  console.error('usage: node gen_api.js <header> <outdir>');
  process.exit(2);
}
const model = parseHeaderFile(header);
fs.mkdirSync(outdir, { recursive: true });

// Writes a file only when its content changed, so unchanged outputs do not trigger rebuilds.
function writeIfChanged(file, content) {
  const full = path.join(outdir, file);
  if (fs.existsSync(full) && fs.readFileSync(full, 'utf8') === content) return;
  fs.writeFileSync(full, content);
}

const EMITTERS = [
  // Simulated engine: journal, registrations, emit glue, test recorder.
  { module: './emit_sim', placeholders: { 'sim_generated.h': '#pragma once\n', 'sim_generated.cc': '#include "sim_generated.h"\n' } },
  // Addon SDK layer: entry-point table and owned records.
  { module: './emit_sdk', placeholders: { 'engine_api_table.h': '#pragma once\n' } },
];

for (const e of EMITTERS) {
  const file = path.join(__dirname, `${e.module}.js`);
  if (fs.existsSync(file)) {
    require(file).emit(model, outdir, writeIfChanged);
  } else {
    for (const [name, content] of Object.entries(e.placeholders)) writeIfChanged(name, content);
  }
}
