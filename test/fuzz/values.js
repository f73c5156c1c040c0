'use strict';
// Argument values for the fuzzer: hostile ones at every depth, valid-looking ones shaped by
// the harvested keys (so calls get past the checks into the engine), and valid ones with a
// few keys broken. Every value the generator makes is printable by show() as JavaScript
// that rebuilds it, without running any of its getters or traps.

const { types } = require('util');

// Printed forms of generated objects, functions and getters (proxies cannot be inspected
// without running their traps, so they must be tagged when made).
const tags = new WeakMap();
// The errors our own getters, traps and callbacks throw: an exception that is one of these
// came from the script value itself, not from the addon.
const markers = new WeakSet();
// Long strings print by how they were made.
const bigStrings = new Map();
// Objects the generator made for the current argument and may still change. Anything else
// (the addon object, script objects, shared pools) is never written to.
const fresh = new WeakSet();
const own = (o) => { fresh.add(o); return o; };

let markerCount = 0;

function tag(value, text) {
  tags.set(value, text);
  return value;
}

function marker() {
  const error = new Error(`fuzz marker ${++markerCount}`);
  markers.add(error);
  return tag(error, `M${markerCount}`);
}

function isMarker(error) {
  return (typeof error === 'object' || typeof error === 'function') && error !== null && markers.has(error);
}

// ---- printing ---------------------------------------------------------------------------

const IDENT = /^[A-Za-z_$][\w$]*$/;
// A literal's `__proto__: v` would set the prototype; the computed key makes the own key.
const keyText = (k) => (typeof k === 'symbol' ? `[${show(k)}]`
  : k === '__proto__' ? '["__proto__"]'
    : IDENT.test(k) && k.length <= 80 ? k : k.length <= 80 ? JSON.stringify(k) : `[${showString(k)}]`);

function showString(s) {
  if (bigStrings.has(s)) return bigStrings.get(s);
  if (s.length <= 80) return JSON.stringify(s);
  // Long strings are made by repeating a short unit: print them so.
  for (let unit = 1; unit <= 8; unit++) {
    if (s.length % unit === 0 && s === s.slice(0, unit).repeat(s.length / unit)) {
      return `${JSON.stringify(s.slice(0, unit))}.repeat(${s.length / unit})`;
    }
  }
  return `${JSON.stringify(s.slice(0, 40))} /* …${s.length} chars */`;
}

// Never throws: a value whose inspection fails prints as a comment.
function show(v, depth = 0) {
  try {
    return showValue(v, depth);
  } catch {
    return '/* unprintable */ {}';
  }
}

function showValue(v, depth) {
  switch (typeof v) {
    case 'undefined': return 'undefined';
    case 'boolean': return String(v);
    case 'number': return Object.is(v, -0) ? '-0' : String(v);
    case 'bigint': return `${v}n`;
    case 'string': return showString(v);
    case 'symbol': return v.description === undefined ? 'Symbol()' : `Symbol(${JSON.stringify(v.description)})`;
    case 'function': return tags.get(v) || `function ${v.name}() {}`;
    default: break;
  }
  if (v === null) return 'null';
  if (tags.has(v)) return tags.get(v);
  if (depth > 5) return '{ /* … */ }';
  // Tested by internal slots, not prototypes: Object.create(buffer) is no buffer.
  if (types.isArrayBuffer(v)) return `new ArrayBuffer(${v.byteLength})`;
  if (types.isSharedArrayBuffer(v)) return `new SharedArrayBuffer(${v.byteLength})`;
  if (ArrayBuffer.isView(v)) {
    if (types.isDataView(v)) return `new DataView(new ArrayBuffer(${v.byteLength}))`;
    return Buffer.isBuffer(v) ? `Buffer.alloc(${v.length})` : `new ${v.constructor.name}(${v.length})`;
  }
  if (Array.isArray(v)) {
    const head = v.slice(0, 8).map((e) => show(e, depth + 1));
    if (v.length > 8) head.push(`/* …${v.length - 8} more */`);
    return `[${head.join(', ')}]`;
  }
  const proto = Object.getPrototypeOf(v);
  const parts = [];
  for (const k of Reflect.ownKeys(v)) {
    const d = Object.getOwnPropertyDescriptor(v, k);
    if ('value' in d) parts.push(`${keyText(k)}: ${show(d.value, depth + 1)}`);
    else parts.push(d.get ? (tags.get(d.get) || `get ${keyText(k)}() {}`).replace('%KEY%', keyText(k)) : `set ${keyText(k)}(v) {}`);
  }
  let text = `{ ${parts.join(', ')} }`;
  if (parts.length === 0) text = '{}';
  if (proto === null) text = `Object.create(null, Object.getOwnPropertyDescriptors(${text}))`;
  else if (proto !== Object.prototype) text = `Object.create(${show(proto, depth + 1)}, Object.getOwnPropertyDescriptors(${text}))`;
  if (Object.isFrozen(v) && parts.length) text = `Object.freeze(${text})`;
  else if (!Object.isExtensible(v)) text = `Object.preventExtensions(${text})`;
  return text;
}

