'use strict';
// Emitter of the simulated engine's generated glue (called by gen_api.js with the header
// model). Writes:
//   sim_serialize.h   JSON writers for every structure and argument kind (journal, recorder)
//   sim_generated.h   callback ids, args holders' factory, typed fire_* helpers, journal_*
//                     helpers, structure readers, the entry-point table
//   sim_generated.cc  their definitions, every registration function and a default
//                     definition of each entry point the hand-written engine does not define
//   sim_recorder.h/.cc   for the native tests: a recording C callback per callback type and
//                     sample payloads for the emit round trip
//
// Entry points with behaviour are written by hand in engine/sim/*.cc and listed in
// HAND_WRITTEN. The list, not a scan, decides what is generated: this file is a dependency of
// the generation step, so changing the list regenerates, while a scan of the sources would
// go stale without anyone noticing. The scan only cross-checks the list.

const fs = require('fs');
const path = require('path');

const PREFIX = 'orva_vantix_';

// Entry points defined in engine/sim/*.cc (names without the orva_vantix_ prefix).
const HAND_WRITTEN = [
  'get_version', 'engine_init_with_profile', 'engine_uninit_async',
  'login_room_with_callback', 'logout_room_with_callback', 'logout_all_room_with_callback',
  'get_room_stream_list',
  'start_publishing_stream_with_config', 'stop_publishing_stream', 'start_preview', 'stop_preview',
  'set_video_config', 'get_video_config', 'set_audio_config_by_channel', 'get_audio_config_by_channel',
  'mute_publish_stream_audio', 'mute_publish_stream_video', 'take_publish_stream_snapshot',
  'start_playing_stream_with_config', 'stop_playing_stream', 'take_play_stream_snapshot',
  'mute_microphone', 'is_microphone_muted', 'mute_speaker', 'is_speaker_muted',
  'use_audio_device', 'get_audio_device_list', 'get_audio_device_volume', 'set_audio_device_volume',
  'mute_audio_device', 'get_current_audio_device', 'get_default_audio_device_id',
  'set_speaker_volume_in_app', 'get_speaker_volume_in_app',
  'use_video_device', 'get_video_device_list', 'get_default_video_device_id',
  'start_sound_level_monitor_with_config', 'stop_sound_level_monitor',
  'start_audio_spectrum_monitor', 'stop_audio_spectrum_monitor',
  'start_audio_device_volume_monitor', 'stop_audio_device_volume_monitor',
  'start_audio_vad_stable_state_monitor', 'stop_audio_vad_stable_state_monitor',
  'start_mixer_task', 'stop_mixer_task',
  'send_broadcast_message', 'send_barrage_message', 'send_custom_command',
  'get_screen_capture_sources', 'call_experimental_api',
  'create_media_player', 'destroy_media_player',
  'media_player_load_resource', 'media_player_load_resource_with_position',
  'media_player_load_copyrighted_music_resource_with_position',
  'media_player_start', 'media_player_stop', 'media_player_pause', 'media_player_resume',
  'media_player_seek_to', 'media_player_enable_repeat', 'media_player_set_volume',
  'media_player_set_progress_interval', 'media_player_get_total_duration',
  'media_player_get_current_progress', 'media_player_get_current_rendering_progress',
  'media_player_get_current_state',
  'media_player_set_play_volume', 'media_player_set_publish_volume',
  'media_player_get_play_volume', 'media_player_get_publish_volume',
  'media_player_get_media_info', 'media_player_take_snapshot',
  'create_audio_effect_player', 'destroy_audio_effect_player',
  'audio_effect_player_start', 'audio_effect_player_stop', 'audio_effect_player_pause',
  'audio_effect_player_resume', 'audio_effect_player_load_resource', 'audio_effect_player_seek_to',
  'create_screen_capture_source', 'destroy_screen_capture_source',
  'screen_capture_start_capture', 'screen_capture_stop_capture',
  'screen_capture_update_capture_source', 'screen_capture_get_capture_source_rect',
];

