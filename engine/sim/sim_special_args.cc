// Args holders for the callbacks whose script payload is not shaped like their C arguments:
// map-shaped sound levels and spectra, the bare spectrum array, raw frames (generated from
// their sizes) and snapshot results (which carry a generated picture).
#include "sim_special_args.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <vector>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX  // std::min/max, not the macros
#endif
#include <windows.h>
#endif

#include "sim_engine.h"
#include "sim_images.h"

namespace orva::sim {
namespace {

constexpr int32_t kMaxFrameSide = 8192;

template <class T>
bool readOptional(const rapidjson::Value& obj, const char* key, T& out, const Path& root, std::string& err) {
  const rapidjson::Value* v = member(obj, key);
  return !v || readNumber(*v, out, root.child(key), err);
}

bool readOptionalText(const rapidjson::Value& obj, const char* key, std::string& out, const Path& root,
                      std::string& err) {
  const rapidjson::Value* v = member(obj, key);
  if (!v) return true;
  if (!v->IsString()) return fail(err, root.child(key), "a string", *v);
  out.assign(v->GetString(), v->GetStringLength());
  return true;
}

// ---------------------------------------------------------------------------------------
// Map-shaped payloads: {"<streamID>": level}, {"<streamID>": {soundLevel, vad}},
// {"<streamID>": [bands]}, {"<soundLevelID>": level}.

class RemoteSoundLevels final : public CallbackArgs {
 public:
  bool load(const rapidjson::Value& obj, std::string& err) {
    const Path root{};
    if (!obj.IsObject()) return fail(err, root, "an object of stream ID to level", obj);
    for (auto m = obj.MemberBegin(); m != obj.MemberEnd(); ++m) {
      orva_stream_sound_level s{};
      setFixed(s.streamID, sizeof s.streamID, std::string(m->name.GetString(), m->name.GetStringLength()));
      if (!readNumber(m->value, s.soundLevel, root.child(m->name.GetString()), err)) return false;
      levels_.push_back(s);
    }
    return true;
  }
  void invoke(AnyFn cb, void* ctx) override {
    reinterpret_cast<orva_on_remote_sound_level_update>(cb)(levels_.data(), static_cast<uint32_t>(levels_.size()), ctx);
  }

 private:
  std::vector<orva_stream_sound_level> levels_;
};

class RemoteSoundLevelInfos final : public CallbackArgs {
 public:
  bool load(const rapidjson::Value& obj, std::string& err) {
    const Path root{};
    if (!obj.IsObject()) return fail(err, root, "an object of stream ID to {soundLevel, vad}", obj);
    for (auto m = obj.MemberBegin(); m != obj.MemberEnd(); ++m) {
      const Path p = root.child(m->name.GetString());
      if (!m->value.IsObject()) return fail(err, p, "an object {soundLevel, vad}", m->value);
      orva_stream_sound_level_info s{};
      setFixed(s.streamID, sizeof s.streamID, std::string(m->name.GetString(), m->name.GetStringLength()));
      if (!readOptional(m->value, "soundLevel", s.soundLevel, p, err)) return false;
      if (!readOptional(m->value, "vad", s.vad, p, err)) return false;
      infos_.push_back(s);
    }
    return true;
  }
  void invoke(AnyFn cb, void* ctx) override {
    reinterpret_cast<orva_on_remote_sound_level_info_update>(cb)(infos_.data(), static_cast<uint32_t>(infos_.size()), ctx);
  }

 private:
  std::vector<orva_stream_sound_level_info> infos_;
};

class RemoteSpectra final : public CallbackArgs {
 public:
  bool load(const rapidjson::Value& obj, std::string& err) {
    const Path root{};
    if (!obj.IsObject()) return fail(err, root, "an object of stream ID to an array of numbers", obj);
    for (auto m = obj.MemberBegin(); m != obj.MemberEnd(); ++m) {
      orva_stream_audio_spectrum s{};
      setFixed(s.streamID, sizeof s.streamID, std::string(m->name.GetString(), m->name.GetStringLength()));
      if (!readScalarList(m->value, s.spectrumList, s.spectrumListCount, st_, root.child(m->name.GetString()), err))
        return false;
      spectra_.push_back(s);
    }
    return true;
  }
  void invoke(AnyFn cb, void* ctx) override {
    reinterpret_cast<orva_on_remote_audio_spectrum_update>(cb)(spectra_.data(), static_cast<uint32_t>(spectra_.size()), ctx);
  }

