'use strict';
// Emitter for the addon's layer over the engine (src/OrvaVantixSDKWrapper). From the header
// model it writes:
//   engine_api_table.h        one function pointer per entry point, plus the names
//   engine_records.h          an owned C++ record per C structure (no engine header)
//   engine_events.h           an owned record per callback and the handler interfaces
//   engine_completions.h      the completion tables, one per result callback
//   engine_convert.h/.cc      C structure <-> record converters (engine header inside)
//   engine_trampolines.cc     one C trampoline per callback, registration and clearing
//   engine_calls.inc/.cc      the call side: one Engine method per engine function
//   <sub_object>_calls.inc    the same calls on the sub-object classes, index bound
// Routing decisions that the header cannot express (which handler receives a callback,
// which registrations survive destruction) are the tables below.

const RESERVED_CALLBACKS = new Set(['api_called_result']);
// Registered by nobody, cleared by destruction all the same.
const CLEARED_NEVER_REGISTERED = ['audio_route_change', 'player_video_super_resolution_update'];
// Registrations that destruction leaves in place: the uninit report must still arrive after
// the asynchronous uninit, the others are kept as the product always kept them.
const KEPT_AFTER_DESTRUCTION = new Set([
  'recv_windows_message', 'engine_uninit', 'captured_sound_level_info_update',
  'remote_sound_level_info_update', 'room_token_will_expire', 'publisher_stream_event',
  'player_stream_event', 'player_recv_audio_side_info', 'media_player_rendering_progress',
  'media_player_video_size_changed', 'screen_capture_rect_changed', 'ai_voice_changer_set_speaker',
]);
const CONTEXTLESS = (name, i) => i < 3 || name.startsWith('ai_voice_changer_');
// Callbacks that share another's trampoline (and so its completion table).
const SHARED_TRAMPOLINE = { auto_mixer_start_result: 'mixer_start_result', auto_mixer_stop_result: 'mixer_stop_result' };
// Hand-written trampolines (Trampolines.cc).
const HAND_WRITTEN = {
  recv_windows_message: 'onRecvWindowsMessage',
  engine_uninit: 'onEngineUninit',
  copy_audio_mixing_data: 'onCopyAudioMixingData',
};
// Main handler operations whose names differ from "on" + CamelCase of the callback.
const MAIN_OP_NAMES = {
  player_recv_media_side_info: 'onPlayerRecvSEI',
  player_recv_audio_side_info: 'onPlayerSyncRecvSEI',
  publisher_relay_cdn_state_update: 'onPublisherRelayCDNStateUpdate',
  mixer_relay_cdn_state_update: 'onMixerRelayCDNStateUpdate',
  im_recv_broadcast_message: 'onIMRecvBroadcastMessage',
  im_recv_barrage_message: 'onIMRecvBarrageMessage',
  im_recv_custom_command: 'onIMRecvCustomCommand',
  recv_experimental_api: 'onRecvExperimentalAPI',
  audio_vad_state_update: 'onAudioVADStateUpdate',
};

// Sub-object operations named as the module's sub-object handlers name them.
const SUB_OP_NAMES = {
  media_player_recv_sei: 'onMediaPlayerRecvSEI',
  screen_capture_source_exception_occurred: 'onExceptionOccurred',
  screen_capture_window_state_changed: 'onWindowStateChanged',
  screen_capture_rect_changed: 'onRectChanged',
};

// Sub-object kinds: the context table, the class, and how callbacks and functions map to it.
const SUB_OBJECTS = [
  { key: 'mediaPlayer', table: 'mediaPlayers', cls: 'MediaPlayer', iface: 'IMediaPlayerEventHandler',
    cbPrefix: 'media_player_', fnPrefix: 'orva_vantix_media_player_', inc: 'media_player_calls.inc', indexed: true },
  { key: 'audioEffectPlayer', table: 'audioEffectPlayers', cls: 'AudioEffectPlayer', iface: 'IAudioEffectPlayerEventHandler',
    cbPrefix: 'audio_effect_play', fnPrefix: 'orva_vantix_audio_effect_player_', inc: 'audio_effect_player_calls.inc', indexed: true },
  { key: 'screenCaptureSource', table: 'screenCaptureSources', cls: 'ScreenCaptureSource', iface: 'IScreenCaptureSourceEventHandler',
    cbPrefix: 'screen_capture_', fnPrefix: 'orva_vantix_screen_capture_', inc: 'screen_capture_source_calls.inc', indexed: true },
  // One module per engine: its callbacks carry no index, it sits in its table at index 0.
  { key: 'copyrightedMusic', table: 'copyrightedMusic', cls: 'CopyrightedMusic', iface: 'ICopyrightedMusicEventHandler',
    cbPrefix: 'copyrighted_music_', fnPrefix: 'orva_vantix_copyrighted_music_', inc: 'copyrighted_music_calls.inc', indexed: false },
];