// Callbacks whose script payload is not shaped like their C arguments. Their args holders
// are written by hand (engine/sim/sim_special_args.cc); here: how the test recorder renders
// them back into the payload shape, and the sample payloads for the round trip
// (`expected` when the recorder legitimately reports something else).
const SPECIAL = {
  remote_sound_level_update: {
    recorder: `
  w.StartObject();
  for (uint32_t i = 0; soundLevels && i < soundLevelsCount; ++i) {
    w.Key(soundLevels[i].streamID, static_cast<rapidjson::SizeType>(strnlen(soundLevels[i].streamID, sizeof soundLevels[i].streamID)));
    writeReal(w, soundLevels[i].soundLevel);
  }
  w.EndObject();`,
    samples: [{ payload: { 's-1': 12.5, 's-2': 80.25 } }, { payload: {} }],
  },
  remote_sound_level_info_update: {
    recorder: `
  w.StartObject();
  for (uint32_t i = 0; soundLevelInfos && i < soundLevelInfosCount; ++i) {
    w.Key(soundLevelInfos[i].streamID, static_cast<rapidjson::SizeType>(strnlen(soundLevelInfos[i].streamID, sizeof soundLevelInfos[i].streamID)));
    w.StartObject();
    w.Key("soundLevel"); writeReal(w, soundLevelInfos[i].soundLevel);
    w.Key("vad"); w.Int(soundLevelInfos[i].vad);
    w.EndObject();
  }
  w.EndObject();`,
    samples: [{ payload: { 's-1': { soundLevel: 12.5, vad: 1 }, 's-2': { soundLevel: 0.75, vad: 0 } } }],
  },
  remote_audio_spectrum_update: {
    recorder: `
  w.StartObject();
  for (uint32_t i = 0; spectra && i < spectraCount; ++i) {
    w.Key(spectra[i].streamID, static_cast<rapidjson::SizeType>(strnlen(spectra[i].streamID, sizeof spectra[i].streamID)));
    w.StartArray();
    for (uint32_t j = 0; spectra[i].spectrumList && j < spectra[i].spectrumListCount; ++j) writeReal(w, spectra[i].spectrumList[j]);
    w.EndArray();
  }
  w.EndObject();`,
    samples: [{ payload: { 's-1': [1.5, 2.25, -3], 's-2': [] } }],
  },
  mixer_sound_level_update: {
    recorder: `
  w.StartObject();
  for (uint32_t i = 0; soundLevels && i < soundLevelsCount; ++i) {
    const std::string key = std::to_string(soundLevels[i].soundLevelID);
    w.Key(key.c_str(), static_cast<rapidjson::SizeType>(key.size()));
    writeReal(w, soundLevels[i].soundLevel);
  }
  w.EndObject();`,
    samples: [{ payload: { 7: 33.5, 4294967295: 1 } }],
  },
  captured_audio_spectrum_update: {
    recorder: `
  w.StartArray();
  for (uint32_t i = 0; spectrumList && i < spectrumListCount; ++i) writeReal(w, spectrumList[i]);
  w.EndArray();`,
    samples: [{ payload: [0.5, 1, 2.75, -4] }, { payload: [] }],
  },
  custom_video_render_captured_frame_data: {
    recorder: frameRecorder('channel', 'w.Int(channel);'),
    samples: [{ payload: { channel: 2, videoFrameParam: { width: 64, height: 36, flipMode: 1 } } }],
  },
  custom_video_render_remote_frame_data: {
    recorder: frameRecorder('streamID', 'writeText(w, streamID);'),
    samples: [{ payload: { streamID: 's-1', videoFrameParam: { width: 48, height: 20, flipMode: 0 } } }],
  },
  media_player_video_frame: {
    recorder: frameRecorder('index', 'w.Int(index);'),
    samples: [{ payload: { index: 3, videoFrameParam: { width: 32, height: 18, flipMode: 2 } } }],
  },
  publisher_take_snapshot_result: {
    recorder: snapshotRecorder([['errorCode', 'w.Int(errorCode);'], ['channel', 'w.Int(channel);'], ['image', 'writeImage(w, image);'], ['seq', 'w.Int(seq);']]),
    samples: [
      { payload: { seq: 7, errorCode: 0, channel: 1, width: 32, height: 16 },
        expected: { seq: 7, errorCode: 0, channel: 1, image: quadrantImage(32, 16) } },
      { payload: { seq: 8, errorCode: 1003, channel: 0 }, expected: { seq: 8, errorCode: 1003, channel: 0, image: null } },
    ],
  },
  player_take_snapshot_result: {
    recorder: snapshotRecorder([['errorCode', 'w.Int(errorCode);'], ['streamID', 'writeText(w, streamID);'], ['image', 'writeImage(w, image);'], ['seq', 'w.Int(seq);']]),
    samples: [{ payload: { seq: 9, errorCode: 0, streamID: 's-1', width: 20, height: 10 },
      expected: { seq: 9, errorCode: 0, streamID: 's-1', image: quadrantImage(20, 10) } }],
  },
  media_player_take_snapshot_result: {
    recorder: snapshotRecorder([['errorCode', 'w.Int(errorCode);'], ['image', 'writeImage(w, image);'], ['seq', 'w.Int(seq);'], ['index', 'w.Int(index);']]),
    samples: [{ payload: { seq: 10, errorCode: 0, index: 2 },
      expected: { seq: 10, errorCode: 0, index: 2, image: quadrantImage(320, 180) } }],
  },
};

function frameRecorder(key, write) {
  return `
  w.StartObject();
  w.Key("${key}"); ${write}
  w.Key("videoFrameParam");
  w.StartObject();
  w.Key("width"); w.Int(param ? param->width : 0);
  w.Key("height"); w.Int(param ? param->height : 0);
  w.Key("flipMode"); w.Int(flipMode);
  w.EndObject();
  w.EndObject();
  (void)data; (void)dataLength;`;
}

function snapshotRecorder(keys) {
  return `
  w.StartObject();
${keys.map(([k, code]) => `  w.Key("${k}"); ${code}`).join('\n')}
  w.EndObject();`;
}

// What the recorder reports for a snapshot image: its size and the colour at the centre of
// each quadrant (red, green / blue, white).
function quadrantImage(width, height) {
  return { width, height, colors: ['#ff0000', '#00ff00', '#0000ff', '#ffffff'], alpha: 255 };
}

// ---------------------------------------------------------------------------------------
// C types and declarations

function elemType(p) { return p.elem.ctype || p.elem.struct; }

function paramDecls(p) {
  switch (p.kind) {
    case 'scalar': return [`${p.enumType || p.ctype} ${p.name}`];
    case 'handle': return [`${p.ctype} ${p.name}`];
    case 'text': return [`const char* ${p.name}`];
    case 'list': return [`const ${elemType(p)}* ${p.name}`, `uint32_t ${p.countName}`];
    case 'bytes': return [`${p.mutable ? '' : 'const '}uint8_t* ${p.name}`, `uint32_t ${p.lengthName}`];
    case 'planes': return [`const uint8_t** ${p.name}`, `const uint32_t* ${p.lengthName}`];
    case 'structPtr': return [`const ${p.struct}* ${p.name}`];
    case 'mutStructPtr': return [`${p.struct}* ${p.name}`];
    case 'struct': return [`${p.struct} ${p.name}`];
    case 'out': return [`${p.ctype.replace(/\*$/, '')}* ${p.name}`];
    case 'outText': return [`char* ${p.name}`, `uint32_t ${p.lengthName}`];
    default: throw new Error(`emit_sim: no declaration for kind ${p.kind} (${p.name})`);
  }
}
function paramNames(p) {
  switch (p.kind) {
    case 'list': return [p.name, p.countName];
    case 'bytes': case 'planes': case 'outText': return [p.name, p.lengthName];
    default: return [p.name];
  }
}
function signature(params) {
  const decls = params.flatMap(paramDecls);
  return decls.length ? decls.join(', ') : 'void';
}
function retType(fn) {
  switch (fn.ret.kind) {
    case 'void': return 'void';
    case 'scalar': return fn.ret.ctype;
    case 'struct': return fn.ret.struct;
    case 'ownedText': return 'char*';
    case 'ownedList': return `${fn.ret.struct}*`;
    default: throw new Error(`emit_sim: return kind ${fn.ret.kind}`);
  }
}
const isInput = (p) => !['out', 'outText'].includes(p.kind) && !(p.kind === 'mutStructPtr');
const short = (name) => name.slice(PREFIX.length);

// ---------------------------------------------------------------------------------------
// JSON writing (journal and recorder share these through sim_serialize.h)

function writeScalarCode(ctype, expr, enumType) {
  if (enumType) return `w.Int(static_cast<int32_t>(${expr}));`;
  switch (ctype) {
    case 'int32_t': return `w.Int(${expr});`;
    case 'uint32_t': return `w.Uint(${expr});`;
    case 'int64_t': return `w.Int64(${expr});`;
    case 'uint64_t': case 'uintptr_t': return `w.Uint64(static_cast<uint64_t>(${expr}));`;
    case 'float': case 'double': return `writeReal(w, ${expr});`;
    case 'bool': return `w.Bool(${expr});`;
    default: throw new Error(`emit_sim: scalar ${ctype}`);
  }
}

