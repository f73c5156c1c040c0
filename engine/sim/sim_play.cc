// Playing streams (state, remote frames, quality) and the sound level and spectrum monitors.
#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "sim_engine.h"
#include "sim_images.h"

namespace orva::sim {
namespace {

constexpr uint32_t kSpectrumBands = 64;

// What a played stream looks like right now: its publisher's size and fps, or nothing when
// no one sends it. This engine's own streams are its channels' encoded output; the peer's
// stream is always there. Call with the engine lock held.
struct Source {
  bool available = false;
  VideoSize size;
  int32_t fps = 15;
};
Source sourceLocked(const std::string& streamID) {
  if (streamID == kPeerStreamID) return {true, {640, 360}, 15};
  const int c = engine().channelOfStreamLocked(streamID);
  if (c < 0) return {};
  const ChannelState& ch = engine().st.channels[static_cast<size_t>(c)];
  return {true, {std::clamp(ch.video.encodeWidth, 1, 4096), std::clamp(ch.video.encodeHeight, 1, 4096)},
          std::clamp(ch.video.fps, 1, 120)};
}

PlayState* playLocked(const std::string& streamID, uint64_t token) {
  auto it = engine().st.plays.find(streamID);
  return it != engine().st.plays.end() && it->second.token == token ? &it->second : nullptr;
}

// REQUESTING until someone sends the stream, then PLAYING with first-frame and size events;
// quality once a second while playing. Runs on the events loop.
void startPlayStates(const std::string& streamID, uint64_t token) {
  auto lastQuality = std::make_shared<std::chrono::steady_clock::time_point>(std::chrono::steady_clock::now());
  startTicker(core().events, 20, [streamID, token, lastQuality]() -> uint32_t {
    bool nowPlaying = false;
    bool report = false;
    VideoSize size;
    orva_play_stream_quality q{};
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      PlayState* p = playLocked(streamID, token);
      if (!p) return 0;
      const Source src = sourceLocked(streamID);
      if (p->state != ORVA_PLAYER_STATE_PLAYING) {
        if (!src.available) return 200;
        p->state = ORVA_PLAYER_STATE_PLAYING;
        p->size = src.size;
        nowPlaying = true;
        size = src.size;
      } else if (std::chrono::steady_clock::now() - *lastQuality >= std::chrono::seconds(1)) {
        *lastQuality = std::chrono::steady_clock::now();
        report = true;
        q.videoRecvFPS = q.videoDecodeFPS = q.videoRenderFPS = q.videoDejitterFPS = src.available ? src.fps : 0;
        q.audioRecvFPS = q.audioDecodeFPS = q.audioRenderFPS = q.audioDejitterFPS = 50;
        q.videoKBPS = src.available ? 600 : 0;
        q.audioKBPS = 48;
        q.rtt = 20;
        q.delay = 80;
        p->recvBytes += (600 + 48) * 1000 / 8;
        q.totalRecvBytes = p->recvBytes;
      }
    }
    if (nowPlaying) {
      gen::fire_player_state_update(streamID.c_str(), ORVA_PLAYER_STATE_PLAYING, 0, "");
      gen::fire_player_recv_audio_first_frame(streamID.c_str());
      gen::fire_player_recv_video_first_frame(streamID.c_str());
      gen::fire_player_video_size_changed(streamID.c_str(), size.width, size.height);
    }
    if (report) gen::fire_player_quality_update(streamID.c_str(), &q);
    return 100;
  });
}

// Remote frames of a playing stream: R,G,B,A packed rows bottom-up at the publisher's
// size and fps, from the frames thread.
void startRemoteFrames(const std::string& streamID, uint64_t token) {
  auto pixels = std::make_shared<std::vector<uint8_t>>();
  startTicker(core().frames, 30, [streamID, token, pixels]() -> uint32_t {
    Source src;
    uint64_t frameNo = 0;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      PlayState* p = playLocked(streamID, token);
      if (!p) return 0;
      if (p->state != ORVA_PLAYER_STATE_PLAYING) return 50;
      src = sourceLocked(streamID);
      if (!src.available) return 100;  // the publisher stopped: no frames until it is back
      frameNo = p->frameNo++;
    }
    const int w = src.size.width, h = src.size.height;
    pixels->resize(static_cast<size_t>(w) * static_cast<size_t>(h) * 4);
    img::drawPattern(pixels->data(), w, h, w * 4, frameNo, img::Order::RGBA, true);
    const uint8_t* planes[ORVA_VIDEO_FRAME_PLANES] = {pixels->data()};
    const uint32_t lengths[ORVA_VIDEO_FRAME_PLANES] = {static_cast<uint32_t>(pixels->size())};
    orva_video_frame_param param{};
    param.format = ORVA_VIDEO_FRAME_FORMAT_RGBA32;
    param.strides[0] = w * 4;
    param.width = w;
    param.height = h;
    gen::fire_custom_video_render_remote_frame_data(planes, lengths, &param, 0, streamID.c_str());
    return static_cast<uint32_t>(1000 / src.fps);
  });
}