// Frames and plugin hooks: engine data passed straight through (no copy of planes or samples)
// to a handler slot of the context or of a sub-object.
const RAW_ROUTES = {
  custom_video_render_captured_frame_data: { slot: 'videoFrameHandler', iface: 'IVideoFrameHandler', op: 'onCapturedVideoFrameRawData' },
  custom_video_render_remote_frame_data: { slot: 'videoFrameHandler', iface: 'IVideoFrameHandler', op: 'onRemoteVideoFrameRawData' },
  custom_video_render_remote_frame_encoded_data: { slot: 'videoFrameHandler', iface: 'IVideoFrameHandler', op: 'onRemoteVideoFrameEncodedData' },
  custom_video_capture_start: { slot: 'customVideoCaptureHandler', iface: 'ICustomVideoCaptureHandler', op: 'onCaptureStart' },
  custom_video_capture_stop: { slot: 'customVideoCaptureHandler', iface: 'ICustomVideoCaptureHandler', op: 'onCaptureStop' },
  custom_video_capture_encoded_data_traffic_control: { slot: 'customVideoCaptureHandler', iface: 'ICustomVideoCaptureHandler', op: 'onEncodedDataTrafficControl' },
  custom_video_process_captured_unprocessed_raw_data: { slot: 'customVideoProcessHandler', iface: 'ICustomVideoProcessHandler', op: 'onCapturedUnprocessedRawData' },
  custom_video_process_captured_unprocessed_cvpixelbuffer: { slot: 'customVideoProcessHandler', iface: 'ICustomVideoProcessHandler', op: 'onCapturedUnprocessedCVPixelBuffer' },
  captured_audio_data: { slot: 'audioDataHandler', iface: 'IAudioDataHandler', op: 'onCapturedAudioData' },
  playback_audio_data: { slot: 'audioDataHandler', iface: 'IAudioDataHandler', op: 'onPlaybackAudioData' },
  mixed_audio_data: { slot: 'audioDataHandler', iface: 'IAudioDataHandler', op: 'onMixedAudioData' },
  player_audio_data: { slot: 'audioDataHandler', iface: 'IAudioDataHandler', op: 'onPlayerAudioData' },
  process_captured_audio_data: { slot: 'audioProcessHandler', iface: 'IAudioProcessHandler', op: 'onProcessCapturedAudioData' },
  process_captured_audio_data_after_used_headphone_monitor: { slot: 'audioProcessHandler', iface: 'IAudioProcessHandler', op: 'onProcessCapturedAudioDataAfterUsedHeadphoneMonitor' },
  before_audio_prep_audio_data: { slot: 'audioProcessHandler', iface: 'IAudioProcessHandler', op: 'onBeforeAudioPrepAudioData' },
  process_remote_audio_data: { slot: 'audioProcessHandler', iface: 'IAudioProcessHandler', op: 'onProcessRemoteAudioData' },
  process_playback_audio_data: { slot: 'audioProcessHandler', iface: 'IAudioProcessHandler', op: 'onProcessPlaybackAudioData' },
  media_player_video_frame: { sub: 'mediaPlayer', slot: 'videoHandler', iface: 'IMediaPlayerVideoHandler', op: 'onVideoFrame' },
  media_player_audio_frame: { sub: 'mediaPlayer', slot: 'audioHandler', iface: 'IMediaPlayerAudioHandler', op: 'onAudioFrame' },
  media_player_block_begin: { sub: 'mediaPlayer', slot: 'blockDataHandler', iface: 'IMediaPlayerBlockDataHandler', op: 'onBlockBegin' },
  media_player_block_data: { sub: 'mediaPlayer', slot: 'blockDataHandler', iface: 'IMediaPlayerBlockDataHandler', op: 'onBlockData' },
  screen_capture_source_available_frame: { sub: 'screenCaptureSource', slot: 'eventHandler', iface: 'IScreenCaptureSourceEventHandler', op: 'onAvailableFrame' },
};
// Interfaces in declaration order, with the purpose line each gets.
const INTERFACES = [
  ['IEngineEventHandler', 'Engine events of the main handler (AddonEventHandler implements it).'],
  ['IVideoFrameHandler', 'Raw video frames for custom rendering (the video frame renderer).'],
  ['ICustomVideoCaptureHandler', 'Custom video capture requests of the engine (capture plugins).'],
  ['ICustomVideoProcessHandler', 'Custom video processing hooks (processing plugins).'],
  ['IAudioDataHandler', 'Audio data observers and the audio mixing source (audio plugins).'],
  ['IAudioProcessHandler', 'In-place audio processing hooks (audio processing plugins).'],
  ['IMediaPlayerEventHandler', 'Events of one media player; `player` is the object the event belongs to.'],
  ['IMediaPlayerVideoHandler', 'Decoded video frames of a media player.'],
  ['IMediaPlayerAudioHandler', 'Decoded audio frames of a media player.'],
  ['IMediaPlayerBlockDataHandler', 'Media block data requests of a media player.'],
  ['IAudioEffectPlayerEventHandler', 'Events of one audio effect player.'],
  ['IScreenCaptureSourceEventHandler', 'Events and frames of one screen capture source.'],
  ['ICopyrightedMusicEventHandler', 'Events of the copyrighted-music module.'],
];
// Functions the hand-written part of the layer owns (lifecycle, library-level calls, sub-object
// creation, list releases); no generated method for them.
const HAND_FUNCTIONS = new Set([
  'orva_vantix_get_version', 'orva_vantix_set_engine_config', 'orva_vantix_set_log_config',
  'orva_vantix_set_room_mode', 'orva_vantix_is_feature_supported', 'orva_vantix_set_geo_fence',
  'orva_vantix_custom_log', 'orva_vantix_engine_init_with_profile', 'orva_vantix_engine_uninit_async',
  'orva_vantix_create_media_player', 'orva_vantix_destroy_media_player',
  'orva_vantix_create_audio_effect_player', 'orva_vantix_destroy_audio_effect_player',
  'orva_vantix_create_screen_capture_source', 'orva_vantix_destroy_screen_capture_source',
  'orva_vantix_create_copyrighted_music', 'orva_vantix_destroy_copyrighted_music',
]);
// Structures hand-declared in OrvaVantixSDKWrapper.h under the same names.
const HAND_RECORDS = new Set(['orva_engine_config', 'orva_engine_profile']);
// Structure pointer parameters the engine accepts as NULL: std::optional on the call side.
const NULLABLE_PARAMS = new Set([
  'orva_vantix_enable_publish_direct_to_cdn.config', 'orva_vantix_set_publish_watermark.watermark',
  'orva_vantix_start_playing_stream_with_config.canvas', 'orva_vantix_enable_custom_video_capture.config',
  'orva_vantix_enable_custom_audio_capture_processing.config',
  'orva_vantix_enable_custom_audio_capture_processing_after_headphone_monitor.config',
  'orva_vantix_audio_effect_player_start.config',
]);

const BANNER = '// Generated by engine/tools/emit_sdk.js from orva_vantix_engine.h. Do not edit.\n';

const camel = (s) => s.split('_').filter(Boolean).map((w) => w[0].toUpperCase() + w.slice(1)).join('');
const lowerCamel = (s) => { const c = camel(s); return c[0].toLowerCase() + c.slice(1); };
const recName = (struct) => camel(struct.replace(/^orva_/, ''));
const eventName = (cb) => `${camel(cb)}Event`;

function neutralOf(ctype) {
  if (ctype === 'bool') return 'false';
  if (ctype === 'int32_t' || ctype === 'int64_t') return '-1';
  return '0';
}