// `at(name)` gives the C expression of a sibling value (a field or a parameter).
function writeItemCode(p, at) {
  const e = at(p.name);
  switch (p.kind) {
    case 'scalar': return writeScalarCode(p.ctype, e, p.enumType);
    case 'text': return `writeText(w, ${e});`;
    case 'fixedText': return `writeFixedText(w, ${e}, sizeof(${e}));`;
    case 'array': return `w.StartArray(); for (const auto& x : ${e}) { ${writeScalarCode(p.ctype, 'x')} } w.EndArray();`;
    case 'struct': return `write(w, ${e});`;
    case 'structPtr': case 'mutStructPtr': return `if (${e}) write(w, *${e}); else w.Null();`;
    case 'list': {
      const item = p.elem.kind === 'struct' ? `write(w, ${e}[i]);` : writeScalarCode(p.elem.ctype, `${e}[i]`);
      return `w.StartArray(); for (uint32_t i = 0; ${e} && i < ${at(p.countName)}; ++i) { ${item} } w.EndArray();`;
    }
    case 'bytes': return `writeBytes(w, ${e}, ${at(p.lengthName)});`;
    case 'planes': return `writePlanes(w, ${e}, ${at(p.lengthName)});`;
    case 'handle': return `writeHandle(w, ${e});`;
    default: throw new Error(`emit_sim: cannot write kind ${p.kind}`);
  }
}

function serializeHeader(model) {
  const out = [];
  out.push(`// Generated by engine/tools/emit_sim.js from the engine header. Do not edit.
// JSON writers for the engine's structures and argument kinds: the journal of the simulated
// engine and the test recorder render C values with these, so both agree on the shape:
// scalars as numbers or booleans (64-bit exact), texts as strings (NULL as null), structures
// as objects, pointer + count as one array, byte blocks as arrays of numbers, handles as
// numbers.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "orva_vantix_engine.h"

namespace orva::sim::json {

using Writer = rapidjson::Writer<rapidjson::StringBuffer>;

inline void writeReal(Writer& w, double v) {
  if (std::isfinite(v)) w.Double(v);
  else w.Null();  // JSON has no NaN or infinity
}
inline void writeText(Writer& w, const char* s) {
  if (s) w.String(s, static_cast<rapidjson::SizeType>(std::strlen(s)));
  else w.Null();
}
inline void writeFixedText(Writer& w, const char* s, size_t capacity) {
  w.String(s, static_cast<rapidjson::SizeType>(strnlen(s, capacity)));
}
inline void writeHandle(Writer& w, const void* p) {
  w.Uint64(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(p)));
}
inline void writeBytes(Writer& w, const uint8_t* p, uint32_t n) {
  w.StartArray();
  for (uint32_t i = 0; p && i < n; ++i) w.Uint(p[i]);
  w.EndArray();
}
// Frame planes: one byte array per plane, trailing empty planes left out.
inline void writePlanes(Writer& w, const uint8_t* const* planes, const uint32_t* lengths) {
  int last = -1;
  for (int i = 0; planes && lengths && i < ORVA_VIDEO_FRAME_PLANES; ++i) {
    if (planes[i] && lengths[i]) last = i;
  }
  w.StartArray();
  for (int i = 0; i <= last; ++i) writeBytes(w, planes[i], lengths[i]);
  w.EndArray();
}
`);
  for (const name of model.structOrder) {
    const s = model.structs[name];
    out.push(`inline void write(Writer& w, const ${name}& v) {`);
    out.push('  w.StartObject();');
    for (const f of s.fields) {
      out.push(`  w.Key("${f.name}"); ${writeItemCode(f, (n) => `v.${n}`)}`);
    }
    out.push('  w.EndObject();');
    out.push('}');
  }
  out.push('\n}  // namespace orva::sim::json\n');
  return out.join('\n');
}

// ---------------------------------------------------------------------------------------
// JSON reading (engine side)

function readScalarCode(p, src, dst, pathExpr) {
  if (p.enumType) {
    return `{ int32_t t = 0; if (!readNumber(${src}, t, ${pathExpr}, err)) return false; ${dst} = static_cast<${p.enumType}>(t); }`;
  }
  return `if (!readNumber(${src}, ${dst}, ${pathExpr}, err)) return false;`;
}

// Reads member `f` of JSON object `obj` into C fields reached through `at(name)`.
function readFieldCode(f, at, pathVar) {
  const src = '*m';
  const pth = `${pathVar}.child("${f.name}")`;
  const dst = at(f.name);
  let body;
  switch (f.kind) {
    case 'scalar': body = readScalarCode(f, src, dst, pth); break;
    case 'text': body = `if (!readText(${src}, ${dst}, st, ${pth}, err)) return false;`; break;
    case 'fixedText': body = `if (!readFixedText(${src}, ${dst}, sizeof(${dst}), ${pth}, err)) return false;`; break;
    case 'array': body = `if (!readFixedArray(${src}, ${dst}, ${pth}, err)) return false;`; break;
    case 'struct': body = `if (!fromJson(${src}, ${dst}, st, ${pth}, err)) return false;`; break;
    case 'structPtr': case 'mutStructPtr':
      body = `{ auto* p = st.array<${f.struct}>(1); if (!fromJson(${src}, *p, st, ${pth}, err)) return false; ${dst} = p; }`;
      break;
    case 'list':
      if (f.elem.kind === 'scalar') {
        body = `{ const ${f.elem.ctype}* p = nullptr; uint32_t n = 0; if (!readScalarList(${src}, p, n, st, ${pth}, err)) return false; ${dst} = p; ${at(f.countName)} = n; }`;
      } else {
        body = `{ const Path lp = ${pth}; if (!m->IsArray()) return fail(err, lp, "an array", *m);
      auto* p = st.array<${f.elem.struct}>(m->Size());
      for (rapidjson::SizeType i = 0; i < m->Size(); ++i) { if (!fromJson((*m)[i], p[i], st, lp.at(static_cast<long>(i)), err)) return false; }
      ${dst} = p; ${at(f.countName)} = m->Size(); }`;
      }
      break;
    case 'bytes':
      body = `{ uint8_t* p = nullptr; uint32_t n = 0; if (!readBytes(${src}, p, n, st, ${pth}, err)) return false; ${dst} = p; ${at(f.lengthName)} = n; }`;
      break;
    case 'handle':
      body = `{ void* h = nullptr; if (!readHandle(${src}, h, ${pth}, err)) return false; ${dst} = static_cast<${f.ctype}>(h); }`;
      break;
    default: throw new Error(`emit_sim: cannot read field kind ${f.kind}`);
  }
  return `  if (const rapidjson::Value* m = member(obj, "${f.name}")) ${body}`;
}

