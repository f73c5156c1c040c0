'use strict';
// Control module of the simulated engine: tests and the demo observe and drive the engine
// the addon runs against. `const sim = require('<repo root>/engine/sim')`.
//
// The native part (orva_sim_control.node, from the build that ORVA_BUILD selects, see
// scripts/paths.js) loads the same engine library file as the addon, so both share one
// engine in the process. Values cross as JSON text:
//   - BigInt becomes an exact JSON integer;
//   - Buffer, typed arrays, DataView and ArrayBuffer become byte blocks {"$bytes": base64};
//   - integers in answers that a double cannot hold exactly come back as BigInt.
// See engine/sim/README.md for what the engine does by itself and how payloads convert.

const fs = require('fs');
const paths = require('../../scripts/paths');
const { bytesOf, toJson, parseJson } = require('./json');

let native = null;

function control() {
  if (native) return native;
  const file = paths.controlModulePath();
  if (!fs.existsSync(file)) {
    const preset = paths.preset();
    const script = { release: 'build', mingw: 'build:win' }[preset] || `build:${preset}`;
    throw new Error(`simulated engine control: ${file} not found (build "${preset}"); run "npm run ${script}" first`);
  }
  native = require(file);
  return native;
}

function requireString(value, what) {
  if (typeof value !== 'string') throw new TypeError(`simulated engine: ${what} must be a string`);
}

function requireCount(value, what, min, max) {
  if (!Number.isInteger(value) || value < min || value > max) {
    throw new TypeError(`simulated engine: ${what} must be an integer from ${min} to ${max}`);
  }
}

// ---------------------------------------------------------------------------------------
// The contract

function reset() {
  control().reset();
}

function calls(fn) {
  if (fn !== undefined) requireString(fn, 'calls(fn): fn');
  return parseJson(control().calls(fn));
}

function registered() {
  return JSON.parse(control().registered());
}

function emit(callback, payload = {}) {
  requireString(callback, 'emit: the callback name');
  return control().emit(callback, toJson(payload)) === 1;
}

function burst(callback, payload = {}, options = {}) {
  try {
    requireString(callback, 'burst: the callback name');
    const { count, threads = 1, counterKey, threadKey } = options || {};
    requireCount(count, 'burst: options.count', 0, 0xffffffff);
    requireCount(threads, 'burst: options.threads', 1, 256);
    if (counterKey !== undefined) requireString(counterKey, 'burst: options.counterKey');
    if (threadKey !== undefined) requireString(threadKey, 'burst: options.threadKey');
    return control().burst(callback, toJson(payload), count, threads, counterKey ?? null, threadKey ?? null);
  } catch (e) {
    return Promise.reject(e);
  }
}

function frame(target, frameDesc = {}) {
  if (!target || typeof target !== 'object') throw new TypeError('simulated engine: frame target must be an object');
  if (!frameDesc || typeof frameDesc !== 'object') throw new TypeError('simulated engine: frame must be an object');
  const { data, ...rest } = frameDesc;
  let plane;
  if (data !== undefined && data !== null) {
    plane = bytesOf(data);
    if (!plane) throw new TypeError('simulated engine: frame.data must be a Buffer, typed array or ArrayBuffer');
  }
  return control().frame(toJson(target), toJson(rest), plane) === 1;
}

function setReturn(fn, value) {
  requireString(fn, 'setReturn: fn');
  if (value === undefined) throw new TypeError('simulated engine: setReturn needs a value');
  control().setReturn(fn, toJson(value));
}

function autoComplete(on = true) {
  control().autoComplete(Boolean(on));
}

function pending() {
  return parseJson(control().pending());
}

function complete(seq, result = {}) {
  if (!Number.isInteger(seq)) throw new TypeError('simulated engine: complete(seq): seq must be an integer');
  if (seq < -0x80000000 || seq > 0x7fffffff) return false;  // no call has such a sequence number
  return control().complete(seq, toJson(result)) === 1;
}

function version() {
  return control().version();
}

module.exports = { reset, calls, registered, emit, burst, frame, setReturn, autoComplete, pending, complete, version };