// ---------------------------------------------------------------------------------------
// Classification of callbacks.
function classify(model) {
  const results = new Set(model.functions.map((f) => f.result).filter(Boolean));
  const cbs = model.callbacks.filter((c) => !RESERVED_CALLBACKS.has(c.name) && !CLEARED_NEVER_REGISTERED.includes(c.name));
  const out = [];
  for (const cb of cbs) {
    const d = { cb, name: cb.name };
    if (SHARED_TRAMPOLINE[cb.name]) {
      const target = model.callbacks.find((c) => c.name === SHARED_TRAMPOLINE[cb.name]);
      if (JSON.stringify(target.params) !== JSON.stringify(cb.params)) throw new Error(`${cb.name} cannot share ${target.name}'s trampoline`);
      d.kind = 'shared';
      d.trampoline = `tr_${target.name}`;
    } else if (HAND_WRITTEN[cb.name]) {
      d.kind = 'hand';
      d.trampoline = HAND_WRITTEN[cb.name];
    } else if (results.has(cb.name)) {
      if (!cb.params.some((p) => p.name === 'seq')) throw new Error(`result callback ${cb.name} has no seq`);
      d.kind = 'completion';
      d.table = lowerCamel(cb.name);
      d.trampoline = `tr_${cb.name}`;
    } else if (RAW_ROUTES[cb.name]) {
      d.kind = 'raw';
      d.route = RAW_ROUTES[cb.name];
      d.trampoline = `tr_${cb.name}`;
    } else {
      const sub = SUB_OBJECTS.find((s) => cb.name.startsWith(s.cbPrefix));
      d.trampoline = `tr_${cb.name}`;
      if (sub) {
        d.kind = 'sub';
        d.sub = sub;
        d.op = SUB_OP_NAMES[cb.name] || `on${camel(cb.name)}`;
      } else {
        d.kind = 'main';
        d.op = MAIN_OP_NAMES[cb.name] || `on${camel(cb.name)}`;
      }
    }
    if (d.kind === 'raw' && d.route.sub) d.sub = SUB_OBJECTS.find((s) => s.key === d.route.sub);
    if (d.sub && d.sub.indexed && !cb.params.some((p) => p.name === 'index' && p.kind === 'scalar')) {
      throw new Error(`sub-object callback ${cb.name} has no index`);
    }
    out.push(d);
  }
  for (const name of Object.keys(MAIN_OP_NAMES)) {
    if (!out.some((d) => d.name === name && d.kind === 'main')) throw new Error(`MAIN_OP_NAMES: ${name} is not a main event`);
  }
  for (const name of Object.keys(SUB_OP_NAMES)) {
    if (!out.some((d) => d.name === name && d.kind === 'sub')) throw new Error(`SUB_OP_NAMES: ${name} is not a sub-object event`);
  }
  for (const name of Object.keys(RAW_ROUTES)) {
    if (!out.some((d) => d.name === name && d.kind === 'raw')) throw new Error(`RAW_ROUTES: unknown callback ${name}`);
  }
  return out;
}

// ---------------------------------------------------------------------------------------
// engine_api_table.h
function emitApiTable(model) {
  const entries = [
    ...model.registrations.map((r) => `orva_register_${r}_callback`),
    ...model.functions.map((f) => f.name),
  ];
  const L = [];
  L.push(BANNER);
  L.push('// Every entry point of the engine library, resolved at run time into one table.');
  L.push('#pragma once');
  L.push('');
  L.push('#include <cstddef>');
  L.push('');
  L.push('#include "orva_vantix_engine.h"');
  L.push('');
  L.push('namespace orva::sdk {');
  L.push('');
  L.push('struct EngineApiTable {');
  for (const e of entries) L.push(`  decltype(&::${e}) ${e} = nullptr;`);
  L.push('};');
  L.push('');
  L.push(`inline constexpr std::size_t kEngineApiEntryCount = ${entries.length};`);
  L.push('');
  L.push('// Entry point names in header order (registrations first, then functions).');
  L.push('inline constexpr const char* kEngineApiNames[kEngineApiEntryCount] = {');
  for (const e of entries) L.push(`  "${e}",`);
  L.push('};');
  L.push('');
  L.push('// Fills every slot with lookup(name); a missing entry point stays null.');
  L.push('template <class Lookup>');
  L.push('void resolveEngineApi(EngineApiTable& table, Lookup&& lookup) {');
  for (const e of entries) L.push(`  table.${e} = reinterpret_cast<decltype(table.${e})>(lookup("${e}"));`);
  L.push('}');
  L.push('');
  L.push('// Calls f(name, resolved) for every slot, in kEngineApiNames order.');
  L.push('template <class F>');
  L.push('void forEachEngineApiEntry(const EngineApiTable& table, F&& f) {');
  for (const e of entries) L.push(`  f("${e}", table.${e} != nullptr);`);
  L.push('}');
  L.push('');
  L.push('}  // namespace orva::sdk');
  return L.join('\n') + '\n';
}

// ---------------------------------------------------------------------------------------
// Records
function fieldType(f) {
  switch (f.kind) {
    case 'scalar': return f.ctype;
    case 'fixedText': case 'text': return 'std::string';
    case 'array': return `std::array<${f.ctype}, ${f.size}>`;
    case 'struct': return recName(f.struct);
    case 'structPtr': case 'mutStructPtr': return `std::optional<${recName(f.struct)}>`;
    case 'list': return `std::vector<${f.elem.kind === 'struct' ? recName(f.elem.struct) : f.elem.ctype}>`;
    case 'bytes': return 'std::vector<uint8_t>';
    case 'handle': return 'void*';
    default: throw new Error(`no record type for ${f.kind} ${f.name}`);
  }
}
function fieldInit(f) {
  if (f.kind === 'scalar') return f.ctype === 'bool' ? ' = false' : ' = 0';
  if (f.kind === 'handle') return ' = nullptr';
  if (f.kind === 'array') return '{}';
  return '';
}

function emitRecords(model) {
  const L = [BANNER];
  L.push('// Owned records of the engine\'s C structures: the same field names, texts as std::string,');
  L.push('// lists and byte blocks as vectors (count and length folded in), nullable structure');
  L.push('// pointers as std::optional. Free of the engine header.');
  L.push('#pragma once');
  L.push('');
  L.push('#include <array>');
  L.push('#include <cstdint>');
  L.push('#include <optional>');
  L.push('#include <string>');
  L.push('#include <vector>');
  L.push('');
  L.push('#include "OrvaVantixSDKWrapper/OrvaVantixSDKWrapper.h"');
  L.push('');
  L.push('namespace orva::sdk {');
  for (const s of model.structOrder) {
    if (HAND_RECORDS.has(s)) continue;
    L.push('');
    L.push(`// ${s}`);
    L.push(`struct ${recName(s)} {`);
    for (const f of model.structs[s].fields) L.push(`  ${fieldType(f)} ${f.name}${fieldInit(f)};`);
    L.push('};');
  }
  L.push('');
  L.push('}  // namespace orva::sdk');
  return L.join('\n') + '\n';
}