function structReaders(model) {
  const out = [];
  for (const name of model.structOrder) {
    const s = model.structs[name];
    out.push(`bool fromJson(const rapidjson::Value& obj, ${name}& out, Storage& st, const Path& path, std::string& err) {`);
    out.push('  if (!obj.IsObject()) return fail(err, path, "an object", obj);');
    out.push(`  out = ${name}{};`);
    const usesStorage = (f) => ['text', 'struct', 'structPtr', 'mutStructPtr', 'list', 'bytes'].includes(f.kind);
    if (!s.fields.some(usesStorage)) out.push('  (void)st;');
    for (const f of s.fields) out.push(readFieldCode(f, (n) => `out.${n}`, 'path'));
    out.push('  return true;');
    out.push('}');
  }
  return out.join('\n');
}

// ---------------------------------------------------------------------------------------
// Callback args holders

function holderMembers(p) {
  const n = `a_${p.name}`;
  switch (p.kind) {
    case 'scalar': return [`${p.enumType || p.ctype} ${n}{};`];
    case 'handle': return [`${p.ctype} ${n} = nullptr;`];
    case 'text': return [`const char* ${n} = "";`, `std::string ${n}_owned;  // burst's thread key`];
    case 'list': return [`const ${elemType(p)}* ${n} = nullptr;`, `uint32_t a_${p.countName} = 0;`];
    case 'bytes': return [`uint8_t* ${n} = nullptr;`, `uint32_t a_${p.lengthName} = 0;`];
    case 'planes': return [`const uint8_t* ${n}[ORVA_VIDEO_FRAME_PLANES] = {};`, `uint32_t a_${p.lengthName}[ORVA_VIDEO_FRAME_PLANES] = {};`];
    case 'structPtr': return [`${p.struct} ${n}_value{};`, `const ${p.struct}* ${n} = &${n}_value;`];
    case 'mutStructPtr': return [`${p.struct} ${n}_value{};`, `${p.struct}* ${n} = &${n}_value;`];
    default: throw new Error(`emit_sim: callback parameter kind ${p.kind}`);
  }
}

function holderLoad(p) {
  const n = `a_${p.name}`;
  const pth = `root.child("${p.name}")`;
  const present = `const rapidjson::Value* m = member(obj, "${p.name}")`;
  switch (p.kind) {
    case 'scalar': return `  if (${present}) { ${readScalarCode(p, '*m', n, pth)} }`;
    case 'handle': return `  if (${present}) { void* h = nullptr; if (!readHandle(*m, h, ${pth}, err)) return false; ${n} = static_cast<${p.ctype}>(h); }`;
    case 'text': return `  if (${present}) { if (!readText(*m, ${n}, st, ${pth}, err)) return false; }\n  else if (isExplicitNull(obj, "${p.name}")) ${n} = nullptr;`;
    case 'list':
      if (p.elem.kind === 'scalar') {
        return `  if (${present}) { if (!readScalarList(*m, ${n}, a_${p.countName}, st, ${pth}, err)) return false; }`;
      }
      return `  if (${present}) {
    const Path lp = ${pth};
    if (!m->IsArray()) return fail(err, lp, "an array", *m);
    auto* p = st.array<${p.elem.struct}>(m->Size());
    for (rapidjson::SizeType i = 0; i < m->Size(); ++i) { if (!fromJson((*m)[i], p[i], st, lp.at(static_cast<long>(i)), err)) return false; }
    ${n} = p; a_${p.countName} = m->Size();
  }`;
    case 'bytes': return `  if (${present}) { if (!readBytes(*m, ${n}, a_${p.lengthName}, st, ${pth}, err)) return false; }`;
    case 'planes': return `  if (${present}) {
    const Path lp = ${pth};
    if (!m->IsArray() || m->Size() > ORVA_VIDEO_FRAME_PLANES) return fail(err, lp, "an array of at most 4 byte blocks", *m);
    for (rapidjson::SizeType i = 0; i < m->Size(); ++i) {
      uint8_t* plane = nullptr;
      if (!readBytes((*m)[i], plane, a_${p.lengthName}[i], st, lp.at(static_cast<long>(i)), err)) return false;
      ${n}[i] = plane;
    }
  }`;
    case 'structPtr': case 'mutStructPtr':
      return `  if (${present}) { if (!fromJson(*m, ${n}_value, st, ${pth}, err)) return false; }\n  else if (isExplicitNull(obj, "${p.name}")) ${n} = nullptr;`;
    default: throw new Error(`emit_sim: callback parameter kind ${p.kind}`);
  }
}

function invokeArgs(p) {
  const n = `a_${p.name}`;
  switch (p.kind) {
    case 'list': return [n, `a_${p.countName}`];
    case 'bytes': case 'planes': return [n, `a_${p.lengthName}`];
    default: return [n];
  }
}

function holderClass(cb) {
  const cls = `Args_${cb.name}`;
  const numbers = cb.params.filter((p) => p.kind === 'scalar');
  const texts = cb.params.filter((p) => p.kind === 'text');
  const lines = [];
  lines.push(`class ${cls} final : public CallbackArgs {`);
  lines.push(' public:');
  lines.push('  bool load(const rapidjson::Value& obj, std::string& err) {');
  lines.push('    const Path root{};');
  if (cb.params.length === 0) lines.push('    (void)root; (void)err;');
  lines.push('    if (!obj.IsObject()) return fail(err, root, "an object", obj);');
  for (const p of cb.params) lines.push(holderLoad(p).replace(/^ {2}/gm, '    '));
  lines.push('    return true;');
  lines.push('  }');
  lines.push('  void invoke(AnyFn callback, void* userContext) override {');
  lines.push(`    reinterpret_cast<orva_on_${cb.name}>(callback)(${[...cb.params.flatMap(invokeArgs), 'userContext'].join(', ')});`);
  lines.push('  }');
  if (numbers.length) {
    lines.push('  int numberSlot(std::string_view key) override {');
    numbers.forEach((p, i) => lines.push(`    if (key == "${p.name}") return ${i};`));
    lines.push('    return -1;');
    lines.push('  }');
    lines.push('  void setNumber(int slot, uint64_t v) override {');
    lines.push('    switch (slot) {');
    numbers.forEach((p, i) => {
      const t = p.enumType || p.ctype;
      const conv = p.ctype === 'bool' ? 'v != 0' : `static_cast<${t}>(v)`;
      lines.push(`      case ${i}: a_${p.name} = ${conv}; break;`);
    });
    lines.push('      default: break;');
    lines.push('    }');
    lines.push('  }');
  }
  if (texts.length) {
    lines.push('  int textSlot(std::string_view key) override {');
    texts.forEach((p, i) => lines.push(`    if (key == "${p.name}") return ${i};`));
    lines.push('    return -1;');
    lines.push('  }');
    lines.push('  void setText(int slot, std::string text) override {');
    lines.push('    switch (slot) {');
    texts.forEach((p, i) => lines.push(`      case ${i}: a_${p.name}_owned = std::move(text); a_${p.name} = a_${p.name}_owned.c_str(); break;`));
    lines.push('      default: break;');
    lines.push('    }');
    lines.push('  }');
  }
  lines.push('');
  lines.push(' private:');
  lines.push('  Storage st;');
  for (const p of cb.params) for (const m of holderMembers(p)) lines.push(`  ${m}`);
  lines.push('};');
  return lines.join('\n');
}

