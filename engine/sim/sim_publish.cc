// Publish channels: configuration, preview with captured frames, publishing and snapshots.
#include <algorithm>
#include <memory>
#include <vector>

#include "sim_engine.h"
#include "sim_images.h"

namespace orva::sim {
namespace {

constexpr int kMaxSide = 4096;  // a test pattern larger than this is clamped

ChannelState& channel(int32_t c) { return engine().st.channels[static_cast<size_t>(c)]; }

// Captured frames of `c` while the preview started with `token` runs: the moving test
// pattern at the channel's capture size and fps, B,G,R,A rows bottom-up with a 64-byte
// aligned stride, from the frames thread.
void startCapturedFrames(int32_t c, uint64_t token) {
  struct Producer {
    std::vector<uint8_t> pixels;  // reused while the size stays
    VideoSize announced;
    bool first = true;
  };
  auto producer = std::make_shared<Producer>();
  startTicker(core().frames, 0, [c, token, producer]() -> uint32_t {
    orva_video_config cfg{};
    uint64_t frameNo = 0;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      ChannelState& ch = channel(c);
      if (ch.previewToken != token) return 0;
      cfg = ch.video;
      frameNo = ch.frameNo++;
    }
    const int w = std::clamp(cfg.captureWidth, 1, kMaxSide);
    const int h = std::clamp(cfg.captureHeight, 1, kMaxSide);
    const int fps = std::clamp(cfg.fps, 1, 120);
    const int stride = img::alignedStride(w);
    producer->pixels.resize(static_cast<size_t>(stride) * static_cast<size_t>(h));
    img::drawPattern(producer->pixels.data(), w, h, stride, frameNo, img::Order::BGRA, true);

    if (producer->first) {
      producer->first = false;
      core().postEvent([c] { gen::fire_publisher_captured_video_first_frame(c); });
    }
    if (producer->announced.width != w || producer->announced.height != h) {
      producer->announced = {w, h};
      core().postEvent([c, w, h] { gen::fire_publisher_video_size_changed(w, h, c); });
    }
    const uint8_t* planes[ORVA_VIDEO_FRAME_PLANES] = {producer->pixels.data()};
    const uint32_t lengths[ORVA_VIDEO_FRAME_PLANES] = {static_cast<uint32_t>(producer->pixels.size())};
    orva_video_frame_param param{};
    param.format = ORVA_VIDEO_FRAME_FORMAT_BGRA32;
    param.strides[0] = stride;
    param.width = w;
    param.height = h;
    gen::fire_custom_video_render_captured_frame_data(planes, lengths, &param, 0, c);
    return static_cast<uint32_t>(1000 / fps);
  });
}

// Quality reports of a publishing stream, once a second while it publishes.
void startPublishQuality(int32_t c, uint64_t token) {
  startTicker(core().events, 1000, [c, token]() -> uint32_t {
    orva_publish_stream_quality q{};
    std::string streamID;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      ChannelState& ch = channel(c);
      if (ch.publishToken != token) return 0;
      if (!ch.publishing) return 1000;
      streamID = ch.streamID;
      const double fps = ch.videoMuted ? 0 : ch.video.fps;
      q.videoCaptureFPS = fps;
      q.videoEncodeFPS = fps;
      q.videoSendFPS = fps;
      q.videoKBPS = ch.videoMuted ? 0 : ch.video.bitrate;
      q.audioCaptureFPS = ch.audioMuted ? 0 : 50;
      q.audioSendFPS = ch.audioMuted ? 0 : 50;
      q.audioKBPS = ch.audioMuted ? 0 : ch.audio.bitrate;
      q.rtt = 20;
      q.videoCodecID = ch.video.codecID;
      const uint64_t video = static_cast<uint64_t>(q.videoKBPS) * 1000 / 8;
      const uint64_t audio = static_cast<uint64_t>(q.audioKBPS) * 1000 / 8;
      ch.sentBytes += video + audio;
      q.videoSendBytes = ch.sentBytes - audio;
      q.audioSendBytes = audio;
      q.totalSendBytes = ch.sentBytes;
    }
    gen::fire_publisher_quality_update(streamID.c_str(), &q);
    return 1000;
  });
}

// Stops publishing on `c` (NO_PUBLISH, and the room learns the stream is gone). Call with
// the engine lock held.
void stopPublishingLocked(int32_t c) {
  ChannelState& ch = channel(c);
  if (!ch.publishToken) return;
  if (ch.publishing) announceOwnStreamLocked(c, ORVA_UPDATE_TYPE_DELETE);
  const std::string streamID = ch.streamID;
  core().postEvent([streamID] {
    gen::fire_publisher_state_update(streamID.c_str(), ORVA_PUBLISHER_STATE_NO_PUBLISH, 0, "");
  });
  ch.publishToken = 0;
  ch.publishing = false;
  ch.streamID.clear();
  ch.roomID.clear();
}

}  // namespace
}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

ORVA_API int32_t ORVA_CALL orva_vantix_set_video_config(const orva_video_config* config, int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_set_video_config(config, channel);
    if (auto code = refusal("orva_vantix_set_video_config")) return *code;
    if (!config || !validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.channels[static_cast<size_t>(channel)].video = *config;
    return 0;
  });
}