 private:
  Storage st_;
  std::vector<orva_stream_audio_spectrum> spectra_;
};

class MixerSoundLevels final : public CallbackArgs {
 public:
  bool load(const rapidjson::Value& obj, std::string& err) {
    const Path root{};
    if (!obj.IsObject()) return fail(err, root, "an object of sound level ID to level", obj);
    for (auto m = obj.MemberBegin(); m != obj.MemberEnd(); ++m) {
      const std::string key(m->name.GetString(), m->name.GetStringLength());
      const Path p = root.child(m->name.GetString());
      char* end = nullptr;
      errno = 0;
      const unsigned long long id = std::strtoull(key.c_str(), &end, 10);
      if (key.empty() || !std::isdigit(static_cast<unsigned char>(key[0])) || *end || errno || id > UINT32_MAX)
        return failText(err, p, "key is not a sound level ID (an unsigned 32-bit integer)");
      orva_mixer_sound_level s{};
      s.soundLevelID = static_cast<uint32_t>(id);
      if (!readNumber(m->value, s.soundLevel, p, err)) return false;
      levels_.push_back(s);
    }
    return true;
  }
  void invoke(AnyFn cb, void* ctx) override {
    reinterpret_cast<orva_on_mixer_sound_level_update>(cb)(levels_.data(), static_cast<uint32_t>(levels_.size()), ctx);
  }

 private:
  std::vector<orva_mixer_sound_level> levels_;
};

// The payload is the bare array of bands ({spectrumList: [...]} is accepted too).
class CapturedSpectrum final : public CallbackArgs {
 public:
  bool load(const rapidjson::Value& payload, std::string& err) {
    const Path root{};
    const rapidjson::Value* list = &payload;
    if (payload.IsObject() && !payload.HasMember("$bytes")) {
      list = member(payload, "spectrumList");
      if (!list) return true;
    }
    return readScalarList(*list, bands_, count_, st_, root, err);
  }
  void invoke(AnyFn cb, void* ctx) override {
    reinterpret_cast<orva_on_captured_audio_spectrum_update>(cb)(bands_, count_, ctx);
  }

 private:
  Storage st_;
  const float* bands_ = nullptr;
  uint32_t count_ = 0;
};

// ---------------------------------------------------------------------------------------
// Raw frames

class FrameArgs final : public CallbackArgs {
 public:
  FrameArgs(const FrameRequest& s, std::vector<uint8_t> pixels)
      : target_(s.target), key_(s.key), streamID_(s.streamID), flipMode_(s.flipMode), pixels_(std::move(pixels)) {
    planes_[0] = pixels_.data();
    lengths_[0] = static_cast<uint32_t>(pixels_.size());
    param_.format = s.format;
    param_.strides[0] = s.stride;
    param_.width = s.width;
    param_.height = s.height;
  }
  void invoke(AnyFn cb, void* ctx) override {
    switch (target_) {
      case FrameTarget::Captured:
        reinterpret_cast<orva_on_custom_video_render_captured_frame_data>(cb)(planes_, lengths_, &param_, flipMode_, key_, ctx);
        break;
      case FrameTarget::Remote:
        reinterpret_cast<orva_on_custom_video_render_remote_frame_data>(cb)(planes_, lengths_, &param_, flipMode_,
                                                                             streamID_.c_str(), ctx);
        break;
      case FrameTarget::MediaPlayer:
        reinterpret_cast<orva_on_media_player_video_frame>(cb)(planes_, lengths_, &param_, flipMode_, key_, ctx);
        break;
    }
  }
  int numberSlot(std::string_view key) override {
    if (key == "flipMode") return 1;
    if (target_ == FrameTarget::Captured && key == "channel") return 0;
    if (target_ == FrameTarget::MediaPlayer && key == "index") return 0;
    return -1;
  }
  void setNumber(int slot, uint64_t v) override {
    if (slot == 0) key_ = static_cast<int32_t>(v);
    else if (slot == 1) flipMode_ = static_cast<int32_t>(v);
  }
  int textSlot(std::string_view key) override { return target_ == FrameTarget::Remote && key == "streamID" ? 0 : -1; }
  void setText(int, std::string text) override { streamID_ = std::move(text); }