// ---------------------------------------------------------------------------------------
// Entry points

function neutralReturn(fn) {
  switch (fn.ret.kind) {
    case 'void': return '';
    case 'scalar': return `${fn.ret.ctype}{}`;
    case 'struct': return `${fn.ret.struct}{}`;
    default: return 'nullptr';
  }
}

function journalHelper(fn) {
  const inputs = fn.params.filter(isInput);
  const lines = [];
  lines.push(`void journal_${short(fn.name)}(${signature(fn.params)}) {`);
  const unused = fn.params.filter((p) => !isInput(p)).flatMap(paramNames);
  if (unused.length) lines.push(`  ${unused.map((n) => `(void)${n};`).join(' ')}`);
  lines.push(`  JournalEntry entry("${fn.name}");`);
  if (inputs.length) lines.push('  auto& w = entry.w();');
  for (const p of inputs) lines.push(`  w.Key("${p.name}"); ${writeItemCode(p, (n) => n)}`);
  lines.push('  entry.commit();');
  lines.push('}');
  return lines.join('\n');
}

function asyncBaseCode(fn, model) {
  const cb = model.callbacks.find((c) => c.name === fn.result);
  const inputs = new Map(fn.params.filter(isInput).map((p) => [p.name, p]));
  const lines = [];
  for (const r of cb.params) {
    if (r.name === 'seq' || r.name === 'errorCode') continue;
    const p = inputs.get(r.name);
    if (!p || p.kind !== r.kind) continue;
    if (p.kind === 'text') lines.push(`  simBase.setText("${p.name}", ${p.name});`);
    else if (p.kind === 'scalar') {
      if (p.ctype === 'float' || p.ctype === 'double') lines.push(`  simBase.setReal("${p.name}", ${p.name});`);
      else if (p.ctype === 'uint64_t' || p.ctype === 'uintptr_t') lines.push(`  simBase.setUint("${p.name}", static_cast<uint64_t>(${p.name}));`);
      else lines.push(`  simBase.setInt("${p.name}", static_cast<int64_t>(${p.name}));`);
    }
  }
  return lines;
}

function defaultDefinition(fn, model) {
  const inputs = fn.params.flatMap(paramNames);
  const ret = retType(fn);
  const body = [];
  body.push(`  gen::journal_${short(fn.name)}(${inputs.join(', ')});`);
  if (fn.result) {
    const seqParam = fn.params.find((p) => p.name === 'seq');
    if (!seqParam) throw new Error(`${fn.name}: @result without seq`);
    body.push('  PayloadBuilder simBase;');
    body.push(...asyncBaseCode(fn, model));
    body.push('  AsyncCall simCall;');
    body.push(`  simCall.fn = "${fn.name}";`);
    body.push(`  simCall.resultCallback = gen::cb::${fn.result};`);
    body.push('  simCall.base = simBase.take();');
    body.push('  return core().startAsync(seq, std::move(simCall));');
  } else if (model.functions.some((g) => g.free === fn.name)) {
    // A free function: releases what a list or text getter handed out.
    body.push(`  core().handedOut.release(${fn.params[0].name});`);
  } else {
    for (const p of fn.params) {
      if (p.kind === 'out' && p.ctype !== 'char*') body.push(`  if (${p.name}) *${p.name} = {};`);
      if (p.kind === 'outText') body.push(`  copyOut(scriptedText("${fn.name}").value_or(std::string()), ${p.name}, ${p.lengthName});`);
    }
    switch (fn.ret.kind) {
      case 'void': break;
      case 'scalar': body.push(`  return scriptedNumber<${ret}>("${fn.name}").value_or(${ret}{});`); break;
      case 'struct': body.push(`  return gen::scriptedStruct<${fn.ret.struct}>("${fn.name}");`); break;
      case 'ownedList': body.push(`  return gen::scriptedList<${fn.ret.struct}>("${fn.name}", ${fn.ret.countName});`); break;
      case 'ownedText': body.push(`  return gen::handOutText(scriptedText("${fn.name}").value_or(std::string()));`); break;
      default: throw new Error(fn.name);
    }
  }
  const lines = [];
  lines.push(`ORVA_API ${ret} ORVA_CALL ${fn.name}(${signature(fn.params)}) {`);
  if (fn.ret.kind === 'void') {
    lines.push('  guardedVoid([&] {');
    lines.push(...body.map((l) => `  ${l}`));
    lines.push('  });');
  } else {
    lines.push(`  return guarded<${ret}>(${neutralReturn(fn)}, [&]() -> ${ret} {`);
    lines.push(...body.map((l) => `  ${l}`));
    lines.push('  });');
  }
  lines.push('}');
  return lines.join('\n');
}

function validateFunction(fn, model) {
  const name = `validate_${short(fn.name)}`;
  const lines = [`bool ${name}(const rapidjson::Value& v, std::string& err) {`, '  const Path path{nullptr, "value", -1};'];
  const isFree = model.functions.some((g) => g.free === fn.name);
  const hasOutText = fn.params.some((p) => p.kind === 'outText');
  if (isFree || (fn.ret.kind === 'void' && !hasOutText)) {
    lines.push('  (void)v; (void)path;');
    lines.push(`  err = "${fn.name} returns nothing";`);
    lines.push('  return false;');
  } else if (fn.ret.kind === 'void' || fn.ret.kind === 'ownedText') {
    lines.push('  if (!v.IsString()) return fail(err, path, "a string", v);');
    lines.push('  return true;');
  } else if (fn.ret.kind === 'scalar') {
    lines.push(`  ${fn.ret.ctype} t{};`);
    lines.push('  return readNumber(v, t, path, err);');
  } else if (fn.ret.kind === 'struct') {
    lines.push('  Storage st;');
    lines.push(`  ${fn.ret.struct} t{};`);
    lines.push('  return fromJson(v, t, st, path, err);');
  } else if (fn.ret.kind === 'ownedList') {
    lines.push('  if (!v.IsArray()) return fail(err, path, "an array", v);');
    lines.push('  Storage st;');
    lines.push(`  for (rapidjson::SizeType i = 0; i < v.Size(); ++i) { ${fn.ret.struct} t{}; if (!fromJson(v[i], t, st, path.at(static_cast<long>(i)), err)) return false; }`);
    lines.push('  return true;');
  }
  lines.push('}');
  return lines.join('\n');
}

