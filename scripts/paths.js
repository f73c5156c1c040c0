'use strict';
// Where a build's artifacts live. Shared by the root index.js and the simulated engine's
// control module so that both load from the same build.
//
// ORVA_BUILD selects the build: a preset name (release, debug, asan, tsan, mingw; default
// release) for build/<preset>/out, or a path to a build directory (useful for a build made
// outside the tree).

const path = require('path');

const root = path.resolve(__dirname, '..');

function preset() {
  return process.env.ORVA_BUILD || 'release';
}

function buildDir(name = preset()) {
  if (path.isAbsolute(name) || name.includes('/') || name.includes('\\')) {
    return path.resolve(root, name);
  }
  return path.join(root, 'build', name);
}

// Every runtime artifact of a build sits in this one directory: the addon loads the engine
// library from beside itself.
function outDir(name = preset()) {
  return path.join(buildDir(name), 'out');
}

function addonPath(name) {
  return path.join(outDir(name), 'OrvaVantixNodeNative.node');
}

function controlModulePath(name) {
  return path.join(outDir(name), 'orva_sim_control.node');
}

function engineLibraryName(platform = process.platform) {
  if (platform === 'win32') return 'OrvaVantixEngine.dll';
  if (platform === 'darwin') return 'libOrvaVantixEngine.dylib';
  return 'libOrvaVantixEngine.so';
}

function engineLibraryPath(name) {
  return path.join(outDir(name), engineLibraryName());
}

module.exports = {
  root,
  preset,
  buildDir,
  outDir,
  addonPath,
  controlModulePath,
  engineLibraryName,
  engineLibraryPath,
};
