'use strict';
// require('orva-vantix-node-native') gives the addon's exports, loaded from the build that
// ORVA_BUILD selects (default: the release preset). See scripts/paths.js.

const fs = require('fs');
const paths = require('./scripts/paths');

const addon = paths.addonPath();
if (!fs.existsSync(addon)) {
  const preset = paths.preset();
  const script = { release: 'build', mingw: 'build:win' }[preset] || `build:${preset}`;
  throw new Error(
    `OrvaVantixNodeNative: addon binary not found at ${addon} ` +
      `(build "${preset}"); run "npm run ${script}" first`);
}

module.exports = require(addon);
