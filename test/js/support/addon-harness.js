'use strict';
// Shared by the addon tests: loading the addon and the simulated engine's control module,
// an engine session that records every script event, and child processes for what only
// standard output or a torn-down environment shows.

const path = require('path');
const { spawnSync } = require('child_process');

const root = path.resolve(__dirname, '..', '..', '..');
const addonModule = root;
const simModule = path.join(root, 'engine', 'sim');

const PROFILE = { appID: 1234567, appSign: 'sign-for-tests', scenario: 0 };

function loadAddon() {
  return require(addonModule);
}

function loadSim() {
  return require(simModule);
}

const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

// Resolves once predicate() holds; rejects after `ms`.
async function until(predicate, ms = 5000, what = 'condition') {
  const deadline = Date.now() + ms;
  while (!predicate()) {
    if (Date.now() > deadline) throw new Error(`timed out waiting for ${what}`);
    await sleep(2);
  }
}

// Blocks the script thread, so that native threads make progress while no queued script
// callback can run.
function blockScriptThread(ms) {
  Atomics.wait(new Int32Array(new SharedArrayBuffer(4)), 0, 0, ms);
}

// An engine created with a recording event callback. Always end it with destroy(): the
// engine's event function keeps the event loop alive until then.
function createEngine(addon, extra = {}) {
  const events = [];
  const engine = addon.CreateEngine({
    profile: PROFILE,
    tsfn: (name, payload) => events.push({ name, payload }),
    SDKVersion: '9.9.9-test',
    electronVersion: '30.0.0',
    ...extra,
  });
  return {
    engine,
    events,
    named: (name) => events.filter((e) => e.name === name),
    destroy: () => addon.DestroyEngine(),
  };
}

// An engine for one test (or suite) `t`: the addon, the simulated engine and a recording
// session, torn down after `t` with the engine's automatic answers restored.
function engineForTest(t) {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => {
    sim.autoComplete(true);
    session.destroy();
  });
  return { addon, sim, session, engine: session.engine };
}

// Runs `code` in a fresh node process (the build under test is inherited through the
// environment) and returns { status, stdout, stderr }.
function runNode(code, { env = {}, timeout = 60000 } = {}) {
  const r = spawnSync(process.execPath, ['-e', code], {
    cwd: root,
    env: { ...process.env, ...env },
    encoding: 'utf8',
    timeout,
  });
  if (r.error) throw r.error;
  return { status: r.status, signal: r.signal, stdout: r.stdout, stderr: r.stderr };
}

// Counts the lines of `text` equal to `line`.
function countLines(text, line) {
  return text.split('\n').filter((l) => l === line).length;
}

module.exports = {
  root,
  addonModule,
  simModule,
  PROFILE,
  loadAddon,
  loadSim,
  sleep,
  until,
  blockScriptThread,
  createEngine,
  engineForTest,
  runNode,
  countLines,
};
