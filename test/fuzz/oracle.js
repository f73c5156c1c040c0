'use strict';
// What a call may throw. The addon's documented exceptions are TypeErrors with these exact
// texts; besides them a call may only let through the very error the script value itself
// raised (our getters', traps' and callbacks' marker errors, or V8's error for touching a
// revoked proxy). Anything else escaping a call is a finding.

const { isMarker } = require('./values');

const DOCUMENTED = new Set([
  'Wrong arguments',
  'Wrong number of arguments',
  'Wrong profile arguments',
  'Calling init is disallowed when engine is already initialized',
  // setVideoConfig / setAudioConfig, for a config that is neither a number nor an object.
  'config should be a [Number | Object] for calling:setVideoConfig',
  'config should be a [Number | Object ] for calling:setAudioConfig',
]);

const REVOKED = /^Cannot perform '\w+' on a proxy that has been revoked$/;

// 'marker', 'documented', 'revoked', 'receiver' (accepted), or null: a finding.
// foreignReceiver: the method was called on something that is not an instance of its class,
// which V8 refuses for every class method before the addon runs.
function classify(error, { touchedRevoked = false, foreignReceiver = false } = {}) {
  if (isMarker(error)) return 'marker';
  if (!(error instanceof TypeError)) return null;
  if (DOCUMENTED.has(error.message)) return 'documented';
  if (touchedRevoked && REVOKED.test(error.message)) return 'revoked';
  if (foreignReceiver && error.message === 'Illegal invocation') return 'receiver';
  return null;
}

// What may reach 'uncaughtException': errors thrown by our own event callbacks, which the
// addon calls from its event path. A callback that is a class is refused by V8 itself.
function classifyUncaught(error) {
  if (isMarker(error)) return 'marker';
  if (error instanceof TypeError && error.message === "Class constructors cannot be invoked without 'new'") return 'callee';
  return null;
}

// A one-line description of anything thrown.
function describeError(error) {
  if (error instanceof Error) return `${error.constructor.name}: ${error.message}`;
  try {
    return `non-Error thrown: ${typeof error} ${String(error).slice(0, 200)}`;
  } catch {
    return `non-Error thrown: ${typeof error}`;
  }
}

module.exports = { DOCUMENTED, classify, classifyUncaught, describeError };
