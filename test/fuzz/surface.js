'use strict';
// What the fuzzer knows about the script surface, with no list kept by hand:
//
//   - harvest(): the argument keys each native method reads, scraped from the method bodies
//     under src/ (checker rules, typed readers, optional keys), with the value types they
//     ask for and which object they sit in. It only steers the valid-looking arguments that
//     get calls past the checks; a method it cannot find still gets called, with keys from
//     the whole project.
//   - Surface: the methods of the addon object and of every script object a call hands
//     back (engine wrapper, players, capture sources, ...), found by walking prototypes at
//     run time, so new classes and methods join the fuzzing as soon as the addon has them.

const fs = require('fs');
const path = require('path');

// Reader or optional-key helper → the type of value it reads.
const READER_TYPES = {
  string: 'String', coercedString: 'String', text: 'String',
  int64: 'Number', coercedInt64: 'Number', int32: 'Number', truncatedInt32: 'Number',
  uint32: 'Number', number: 'Number', float32: 'Number',
  boolean: 'Boolean', object: 'Object', int32List: 'Array', list: 'Array',
  has: null, is: null, get: null,
};
const AS_TYPES = {
  Function: 'Function', Object: 'Object', Array: 'Array', ArrayBuffer: 'ArrayBuffer',
  Buffer: 'Buffer', String: 'String', Number: 'Number', Boolean: 'Boolean',
};
// Receivers that stand for the method's own argument object.
const TOP_RECEIVERS = new Set(['a', 'arg', 'args', 'info']);

class KeyNode {
  constructor() {
    this.types = new Set();
    this.children = new Map();  // key → KeyNode
  }

  child(key) {
    if (!this.children.has(key)) this.children.set(key, new KeyNode());
    return this.children.get(key);
  }
}

// The keys one method body (or the shared part of a file) reads.
class MethodKeys {
  constructor() {
    this.top = new KeyNode();     // the argument object's tree
    this.loose = new Map();       // key → Set(types): read from some object we cannot place
  }

  addLoose(key, type) {
    if (!this.loose.has(key)) this.loose.set(key, new Set());
    if (type) this.loose.get(key).add(type);
  }

  // The node of `key` wherever it already sits in the tree (breadth first), or null.
  find(key) {
    const queue = [this.top];
    while (queue.length) {
      const node = queue.shift();
      if (node.children.has(key)) return node.children.get(key);
      queue.push(...node.children.values());
    }
    return null;
  }
}

const RULE = /\{\s*"(\w+)"\s*,\s*(?:T|ArgType)::(\w+)\s*\}/g;

function rulesIn(text) {
  return [...text.matchAll(RULE)].map((m) => [m[1], m[2]]);
}