// ---- pools ------------------------------------------------------------------------------

const NUMBERS = [
  0, -0, 1, -1, 2, 3, 4, 5, 7, 15, 16, 30, 100, 255, 256, 360, 640, 1080, 1920, 0.5, -0.5, 1.5,
  1e-300, 2 ** 31 - 1, 2 ** 31, -(2 ** 31), -(2 ** 31) - 1, 2 ** 32 - 1, 2 ** 32, 2 ** 32 + 1,
  2 ** 53 - 1, 2 ** 53, 2 ** 53 + 2, -(2 ** 53) - 2, 2 ** 63, -(2 ** 63), 2 ** 64, 1e21, 1e308,
  -1e308, Number.MAX_VALUE, Number.MIN_VALUE, Number.EPSILON, NaN, Infinity, -Infinity, 65536,
  32768, 46341, 0x40000000, 0x3fffffff, 0x10000 + 1,
];
const STRINGS = [
  '', 'a', 'tsfn', 'sim-peer-stream', 'fuzz-room-1', ' ', '0', '-1', 'NaN', 'true', '\u0000',
  'a\u0000b', '中文字符', '😀', '\ud800', '\udc00x', 'e\u0301', '%s%n%x%p', '../../etc/passwd',
  'x'.repeat(255), 'x'.repeat(256), 'y'.repeat(4097), '{"a":1}', '__proto__', 'constructor',
  'onDebugError', '\n\r\t',
];
const BIGINTS = [0n, 1n, -1n, 2n ** 53n + 1n, 2n ** 63n - 1n, -(2n ** 63n), 2n ** 64n, -(2n ** 200n)];
const SMALL_BYTES = [0, 1, 2, 3, 4, 7, 8, 15, 16, 17, 31, 33, 63, 64, 65, 100, 255, 256, 257, 1023, 1024, 4095, 4096, 4097];
const LARGE_BYTES = [640 * 360 * 4, (1 << 20) + 3, 4 << 20, 8 << 20];
const RANDOM_KEYS = [
  '', '__proto__', 'constructor', 'toString', 'valueOf', 'length', '0', '1', '-1', 'then',
  'ä', '😀', 'k'.repeat(1000), 'undefined', 'null', 'NaN',
];

let bigArrays = null;

// Made once a process: a 10 MB one-byte string, a two-byte one and one of lone surrogates.
function bigStringPool() {
  if (bigStrings.size === 0) {
    bigStrings.set('x'.repeat(10 << 20), '"x".repeat(10485760)');
    bigStrings.set('中'.repeat(5 << 20), '"中".repeat(5242880)');
    bigStrings.set('\ud800'.repeat(1 << 20), '"\\ud800".repeat(1048576)');
  }
  return [...bigStrings.keys()];
}