// ---------------------------------------------------------------------------------------
// Events and interfaces
function eventFieldType(p) {
  if (p.kind === 'structPtr') return recName(p.struct);
  return fieldType(p);
}

// Parameters of a raw operation: engine data passed through.
function rawParams(d) {
  const out = [];
  for (const p of d.cb.params) {
    if (d.sub && p.name === 'index') continue;
    switch (p.kind) {
      case 'scalar': out.push({ decl: `${p.ctype} ${p.name}`, arg: p.name }); break;
      case 'handle': out.push({ decl: `void* ${p.name}`, arg: p.name }); break;
      case 'text': out.push({ decl: `const std::string& ${p.name}`, arg: `textOf(${p.name})` }); break;
      case 'planes': out.push({ decl: `const uint8_t* const* ${p.name}, const uint32_t* ${p.lengthName}`, arg: `${p.name}, ${p.lengthName}` }); break;
      case 'bytes': out.push({ decl: `${p.mutable ? '' : 'const '}uint8_t* ${p.name}, uint32_t ${p.lengthName}`, arg: `${p.name}, ${p.lengthName}` }); break;
      case 'structPtr': out.push({ decl: `const ${recName(p.struct)}& ${p.name}`, arg: `${p.name} ? fromC(*${p.name}) : ${recName(p.struct)}{}` }); break;
      case 'list': out.push({ decl: `const ${fieldType(p)}& ${p.name}`, arg: listFromExpr(p, p.name, p.countName) }); break;
      default: throw new Error(`raw callback ${d.name}: unsupported ${p.kind}`);
    }
  }
  return out;
}

function listFromExpr(p, ptr, count) {
  if (p.elem.kind === 'struct') return `listFromC<${recName(p.elem.struct)}>(${ptr}, ${count})`;
  return `scalarsFromC(${ptr}, ${count})`;
}

function subObjectParam(d) {
  return `${d.sub.cls}& ${d.sub.key === 'mediaPlayer' ? 'player' : d.sub.key === 'audioEffectPlayer' ? 'player' : d.sub.key === 'screenCaptureSource' ? 'source' : 'music'}`;
}

function emitEvents(model, ds) {
  const L = [BANNER];
  L.push('// Owned event records (one per engine callback that is converted) and the handler');
  L.push('// interfaces of the layer. Every operation has an empty default body, so an');
  L.push('// implementation overrides only what it forwards. Operations run on engine threads.');
  L.push('#pragma once');
  L.push('');
  L.push('#include <cstdint>');
  L.push('#include <functional>');
  L.push('#include <string>');
  L.push('#include <vector>');
  L.push('');
  L.push('#include "engine_records.h"');
  L.push('');
  L.push('namespace orva::sdk {');
  L.push('');
  L.push('class MediaPlayer;');
  L.push('class AudioEffectPlayer;');
  L.push('class ScreenCaptureSource;');
  L.push('class CopyrightedMusic;');
  L.push('');
  L.push('// A completion stored by the call side; called once, on the engine thread, with the result.');
  L.push('template <class Event>');
  L.push('using Completion = std::function<void(Event)>;');
  for (const d of ds) {
    if (!['main', 'sub', 'completion'].includes(d.kind)) continue;
    L.push('');
    L.push(`// ${d.name}${d.kind === 'completion' ? ' (completion)' : ''}`);
    L.push(`struct ${eventName(d.name)} {`);
    for (const p of d.cb.params) L.push(`  ${eventFieldType(p)} ${p.name}${fieldInit(p)};`);
    L.push('};');
  }
  L.push('');
  L.push('// What the engine lends to the audio mixing source: the callee points audioData (and sei)');
  L.push('// at memory it keeps valid until its next call, and sets the lengths and the format.');
  L.push('struct AudioMixingDataView {');
  L.push('  uint8_t* audioData = nullptr;');
  L.push('  uint32_t audioDataLength = 0;');
  L.push('  AudioFrameParam param;');
  L.push('  uint8_t* sei = nullptr;');
  L.push('  uint32_t seiLength = 0;');
  L.push('};');

  for (const [iface, purpose] of INTERFACES) {
    L.push('');
    L.push(`// ${purpose}`);
    L.push(`class ${iface} {`);
    L.push(' public:');
    L.push(`  virtual ~${iface}() = default;`);
    for (const d of ds) {
      if (d.kind === 'main' && iface === 'IEngineEventHandler') {
        L.push(`  virtual void ${d.op}(${eventName(d.name)} /*event*/) {}`);
      } else if (d.kind === 'sub' && d.sub.iface === iface) {
        L.push(`  virtual void ${d.op}(${subObjectParam(d)}, ${eventName(d.name)} /*event*/) {}`);
      } else if (d.kind === 'raw' && d.route.iface === iface) {
        const params = rawParams(d).map((p) => p.decl);
        if (d.sub) params.unshift(subObjectParam(d));
        L.push(`  virtual void ${d.route.op}(${params.join(', ')}) {}`);
      }
    }
    if (iface === 'IAudioDataHandler') L.push('  virtual void onCopyAudioMixingData(AudioMixingDataView& /*data*/) {}');
    L.push('};');
  }
  L.push('');
  L.push('}  // namespace orva::sdk');
  // Parameter names in declarations would trigger unused-parameter warnings in the empty
  // bodies; drop them there, keeping the types.
  return L.join('\n').replace(/virtual void (\w+)\(([^)]*)\) \{\}/g, (m, op, params) => {
    if (!params) return m;
    const stripped = params.split(', ').map((p) => (p.includes('/*') ? p : p.replace(/ (\w+)$/, ' /*$1*/'))).join(', ');
    return `virtual void ${op}(${stripped}) {}`;
  }) + '\n';
}