 private:
  FrameTarget target_;
  int32_t key_;
  std::string streamID_;
  int32_t flipMode_;
  std::vector<uint8_t> pixels_;
  const uint8_t* planes_[ORVA_VIDEO_FRAME_PLANES] = {};
  uint32_t lengths_[ORVA_VIDEO_FRAME_PLANES] = {};
  orva_video_frame_param param_{};
};

// {channel | streamID | index, videoFrameParam: {width, height, flipMode}}: a pattern frame
// in the format that target's frames have when the engine makes them. A size left out is
// the source's current size.
std::unique_ptr<CallbackArgs> emittedFrame(FrameTarget target, const rapidjson::Value& obj, std::string& err) {
  const Path root{};
  if (!obj.IsObject()) {
    fail(err, root, "an object", obj);
    return nullptr;
  }
  FrameRequest s;
  s.target = target;
  bool ok = true;
  switch (target) {
    case FrameTarget::Captured: ok = readOptional(obj, "channel", s.key, root, err); break;
    case FrameTarget::Remote: ok = readOptionalText(obj, "streamID", s.streamID, root, err); break;
    case FrameTarget::MediaPlayer: ok = readOptional(obj, "index", s.key, root, err); break;
  }
  if (!ok) return nullptr;
  if (const rapidjson::Value* p = member(obj, "videoFrameParam")) {
    const Path pp = root.child("videoFrameParam");
    if (!p->IsObject()) {
      fail(err, pp, "an object", *p);
      return nullptr;
    }
    if (!readOptional(*p, "width", s.width, pp, err) || !readOptional(*p, "height", s.height, pp, err) ||
        !readOptional(*p, "flipMode", s.flipMode, pp, err))
      return nullptr;
  }
  VideoSize dflt;
  switch (target) {
    case FrameTarget::Captured: dflt = engine().captureSize(s.key); break;
    case FrameTarget::Remote: dflt = engine().streamSize(s.streamID); break;
    case FrameTarget::MediaPlayer: dflt = {320, 180}; break;
  }
  if (s.width <= 0) s.width = dflt.width;
  if (s.height <= 0) s.height = dflt.height;
  s.format = target == FrameTarget::Remote ? ORVA_VIDEO_FRAME_FORMAT_RGBA32 : ORVA_VIDEO_FRAME_FORMAT_BGRA32;
  s.stride = target == FrameTarget::Remote ? s.width * 4 : img::alignedStride(std::max(1, s.width));
  return makeFrameArgs(s, err);
}

// ---------------------------------------------------------------------------------------
// Snapshot results: {seq, errorCode, channel | streamID | index, width?, height?}. The
// picture is the four-quadrant image at the size of what was snapshotted (or the given
// width/height); with a non-zero errorCode the image handle is NULL.

enum class SnapshotKind { Publisher, Player, MediaPlayer };

class SnapshotArgs final : public CallbackArgs {
 public:
  explicit SnapshotArgs(SnapshotKind kind) : kind_(kind) {}
  SnapshotArgs(const SnapshotArgs&) = delete;
  SnapshotArgs& operator=(const SnapshotArgs&) = delete;
  ~SnapshotArgs() override {
#if defined(_WIN32)
    if (bitmap_) DeleteObject(bitmap_);  // the engine owns the bitmap until the callback returned
#endif
  }