function bigArrayPool() {
  if (!bigArrays) {
    bigArrays = [
      tag(new Array(100000).fill(1), 'new Array(100000).fill(1)'),
      tag(new Array(100000), 'new Array(100000)'),
      tag(Array.from({ length: 100000 }, (_, i) => (i % 3 ? i : 'x')), 'Array.from({ length: 100000 }, (_, i) => (i % 3 ? i : "x"))'),
      tag(new Array(100000).fill({}), 'new Array(100000).fill({})'),
    ];
  }
  return bigArrays;
}

// ---- the generator ----------------------------------------------------------------------

class Values {
  // keyPool: key names seen in the project (harvested and from test fixtures).
  constructor(rng, surface, { keyPool = [] } = {}) {
    this.rng = rng;
    this.surface = surface;
    this.keyPool = keyPool;
    this.allKeys = surface ? [...surface.info.all.entries()] : [];
    // Set when a value made for the current call is one the caller resets between calls:
    this.revokedInCall = false;   // a revoked proxy
    this.unstableInCall = false;  // a value that reads differently each time
  }

  // ---- primitives

  number() {
    const r = this.rng;
    return r.chance(0.7) ? r.pick(NUMBERS) : r.chance(0.5) ? r.range(-1000, 1000) : (r.float() - 0.5) * 2 ** r.range(1, 70);
  }

  string() {
    const r = this.rng;
    if (r.chance(0.8)) return r.pick(STRINGS);
    return Array.from({ length: r.range(1, 12) }, () => String.fromCharCode(r.range(0x20, 0x7e))).join('');
  }

  key() {
    const r = this.rng;
    const w = r.float();
    if (w < 0.55 && this.keyPool.length) return r.pick(this.keyPool);
    if (w < 0.75) return r.pick(RANDOM_KEYS);
    return `k${r.int(1000)}`;
  }

  // ---- binary values of every kind and size

  binary() {
    const r = this.rng;
    const n = r.chance(0.97) ? r.pick(SMALL_BYTES) : r.pick(LARGE_BYTES);
    const kind = r.int(13);
    let v;
    switch (kind) {
      case 0: case 1: case 2: v = Buffer.alloc(n, r.int(256)); break;
      case 3: v = tag(Buffer.alloc(n + 3).subarray(3), `Buffer.alloc(${n + 3}).subarray(3)`); break;
      case 4: case 5: v = new ArrayBuffer(n); break;
      case 6: v = new Uint8Array(n); break;
      case 7: v = new Uint16Array(n >> 1); break;
      case 8: v = new Float64Array(n >> 3); break;
      case 9: v = new DataView(new ArrayBuffer(n)); break;
      case 10: v = tag(new Uint8Array(new SharedArrayBuffer(n)), `new Uint8Array(new SharedArrayBuffer(${n}))`); break;
      case 11: {
        // Detached: no bytes and a null data pointer behind it.
        const ab = new ArrayBuffer(n);
        const view = Buffer.from(ab);
        structuredClone(ab, { transfer: [ab] });
        v = r.chance(0.5) ? tag(ab, `detached(new ArrayBuffer(${n}))`) : tag(view, `Buffer.from(detached(new ArrayBuffer(${n})))`);
        break;
      }
      default: {
        // Resizable, shrunk after the view was made: the view tracks the length.
        const ab = new ArrayBuffer(n, { maxByteLength: n * 2 + 16 });
        const view = Buffer.from(ab);
        ab.resize(n >> 1);
        v = r.chance(0.5) ? tag(view, `Buffer.from(new ArrayBuffer(${n}, { maxByteLength: ${n * 2 + 16} }) /* resized to ${n >> 1} */)`)
          : tag(ab, `new ArrayBuffer(${n}, { maxByteLength: ${n * 2 + 16} }) /* resized to ${n >> 1} */`);
      }
    }
    return v;
  }