function emitCompletions(ds) {
  const L = [BANNER];
  L.push('// The completion tables of the context: one per result callback, keyed by the sequence');
  L.push('// number that the asynchronous call returned.');
  L.push('#pragma once');
  L.push('');
  L.push('#include "OrvaVantixSDKWrapper/CompletionTable.h"');
  L.push('#include "engine_events.h"');
  L.push('');
  L.push('namespace orva::sdk {');
  L.push('');
  L.push('struct CompletionTables {');
  for (const d of ds.filter((x) => x.kind === 'completion')) L.push(`  CompletionTable<${eventName(d.name)}> ${d.table};`);
  L.push('');
  L.push('  // Drops every stored completion uncalled.');
  L.push('  void clear() {');
  for (const d of ds.filter((x) => x.kind === 'completion')) L.push(`    ${d.table}.clear();`);
  L.push('  }');
  L.push('};');
  L.push('');
  L.push('}  // namespace orva::sdk');
  return L.join('\n') + '\n';
}

// ---------------------------------------------------------------------------------------
// Converters
function emitConvert(model) {
  const structs = model.structOrder.filter((s) => !HAND_RECORDS.has(s));
  const H = [BANNER];
  H.push('// C structure <-> record converters. Internal to the layer (includes the engine header).');
  H.push('// toC fills a zero-filled structure; pointer fields point into the record (texts, byte');
  H.push('// blocks, scalar lists) or into `arena` (converted structures), both of which must outlive');
  H.push('// the engine call.');
  H.push('#pragma once');
  H.push('');
  H.push('#include "OrvaVantixSDKWrapper/ConvertSupport.h"');
  H.push('#include "engine_records.h"');
  H.push('#include "orva_vantix_engine.h"');
  H.push('');
  H.push('namespace orva::sdk::detail {');
  H.push('');
  for (const s of structs) {
    H.push(`${recName(s)} fromC(const ${s}& c);`);
    H.push(`void toC(const ${recName(s)}& r, ${s}& c, CArena& arena);`);
  }
  H.push('');
  H.push('// A C array (pointer + count) as a vector of records, in the engine\'s order.');
  H.push('template <class Record, class C>');
  H.push('std::vector<Record> listFromC(const C* items, uint32_t count) {');
  H.push('  std::vector<Record> out;');
  H.push('  if (items == nullptr) return out;');
  H.push('  out.reserve(count);');
  H.push('  for (uint32_t i = 0; i < count; ++i) out.push_back(fromC(items[i]));');
  H.push('  return out;');
  H.push('}');
  H.push('');
  H.push('}  // namespace orva::sdk::detail');

  const C = [BANNER];
  C.push('#include "engine_convert.h"');
  C.push('');
  C.push('#include <algorithm>');
  C.push('#include <iterator>');
  C.push('');
  C.push('namespace orva::sdk::detail {');
  for (const s of structs) {
    const fields = model.structs[s].fields;
    const R = recName(s);
    C.push('');
    C.push(`${R} fromC(const ${s}& c) {`);
    C.push(`  ${R} r;`);
    for (const f of fields) C.push(`  ${fromCField(f, 'c', 'r')}`);
    C.push('  return r;');
    C.push('}');
    C.push('');
    const usesArena = fields.some((f) => ['struct', 'structPtr', 'mutStructPtr'].includes(f.kind)
      || (f.kind === 'list' && f.elem.kind === 'struct') || (f.kind === 'bytes' && f.mutable));
    C.push(`void toC(const ${R}& r, ${s}& c, CArena&${usesArena ? ' arena' : ''}) {`);
    for (const f of fields) C.push(`  ${toCField(f)}`);
    C.push('}');
  }
  C.push('');
  C.push('}  // namespace orva::sdk::detail');
  return { h: H.join('\n') + '\n', cc: C.join('\n') + '\n' };
}

function fromCField(f, c, r) {
  const src = `${c}.${f.name}`;
  const dst = `${r}.${f.name}`;
  switch (f.kind) {
    case 'scalar': case 'handle': return `${dst} = ${src};`;
    case 'fixedText': return `${dst} = fixedText(${src}, sizeof ${src});`;
    case 'text': return `${dst} = textOf(${src});`;
    case 'array': return `std::copy(std::begin(${src}), std::end(${src}), ${dst}.begin());`;
    case 'struct': return `${dst} = fromC(${src});`;
    case 'structPtr': case 'mutStructPtr': return `if (${src} != nullptr) ${dst} = fromC(*${src});`;
    case 'list': return `${dst} = ${listFromExpr(f, src, `${c}.${f.countName}`)};`;
    case 'bytes': return `${dst} = bytesOf(${src}, ${c}.${f.lengthName});`;
    default: throw new Error(`fromC: ${f.kind}`);
  }
}

function toCField(f) {
  const src = `r.${f.name}`;
  const dst = `c.${f.name}`;
  switch (f.kind) {
    case 'scalar': case 'handle': return `${dst} = ${src};`;
    case 'fixedText': return `copyFixed(${dst}, sizeof ${dst}, ${src});`;
    case 'text': return `${dst} = ${src}.c_str();`;
    case 'array': return `std::copy(${src}.begin(), ${src}.end(), std::begin(${dst}));`;
    case 'struct': return `toC(${src}, ${dst}, arena);`;
    case 'structPtr': case 'mutStructPtr':
      return `if (${src}) { auto* p = arena.make<${f.struct}>(1); toC(*${src}, *p, arena); ${dst} = p; }`;
    case 'list':
      if (f.elem.kind === 'struct') {
        return `if (!${src}.empty()) { auto* p = arena.make<${f.elem.struct}>(${src}.size()); `
          + `for (std::size_t i = 0; i < ${src}.size(); ++i) toC(${src}[i], p[i], arena); ${dst} = p; } `
          + `c.${f.countName} = static_cast<uint32_t>(${src}.size());`;
      }
      return `${dst} = ${src}.empty() ? nullptr : ${src}.data(); c.${f.countName} = static_cast<uint32_t>(${src}.size());`;
    case 'bytes':
      if (f.mutable) return `${dst} = arena.copyBytes(${src}); c.${f.lengthName} = static_cast<uint32_t>(${src}.size());`;
      return `${dst} = ${src}.empty() ? nullptr : ${src}.data(); c.${f.lengthName} = static_cast<uint32_t>(${src}.size());`;
    default: throw new Error(`toC: ${f.kind}`);
  }
}

