'use strict';
// Reads engine/include/orva_vantix_engine.h (kept in the strict style of its README) into a
// model that the code generators share. Throws on anything it does not understand, so a
// header change that breaks the conventions fails the build instead of generating garbage.

const fs = require('fs');
const path = require('path');

const SCALARS = new Set(['int32_t', 'uint32_t', 'int64_t', 'uint64_t', 'float', 'double', 'bool', 'uintptr_t']);
const HANDLES = new Set(['void*', 'orva_image_handle', 'orva_view_handle']);

function stripLineComments(text) {
  return text.replace(/\/\/[^\n]*/g, '');
}

// Splits "const orva_user* user" into { type: 'const orva_user*', name: 'user', array }.
function splitDecl(decl) {
  const d = decl.trim().replace(/\s+/g, ' ').replace(/\s*\*\s*/g, '* ').replace(/\* \*/g, '**').trim();
  const m = /^(.*?)([A-Za-z_][A-Za-z0-9_]*)(\[([A-Za-z0-9_]+)\])?$/.exec(d);
  if (!m) throw new Error(`cannot parse declaration: ${decl}`);
  return { type: m[1].trim().replace(/\s+$/, ''), name: m[2], array: m[4] };
}

function resolveSize(size, defines) {
  if (/^\d+$/.test(size)) return Number(size);
  if (defines[size] === undefined) throw new Error(`unknown size ${size}`);
  return defines[size];
}

// Classifies a list of declarations (struct fields or parameters) into kinds; pointer + count
// and pointer + length pairs fold into one entry.
function classify(decls, model, where) {
  const out = [];
  for (let i = 0; i < decls.length; i++) {
    const { type, name, array } = splitDecl(decls[i]);
    const next = i + 1 < decls.length ? splitDecl(decls[i + 1]) : null;
    const base = type.replace(/^const /, '').replace(/\*+$/, '').trim();
    const isConst = type.startsWith('const ');
    const stars = (type.match(/\*/g) || []).length;
    const ctx = `${where}.${name}`;
    const enumType = model.enums.has(base);

    if (array) {
      const size = resolveSize(array, model.defines);
      if (base === 'char') out.push({ kind: 'fixedText', name, size });
      else if (SCALARS.has(base) || enumType) out.push({ kind: 'array', name, ctype: enumType ? 'int32_t' : base, size });
      else throw new Error(`unsupported array ${ctx}`);
      continue;
    }
    if (stars === 0) {
      if (SCALARS.has(base)) out.push({ kind: 'scalar', name, ctype: base });
      else if (enumType) out.push({ kind: 'scalar', name, ctype: 'int32_t', enumType: base });
      else if (HANDLES.has(type)) out.push({ kind: 'handle', name, ctype: type });
      else if (model.structs[base]) out.push({ kind: 'struct', name, struct: base });
      else throw new Error(`unsupported type ${type} at ${ctx}`);
      continue;
    }
    if (type === 'void*' || HANDLES.has(type)) { out.push({ kind: 'handle', name, ctype: type }); continue; }
    if (stars === 2) {
      if (base === 'uint8_t' && next && next.name === `${name}Length`) {
        out.push({ kind: 'planes', name, lengthName: next.name });
        i++;
        continue;
      }
      throw new Error(`unsupported double pointer ${ctx}`);
    }
    // One level of pointer from here on.
    if (base === 'char') {
      if (isConst) out.push({ kind: 'text', name });
      else if (next && next.name === `${name}Length`) { out.push({ kind: 'outText', name, lengthName: next.name }); i++; }
      else out.push({ kind: 'out', name, ctype: 'char*' });
      continue;
    }
    if (base === 'uint8_t' && next && next.name === `${name}Length`) {
      out.push({ kind: 'bytes', name, lengthName: next.name, mutable: !isConst });
      i++;
      continue;
    }
    if (next && next.name === `${name}Count` && isConst) {
      let elem;
      if (SCALARS.has(base)) elem = { kind: 'scalar', ctype: base };
      else if (model.structs[base]) elem = { kind: 'struct', struct: base };
      else throw new Error(`unsupported list element ${ctx}`);
      out.push({ kind: 'list', name, countName: next.name, elem });
      i++;
      continue;
    }
    if (model.structs[base]) {
      out.push({ kind: isConst ? 'structPtr' : 'mutStructPtr', name, struct: base });
      continue;
    }
    if (!isConst && (SCALARS.has(base) || enumType)) { out.push({ kind: 'out', name, ctype: `${base}*` }); continue; }
    throw new Error(`unsupported pointer ${type} at ${ctx}`);
  }
  return out;
}

function splitParams(list) {
  const t = list.trim();
  if (t === '' || t === 'void') return [];
  return t.split(',').map((s) => s.trim());
}

function docAnnotations(doc) {
  const result = /@result\s+([a-z0-9_]+)/.exec(doc || '');
  const free = /@free\s+([a-z0-9_]+)/.exec(doc || '');
  return { result: result ? result[1] : null, free: free ? free[1] : null };
}