  // ---- functions

  func() {
    const r = this.rng;
    switch (r.int(8)) {
      case 0: { const m = marker(); return tag(function () { throw m; }, `function () { throw ${show(m)}; }`); }
      case 1: return tag(async function () {}, 'async function () {}');
      case 2: return tag(class {}, 'class {}');
      case 3: return tag(function () {}.bind(null), 'function () {}.bind(null)');
      case 4: return tag(function* () {}, 'function* () {}');
      case 5: {
        // A function is an Object to the checker: give it keys.
        const f = function () {};
        const k = this.key();
        const v = this.value(2);
        Object.defineProperty(f, k, { value: v, enumerable: true, configurable: true, writable: true });
        return tag(f, `Object.defineProperty(function () {}, ${JSON.stringify(k)}, { value: ${show(v)}, enumerable: true })`);
      }
      default: return tag(() => {}, '() => {}');
    }
  }

  // A function script hands over to be called back (event handlers): mostly quiet.
  callback() {
    const r = this.rng;
    if (r.chance(0.04)) {
      const m = marker();
      return tag(function () { throw m; }, `function () { throw ${show(m)}; }`);
    }
    return tag(() => {}, '() => {}');
  }

  // ---- objects

  // A getter that throws a marker.
  throwingGetter() {
    const m = marker();
    return tag(function () { throw m; }, `get %KEY%() { throw ${show(m)}; }`);
  }

  // A getter whose first read gives `first` and every later read `later`: a value checked
  // once and read again.
  shiftingGetter(first, later) {
    let reads = 0;
    this.unstableInCall = true;
    return tag(function () { return reads++ === 0 ? first : later; },
      `get %KEY%() { /* first read: */ return ${show(first)}; /* then: ${show(later)} */ }`);
  }

  proxy(target, depth) {
    const r = this.rng;
    const m = marker();
    const thrower = () => { throw m; };
    const t = show(target, depth + 1);
    switch (r.int(6)) {
      case 0: {
        const traps = ['get', 'has', 'ownKeys', 'getOwnPropertyDescriptor', 'getPrototypeOf', 'defineProperty', 'set', 'deleteProperty'];
        return tag(new Proxy(target, Object.fromEntries(traps.map((k) => [k, thrower]))), `new Proxy(${t}, { /* every trap */ get() { throw ${show(m)}; } })`);
      }
      case 1: {
        const trap = r.pick(['get', 'has', 'ownKeys', 'getOwnPropertyDescriptor', 'getPrototypeOf']);
        return tag(new Proxy(target, { [trap]: thrower }), `new Proxy(${t}, { ${trap}() { throw ${show(m)}; } })`);
      }
      case 2: {
        // Claims every key and answers with a different value each read.
        const answers = Array.from({ length: 4 }, () => this.primitiveOrSmall(depth + 1));
        let i = 0;
        this.unstableInCall = true;
        return tag(new Proxy(target, { has: () => true, get: () => answers[i++ % answers.length] }),
          `new Proxy(${t}, { has: () => true, get: cycling(${answers.map((a) => show(a, depth + 1)).join(', ')}) })`);
      }
      case 3: {
        const { proxy, revoke } = Proxy.revocable(target, {});
        revoke();
        // It throws V8's own TypeError, which has no identity to check against.
        this.revokedInCall = true;
        return tag(proxy, `revoked(new Proxy(${t}, {}))`);
      }
      default:
        return tag(new Proxy(target, {}), `new Proxy(${t}, {})`);
    }
  }