// ---------------------------------------------------------------------------------------
// Trampolines and registration
function cParamDecl(p) {
  switch (p.kind) {
    case 'scalar': return `${p.enumType || p.ctype} ${p.name}`;
    case 'handle': return `${p.ctype} ${p.name}`;
    case 'text': return `const char* ${p.name}`;
    case 'planes': return `const uint8_t** ${p.name}, const uint32_t* ${p.lengthName}`;
    case 'bytes': return `${p.mutable ? '' : 'const '}uint8_t* ${p.name}, uint32_t ${p.lengthName}`;
    case 'structPtr': return `const ${p.struct}* ${p.name}`;
    case 'mutStructPtr': return `${p.struct}* ${p.name}`;
    case 'list': return `const ${p.elem.kind === 'struct' ? p.elem.struct : p.elem.ctype}* ${p.name}, uint32_t ${p.countName}`;
    default: throw new Error(`callback param ${p.kind}`);
  }
}

function eventFill(d, v) {
  const L = [];
  for (const p of d.cb.params) {
    switch (p.kind) {
      case 'scalar': case 'handle': L.push(`${v}.${p.name} = ${p.name};`); break;
      case 'text': L.push(`${v}.${p.name} = textOf(${p.name});`); break;
      case 'structPtr': L.push(`if (${p.name} != nullptr) ${v}.${p.name} = fromC(*${p.name});`); break;
      case 'list': L.push(`${v}.${p.name} = ${listFromExpr(p, p.name, p.countName)};`); break;
      case 'bytes': L.push(`${v}.${p.name} = bytesOf(${p.name}, ${p.lengthName});`); break;
      default: throw new Error(`event ${d.name}: unsupported ${p.kind}`);
    }
  }
  return L;
}

function emitTrampolines(model, ds) {
  const L = [BANNER];
  L.push('// One C trampoline per engine callback. Each runs on the engine thread that made the');
  L.push('// callback: it takes its target (handler, sub-object or completion) from the context under');
  L.push('// that target\'s lock, converts the C arguments into owned values and calls out with no');
  L.push('// lock held. guard() keeps every exception on this side of the engine boundary.');
  L.push('#include <string_view>');
  L.push('#include <utility>');
  L.push('');
  L.push('#include "OrvaVantixSDKWrapper/Engine.h"');
  L.push('#include "OrvaVantixSDKWrapper/EngineContext.h"');
  L.push('#include "OrvaVantixSDKWrapper/SubObjects.h"');
  L.push('#include "OrvaVantixSDKWrapper/Trampolines.h"');
  L.push('#include "engine_convert.h"');
  L.push('');
  L.push('namespace orva::sdk::detail {');
  L.push('namespace {');
  for (const d of ds) {
    if (d.kind === 'hand' || d.kind === 'shared') continue;
    const params = d.cb.params.map(cParamDecl);
    params.push('void* /*user_context*/');
    L.push('');
    L.push(`void ORVA_CALL ${d.trampoline}(${params.join(', ')}) {`);
    L.push(`  guard("${d.name}", [&] {`);
    const body = [];
    if (d.kind === 'main') {
      body.push('auto handler = EngineContext::instance().eventHandler.get();');
      body.push('if (!handler) return;');
      body.push(`${eventName(d.name)} ev;`);
      body.push(...eventFill(d, 'ev'));
      body.push(`handler->${d.op}(std::move(ev));`);
    } else if (d.kind === 'sub') {
      const key = d.sub.indexed ? 'index' : 'kCopyrightedMusicIndex';
      const obj = d.sub.key === 'screenCaptureSource' ? 'source' : d.sub.key === 'copyrightedMusic' ? 'music' : 'player';
      body.push(`auto ${obj} = EngineContext::instance().${d.sub.table}.find(${key});`);
      body.push(`if (!${obj}) return;`);
      body.push(`auto handler = ${obj}->eventHandler();`);
      body.push('if (!handler) return;');
      body.push(`${eventName(d.name)} ev;`);
      body.push(...eventFill(d, 'ev'));
      body.push(`handler->${d.op}(*${obj}, std::move(ev));`);
    } else if (d.kind === 'completion') {
      body.push(`EngineContext::instance().completions.${d.table}.complete(seq, [&] {`);
      body.push(`  ${eventName(d.name)} ev;`);
      body.push(...eventFill(d, 'ev').map((x) => `  ${x}`));
      body.push('  return ev;');
      body.push('});');
    } else if (d.kind === 'raw') {
      const args = rawParams(d).map((p) => p.arg);
      if (d.sub) {
        const key = d.sub.indexed ? 'index' : 'kCopyrightedMusicIndex';
        const obj = d.sub.key === 'screenCaptureSource' ? 'source' : 'player';
        body.push(`auto ${obj} = EngineContext::instance().${d.sub.table}.find(${key});`);
        body.push(`if (!${obj}) return;`);
        body.push(`auto handler = ${obj}->${d.route.slot}();`);
        body.push('if (!handler) return;');
        args.unshift(`*${obj}`);
      } else {
        body.push(`auto handler = EngineContext::instance().${d.route.slot}.get();`);
        body.push('if (!handler) return;');
      }
      body.push(`handler->${d.route.op}(${args.join(', ')});`);
    }
    for (const b of body) L.push(`    ${b}`);
    L.push('  });');
    L.push('}');
  }
  L.push('');
  L.push('}  // namespace');

  const registered = ds;
  L.push('');
  L.push('void registerCallbacks(const EngineApiTable& api, void* context) {');
  registered.forEach((d, i) => {
    L.push(`  api.orva_register_${d.name}_callback(&${d.trampoline}, ${CONTEXTLESS(d.name, i) ? 'nullptr' : 'context'});`);
  });
  L.push('}');
  L.push('');
  L.push('const void* trampolineOf(std::string_view callback) {');
  L.push('  struct Entry {');
  L.push('    const char* name;');
  L.push('    const void* trampoline;');
  L.push('  };');
  L.push('  static const Entry entries[] = {');
  for (const d of registered) L.push(`      {"${d.name}", reinterpret_cast<const void*>(&${d.trampoline})},`);
  L.push('  };');
  L.push('  for (const auto& e : entries) {');
  L.push('    if (callback == e.name) return e.trampoline;');
  L.push('  }');
  L.push('  return nullptr;');
  L.push('}');
  const cleared = [...ds.map((d) => d.name).filter((n) => !KEPT_AFTER_DESTRUCTION.has(n)), ...CLEARED_NEVER_REGISTERED];
  L.push('');
  L.push('void clearCallbacks(const EngineApiTable& api) {');
  for (const n of cleared) L.push(`  api.orva_register_${n}_callback(nullptr, nullptr);`);
  L.push('}');
  L.push('');
  L.push('}  // namespace orva::sdk::detail');
  L.push('');
  L.push('namespace orva::sdk {');
  L.push('');
  L.push(`const std::array<const char*, ${registered.length}> kRegistrationOrder = {`);
  for (const d of registered) L.push(`  "${d.name}",`);
  L.push('};');
  L.push('');
  L.push(`const std::array<const char*, ${cleared.length}> kClearedOnDestruction = {`);
  for (const n of cleared) L.push(`  "${n}",`);
  L.push('};');
  L.push('');
  L.push('}  // namespace orva::sdk');
  if (registered.length !== 194 || cleared.length !== 184) {
    throw new Error(`registration lists changed: ${registered.length} registered, ${cleared.length} cleared`);
  }
  for (const n of KEPT_AFTER_DESTRUCTION) if (!ds.some((d) => d.name === n)) throw new Error(`kept ${n} is not registered`);
  return { cc: L.join('\n') + '\n', registered: registered.length, cleared: cleared.length };
}