// A level between 0 and 100 that wanders with time, different per stream.
float levelAt(uint64_t tick, size_t salt) {
  return static_cast<float>(40.0 + 35.0 * std::sin(0.35 * static_cast<double>(tick) + static_cast<double>(salt)));
}

std::vector<std::string> playingStreamsLocked() {
  std::vector<std::string> out;
  for (const auto& [id, p] : engine().st.plays) {
    if (p.state == ORVA_PLAYER_STATE_PLAYING) out.push_back(id);
  }
  return out;
}

}  // namespace
}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

ORVA_API int32_t ORVA_CALL orva_vantix_start_playing_stream_with_config(const char* streamID, const orva_canvas* canvas,
                                                                       const orva_player_config* config) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_playing_stream_with_config(streamID, canvas, config);
    if (auto code = refusal("orva_vantix_start_playing_stream_with_config")) return *code;
    if (!streamID || !*streamID) return kErrInvalid;
    const std::string id = streamID;
    std::lock_guard<std::mutex> lock(engine().mu);
    if (engine().st.plays.count(id)) return 0;  // already playing
    const uint64_t token = Engine::newToken();
    PlayState& p = engine().st.plays[id];
    p.token = token;
    p.state = ORVA_PLAYER_STATE_PLAY_REQUESTING;
    engine().updateActivityLocked();
    core().postEvent([id] {
      gen::fire_player_state_update(id.c_str(), ORVA_PLAYER_STATE_PLAY_REQUESTING, 0, "");
    });
    startPlayStates(id, token);
    startRemoteFrames(id, token);
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_playing_stream(const char* streamID) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_playing_stream(streamID);
    if (auto code = refusal("orva_vantix_stop_playing_stream")) return *code;
    const std::string id = streamID ? streamID : "";
    std::lock_guard<std::mutex> lock(engine().mu);
    if (!engine().st.plays.erase(id)) return 0;
    engine().updateActivityLocked();
    core().postEvent([id] { gen::fire_player_state_update(id.c_str(), ORVA_PLAYER_STATE_NO_PLAY, 0, ""); });
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_take_play_stream_snapshot(const char* streamID, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_take_play_stream_snapshot(streamID, seq);
    AsyncCall call;
    call.fn = "orva_vantix_take_play_stream_snapshot";
    call.resultCallback = gen::cb::player_take_snapshot_result;
    call.base = PayloadBuilder().setText("streamID", streamID ? streamID : "").take();
    return core().startAsync(seq, std::move(call));
  });
}

// ---------------------------------------------------------------------------------------
// Monitors