// Structures a getter returns by value must not point anywhere: nothing would own the target.
function checkPointerFree(model, structName, seen = new Set()) {
  if (seen.has(structName)) return;
  seen.add(structName);
  for (const f of model.structs[structName].fields) {
    if (['text', 'list', 'bytes', 'structPtr', 'mutStructPtr'].includes(f.kind)) {
      throw new Error(`emit_sim: ${structName}.${f.name} points elsewhere; a by-value return cannot own it`);
    }
    if (f.kind === 'struct') checkPointerFree(model, f.struct, seen);
  }
}

// ---------------------------------------------------------------------------------------
// Generated header and source

function generatedHeader(model) {
  const cbIds = model.callbacks.map((c, i) => `inline constexpr int ${c.name} = ${i};`).join('\n');
  const fires = model.callbacks.map((c) => `bool fire_${c.name}(${signature(c.params)});`).join('\n');
  const journals = model.functions.map((f) => `void journal_${short(f.name)}(${signature(f.params)});`).join('\n');
  const readers = model.structOrder.map((s) => `bool fromJson(const rapidjson::Value& obj, ${s}& out, Storage& st, const Path& path, std::string& err);`).join('\n');
  const specials = Object.keys(SPECIAL).map((n) => `std::unique_ptr<CallbackArgs> makeSpecialArgs_${n}(const rapidjson::Value& payload, std::string& err);`).join('\n');
  return `// Generated by engine/tools/emit_sim.js from the engine header. Do not edit.
// The simulated engine's view of the interface: callback ids, payload conversion, typed
// callback firing, journal helpers and structure readers. Hand-written engine code
// (engine/sim) uses these; sim_generated.cc defines them.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <rapidjson/document.h>

#include "orva_vantix_engine.h"
#include "sim_args.h"

namespace orva::sim::gen {

inline constexpr int kCallbackCount = ${model.callbacks.length};
inline constexpr int kFunctionCount = ${model.functions.length};

// Callback ids: the position of each registration in the header.
namespace cb {
${cbIds}
}  // namespace cb

extern const char* const kCallbackNames[kCallbackCount];
// -1 for a name the header does not register.
int callbackId(std::string_view name);

// Converts a payload into callback \`id\`'s C arguments; null with \`err\` set when the payload
// does not fit.
std::unique_ptr<CallbackArgs> makeArgs(int id, const rapidjson::Value& payload, std::string& err);

// Payload shapes written by hand (sim_special_args.cc).
${specials}

// Calls the registered callback on the current thread with these arguments; false when
// nothing is registered.
${fires}

// Appends a call to the journal (outputs left out).
${journals}

// Structure readers: keys left out stay zero; pointers point into \`st\`.
${readers}

// Entry points by name, for setReturn.
struct FunctionInfo {
  const char* name;
  bool (*validate)(const rapidjson::Value& value, std::string& err);
  int resultCallback;  // -1 unless @result
};
const FunctionInfo* findFunction(std::string_view name);
extern const FunctionInfo kFunctions[kFunctionCount];

// Scripted values converted to what an entry point returns.
template <class S>
S scriptedStruct(const char* fn);
template <class S>
S* scriptedList(const char* fn, uint32_t* count);
// A copy of \`text\` that stays valid until the free function releases it.
char* handOutText(const std::string& text);

}  // namespace orva::sim::gen
`;
}