  exotic() {
    const r = this.rng;
    switch (r.int(12)) {
      case 0: return tag(new Date(0), 'new Date(0)');
      case 1: return tag(/x/g, '/x/g');
      case 2: return tag(new Map([['channel', 0]]), 'new Map([["channel", 0]])');
      case 3: return tag(new Set([1]), 'new Set([1])');
      case 4: { const p = Promise.resolve(1); return tag(p, 'Promise.resolve(1)'); }
      case 5: return tag(new Number(5), 'new Number(5)');
      case 6: return tag(new String('s'), 'new String("s")');
      case 7: return tag(new Boolean(false), 'new Boolean(false)');
      case 8: return tag(new WeakMap(), 'new WeakMap()');
      case 9: return marker();
      case 10: return tag(Object(Symbol('boxed')), 'Object(Symbol("boxed"))');
      default: return Object.create(null);
    }
  }

  // The addon object or a script object the module handed out, as an argument value.
  scriptObject() {
    const classes = this.surface ? this.surface.classList().filter((c) => c.instances.length) : [];
    if (!classes.length || this.rng.chance(0.3)) return this.surface ? this.surface.addon : {};
    return this.rng.pick(this.rng.pick(classes).instances);
  }

  primitiveOrSmall(depth) {
    const r = this.rng;
    switch (r.int(7)) {
      case 0: return this.number();
      case 1: return this.string();
      case 2: return r.chance(0.5);
      case 3: return undefined;
      case 4: return null;
      case 5: return depth < 3 ? this.plainObject(depth + 1) : 0;
      default: return r.pick(BIGINTS);
    }
  }

  plainObject(depth) {
    const r = this.rng;
    const o = own({});
    const n = r.range(0, 4);
    for (let i = 0; i < n; i++) this.setKey(o, this.key(), depth);
    return o;
  }

  // o[key] = some value, or a throwing / shifting getter.
  setKey(o, key, depth) {
    const r = this.rng;
    const w = r.float();
    if (w < 0.08) Object.defineProperty(o, key, { get: this.throwingGetter(), enumerable: true, configurable: true });
    else if (w < 0.12) Object.defineProperty(o, key, { get: this.shiftingGetter(this.primitiveOrSmall(depth + 1), this.value(depth + 1)), enumerable: true, configurable: true });
    else Object.defineProperty(o, key, { value: this.value(depth + 1), enumerable: true, configurable: true, writable: true });
  }

  // Any value at all, hostile ones included.
  value(depth = 0) {
    const r = this.rng;
    const deep = depth < 3;
    const kind = r.weighted([
      [18, 'number'], [14, 'string'], [5, 'undefined'], [4, 'null'], [4, 'boolean'], [3, 'bigint'],
      [2, 'symbol'], [deep ? 9 : 0, 'object'], [deep ? 5 : 0, 'array'], [6, 'binary'], [5, 'function'],
      [deep ? 3 : 0, 'proxy'], [2, 'exotic'], [2, 'script'], [deep ? 1.5 : 0, 'frozen'],
      [deep ? 1 : 0, 'inherited'], [0.12, 'bigArray'], [0.06, 'bigString'],
    ]);
    switch (kind) {
      case 'number': return this.number();
      case 'string': return this.string();
      case 'undefined': return undefined;
      case 'null': return null;
      case 'boolean': return r.chance(0.5);
      case 'bigint': return r.pick(BIGINTS);
      case 'symbol': return Symbol(r.chance(0.5) ? 'fuzz' : undefined);
      case 'object': return this.plainObject(depth);
      case 'array': return Array.from({ length: r.range(0, 5) }, () => this.value(depth + 1));
      case 'binary': return this.binary();
      case 'function': return this.func();
      case 'proxy': return this.proxy(r.chance(0.5) ? this.plainObject(depth + 1) : (r.chance(0.5) ? [] : function () {}), depth);
      case 'exotic': return this.exotic();
      case 'script': return this.scriptObject();
      case 'frozen': return Object.freeze(this.plainObject(depth));
      case 'inherited': return Object.create(this.plainObject(depth));
      case 'bigArray': return r.pick(bigArrayPool());
      default: return r.pick(bigStringPool());
    }
  }

  // ---- valid-looking arguments