  bool load(const rapidjson::Value& obj, std::string& err) {
    const Path root{};
    if (!obj.IsObject()) return fail(err, root, "an object", obj);
    int32_t width = 0, height = 0;
    if (!readOptional(obj, "seq", seq_, root, err) || !readOptional(obj, "errorCode", errorCode_, root, err) ||
        !readOptional(obj, "width", width, root, err) || !readOptional(obj, "height", height, root, err))
      return false;
    VideoSize size;
    switch (kind_) {
      case SnapshotKind::Publisher:
        if (!readOptional(obj, "channel", key_, root, err)) return false;
        size = engine().captureSize(key_);
        break;
      case SnapshotKind::Player:
        if (!readOptionalText(obj, "streamID", streamID_, root, err)) return false;
        size = engine().streamSize(streamID_);
        break;
      case SnapshotKind::MediaPlayer:
        if (!readOptional(obj, "index", key_, root, err)) return false;
        size = {320, 180};
        break;
    }
    if (width > 0) size.width = width;
    if (height > 0) size.height = height;
    size.width = std::clamp(size.width, 1, kMaxFrameSide);
    size.height = std::clamp(size.height, 1, kMaxFrameSide);
    return makeImage(size, err);
  }

  void invoke(AnyFn cb, void* ctx) override {
    orva_image_handle image = errorCode_ == 0 ? handle() : nullptr;
    switch (kind_) {
      case SnapshotKind::Publisher:
        reinterpret_cast<orva_on_publisher_take_snapshot_result>(cb)(errorCode_, key_, image, seq_, ctx);
        break;
      case SnapshotKind::Player:
        reinterpret_cast<orva_on_player_take_snapshot_result>(cb)(errorCode_, streamID_.c_str(), image, seq_, ctx);
        break;
      case SnapshotKind::MediaPlayer:
        reinterpret_cast<orva_on_media_player_take_snapshot_result>(cb)(errorCode_, image, seq_, key_, ctx);
        break;
    }
  }
  int numberSlot(std::string_view key) override {
    if (key == "seq") return 0;
    if (key == "errorCode") return 1;
    if ((kind_ == SnapshotKind::Publisher && key == "channel") || (kind_ == SnapshotKind::MediaPlayer && key == "index"))
      return 2;
    return -1;
  }
  void setNumber(int slot, uint64_t v) override {
    const auto x = static_cast<int32_t>(v);
    if (slot == 0) seq_ = x;
    else if (slot == 1) errorCode_ = x;
    else if (slot == 2) key_ = x;
  }
  int textSlot(std::string_view key) override { return kind_ == SnapshotKind::Player && key == "streamID" ? 0 : -1; }
  void setText(int, std::string text) override { streamID_ = std::move(text); }

 private:
#if defined(_WIN32)
  // A top-down 32-bit DIB section, as GDI+ takes it.
  bool makeImage(VideoSize size, std::string& err) {
    BITMAPINFO bi{};
    bi.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
    bi.bmiHeader.biWidth = size.width;
    bi.bmiHeader.biHeight = -size.height;
    bi.bmiHeader.biPlanes = 1;
    bi.bmiHeader.biBitCount = 32;
    bi.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    bitmap_ = CreateDIBSection(nullptr, &bi, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!bitmap_ || !bits) {
      err = "CreateDIBSection failed";
      return false;
    }
    img::drawQuadrants(static_cast<uint8_t*>(bits), size.width, size.height, size.width * 4);
    return true;
  }
  orva_image_handle handle() { return bitmap_; }
  HBITMAP bitmap_ = nullptr;
#else
  // B,G,R,A rows top-down with a stride wider than the row, so consumers must honour it.
  bool makeImage(VideoSize size, std::string&) {
    const int stride = img::alignedStride(size.width + 1);
    pixels_.resize(static_cast<size_t>(stride) * static_cast<size_t>(size.height));
    img::drawQuadrants(pixels_.data(), size.width, size.height, stride);
    image_.data = pixels_.data();
    image_.dataLength = static_cast<uint32_t>(pixels_.size());
    image_.width = size.width;
    image_.height = size.height;
    image_.stride = stride;
    image_.format = ORVA_VIDEO_FRAME_FORMAT_BGRA32;
    return true;
  }
  orva_image_handle handle() { return &image_; }
  std::vector<uint8_t> pixels_;
  orva_pixel_image image_{};
#endif