// ---------------------------------------------------------------------------------------
// Call side
function callShape(fn, ds) {
  const decl = [];  // C++ parameters
  const prep = [];  // conversions before the call
  const args = [];  // C arguments
  let seqOut = false;
  let needsArena = false;
  for (const p of fn.params) {
    const nullable = NULLABLE_PARAMS.has(`${fn.name}.${p.name}`);
    switch (p.kind) {
      case 'scalar': decl.push({ t: p.ctype, n: p.name }); args.push(p.enumType ? `static_cast<${p.enumType}>(${p.name})` : p.name); break;
      case 'handle': decl.push({ t: 'void*', n: p.name }); args.push(p.name); break;
      case 'text': decl.push({ t: 'const std::string&', n: p.name }); args.push(`${p.name}.c_str()`); break;
      case 'bytes':
        if (p.mutable) throw new Error(`${fn.name}: mutable bytes`);
        decl.push({ t: 'const std::vector<uint8_t>&', n: p.name });
        args.push(`${p.name}.data(), static_cast<uint32_t>(${p.name}.size())`);
        break;
      case 'list': {
        decl.push({ t: `const ${fieldType(p)}&`, n: p.name });
        if (p.elem.kind === 'struct') {
          prep.push(`std::vector<${p.elem.struct}> c_${p.name}(${p.name}.size());`);
          prep.push(`for (std::size_t i = 0; i < ${p.name}.size(); ++i) detail::toC(${p.name}[i], c_${p.name}[i], arena);`);
          needsArena = true;
          args.push(`c_${p.name}.data(), static_cast<uint32_t>(c_${p.name}.size())`);
        } else {
          args.push(`${p.name}.data(), static_cast<uint32_t>(${p.name}.size())`);
        }
        break;
      }
      case 'structPtr': {
        const R = recName(p.struct);
        needsArena = true;
        if (nullable) {
          decl.push({ t: `const std::optional<${R}>&`, n: p.name });
          prep.push(`${p.struct} c_${p.name}{};`);
          prep.push(`if (${p.name}) detail::toC(*${p.name}, c_${p.name}, arena);`);
          args.push(`${p.name} ? &c_${p.name} : nullptr`);
        } else {
          decl.push({ t: `const ${R}&`, n: p.name });
          prep.push(`${p.struct} c_${p.name}{};`);
          prep.push(`detail::toC(${p.name}, c_${p.name}, arena);`);
          args.push(`&c_${p.name}`);
        }
        break;
      }
      case 'outText':
        prep.push(`char ${p.name}[4096] = {};`);
        args.push(`${p.name}, static_cast<uint32_t>(sizeof ${p.name})`);
        break;
      case 'out':
        if (p.name === 'seq' && fn.result) { seqOut = true; args.push('&seq'); break; }
        if (fn.ret.kind === 'ownedList' && p.name === fn.ret.countName) { prep.push(`uint32_t ${p.name} = 0;`); args.push(`&${p.name}`); break; }
        throw new Error(`${fn.name}: unsupported output ${p.name}`);
      default: throw new Error(`${fn.name}: unsupported parameter kind ${p.kind}`);
    }
  }
  let completion = null;
  if (seqOut) {
    const d = ds.find((x) => x.name === fn.result);
    completion = { event: eventName(d.name), table: d.table };
    decl.push({ t: `Completion<${completion.event}>`, n: 'done' });
  }
  const outText = fn.params.find((p) => p.kind === 'outText');
  let ret;
  if (outText) {
    if (fn.ret.kind !== 'void') throw new Error(`${fn.name}: text output and a return value`);
    ret = { t: 'std::string', neutral: 'std::string()', wrap: null, after: `return std::string(${outText.name});` };
  } else {
    switch (fn.ret.kind) {
      case 'void': ret = { t: 'void', neutral: '' }; break;
      case 'scalar': ret = { t: fn.ret.ctype, neutral: neutralOf(fn.ret.ctype) }; break;
      case 'struct': ret = { t: recName(fn.ret.struct), neutral: `${recName(fn.ret.struct)}{}`, wrap: 'detail::fromC' }; break;
      case 'ownedList': ret = { t: `std::vector<${recName(fn.ret.struct)}>`, neutral: '{}', list: true }; break;
      case 'ownedText': ret = { t: 'std::string', neutral: 'std::string()', text: true }; break;
      default: throw new Error(`${fn.name}: return ${fn.ret.kind}`);
    }
  }
  return { decl, prep, args, completion, ret, needsArena };
}