ORVA_API orva_video_config ORVA_CALL orva_vantix_get_video_config(int32_t channel) {
  return guarded<orva_video_config>(orva_video_config{}, [&] {
    gen::journal_get_video_config(channel);
    constexpr const char* fn = "orva_vantix_get_video_config";
    if (core().scripted.get(fn)) return gen::scriptedStruct<orva_video_config>(fn);
    if (!validChannel(channel)) return orva_video_config{};
    std::lock_guard<std::mutex> lock(engine().mu);
    return engine().st.channels[static_cast<size_t>(channel)].video;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_config_by_channel(const orva_audio_config* config, int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_set_audio_config_by_channel(config, channel);
    if (auto code = refusal("orva_vantix_set_audio_config_by_channel")) return *code;
    if (!config || !validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.channels[static_cast<size_t>(channel)].audio = *config;
    return 0;
  });
}

ORVA_API orva_audio_config ORVA_CALL orva_vantix_get_audio_config_by_channel(int32_t channel) {
  return guarded<orva_audio_config>(orva_audio_config{}, [&] {
    gen::journal_get_audio_config_by_channel(channel);
    constexpr const char* fn = "orva_vantix_get_audio_config_by_channel";
    if (core().scripted.get(fn)) return gen::scriptedStruct<orva_audio_config>(fn);
    if (!validChannel(channel)) return orva_audio_config{};
    std::lock_guard<std::mutex> lock(engine().mu);
    return engine().st.channels[static_cast<size_t>(channel)].audio;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_mute_publish_stream_audio(bool mute, int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_mute_publish_stream_audio(mute, channel);
    if (auto code = refusal("orva_vantix_mute_publish_stream_audio")) return *code;
    if (!validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.channels[static_cast<size_t>(channel)].audioMuted = mute;
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_mute_publish_stream_video(bool mute, int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_mute_publish_stream_video(mute, channel);
    if (auto code = refusal("orva_vantix_mute_publish_stream_video")) return *code;
    if (!validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.channels[static_cast<size_t>(channel)].videoMuted = mute;
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_start_preview(const orva_canvas* canvas, int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_preview(canvas, channel);
    if (auto code = refusal("orva_vantix_start_preview")) return *code;
    if (!validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    ChannelState& ch = engine().st.channels[static_cast<size_t>(channel)];
    if (ch.previewToken) return 0;  // already running: a second start changes nothing
    ch.previewToken = Engine::newToken();
    ch.frameNo = 0;
    engine().updateActivityLocked();
    startCapturedFrames(channel, ch.previewToken);
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_preview(int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_preview(channel);
    if (auto code = refusal("orva_vantix_stop_preview")) return *code;
    if (!validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.channels[static_cast<size_t>(channel)].previewToken = 0;
    engine().updateActivityLocked();
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_start_publishing_stream_with_config(const char* streamID,
                                                                          const orva_publisher_config* config,
                                                                          int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_publishing_stream_with_config(streamID, config, channel);
    if (auto code = refusal("orva_vantix_start_publishing_stream_with_config")) return *code;
    if (!validChannel(channel) || !streamID || !*streamID) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    EngineState& st = engine().st;
    ChannelState& ch = st.channels[static_cast<size_t>(channel)];
    if (ch.publishToken && ch.streamID == streamID) return 0;
    stopPublishingLocked(channel);  // another stream on this channel is replaced
    // Without a room in the configuration the stream goes to the room already joined.
    std::string room = config ? fixedText(config->roomID, sizeof config->roomID) : std::string();
    if (room.empty() && !st.rooms.empty()) room = st.rooms.begin()->first;
    const uint64_t token = Engine::newToken();
    ch.publishToken = token;
    ch.publishing = false;
    ch.streamID = streamID;
    ch.roomID = room;
    ch.sentBytes = 0;
    engine().updateActivityLocked();
    const std::string id = streamID;
    core().postEvent([id] {
      gen::fire_publisher_state_update(id.c_str(), ORVA_PUBLISHER_STATE_PUBLISH_REQUESTING, 0, "");
    });
    core().postEvent([channel, token, id] {
      {
        std::lock_guard<std::mutex> lock2(engine().mu);
        ChannelState& c = engine().st.channels[static_cast<size_t>(channel)];
        if (c.publishToken != token) return;
        c.publishing = true;
        announceOwnStreamLocked(channel, ORVA_UPDATE_TYPE_ADD);  // posted: arrives after PUBLISHING
      }
      gen::fire_publisher_state_update(id.c_str(), ORVA_PUBLISHER_STATE_PUBLISHING, 0, "");
    }, std::chrono::milliseconds(20));
    startPublishQuality(channel, token);
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_publishing_stream(int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_publishing_stream(channel);
    if (auto code = refusal("orva_vantix_stop_publishing_stream")) return *code;
    if (!validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    stopPublishingLocked(channel);
    engine().updateActivityLocked();
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_take_publish_stream_snapshot(int32_t channel, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_take_publish_stream_snapshot(channel, seq);
    constexpr const char* fn = "orva_vantix_take_publish_stream_snapshot";
    if (!validChannel(channel) && !refusal(fn)) return kErrInvalid;
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::publisher_take_snapshot_result;
    call.base = PayloadBuilder().setInt("channel", channel).take();
    return core().startAsync(seq, std::move(call));
  });
}