function scanBody(body, keys) {
  const placed = new Set();
  const place = (node, key, type) => {
    const n = node.child(key);
    if (type) n.types.add(type);
    placed.add(key);
    return n;
  };
  // Rules of nested objects: check("config", {...}), check(w, "watermark", {...}),
  // check(c.object("cdnConfig"), "cdnConfig", {...}).
  const nested = /check\(([^;{]*?)"(\w+)"\s*,\s*\{((?:\s*\{\s*"\w+"\s*,\s*(?:T|ArgType)::\w+\s*\}\s*,?)*)\s*\}\s*\)/g;
  const nestedSpans = [];
  for (const m of body.matchAll(nested)) {
    if (/^\s*$/.test(m[1]) || /,\s*$/.test(m[1])) {
      const parent = keys.find(m[2]) || place(keys.top, m[2], 'Object');
      parent.types.add('Object');
      for (const [k, t] of rulesIn(m[3])) place(parent, k, t);
      nestedSpans.push([m.index, m.index + m[0].length]);
    }
  }
  const inNested = (i) => nestedSpans.some(([s, e]) => i >= s && i < e);
  // Top-level rules: check({...}), begin({...}).
  for (const m of body.matchAll(RULE)) {
    if (!inNested(m.index)) place(keys.top, m[1], m[2]);
  }
  // Keys a method requires by presence only: for (const char* key : {"a", "b"}).
  for (const m of body.matchAll(/for\s*\(\s*const\s+char\s*\*\s*\w+\s*:\s*\{([^}]*)\}/g)) {
    for (const k of m[1].matchAll(/"(\w+)"/g)) place(keys.top, k[1], null);
  }
  // Typed readers. The receiver says where the key sits: the argument object itself, an
  // object named after a key (user.string("userID") is a key of "user"), or unknown.
  const readers = Object.keys(READER_TYPES).join('|');
  const reader = new RegExp(`(\\w+)?(\\(\\))?\\.(${readers})\\(\\s*"(\\w+)"(\\s*,\\s*(?:T|ArgType)::(\\w+))?`, 'g');
  // Two passes: a local read before the key it was taken from is placed on the second.
  for (const pass of [1, 2]) {
    for (const m of body.matchAll(reader)) {
      const [, receiver, call, fn, key, , isType] = m;
      let type = READER_TYPES[fn] || isType || null;
      const after = body.slice(m.index + m[0].length, m.index + m[0].length + 40);
      const as = /^\)\.As<Napi::(\w+)/.exec(after);
      if (as && AS_TYPES[as[1]]) type = AS_TYPES[as[1]];
      if (receiver && (TOP_RECEIVERS.has(receiver) || (receiver === 'args' && call))) {
        place(keys.top, key, type);
      } else if (receiver && keys.find(receiver)) {
        place(keys.find(receiver), key, type);
      } else if (pass === 2) {
        keys.addLoose(key, type);
      }
    }
  }
  // truncatedUint32(a, "width")
  for (const m of body.matchAll(/truncatedUint32\(\s*(\w+)\s*,\s*"(\w+)"/g)) {
    if (TOP_RECEIVERS.has(m[1])) place(keys.top, m[2], 'Number');
    else keys.addLoose(m[2], 'Number');
  }
  // Optional keys of a nested object: keys.text("roomID", ...), keys.int32(...).
  for (const m of body.matchAll(/\.(text|int32|boolean|int32List)\(\s*"(\w+)"\s*,/g)) {
    if (!placed.has(m[2])) keys.addLoose(m[2], READER_TYPES[m[1]]);
  }
  return keys;
}

// Puts the keys of `from` into `into` below every key the two share (a helper checking
// "config" of the method that calls it adds to that method's "config").
function mergeExisting(into, from) {
  for (const [key, node] of from.children) {
    if (!into.children.has(key)) continue;
    const target = into.children.get(key);
    for (const t of node.types) target.types.add(t);
    for (const [k, n] of node.children) {
      const c = target.child(k);
      for (const t of n.types) c.types.add(t);
    }
    mergeExisting(target, node);
  }
}

function sourceFiles(dir) {
  const out = [];
  for (const entry of fs.readdirSync(dir, { withFileTypes: true }).sort((x, y) => x.name.localeCompare(y.name))) {
    const full = path.join(dir, entry.name);
    if (entry.isDirectory()) out.push(...sourceFiles(full));
    else if (/\.(cc|h|cpp)$/.test(entry.name)) out.push(full);
  }
  return out;
}

// { methods: Map('Class::method' → MethodKeys), byName: Map(method → MethodKeys),
//   shared: Map(file → MethodKeys), all: Map(key → Set(types)) }
function harvest(srcRoot) {
  const methods = new Map();
  const byName = new Map();
  const shared = new Map();
  const all = new Map();
  const def = /Napi::Value\s+(\w+)::(\w+)\s*\(\s*const\s+Napi::CallbackInfo\s*&\s*\w*\s*\)\s*\{/g;
  for (const file of sourceFiles(srcRoot)) {
    const text = fs.readFileSync(file, 'utf8');
    const defs = [...text.matchAll(def)];
    let rest = text;
    defs.forEach((m, i) => {
      const end = i + 1 < defs.length ? defs[i + 1].index : text.length;
      const keys = scanBody(text.slice(m.index, end), new MethodKeys());
      keys.file = file;
      methods.set(`${m[1]}::${m[2]}`, keys);
      if (!byName.has(m[2])) byName.set(m[2], keys);
      rest = rest.replace(text.slice(m.index, end), '');
    });
    // Helpers outside method bodies (shared room configuration, buffer registration): their
    // keys go to every method of the file.
    const fileKeys = scanBody(rest, new MethodKeys());
    shared.set(file, fileKeys);
    for (const m of defs) mergeExisting(methods.get(`${m[1]}::${m[2]}`).top, fileKeys.top);
  }
  const collect = (keys) => {
    const walk = (node) => {
      for (const [k, n] of node.children) {
        if (!all.has(k)) all.set(k, new Set());
        for (const t of n.types) all.get(k).add(t);
        walk(n);
      }
    };
    walk(keys.top);
    for (const [k, types] of keys.loose) {
      if (!all.has(k)) all.set(k, new Set());
      for (const t of types) all.get(k).add(t);
    }
  };
  for (const keys of methods.values()) collect(keys);
  for (const keys of shared.values()) collect(keys);
  return { methods, byName, shared, all };
}

// Argument keys from the script tests' fixtures too: key names that appear as object keys
// there (`{ streamID: ..., channel: ... }`), without types.
function fixtureKeys(dirs) {
  const keys = new Set();
  for (const dir of dirs) {
    if (!fs.existsSync(dir)) continue;
    for (const entry of fs.readdirSync(dir).sort()) {
      if (!entry.endsWith('.js')) continue;
      const text = fs.readFileSync(path.join(dir, entry), 'utf8');
      for (const m of text.matchAll(/[{,]\s*([A-Za-z_]\w*)\s*:/g)) keys.add(m[1]);
    }
  }
  return [...keys].sort();
}

// ---- run-time discovery ----------------------------------------------------------------

// Function-valued properties of `object` and its prototypes up to (not including)
// Object.prototype, in definition order, without 'constructor'.
function methodNames(object) {
  const names = [];
  const seen = new Set(['constructor']);
  for (let o = object; o && o !== Object.prototype && o !== Function.prototype; o = Object.getPrototypeOf(o)) {
    for (const name of Object.getOwnPropertyNames(o)) {
      if (seen.has(name)) continue;
      seen.add(name);
      const d = Object.getOwnPropertyDescriptor(o, name);
      if (d && typeof d.value === 'function') names.push(name);
    }
  }
  return names;
}

// Whether `value`, returned by a call, is an instance of a script class of the module: an
// object of its own class (not a plain object, array, promise, buffer or error) with methods.
function isScriptObject(value) {
  if (value === null || typeof value !== 'object') return false;
  if (value instanceof Promise || value instanceof Error || ArrayBuffer.isView(value) ||
      value instanceof ArrayBuffer || Array.isArray(value)) {
    return false;
  }
  const proto = Object.getPrototypeOf(value);
  if (proto === null || proto === Object.prototype) return false;
  return methodNames(proto).length > 0;
}

const POOL_SIZE = 6;

// The objects calls are made on. Each class keeps its newest instances (older ones are let
// go, which is how stale objects reach the garbage collector).
class Surface {
  constructor(addon, info) {
    this.info = info;
    this.addon = addon;
    this.addonMethods = methodNames(addon);
    // Kept as found: a method replaced on the object later is not what the module gave.
    this.addonFunctions = Object.fromEntries(this.addonMethods.map((n) => [n, addon[n]]));
    this.classes = new Map();  // class name → { ctor, methods, instances }
  }

  // Records `value` if it is a script object; gives true when it was one.
  note(value) {
    let proto;
    try {
      if (!isScriptObject(value)) return false;
      proto = Object.getPrototypeOf(value);
    } catch {
      return false;
    }
    const ctor = proto.constructor;
    const name = (ctor && ctor.name) || 'anonymous';
    let cls = this.classes.get(name);
    if (!cls) {
      cls = { name, ctor, methods: methodNames(proto), instances: [] };
      this.classes.set(name, cls);
    }
    if (!cls.instances.includes(value)) {
      cls.instances.push(value);
      if (cls.instances.length > POOL_SIZE) cls.instances.shift();
    }
    return true;
  }

  classList() { return [...this.classes.values()]; }

  // The harvested keys of a method: by class and name, else by name, else null.
  keysOf(className, method) {
    return this.info.methods.get(`${className}::${method}`) || this.info.byName.get(method) || null;
  }
}

module.exports = { harvest, fixtureKeys, methodNames, isScriptObject, Surface, KeyNode, MethodKeys };
