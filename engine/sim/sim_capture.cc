// Screen capture sources (two fake screens and one fake window) and the experimental API.
#include <algorithm>
#include <memory>
#include <string>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "sim_engine.h"
#include "sim_images.h"

namespace orva::sim {
namespace {

// Source types as the engine reports them.
constexpr int32_t kSourceWindow = 1;
constexpr int32_t kSourceScreen = 2;

struct FakeSource {
  int32_t type;
  int64_t id;
  const char* name;
  orva_rect rect;
  uint32_t tint;  // thumbnail colour
};
constexpr FakeSource kSources[] = {
    {kSourceScreen, 1001, "Sim Screen 1", {0, 0, 1920, 1080}, 0x3080ff},
    {kSourceScreen, 1002, "Sim Screen 2", {1920, 0, 1280, 1024}, 0x30c060},
    {kSourceWindow, 2001, "Sim Window", {100, 100, 800, 600}, 0xe0a020},
};

orva_rect rectOf(int64_t sourceId) {
  for (const FakeSource& s : kSources) {
    if (s.id == sourceId) return s.rect;
  }
  return orva_rect{0, 0, 1920, 1080};
}

orva_image_buffer image(Storage& st, int32_t width, int32_t height, uint32_t tint) {
  orva_image_buffer out{};
  if (width <= 0 || height <= 0) return out;
  width = std::min(width, 4096);
  height = std::min(height, 4096);
  const size_t n = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
  uint8_t* px = st.bytes(n);
  img::drawThumbnail(px, width, height, tint);
  out.buffer = px;
  out.bufferLength = static_cast<uint32_t>(n);
  out.width = width;
  out.height = height;
  return out;
}

bool validSource(int32_t index) {
  return index >= 0 && index < kCaptureSources && engine().st.captureSources[static_cast<size_t>(index)].exists;
}

template <class F>
int32_t withSource(const char* fn, int32_t index, F&& act) {
  if (auto code = refusal(fn)) return *code;
  std::lock_guard<std::mutex> lock(engine().mu);
  if (!validSource(index)) return kErrInvalid;
  act(engine().st.captureSources[static_cast<size_t>(index)]);
  return 0;
}

}  // namespace
}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

ORVA_API orva_screen_capture_source_info* ORVA_CALL orva_vantix_get_screen_capture_sources(
    int32_t thumbnailWidth, int32_t thumbnailHeight, int32_t iconWidth, int32_t iconHeight, uint32_t* sourceCount) {
  return guarded<orva_screen_capture_source_info*>(nullptr, [&] {
    gen::journal_get_screen_capture_sources(thumbnailWidth, thumbnailHeight, iconWidth, iconHeight, sourceCount);
    constexpr const char* fn = "orva_vantix_get_screen_capture_sources";
    if (core().scripted.get(fn)) return gen::scriptedList<orva_screen_capture_source_info>(fn, sourceCount);
    auto st = std::make_unique<Storage>();
    constexpr size_t n = sizeof kSources / sizeof kSources[0];
    auto* list = st->array<orva_screen_capture_source_info>(n);
    for (size_t i = 0; i < n; ++i) {
      const FakeSource& s = kSources[i];
      list[i].sourceType = s.type;
      list[i].sourceID = s.id;
      setFixed(list[i].sourceName, sizeof list[i].sourceName, s.name);
      list[i].thumbnailImage = image(*st, thumbnailWidth, thumbnailHeight, s.tint);
      list[i].iconImage = image(*st, iconWidth, iconHeight, s.tint ^ 0xffffff);
    }
    if (sourceCount) *sourceCount = static_cast<uint32_t>(n);
    core().handedOut.adopt(list, std::move(st));
    return list;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_create_screen_capture_source(int64_t sourceId, int32_t sourceType) {
  return guarded<int32_t>(-1, [&] {
    gen::journal_create_screen_capture_source(sourceId, sourceType);
    if (auto v = scriptedNumber<int32_t>("orva_vantix_create_screen_capture_source")) return *v;
    std::lock_guard<std::mutex> lock(engine().mu);
    for (int32_t i = 0; i < kCaptureSources; ++i) {
      CaptureSourceState& s = engine().st.captureSources[static_cast<size_t>(i)];
      if (!s.exists) {
        s = CaptureSourceState{true, sourceId, sourceType, false};
        return i;
      }
    }
    return -1;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_destroy_screen_capture_source(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_destroy_screen_capture_source(index);
    return withSource("orva_vantix_destroy_screen_capture_source", index,
                      [](CaptureSourceState& s) { s = CaptureSourceState{}; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_start_capture(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_screen_capture_start_capture(index);
    return withSource("orva_vantix_screen_capture_start_capture", index, [](CaptureSourceState& s) { s.capturing = true; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_stop_capture(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_screen_capture_stop_capture(index);
    return withSource("orva_vantix_screen_capture_stop_capture", index, [](CaptureSourceState& s) { s.capturing = false; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_update_capture_source(int64_t sourceId, int32_t sourceType,
                                                                          int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_screen_capture_update_capture_source(sourceId, sourceType, index);
    return withSource("orva_vantix_screen_capture_update_capture_source", index, [&](CaptureSourceState& s) {
      s.sourceId = sourceId;
      s.sourceType = sourceType;
    });
  });
}

ORVA_API orva_rect ORVA_CALL orva_vantix_screen_capture_get_capture_source_rect(int32_t index) {
  return guarded<orva_rect>(orva_rect{}, [&] {
    gen::journal_screen_capture_get_capture_source_rect(index);
    constexpr const char* fn = "orva_vantix_screen_capture_get_capture_source_rect";
    if (core().scripted.get(fn)) return gen::scriptedStruct<orva_rect>(fn);
    std::lock_guard<std::mutex> lock(engine().mu);
    if (!validSource(index)) return orva_rect{};
    return rectOf(engine().st.captureSources[static_cast<size_t>(index)].sourceId);
  });
}

// ---------------------------------------------------------------------------------------
// The experimental API answers every call with {"error_code": 0, "method": <the method>};
// text that is not a JSON object is refused with error_code -1.

ORVA_API char* ORVA_CALL orva_vantix_call_experimental_api(const char* params) {
  return guarded<char*>(nullptr, [&] {
    gen::journal_call_experimental_api(params);
    if (auto text = scriptedText("orva_vantix_call_experimental_api")) return gen::handOutText(*text);
    rapidjson::Document in;
    const bool ok = params && !in.Parse(params).HasParseError() && in.IsObject();
    std::string method;
    if (ok) {
      if (const rapidjson::Value* m = member(in, "method"); m && m->IsString()) method.assign(m->GetString(), m->GetStringLength());
    }
    rapidjson::StringBuffer sb;
    rapidjson::Writer<rapidjson::StringBuffer> w(sb);
    w.StartObject();
    w.Key("error_code");
    w.Int(ok ? 0 : -1);
    w.Key("method");
    w.String(method.c_str(), static_cast<rapidjson::SizeType>(method.size()));
    w.EndObject();
    return gen::handOutText(std::string(sb.GetString(), sb.GetSize()));
  });
}