function generatedSource(model) {
  const hand = new Set(HAND_WRITTEN.map((n) => PREFIX + n));
  for (const n of hand) {
    if (!model.functions.some((f) => f.name === n)) throw new Error(`emit_sim: HAND_WRITTEN lists ${n}, which the header does not declare`);
  }
  for (const f of model.functions) {
    if (f.ret.kind === 'struct') checkPointerFree(model, f.ret.struct);
  }
  const out = [];
  out.push(`// Generated by engine/tools/emit_sim.js from the engine header. Do not edit.
#include "sim_generated.h"

#include <cstring>
#include <unordered_map>

#include "sim_core.h"

using namespace orva::sim;       // NOLINT: generated glue
using namespace orva::sim::json; // NOLINT

namespace orva::sim::gen {

const char* const kCallbackNames[kCallbackCount] = {
${model.callbacks.map((c) => `  "${c.name}",`).join('\n')}
};

int callbackId(std::string_view name) {
  static const std::unordered_map<std::string_view, int> ids = [] {
    std::unordered_map<std::string_view, int> m;
    for (int i = 0; i < kCallbackCount; ++i) m.emplace(kCallbackNames[i], i);
    return m;
  }();
  auto it = ids.find(name);
  return it == ids.end() ? -1 : it->second;
}

// ---------------------------------------------------------------------------------------
// Structure readers
${structReaders(model)}

// ---------------------------------------------------------------------------------------
// Args holders
namespace {
`);
  for (const cb of model.callbacks) {
    if (SPECIAL[cb.name]) continue;
    out.push(holderClass(cb));
    out.push('');
  }
  out.push(`template <class H>
std::unique_ptr<CallbackArgs> load(const rapidjson::Value& payload, std::string& err) {
  auto h = std::make_unique<H>();
  if (!h->load(payload, err)) return nullptr;
  return h;
}
}  // namespace

std::unique_ptr<CallbackArgs> makeArgs(int id, const rapidjson::Value& payload, std::string& err) {
  switch (id) {`);
  for (const cb of model.callbacks) {
    const make = SPECIAL[cb.name] ? `makeSpecialArgs_${cb.name}(payload, err)` : `load<Args_${cb.name}>(payload, err)`;
    out.push(`    case cb::${cb.name}: return ${make};`);
  }
  out.push(`    default: err = "unknown callback id " + std::to_string(id); return nullptr;
  }
}

// ---------------------------------------------------------------------------------------
// Typed firing`);
  for (const cb of model.callbacks) {
    const names = [...cb.params.flatMap(paramNames), 'simHold.reg().context'];
    out.push(`bool fire_${cb.name}(${signature(cb.params)}) {
  Registry::Hold simHold(core().registry, cb::${cb.name});
  if (!simHold) return false;
  reinterpret_cast<orva_on_${cb.name}>(simHold.reg().callback)(${names.join(', ')});
  return true;
}`);
  }
  out.push('\n// ---------------------------------------------------------------------------------------\n// Journal helpers');
  for (const f of model.functions) out.push(journalHelper(f));

  out.push(`
// ---------------------------------------------------------------------------------------
// Scripted returns
template <class S>
S scriptedStruct(const char* fn) {
  S out{};
  if (auto v = core().scripted.get(fn)) {
    Storage st;  // by-value results hold no pointers (checked by the generator)
    std::string err;
    if (!fromJson(*v, out, st, Path{nullptr, "value", -1}, err)) out = S{};
  }
  return out;
}

template <class S>
S* scriptedList(const char* fn, uint32_t* count) {
  auto st = std::make_unique<Storage>();
  S* list = nullptr;
  uint32_t n = 0;
  if (auto v = core().scripted.get(fn); v && v->IsArray()) {
    list = st->array<S>(v->Size());
    std::string err;
    for (rapidjson::SizeType i = 0; i < v->Size(); ++i) {
      if (!fromJson((*v)[i], list[i], *st, Path{nullptr, "value", -1}.at(static_cast<long>(i)), err)) break;
      n = i + 1;
    }
  } else {
    list = st->array<S>(0);
  }
  if (count) *count = n;
  core().handedOut.adopt(list, std::move(st));
  return list;
}

char* handOutText(const std::string& text) {
  auto st = std::make_unique<Storage>();
  char* p = st->array<char>(text.size() + 1);
  std::memcpy(p, text.c_str(), text.size() + 1);
  core().handedOut.adopt(p, std::move(st));
  return p;
}
`);
  const structRets = [...new Set(model.functions.filter((f) => f.ret.kind === 'struct').map((f) => f.ret.struct))];
  const listRets = [...new Set(model.functions.filter((f) => f.ret.kind === 'ownedList').map((f) => f.ret.struct))];
  for (const s of structRets) out.push(`template ${s} scriptedStruct<${s}>(const char*);`);
  for (const s of listRets) out.push(`template ${s}* scriptedList<${s}>(const char*, uint32_t*);`);

  out.push('\n// ---------------------------------------------------------------------------------------\n// setReturn validation\nnamespace {');
  for (const f of model.functions) out.push(validateFunction(f, model));
  out.push('}  // namespace\n');
  out.push('const FunctionInfo kFunctions[kFunctionCount] = {');
  for (const f of model.functions) {
    out.push(`  {"${f.name}", &validate_${short(f.name)}, ${f.result ? `cb::${f.result}` : -1}},`);
  }
  out.push(`};

const FunctionInfo* findFunction(std::string_view name) {
  static const std::unordered_map<std::string_view, const FunctionInfo*> byName = [] {
    std::unordered_map<std::string_view, const FunctionInfo*> m;
    for (const FunctionInfo& f : kFunctions) m.emplace(f.name, &f);
    return m;
  }();
  auto it = byName.find(name);
  return it == byName.end() ? nullptr : it->second;
}

}  // namespace orva::sim::gen

// ---------------------------------------------------------------------------------------
// Registrations: journaled, then stored by callback id.`);
  for (const cb of model.callbacks) {
    out.push(`ORVA_API void ORVA_CALL orva_register_${cb.name}_callback(orva_on_${cb.name} callback, void* user_context) {
  guardedVoid([&] { registerCallback(gen::cb::${cb.name}, "orva_register_${cb.name}_callback", reinterpret_cast<AnyFn>(callback), user_context); });
}`);
  }
  out.push('\n// ---------------------------------------------------------------------------------------\n// Entry points without hand-written behaviour: journal, then the scripted or neutral value.');
  for (const f of model.functions) {
    if (hand.has(f.name)) continue;
    out.push(defaultDefinition(f, model));
  }
  out.push('');
  return out.join('\n');
}

// ---------------------------------------------------------------------------------------
// Test recorder and samples

function cppString(s) {
  // A raw string literal keeps JSON readable; the delimiter never occurs in our samples.
  return `R"json(${s})json"`;
}

// JSON text with BigInt written as exact integers.
function toJson(v) {
  if (typeof v === 'bigint') return v.toString();
  if (Array.isArray(v)) return `[${v.map(toJson).join(',')}]`;
  if (v && typeof v === 'object') return `{${Object.entries(v).map(([k, x]) => `${JSON.stringify(k)}:${toJson(x)}`).join(',')}}`;
  return JSON.stringify(v);
}

// Distinct, non-trivial values per argument: negative and above-2^31 integers, exact 64-bit
// values beyond 2^53, float-representable reals, non-ASCII texts.
function sampleMaker(model) {
  let n = 0;
  const scalar = (ctype) => {
    n += 1;
    switch (ctype) {
      case 'int32_t': return n % 2 ? -(100000 + n) : 2000000000 + n;
      case 'uint32_t': return 4000000000 + n;
      case 'int64_t': return -(2n ** 62n) - BigInt(n);
      case 'uint64_t': return 2n ** 64n - 1n - BigInt(n);
      case 'uintptr_t': return 2n ** 63n + BigInt(n);
      case 'float': return n * 0.5 + 0.25;
      case 'double': return n + 0.1;
      case 'bool': return true;
      default: throw new Error(ctype);
    }
  };
  const bytes = () => { n += 1; return [n % 256, 0, 255, 7, 128]; };
  const value = (p) => {
    switch (p.kind) {
      case 'scalar': return scalar(p.ctype);
      case 'text': n += 1; return `t${n}-\u00e9\u00df`;
      case 'fixedText': n += 1; return `f${n}-\u00e9`;
      case 'array': return Array.from({ length: p.size }, () => scalar(p.ctype));
      case 'handle': n += 1; return 4096 + n * 16;
      case 'bytes': return bytes();
      case 'planes': return [bytes(), bytes().slice(0, 3)];
      case 'struct': case 'structPtr': case 'mutStructPtr': return object(model.structs[p.struct].fields);
      case 'list':
        if (p.elem.kind === 'scalar') return [scalar(p.elem.ctype), scalar(p.elem.ctype), scalar(p.elem.ctype)];
        return [object(model.structs[p.elem.struct].fields), object(model.structs[p.elem.struct].fields)];
      default: throw new Error(`sample for ${p.kind}`);
    }
  };
  const object = (items) => Object.fromEntries(items.map((p) => [p.name, value(p)]));
  return object;
}