  // A number that reads like one for this key.
  hintNumber(key) {
    const r = this.rng;
    if (r.chance(0.08)) return this.number();
    if (/channel/i.test(key) || /index/i.test(key)) return r.int(4);
    if (/width|height/i.test(key)) return r.pick([1, 2, 4, 8, 16, 32, 64, 160, 180, 320, 360, 640]);
    if (/volume/i.test(key)) return r.int(101);
    if (/fps/i.test(key)) return r.pick([15, 30, 1, 60]);
    if (/bitrate/i.test(key)) return r.pick([48, 600, 1200]);
    if (/appID/.test(key)) return 1234567;
    if (/interval|millisecond/i.test(key)) return r.pick([0, 100, 1000]);
    if (/size/i.test(key)) return r.pick([0, 1024, 5 << 20]);
    return r.int(4);
  }

  hintString(key) {
    const r = this.rng;
    if (r.chance(0.08)) return this.string();
    if (/streamID/i.test(key)) return r.pick(['sim-peer-stream', 'fuzz-stream-1', 'fuzz-stream-2']);
    if (/roomID/i.test(key)) return r.pick(['fuzz-room-1', 'fuzz-room-2']);
    if (/user/i.test(key)) return r.pick(['fuzz-user', 'fuzz-user-2']);
    if (key === 'name') return r.chance(0.85) ? 'tsfn' : this.string();
    if (/url/i.test(key)) return r.pick(['rtmp://fuzz.invalid/live', '']);
    if (/version/i.test(key)) return r.pick(['1.0.0', '30.0.0']);
    if (/path/i.test(key)) return r.pick(['', '/tmp/orva-fuzz-log']);
    return r.pick(['x', 'fuzz', '', 'tsfn']);
  }

  validOfType(key, type, node, keys, depth) {
    const r = this.rng;
    switch (type) {
      case 'String': return this.hintString(key);
      case 'Number': return this.hintNumber(key);
      case 'Boolean': return r.chance(0.5);
      case 'Array': return Array.from({ length: r.range(0, 4) }, () => r.int(4));
      case 'ArrayBuffer': return new ArrayBuffer(r.pick([0, 1, 4, 16, 100]));
      case 'Buffer': return Buffer.alloc(r.pick([0, 16, 64]));
      case 'Function': return this.callback();
      case 'Object':
      default:
        if (depth > 3) return {};
        if (node && node.children.size) return this.validObject(node, keys, depth + 1);
        return this.looseObject(keys, depth + 1);
    }
  }

  // An object of some keys the method reads from objects we could not place, and a few
  // string entries (free-form maps such as an advanced configuration).
  looseObject(keys, depth) {
    const o = own({});
    const loose = keys ? [...keys.loose] : [];
    for (const [k, types] of loose) {
      if (this.rng.chance(0.5)) o[k] = this.validOfType(k, this.rng.pick([...types, 'String']), null, keys, depth);
    }
    if (this.rng.chance(0.5)) o[this.rng.pick(['fuzz_key', 'x', 'k'])] = this.hintString('');
    return o;
  }

  validObject(node, keys, depth = 0) {
    const r = this.rng;
    const o = own({});
    for (const [k, child] of node.children) {
      if (r.chance(0.05)) continue;
      const types = [...child.types];
      const type = types.length ? r.pick(types) : child.children.size ? 'Object' : r.pick(['String', 'Number', 'Object']);
      o[k] = this.validOfType(k, type, child, keys, depth);
    }
    if (keys) {
      for (const [k, types] of keys.loose) {
        if (!(k in o) && r.chance(0.3)) o[k] = this.validOfType(k, types.size ? r.pick([...types]) : 'String', null, keys, depth);
      }
    }
    // A buffer beside width and height: sized for them, as a frame registration is.
    const w = o.width;
    const h = o.height;
    for (const k of Object.keys(o)) {
      if (Buffer.isBuffer(o[k]) && typeof w === 'number' && typeof h === 'number' && w * h <= 1 << 22) {
        o[k] = Buffer.alloc(Math.max(0, w * h * 4));
      }
    }
    return o;
  }