ORVA_API int32_t ORVA_CALL orva_vantix_start_sound_level_monitor_with_config(const orva_sound_level_config* config) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_sound_level_monitor_with_config(config);
    if (auto code = refusal("orva_vantix_start_sound_level_monitor_with_config")) return *code;
    std::lock_guard<std::mutex> lock(engine().mu);
    MonitorState& m = engine().st.soundLevel;
    // A too short interval would flood the caller; the engine's floor is 10 ms.
    m.millisecond = std::max<uint32_t>(config ? config->millisecond : 100, 10);
    m.enableVAD = config && config->enableVAD;
    m.token = Engine::newToken();
    m.tick = 0;
    const uint64_t token = m.token;
    startTicker(core().events, m.millisecond, [token]() -> uint32_t {
      float captured = 0;
      bool vad = false;
      uint32_t period = 0;
      std::vector<orva_stream_sound_level> remote;
      std::vector<orva_stream_sound_level_info> remoteInfo;
      {
        std::lock_guard<std::mutex> lock2(engine().mu);
        MonitorState& mon = engine().st.soundLevel;
        if (mon.token != token) return 0;
        const uint64_t t = mon.tick++;
        captured = engine().st.micMuted ? 0.0f : levelAt(t, 0);
        vad = mon.enableVAD;
        period = mon.millisecond;
        const auto streams = playingStreamsLocked();
        for (size_t i = 0; i < streams.size(); ++i) {
          orva_stream_sound_level s{};
          setFixed(s.streamID, sizeof s.streamID, streams[i]);
          s.soundLevel = levelAt(t, i + 1);
          remote.push_back(s);
          orva_stream_sound_level_info info{};
          setFixed(info.streamID, sizeof info.streamID, streams[i]);
          info.soundLevel = s.soundLevel;
          info.vad = s.soundLevel > 30 ? 1 : 0;
          remoteInfo.push_back(info);
        }
      }
      gen::fire_captured_sound_level_update(captured);
      if (vad) gen::fire_captured_sound_level_info_update(captured, captured > 30 ? 1 : 0);
      gen::fire_remote_sound_level_update(remote.data(), static_cast<uint32_t>(remote.size()));
      if (vad) gen::fire_remote_sound_level_info_update(remoteInfo.data(), static_cast<uint32_t>(remoteInfo.size()));
      return period;
    });
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_sound_level_monitor(void) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_sound_level_monitor();
    if (auto code = refusal("orva_vantix_stop_sound_level_monitor")) return *code;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.soundLevel.token = 0;
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_start_audio_spectrum_monitor(uint32_t millisecond) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_audio_spectrum_monitor(millisecond);
    if (auto code = refusal("orva_vantix_start_audio_spectrum_monitor")) return *code;
    std::lock_guard<std::mutex> lock(engine().mu);
    MonitorState& m = engine().st.spectrum;
    m.millisecond = std::max<uint32_t>(millisecond, 10);
    m.token = Engine::newToken();
    m.tick = 0;
    const uint64_t token = m.token;
    startTicker(core().events, m.millisecond, [token]() -> uint32_t {
      std::vector<float> captured(kSpectrumBands);
      std::vector<std::string> streams;
      uint32_t period = 0;
      uint64_t t = 0;
      {
        std::lock_guard<std::mutex> lock2(engine().mu);
        MonitorState& mon = engine().st.spectrum;
        if (mon.token != token) return 0;
        t = mon.tick++;
        period = mon.millisecond;
        streams = playingStreamsLocked();
      }
      auto fill = [t](std::vector<float>& bands, size_t salt) {
        for (size_t i = 0; i < bands.size(); ++i) {
          bands[i] = static_cast<float>(std::max(0.0, 60.0 - static_cast<double>(i) * 0.8 +
                                                         10.0 * std::sin(0.5 * static_cast<double>(t + i + salt))));
        }
      };
      fill(captured, 0);
      gen::fire_captured_audio_spectrum_update(captured.data(), kSpectrumBands);
      std::vector<std::vector<float>> bands(streams.size(), std::vector<float>(kSpectrumBands));
      std::vector<orva_stream_audio_spectrum> spectra(streams.size());
      for (size_t i = 0; i < streams.size(); ++i) {
        fill(bands[i], i + 1);
        setFixed(spectra[i].streamID, sizeof spectra[i].streamID, streams[i]);
        spectra[i].spectrumList = bands[i].data();
        spectra[i].spectrumListCount = kSpectrumBands;
      }
      gen::fire_remote_audio_spectrum_update(spectra.data(), static_cast<uint32_t>(spectra.size()));
      return period;
    });
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_audio_spectrum_monitor(void) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_audio_spectrum_monitor();
    if (auto code = refusal("orva_vantix_stop_audio_spectrum_monitor")) return *code;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.spectrum.token = 0;
    return 0;
  });
}