function recorderHeader() {
  return `// Generated by engine/tools/emit_sim.js from the engine header. Do not edit.
// Test support: a C callback per callback type that records its arguments as JSON in the
// shape of the emitted payload, and sample payloads for the emit round trip.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orva::sim::rec {

using AnyFn = void (*)();

// Passed as the user_context of every recording callback.
class Sink {
 public:
  virtual ~Sink() = default;
  virtual void record(const char* callback, std::string json) = 0;
};

struct Recorder {
  const char* name;
  AnyFn callback;
};
extern const Recorder kRecorders[];
extern const size_t kRecorderCount;
AnyFn recorderFor(std::string_view name);

// \`expected\` is what the recorder reports for \`payload\` (the payload itself unless the
// callback is one of the hand-shaped ones).
struct Sample {
  const char* name;
  const char* payload;
  const char* expected;
};
extern const Sample kSamples[];
extern const size_t kSampleCount;

}  // namespace orva::sim::rec
`;
}

function recorderSource(model) {
  const out = [];
  out.push(`// Generated by engine/tools/emit_sim.js from the engine header. Do not edit.
#include "sim_recorder.h"

#include <cstdio>
#include <string>

#include "orva_vantix_engine.h"
#include "sim_serialize.h"

namespace orva::sim::rec {
namespace {
using namespace orva::sim::json;  // NOLINT: generated glue

void finish(void* sink, const char* name, const rapidjson::StringBuffer& sb) {
  static_cast<Sink*>(sink)->record(name, std::string(sb.GetString(), sb.GetSize()));
}

// A snapshot image as its size and the colour at each quadrant's centre.
[[maybe_unused]] void writeImage(Writer& w, orva_image_handle image) {
#if defined(_WIN32)
  writeHandle(w, image);
#else
  const auto* img = static_cast<const orva_pixel_image*>(image);
  if (!img) { w.Null(); return; }
  w.StartObject();
  w.Key("width"); w.Int(img->width);
  w.Key("height"); w.Int(img->height);
  w.Key("colors");
  w.StartArray();
  int alpha = 255;
  const int xs[2] = {img->width / 4, img->width * 3 / 4};
  const int ys[2] = {img->height / 4, img->height * 3 / 4};
  for (int qy = 0; qy < 2; ++qy) {
    for (int qx = 0; qx < 2; ++qx) {
      const uint8_t* px = img->data + static_cast<size_t>(ys[qy]) * static_cast<size_t>(img->stride) + static_cast<size_t>(xs[qx]) * 4;
      char hex[8];
      std::snprintf(hex, sizeof hex, "#%02x%02x%02x", px[2], px[1], px[0]);  // stored B,G,R,A
      w.String(hex);
      if (px[3] < alpha) alpha = px[3];
    }
  }
  w.EndArray();
  w.Key("alpha"); w.Int(alpha);
  w.EndObject();
#endif
}
`);
  for (const cb of model.callbacks) {
    out.push(`void ORVA_CALL rec_${cb.name}(${[...cb.params.flatMap(paramDecls), 'void* user_context'].join(', ')}) {`);
    out.push('  rapidjson::StringBuffer sb;');
    out.push('  Writer w(sb);');
    if (SPECIAL[cb.name]) {
      out.push(SPECIAL[cb.name].recorder.replace(/^\n/, ''));
    } else {
      out.push('  w.StartObject();');
      for (const p of cb.params) out.push(`  w.Key("${p.name}"); ${writeItemCode(p, (x) => x)}`);
      out.push('  w.EndObject();');
    }
    out.push(`  finish(user_context, "${cb.name}", sb);`);
    out.push('}');
  }
  out.push('}  // namespace\n');
  out.push('const Recorder kRecorders[] = {');
  for (const cb of model.callbacks) out.push(`  {"${cb.name}", reinterpret_cast<AnyFn>(&rec_${cb.name})},`);
  out.push(`};
const size_t kRecorderCount = sizeof kRecorders / sizeof kRecorders[0];

AnyFn recorderFor(std::string_view name) {
  for (const Recorder& r : kRecorders) {
    if (name == r.name) return r.callback;
  }
  return nullptr;
}
`);
  const sample = sampleMaker(model);
  out.push('const Sample kSamples[] = {');
  for (const cb of model.callbacks) {
    const special = SPECIAL[cb.name];
    const samples = special ? special.samples : [{ payload: sample(cb.params) }];
    for (const s of samples) {
      const payload = toJson(s.payload);
      const expected = toJson(s.expected !== undefined ? s.expected : s.payload);
      out.push(`  {"${cb.name}", ${cppString(payload)}, ${cppString(expected)}},`);
    }
  }
  out.push(`};
const size_t kSampleCount = sizeof kSamples / sizeof kSamples[0];

}  // namespace orva::sim::rec
`);
  return out.join('\n');
}

// ---------------------------------------------------------------------------------------

// Cross-checks HAND_WRITTEN against the definitions in engine/sim/*.cc, when the sources are
// where this file expects them (they are, in this repository).
function checkHandWritten(model) {
  const dir = path.join(__dirname, '..', 'sim');
  if (!fs.existsSync(dir)) return;
  const defined = new Set();
  for (const f of fs.readdirSync(dir).filter((n) => n.endsWith('.cc'))) {
    const text = fs.readFileSync(path.join(dir, f), 'utf8');
    for (const m of text.matchAll(/ORVA_CALL\s+(orva_vantix_\w+)\s*\(/g)) defined.add(m[1]);
  }
  const listed = new Set(HAND_WRITTEN.map((n) => PREFIX + n));
  const unlisted = [...defined].filter((n) => !listed.has(n) && model.functions.some((f) => f.name === n));
  const missing = [...listed].filter((n) => !defined.has(n));
  if (unlisted.length || missing.length) {
    throw new Error('emit_sim: HAND_WRITTEN does not match engine/sim/*.cc:' +
      (unlisted.length ? ` defined but not listed: ${unlisted.join(', ')};` : '') +
      (missing.length ? ` listed but not defined: ${missing.join(', ')}` : ''));
  }
}

function emit(model, outdir, writeIfChanged) {
  checkHandWritten(model);
  writeIfChanged('sim_serialize.h', serializeHeader(model));
  writeIfChanged('sim_generated.h', generatedHeader(model));
  writeIfChanged('sim_generated.cc', generatedSource(model));
  writeIfChanged('sim_recorder.h', recorderHeader(model));
  writeIfChanged('sim_recorder.cc', recorderSource(model));
}

module.exports = { emit, HAND_WRITTEN, SPECIAL };
