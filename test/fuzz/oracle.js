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

// A value that passed its check (or was never checked) but cannot be read as the native type
// its method converts it to: the conversion's Node-API error (node-addon-api's texts), or the
// error V8 raises while coercing the value itself. Reading such values this way is the
// module's documented failure path (list elements, unchecked optional keys, a getter that
// answers differently on each read).
// node-addon-api raises the "... expected" statuses of primitives as TypeErrors, the others
// as plain Errors.
const CONVERSION_TYPE_ERRORS = new Set([
  'A number was expected',
  'A string was expected',
  'A boolean was expected',
  'An object was expected',
]);
const CONVERSION_ERRORS = new Set([
  'An array was expected',
  'A function was expected',
  'Invalid argument',
]);
// V8 coercing a hostile value (a Symbol, a BigInt, a toPrimitive that is not a function).
const COERCION = /^Cannot convert |is not a function$/;

const REVOKED = /^Cannot perform '\w+' on a proxy that has been revoked$/;

// 'marker', 'documented', 'conversion', 'revoked', 'receiver' (accepted), or null: a finding.
// foreignReceiver: the method was called on something that is not an instance of its class,
// which V8 refuses for every class method before the addon runs.
function classify(error, { touchedRevoked = false, foreignReceiver = false } = {}) {
  if (isMarker(error)) return 'marker';
  if (error instanceof Error && error.constructor === Error && CONVERSION_ERRORS.has(error.message)) return 'conversion';
  if (!(error instanceof TypeError)) return null;
  if (DOCUMENTED.has(error.message)) return 'documented';
  if (CONVERSION_TYPE_ERRORS.has(error.message) || COERCION.test(error.message)) return 'conversion';
  if (touchedRevoked && REVOKED.test(error.message)) return 'revoked';
  if (foreignReceiver && error.message === 'Illegal invocation') return 'receiver';
  return null;
}

// What may reach 'uncaughtException': errors thrown by our own event callbacks, which the
// addon calls from its event path. A callback that is a class or a revoked proxy is refused by
// V8 itself.
function classifyUncaught(error) {
  if (isMarker(error)) return 'marker';
  if (error instanceof TypeError && error.message === "Class constructors cannot be invoked without 'new'") return 'callee';
  // A revoked proxy handed over as the callback refuses the call itself.
  if (error instanceof TypeError && REVOKED.test(error.message)) return 'callee';
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

module.exports = { DOCUMENTED, CONVERSION_TYPE_ERRORS, classify, classifyUncaught, describeError };