function methodBody(fn, shape) {
  const { prep, args, completion, ret, needsArena } = shape;
  const call = `call.api->${fn.name}(${args.join(', ')})`;
  const B = [];
  if (completion) {
    B.push(`auto flight = EngineContext::instance().completions.${completion.table}.beginCall();`);
    B.push('int32_t seq = 0;');
    B.push('int32_t result = -1;');
    B.push('{');
    B.push('  SdkCall call;');
    B.push('  if (call.api == nullptr) return result;');
    if (needsArena) B.push('  detail::CArena arena;');
    for (const p of prep) B.push(`  ${p}`);
    B.push(`  result = ${call};`);
    B.push('}');
    B.push('// Only an accepted call is answered; a refused one returns its code and keeps nothing.');
    B.push('if (result == 0) flight.store(seq, std::move(done));');
    B.push('return result;');
    return B;
  }
  B.push('SdkCall call;');
  B.push(`if (call.api == nullptr) return${ret.neutral ? ` ${ret.neutral}` : ''};`);
  if (needsArena) B.push('detail::CArena arena;');
  B.push(...prep);
  if (ret.after) {
    B.push(`${call};`);
    B.push(ret.after);
  } else if (ret.list) {
    const countName = fn.ret.countName;
    B.push(`auto* items = ${call};`);
    B.push(`auto out = detail::listFromC<${recName(fn.ret.struct)}>(items, ${countName});`);
    B.push(`if (items != nullptr) call.api->${fn.free}(items);`);
    B.push('return out;');
  } else if (ret.text) {
    B.push(`char* text = ${call};`);
    B.push('std::string out = detail::textOf(text);');
    B.push(`if (text != nullptr) call.api->${fn.free}(text);`);
    B.push('return out;');
  } else if (ret.wrap) {
    B.push(`return ${ret.wrap}(${call});`);
  } else if (ret.t === 'void') {
    B.push(`${call};`);
  } else {
    B.push(`return ${call};`);
  }
  return B;
}

function emitCalls(model, ds) {
  const fns = model.functions.filter((f) => !HAND_FUNCTIONS.has(f.name) && !model.functions.some((g) => g.free === f.name));
  const inc = [BANNER];
  inc.push('// Call side: one method per engine function, included in the body of class Engine.');
  const cc = [BANNER];
  cc.push('// Call side definitions: conversions of the C++ values to the engine\'s C types and back.');
  cc.push('#include <utility>');
  cc.push('');
  cc.push('#include "OrvaVantixSDKWrapper/Engine.h"');
  cc.push('#include "OrvaVantixSDKWrapper/EngineContext.h"');
  cc.push('#include "OrvaVantixSDKWrapper/EngineLibrary.h"');
  cc.push('#include "OrvaVantixSDKWrapper/SubObjects.h"');
  cc.push('#include "engine_api_table.h"');
  cc.push('#include "engine_convert.h"');
  cc.push('');
  cc.push('namespace orva::sdk {');
  cc.push('');
  cc.push('namespace {');
  cc.push('// One engine call: the SDK lock for its duration and the loaded entry-point table (null');
  cc.push('// when the library is not loaded, and the call then returns its neutral value).');
  cc.push('struct SdkCall {');
  cc.push('  std::lock_guard<std::recursive_mutex> lock{sdkMutex()};');
  cc.push('  const EngineApiTable* api = loadedEngineApi();');
  cc.push('};');
  cc.push('}  // namespace');
  const subInc = Object.fromEntries(SUB_OBJECTS.map((s) => [s.key, [BANNER, `// ${s.cls} calls: the engine calls of its kind with its own index; included in class ${s.cls}.`]]));
  const subCc = [];
  for (const fn of fns) {
    const shape = callShape(fn, ds);
    const method = lowerCamel(fn.name.replace(/^orva_vantix_/, ''));
    const sig = shape.decl.map((p) => `${p.t} ${p.n}`).join(', ');
    inc.push(`${shape.ret.t} ${method}(${sig});`);
    cc.push('');
    cc.push(`// ${fn.name}`);
    cc.push(`${shape.ret.t} Engine::${method}(${sig}) {`);
    for (const b of methodBody(fn, shape)) cc.push(`  ${b}`);
    cc.push('}');

    const sub = SUB_OBJECTS.find((s) => fn.name.startsWith(s.fnPrefix));
    if (!sub) continue;
    if (sub.indexed && !shape.decl.some((p) => p.n === 'index')) continue;
    const subDecl = shape.decl.filter((p) => !(sub.indexed && p.n === 'index'));
    const subMethod = lowerCamel(fn.name.slice(sub.fnPrefix.length));
    const subSig = subDecl.map((p) => `${p.t} ${p.n}`).join(', ');
    const fwd = shape.decl.map((p) => (sub.indexed && p.n === 'index' ? 'index_' : p.t.startsWith('Completion<') ? `std::move(${p.n})` : p.n));
    subInc[sub.key].push(`${shape.ret.t} ${subMethod}(${subSig});`);
    subCc.push('');
    subCc.push(`${shape.ret.t} ${sub.cls}::${subMethod}(${subSig}) {`);
    subCc.push('  auto engine = Engine::instance();');
    subCc.push(`  if (!engine) return${shape.completion ? ' -1' : shape.ret.neutral ? ` ${shape.ret.neutral}` : ''};`);
    subCc.push(`  ${shape.ret.t === 'void' ? '' : 'return '}engine->${method}(${fwd.join(', ')});`);
    subCc.push('}');
  }
  cc.push(...subCc);
  cc.push('');
  cc.push('}  // namespace orva::sdk');
  return {
    inc: inc.join('\n') + '\n',
    cc: cc.join('\n') + '\n',
    subInc: Object.fromEntries(SUB_OBJECTS.map((s) => [s.inc, subInc[s.key].join('\n') + '\n'])),
  };
}

function emit(model, outdir, writeIfChanged) {
  const ds = classify(model);
  writeIfChanged('engine_api_table.h', emitApiTable(model));
  writeIfChanged('engine_records.h', emitRecords(model));
  writeIfChanged('engine_events.h', emitEvents(model, ds));
  writeIfChanged('engine_completions.h', emitCompletions(ds));
  const conv = emitConvert(model);
  writeIfChanged('engine_convert.h', conv.h);
  writeIfChanged('engine_convert.cc', conv.cc);
  writeIfChanged('engine_trampolines.cc', emitTrampolines(model, ds).cc);
  const calls = emitCalls(model, ds);
  writeIfChanged('engine_calls.inc', calls.inc);
  writeIfChanged('engine_calls.cc', calls.cc);
  for (const [file, text] of Object.entries(calls.subInc)) writeIfChanged(file, text);
}

module.exports = { emit };