  // A valid-looking argument object for a method whose keys we know (or, when we do not,
  // for a few keys from anywhere in the project).
  validFor(keys) {
    if (keys) return this.validObject(keys.top, keys);
    const o = own({});
    const n = this.rng.range(1, 5);
    for (let i = 0; i < n && this.allKeys.length; i++) {
      const [k, types] = this.rng.pick(this.allKeys);
      o[k] = this.validOfType(k, types.size ? this.rng.pick([...types]) : 'String', null, null, 1);
    }
    return o;
  }

  // Breaks one to three places of a valid object, at any depth: a key deleted, replaced by
  // any value, turned into a throwing or shifting getter, moved to the prototype; an object
  // frozen, or replaced by a proxy.
  mutate(root) {
    const r = this.rng;
    let top = root;
    const count = r.range(1, 3);
    for (let i = 0; i < count; i++) {
      // Walk down through plain objects.
      let holder = null;
      let holderKey = null;
      let o = top;
      while (r.chance(0.45)) {
        const ks = Object.keys(o).filter((k) => {
          const d = Object.getOwnPropertyDescriptor(o, k);
          return d && 'value' in d && fresh.has(d.value) && Object.isExtensible(d.value);
        });
        if (!ks.length) break;
        holder = o;
        holderKey = r.pick(ks);
        o = o[holderKey];
      }
      const own = Object.keys(o);
      const key = own.length && r.chance(0.85) ? r.pick(own) : this.key();
      const d = Object.getOwnPropertyDescriptor(o, key);
      const plainKey = !d || ('value' in d && d.configurable);
      const action = r.weighted([
        [30, 'replace'], [14, 'delete'], [10, 'throwingGetter'], [10, 'shiftingGetter'], [5, 'undefined'],
        [5, 'proxy'], [3, 'freeze'], [3, 'inherit'], [2, 'nullProto'],
      ]);
      if (!fresh.has(o) || !Object.isExtensible(o) || !plainKey) continue;
      switch (action) {
        case 'replace': o[key] = this.value(1); break;
        case 'delete': delete o[key]; break;
        case 'undefined': o[key] = r.chance(0.5) ? undefined : null; break;
        case 'throwingGetter':
          Object.defineProperty(o, key, { get: this.throwingGetter(), enumerable: true, configurable: true });
          break;
        case 'shiftingGetter': {
          const good = d ? d.value : this.number();
          const bad = this.value(1);
          Object.defineProperty(o, key, {
            get: r.chance(0.5) ? this.shiftingGetter(good, bad) : this.shiftingGetter(bad, good), enumerable: true, configurable: true,
          });
          break;
        }
        default: {
          let replacement;
          if (action === 'proxy') replacement = this.proxy(o, 1);
          else if (action === 'freeze') replacement = Object.freeze(o);
          else if (action === 'inherit') replacement = Object.create(o);
          else replacement = Object.create(null, Object.getOwnPropertyDescriptors(o));
          if (holder) holder[holderKey] = replacement;
          else top = replacement;
          // A proxy, frozen or inherited object is not walked into again.
          i = count;
        }
      }
    }
    return top;
  }

  // The argument list of one call.
  argsFor(keys) {
    const r = this.rng;
    const mode = r.weighted([[30, 'valid'], [40, 'mutated'], [18, 'any'], [5, 'none'], [4, 'extra'], [3, 'many']]);
    switch (mode) {
      case 'valid': return [this.validFor(keys)];
      case 'mutated': return [this.mutate(this.validFor(keys))];
      case 'any': return [this.value(0)];
      case 'none': return [];
      case 'extra': return [this.validFor(keys), this.value(1)];
      default: return Array.from({ length: r.range(2, 6) }, () => this.value(1));
    }
  }
}

module.exports = { Values, show, tag, marker, isMarker };
