'use strict';
// Builds a bench-only Node-API helper from bench/native/<name>.c with the system C compiler
// (never part of the product addon) and loads it. Rebuilt only when the source is newer.
const fs = require('fs');
const path = require('path');
const { spawnSync } = require('child_process');
const paths = require('../scripts/paths');

function loadNativeHelper(name, libs = []) {
  const source = path.join(__dirname, 'native', `${name}.c`);
  const out = path.join(paths.buildDir(), 'bench', `${name}.node`);
  if (!fs.existsSync(out) || fs.statSync(out).mtimeMs < fs.statSync(source).mtimeMs) {
    fs.mkdirSync(path.dirname(out), { recursive: true });
    const include = require('node-api-headers').include_dir;
    const cc = process.env.CC || 'cc';
    const r = spawnSync(cc, ['-O2', '-shared', '-fPIC', `-I${include}`, '-o', out, source, ...libs],
      { encoding: 'utf8' });
    if (r.status !== 0) throw new Error(`cannot build bench helper ${name} with ${cc}: ${r.stderr || r.error}`);
  }
  return require(out);
}

module.exports = { loadNativeHelper };