function parseHeader(text) {
  if (!/\/\* END OF API \*\/\s*$/.test(text)) throw new Error('header does not end with /* END OF API */');
  const src = stripLineComments(text);
  const model = { defines: {}, enums: new Set(), structs: {}, structOrder: [], callbacks: [], functions: [], registrations: [] };

  for (const m of src.matchAll(/^#define\s+([A-Z0-9_]+)\s+(\d+)\s*$/gm)) model.defines[m[1]] = Number(m[2]);
  for (const m of src.matchAll(/typedef enum\s+(\w+)\s*\{[^}]*\}\s*(\w+);/g)) model.enums.add(m[2]);

  // Structures in declaration order (each refers only to earlier ones).
  for (const m of src.matchAll(/typedef struct\s+(\w+)\s*\{([^}]*)\}\s*(\w+);/g)) {
    const body = m[2].replace(/\/\*[\s\S]*?\*\//g, '');
    const decls = body.split(';').map((s) => s.trim()).filter(Boolean);
    model.structs[m[3]] = { name: m[3], fields: [] };
    model.structs[m[3]].fields = classify(decls, model, m[3]);
    model.structOrder.push(m[3]);
  }

  const cbTypes = {};
  for (const m of src.matchAll(/typedef void \(ORVA_CALL \*orva_on_(\w+)\)\(([^)]*)\);/g)) {
    const params = splitParams(m[2]);
    const last = params.pop();
    if (!/^void\* user_context$/.test(last.replace(/\s+/g, ' '))) throw new Error(`callback ${m[1]} must end with void* user_context`);
    cbTypes[m[1]] = { name: m[1], type: `orva_on_${m[1]}`, params: classify(params, model, `orva_on_${m[1]}`) };
  }

  // Declarations with the doc comment directly above them.
  const declRe = /(\/\*\*([\s\S]*?)\*\/\s*)?ORVA_API\s+([^;]*?)\s*ORVA_CALL\s+(orva_\w+)\s*\(([^)]*)\)\s*;/g;
  for (const m of src.matchAll(declRe)) {
    const [, , doc, ret, name, plist] = m;
    const reg = /^orva_register_(\w+)_callback$/.exec(name);
    if (reg) {
      if (!cbTypes[reg[1]]) throw new Error(`no callback type for ${name}`);
      model.registrations.push(reg[1]);
      model.callbacks.push(cbTypes[reg[1]]);
      continue;
    }
    const retType = ret.trim().replace(/\s*\*\s*$/, '*');
    let retKind;
    if (retType === 'void') retKind = { kind: 'void' };
    else if (SCALARS.has(retType)) retKind = { kind: 'scalar', ctype: retType };
    else if (model.structs[retType]) retKind = { kind: 'struct', struct: retType };
    else if (retType === 'char*') retKind = { kind: 'ownedText' };
    else if (retType.endsWith('*') && model.structs[retType.slice(0, -1)]) retKind = { kind: 'ownedList', struct: retType.slice(0, -1) };
    else throw new Error(`unsupported return type ${retType} of ${name}`);
    const ann = docAnnotations(doc);
    const fn = { name, ret: retKind, params: classify(splitParams(plist), model, name), result: ann.result, free: ann.free };
    if (retKind.kind === 'ownedList') {
      const count = fn.params.find((p) => p.kind === 'out' && /Count$/.test(p.name));
      if (!count || !fn.free) throw new Error(`${name} returns a list: needs an out ...Count and @free`);
      fn.ret.countName = count.name;
    }
    if (fn.result && !fn.params.some((p) => p.kind === 'out' && p.name === 'seq')) throw new Error(`${name}: @result needs int32_t* seq`);
    model.functions.push(fn);
  }
  for (const f of model.functions) {
    if (f.result && !cbTypes[f.result]) throw new Error(`${f.name}: unknown result callback ${f.result}`);
    if (f.free && !model.functions.some((g) => g.name === f.free)) throw new Error(`${f.name}: unknown free function ${f.free}`);
  }
  for (const name of Object.keys(cbTypes)) {
    if (!model.registrations.includes(name)) throw new Error(`callback type orva_on_${name} has no registration`);
  }
  return model;
}

function parseHeaderFile(file) {
  return parseHeader(fs.readFileSync(file, 'utf8'));
}

const DEFAULT_HEADER = path.join(__dirname, '..', 'include', 'orva_vantix_engine.h');

module.exports = { parseHeader, parseHeaderFile, DEFAULT_HEADER };

if (require.main === module) {
  const model = parseHeaderFile(process.argv[2] || DEFAULT_HEADER);
  const kinds = {};
  const count = (p) => { kinds[p.kind] = (kinds[p.kind] || 0) + 1; };
  model.functions.forEach((f) => f.params.forEach(count));
  model.callbacks.forEach((c) => c.params.forEach(count));
  Object.values(model.structs).forEach((s) => s.fields.forEach(count));
  console.log(`${model.functions.length} functions, ${model.callbacks.length} callbacks, ${model.structOrder.length} structs`);
  console.log(kinds);
}