  SnapshotKind kind_;
  int32_t seq_ = 0;
  int32_t errorCode_ = 0;
  int32_t key_ = 0;
  std::string streamID_;
};

template <class H, class... A>
std::unique_ptr<CallbackArgs> loadInto(const rapidjson::Value& payload, std::string& err, A&&... args) {
  auto h = std::make_unique<H>(std::forward<A>(args)...);
  if (!h->load(payload, err)) return nullptr;
  return h;
}

}  // namespace

int frameCallbackId(FrameTarget target) {
  switch (target) {
    case FrameTarget::Captured: return gen::cb::custom_video_render_captured_frame_data;
    case FrameTarget::Remote: return gen::cb::custom_video_render_remote_frame_data;
    case FrameTarget::MediaPlayer: return gen::cb::media_player_video_frame;
  }
  return -1;
}

std::unique_ptr<CallbackArgs> makeFrameArgs(const FrameRequest& request, std::string& err) {
  FrameRequest s = request;
  if (s.width <= 0 || s.height <= 0 || s.width > kMaxFrameSide || s.height > kMaxFrameSide) {
    err = "frame: width and height must be between 1 and " + std::to_string(kMaxFrameSide);
    return nullptr;
  }
  if (s.stride <= 0) s.stride = s.width * 4;
  std::vector<uint8_t> pixels;
  if (s.data) {
    pixels.assign(s.data, s.data + s.dataLength);
  } else {
    pixels.resize(static_cast<size_t>(s.stride) * static_cast<size_t>(s.height));
    const bool rgba = s.format == ORVA_VIDEO_FRAME_FORMAT_RGBA32;
    const bool fourBytes = s.format == ORVA_VIDEO_FRAME_FORMAT_BGRA32 || rgba ||
                           s.format == ORVA_VIDEO_FRAME_FORMAT_ARGB32 || s.format == ORVA_VIDEO_FRAME_FORMAT_ABGR32;
    if (fourBytes && s.stride >= s.width * 4) {
      img::drawPattern(pixels.data(), s.width, s.height, s.stride, 0, rgba ? img::Order::RGBA : img::Order::BGRA, true);
    } else {
      img::fillRamp(pixels.data(), pixels.size(), 0);
    }
  }
  return std::make_unique<FrameArgs>(s, std::move(pixels));
}

namespace gen {

std::unique_ptr<CallbackArgs> makeSpecialArgs_remote_sound_level_update(const rapidjson::Value& p, std::string& err) {
  return loadInto<RemoteSoundLevels>(p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_remote_sound_level_info_update(const rapidjson::Value& p, std::string& err) {
  return loadInto<RemoteSoundLevelInfos>(p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_remote_audio_spectrum_update(const rapidjson::Value& p, std::string& err) {
  return loadInto<RemoteSpectra>(p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_mixer_sound_level_update(const rapidjson::Value& p, std::string& err) {
  return loadInto<MixerSoundLevels>(p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_captured_audio_spectrum_update(const rapidjson::Value& p, std::string& err) {
  return loadInto<CapturedSpectrum>(p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_custom_video_render_captured_frame_data(const rapidjson::Value& p,
                                                                                      std::string& err) {
  return emittedFrame(FrameTarget::Captured, p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_custom_video_render_remote_frame_data(const rapidjson::Value& p,
                                                                                    std::string& err) {
  return emittedFrame(FrameTarget::Remote, p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_media_player_video_frame(const rapidjson::Value& p, std::string& err) {
  return emittedFrame(FrameTarget::MediaPlayer, p, err);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_publisher_take_snapshot_result(const rapidjson::Value& p, std::string& err) {
  return loadInto<SnapshotArgs>(p, err, SnapshotKind::Publisher);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_player_take_snapshot_result(const rapidjson::Value& p, std::string& err) {
  return loadInto<SnapshotArgs>(p, err, SnapshotKind::Player);
}
std::unique_ptr<CallbackArgs> makeSpecialArgs_media_player_take_snapshot_result(const rapidjson::Value& p,
                                                                                std::string& err) {
  return loadInto<SnapshotArgs>(p, err, SnapshotKind::MediaPlayer);
}

}  // namespace gen
}  // namespace orva::sim
