'use strict';
// JSON as the simulated engine's control interface speaks it: 64-bit integers exact in both
// directions, byte blocks as {"$bytes": base64}.

function bytesOf(v) {
  if (Buffer.isBuffer(v)) return v;
  if (ArrayBuffer.isView(v)) return Buffer.from(v.buffer, v.byteOffset, v.byteLength);
  if (v instanceof ArrayBuffer || (typeof SharedArrayBuffer !== 'undefined' && v instanceof SharedArrayBuffer)) {
    return Buffer.from(v);
  }
  return null;
}

function toJson(value, seen = new Set()) {
  if (value === null || value === undefined) return 'null';
  switch (typeof value) {
    case 'bigint': return value.toString();
    case 'number':
      if (!Number.isFinite(value)) return 'null';
      // JSON.stringify(2 ** 60) is "1152921504606847000": right for a double, wrong for a
      // 64-bit integer argument. Integral values in 64-bit range are written digit-exact.
      if (Number.isInteger(value) && Math.abs(value) > Number.MAX_SAFE_INTEGER && Math.abs(value) < 2 ** 64) {
        return BigInt(value).toString();
      }
      return JSON.stringify(value);
    case 'string': case 'boolean': return JSON.stringify(value);
    case 'object': break;
    default: return 'null';  // functions and symbols, as JSON.stringify inside arrays
  }
  const bytes = bytesOf(value);
  if (bytes) return `{"$bytes":"${bytes.toString('base64')}"}`;
  if (typeof value.toJSON === 'function') return toJson(value.toJSON(), seen);
  if (seen.has(value)) throw new TypeError('simulated engine: a payload cannot contain itself');
  seen.add(value);
  let text;
  if (Array.isArray(value)) {
    text = `[${value.map((x) => toJson(x, seen)).join(',')}]`;
  } else {
    const members = [];
    for (const [k, x] of Object.entries(value)) {
      if (x === undefined || typeof x === 'function' || typeof x === 'symbol') continue;
      members.push(`${JSON.stringify(k)}:${toJson(x, seen)}`);
    }
    text = `{${members.join(',')}}`;
  }
  seen.delete(value);
  return text;
}

const BIG_MARK = '\u0000orva-sim-bigint:';
// Integer literals of 16 digits or more outside strings (JSON.parse would round them).
const BIG_INTEGER = /"(?:[^"\\]|\\.)*"|(?<![\d.eE+-])(-?\d{16,})(?![\d.eE])/g;

function parseJson(text) {
  let marked = false;
  const guarded = text.replace(BIG_INTEGER, (match, digits) => {
    if (digits === undefined) return match;
    const exact = BigInt(digits);
    if (BigInt(Number(exact)) === exact) return match;
    marked = true;
    return JSON.stringify(BIG_MARK + digits);
  });
  if (!marked) return JSON.parse(text);
  return JSON.parse(guarded, (k, v) => (typeof v === 'string' && v.startsWith(BIG_MARK) ? BigInt(v.slice(BIG_MARK.length)) : v));
}

module.exports = { bytesOf, toJson, parseJson };
