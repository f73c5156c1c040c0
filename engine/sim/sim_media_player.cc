// Media players (indexes 0-3): loading, playing with progress and BGRA frames, snapshots;
// and audio effect players (indexes 0-3).
#include <algorithm>
#include <memory>
#include <vector>

#include "sim_engine.h"
#include "sim_images.h"

namespace orva::sim {
namespace {

constexpr int32_t kMediaWidth = 320;
constexpr int32_t kMediaHeight = 180;
constexpr int32_t kMediaFps = 15;

bool validPlayer(int32_t index) {
  return index >= 0 && index < kMediaPlayers && engine().st.mediaPlayers[static_cast<size_t>(index)].exists;
}
MediaPlayerState& player(int32_t index) { return engine().st.mediaPlayers[static_cast<size_t>(index)]; }

bool validEffectPlayer(int32_t index) {
  return index >= 0 && index < kEffectPlayers && engine().st.effectPlayers[static_cast<size_t>(index)].exists;
}

void fireMediaState(int32_t index, int32_t state) {
  core().postEvent([index, state] { gen::fire_media_player_state_update(state, 0, index); });
}

// Progress at the player's interval and frames at 15 fps while the start that made `token`
// lasts. Call with the engine lock held.
void startPlayingLocked(int32_t index) {
  MediaPlayerState& p = player(index);
  p.token = Engine::newToken();
  p.state = ORVA_MEDIA_PLAYER_STATE_PLAYING;
  p.since = std::chrono::steady_clock::now();
  const uint64_t token = p.token;
  fireMediaState(index, ORVA_MEDIA_PLAYER_STATE_PLAYING);
  if (!p.sizeAnnounced) {
    p.sizeAnnounced = true;
    core().postEvent([index] { gen::fire_media_player_video_size_changed(kMediaWidth, kMediaHeight, index); });
  }

  startTicker(core().events, static_cast<uint32_t>(std::max<uint64_t>(p.progressIntervalMs, 10)),
              [index, token]() -> uint32_t {
    uint64_t progress = 0;
    bool ended = false;
    uint32_t next = 0;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      MediaPlayerState& mp = player(index);
      if (!mp.exists || mp.token != token) return 0;
      progress = mp.progressNow();
      if (progress >= mp.durationMs) {
        if (mp.repeat) {
          mp.progressMs = 0;
          mp.since = std::chrono::steady_clock::now();
          progress = 0;
        } else {
          mp.state = ORVA_MEDIA_PLAYER_STATE_PLAY_ENDED;
          mp.progressMs = mp.durationMs;
          mp.token = 0;
          ended = true;
        }
      }
      next = static_cast<uint32_t>(std::max<uint64_t>(mp.progressIntervalMs, 10));
    }
    gen::fire_media_player_playing_progress(progress, index);
    gen::fire_media_player_rendering_progress(progress, index);
    if (ended) {
      gen::fire_media_player_state_update(ORVA_MEDIA_PLAYER_STATE_PLAY_ENDED, 0, index);
      return 0;
    }
    return next;
  });

  auto pixels = std::make_shared<std::vector<uint8_t>>();
  startTicker(core().frames, 0, [index, token, pixels]() -> uint32_t {
    uint64_t frameNo = 0;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      MediaPlayerState& mp = player(index);
      if (!mp.exists || mp.token != token) return 0;
      frameNo = mp.frameNo++;
    }
    const int stride = img::alignedStride(kMediaWidth);
    pixels->resize(static_cast<size_t>(stride) * kMediaHeight);
    img::drawPattern(pixels->data(), kMediaWidth, kMediaHeight, stride, frameNo, img::Order::BGRA, true);
    const uint8_t* planes[ORVA_VIDEO_FRAME_PLANES] = {pixels->data()};
    const uint32_t lengths[ORVA_VIDEO_FRAME_PLANES] = {static_cast<uint32_t>(pixels->size())};
    orva_video_frame_param param{};
    param.format = ORVA_VIDEO_FRAME_FORMAT_BGRA32;
    param.strides[0] = stride;
    param.width = kMediaWidth;
    param.height = kMediaHeight;
    gen::fire_media_player_video_frame(planes, lengths, &param, 0, index);
    return 1000 / kMediaFps;
  });
}

// Loading, with any of the three load entry points.
int32_t load(const char* fn, const char* resource, int64_t startPosition, int32_t* seq, int32_t index) {
  if (auto code = refusal(fn)) {
    if (seq) *seq = core().nextSeq();
    return *code;
  }
  {
    std::lock_guard<std::mutex> lock(engine().mu);
    if (!validPlayer(index)) return kErrInvalid;
  }
  const std::string res = resource ? resource : "";
  AsyncCall call;
  call.fn = fn;
  call.resultCallback = gen::cb::media_player_load_resource;
  call.base = PayloadBuilder().setInt("index", index).take();
  call.finish = [index, res, startPosition](const rapidjson::Document& payload) {
    const rapidjson::Value* code = member(payload, "errorCode");
    if (!code || (code->IsNumber() && code->GetDouble() == 0)) {
      std::lock_guard<std::mutex> lock(engine().mu);
      if (validPlayer(index)) {
        MediaPlayerState& p = player(index);
        p.token = 0;
        p.state = ORVA_MEDIA_PLAYER_STATE_NO_PLAY;
        p.resource = res;
        p.progressMs = static_cast<uint64_t>(std::clamp<int64_t>(startPosition, 0, static_cast<int64_t>(p.durationMs)));
      }
    }
    fireJson(gen::cb::media_player_load_resource, payload);
  };
  return core().startAsync(seq, std::move(call));
}

// Entry point bodies that only need a valid player: refusal, index check, then `act`.
template <class F>
int32_t withPlayer(const char* fn, int32_t index, F&& act) {
  if (auto code = refusal(fn)) return *code;
  std::lock_guard<std::mutex> lock(engine().mu);
  if (!validPlayer(index)) return kErrInvalid;
  act(player(index));
  return 0;
}

template <class T, class F>
T readPlayer(const char* fn, int32_t index, T fallback, F&& get) {
  if (auto v = scriptedNumber<T>(fn)) return *v;
  std::lock_guard<std::mutex> lock(engine().mu);
  if (!validPlayer(index)) return fallback;
  return get(player(index));
}

template <class F>
int32_t withEffectPlayer(const char* fn, int32_t index, F&& act) {
  if (auto code = refusal(fn)) return *code;
  std::lock_guard<std::mutex> lock(engine().mu);
  if (!validEffectPlayer(index)) return kErrInvalid;
  act(engine().st.effectPlayers[static_cast<size_t>(index)]);
  return 0;
}

void fireEffectState(int32_t index, uint32_t id, int32_t state) {
  core().postEvent([index, id, state] { gen::fire_audio_effect_play_state_update(id, state, 0, index); });
}

}  // namespace
}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

ORVA_API int32_t ORVA_CALL orva_vantix_create_media_player(void) {
  return guarded<int32_t>(-1, [&] {
    gen::journal_create_media_player();
    if (auto v = scriptedNumber<int32_t>("orva_vantix_create_media_player")) return *v;
    std::lock_guard<std::mutex> lock(engine().mu);
    for (int32_t i = 0; i < kMediaPlayers; ++i) {
      MediaPlayerState& p = player(i);
      if (!p.exists) {
        p = MediaPlayerState{};
        p.exists = true;
        return i;
      }
    }
    return -1;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_destroy_media_player(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_destroy_media_player(index);
    return withPlayer("orva_vantix_destroy_media_player", index, [](MediaPlayerState& p) { p = MediaPlayerState{}; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_load_resource(const char* path, int32_t* seq, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_load_resource(path, seq, index);
    return load("orva_vantix_media_player_load_resource", path, 0, seq, index);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_load_resource_with_position(const char* path, int64_t startPosition,
                                                                               int32_t* seq, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_load_resource_with_position(path, startPosition, seq, index);
    return load("orva_vantix_media_player_load_resource_with_position", path, startPosition, seq, index);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_load_copyrighted_music_resource_with_position(
    const char* resourceID, int64_t startPosition, int32_t* seq, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_load_copyrighted_music_resource_with_position(resourceID, startPosition, seq, index);
    return load("orva_vantix_media_player_load_copyrighted_music_resource_with_position", resourceID, startPosition,
                seq, index);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_start(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_start(index);
    return withPlayer("orva_vantix_media_player_start", index, [index](MediaPlayerState& p) {
      if (p.state == ORVA_MEDIA_PLAYER_STATE_PLAYING) return;
      if (p.state == ORVA_MEDIA_PLAYER_STATE_PLAY_ENDED) p.progressMs = 0;  // from the start again
      startPlayingLocked(index);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_stop(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_stop(index);
    return withPlayer("orva_vantix_media_player_stop", index, [index](MediaPlayerState& p) {
      if (p.state == ORVA_MEDIA_PLAYER_STATE_NO_PLAY) return;
      p.token = 0;
      p.state = ORVA_MEDIA_PLAYER_STATE_NO_PLAY;
      p.progressMs = 0;
      fireMediaState(index, ORVA_MEDIA_PLAYER_STATE_NO_PLAY);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_pause(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_pause(index);
    return withPlayer("orva_vantix_media_player_pause", index, [index](MediaPlayerState& p) {
      if (p.state != ORVA_MEDIA_PLAYER_STATE_PLAYING) return;
      p.progressMs = p.progressNow();
      p.token = 0;
      p.state = ORVA_MEDIA_PLAYER_STATE_PAUSING;
      fireMediaState(index, ORVA_MEDIA_PLAYER_STATE_PAUSING);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_resume(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_resume(index);
    return withPlayer("orva_vantix_media_player_resume", index, [index](MediaPlayerState& p) {
      if (p.state == ORVA_MEDIA_PLAYER_STATE_PAUSING) startPlayingLocked(index);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_seek_to(uint64_t millisecond, int32_t* seq, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_seek_to(millisecond, seq, index);
    constexpr const char* fn = "orva_vantix_media_player_seek_to";
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      if (!validPlayer(index) && !refusal(fn)) return kErrInvalid;
    }
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::media_player_seek_to;
    call.base = PayloadBuilder().setInt("index", index).take();
    call.finish = [index, millisecond](const rapidjson::Document& payload) {
      const rapidjson::Value* code = member(payload, "errorCode");
      if (!code || (code->IsNumber() && code->GetDouble() == 0)) {
        std::lock_guard<std::mutex> lock(engine().mu);
        if (validPlayer(index)) {
          MediaPlayerState& p = player(index);
          p.progressMs = std::min(millisecond, p.durationMs);
          p.since = std::chrono::steady_clock::now();
        }
      }
      fireJson(gen::cb::media_player_seek_to, payload);
    };
    return core().startAsync(seq, std::move(call));
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_enable_repeat(bool enable, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_enable_repeat(enable, index);
    return withPlayer("orva_vantix_media_player_enable_repeat", index, [enable](MediaPlayerState& p) { p.repeat = enable; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_volume(int32_t volume, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_set_volume(volume, index);
    return withPlayer("orva_vantix_media_player_set_volume", index, [volume](MediaPlayerState& p) {
      p.playVolume = p.publishVolume = std::clamp(volume, 0, 200);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_play_volume(int32_t volume, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_set_play_volume(volume, index);
    return withPlayer("orva_vantix_media_player_set_play_volume", index,
                      [volume](MediaPlayerState& p) { p.playVolume = std::clamp(volume, 0, 200); });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_publish_volume(int32_t volume, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_set_publish_volume(volume, index);
    return withPlayer("orva_vantix_media_player_set_publish_volume", index,
                      [volume](MediaPlayerState& p) { p.publishVolume = std::clamp(volume, 0, 200); });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_get_play_volume(int32_t index) {
  return guarded<int32_t>(0, [&] {
    gen::journal_media_player_get_play_volume(index);
    return readPlayer<int32_t>("orva_vantix_media_player_get_play_volume", index, 0,
                               [](const MediaPlayerState& p) { return p.playVolume; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_get_publish_volume(int32_t index) {
  return guarded<int32_t>(0, [&] {
    gen::journal_media_player_get_publish_volume(index);
    return readPlayer<int32_t>("orva_vantix_media_player_get_publish_volume", index, 0,
                               [](const MediaPlayerState& p) { return p.publishVolume; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_progress_interval(uint64_t millisecond, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_set_progress_interval(millisecond, index);
    return withPlayer("orva_vantix_media_player_set_progress_interval", index,
                      [millisecond](MediaPlayerState& p) { p.progressIntervalMs = millisecond; });
  });
}

ORVA_API uint64_t ORVA_CALL orva_vantix_media_player_get_total_duration(int32_t index) {
  return guarded<uint64_t>(0, [&] {
    gen::journal_media_player_get_total_duration(index);
    return readPlayer<uint64_t>("orva_vantix_media_player_get_total_duration", index, 0,
                                [](const MediaPlayerState& p) { return p.resource.empty() ? 0 : p.durationMs; });
  });
}

ORVA_API uint64_t ORVA_CALL orva_vantix_media_player_get_current_progress(int32_t index) {
  return guarded<uint64_t>(0, [&] {
    gen::journal_media_player_get_current_progress(index);
    return readPlayer<uint64_t>("orva_vantix_media_player_get_current_progress", index, 0,
                                [](const MediaPlayerState& p) { return p.progressNow(); });
  });
}

ORVA_API uint64_t ORVA_CALL orva_vantix_media_player_get_current_rendering_progress(int32_t index) {
  return guarded<uint64_t>(0, [&] {
    gen::journal_media_player_get_current_rendering_progress(index);
    return readPlayer<uint64_t>("orva_vantix_media_player_get_current_rendering_progress", index, 0,
                                [](const MediaPlayerState& p) { return p.progressNow(); });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_get_current_state(int32_t index) {
  return guarded<int32_t>(0, [&] {
    gen::journal_media_player_get_current_state(index);
    return readPlayer<int32_t>("orva_vantix_media_player_get_current_state", index, 0,
                               [](const MediaPlayerState& p) { return p.state; });
  });
}

ORVA_API orva_media_player_media_info ORVA_CALL orva_vantix_media_player_get_media_info(int32_t index) {
  return guarded<orva_media_player_media_info>(orva_media_player_media_info{}, [&] {
    gen::journal_media_player_get_media_info(index);
    constexpr const char* fn = "orva_vantix_media_player_get_media_info";
    if (core().scripted.get(fn)) return gen::scriptedStruct<orva_media_player_media_info>(fn);
    std::lock_guard<std::mutex> lock(engine().mu);
    if (!validPlayer(index) || player(index).resource.empty()) return orva_media_player_media_info{};
    return orva_media_player_media_info{kMediaWidth, kMediaHeight, kMediaFps};
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_media_player_take_snapshot(int32_t* seq, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_media_player_take_snapshot(seq, index);
    constexpr const char* fn = "orva_vantix_media_player_take_snapshot";
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      if (!validPlayer(index) && !refusal(fn)) return kErrInvalid;
    }
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::media_player_take_snapshot_result;
    call.base = PayloadBuilder().setInt("index", index).take();
    return core().startAsync(seq, std::move(call));
  });
}

// ---------------------------------------------------------------------------------------
// Audio effect players

ORVA_API int32_t ORVA_CALL orva_vantix_create_audio_effect_player(void) {
  return guarded<int32_t>(-1, [&] {
    gen::journal_create_audio_effect_player();
    if (auto v = scriptedNumber<int32_t>("orva_vantix_create_audio_effect_player")) return *v;
    std::lock_guard<std::mutex> lock(engine().mu);
    for (int32_t i = 0; i < kEffectPlayers; ++i) {
      EffectPlayerState& p = engine().st.effectPlayers[static_cast<size_t>(i)];
      if (!p.exists) {
        p = EffectPlayerState{};
        p.exists = true;
        return i;
      }
    }
    return -1;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_destroy_audio_effect_player(int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_destroy_audio_effect_player(index);
    return withEffectPlayer("orva_vantix_destroy_audio_effect_player", index,
                            [](EffectPlayerState& p) { p = EffectPlayerState{}; });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_start(uint32_t audioEffectID, const char* path,
                                                                const orva_audio_effect_play_config* config,
                                                                int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_audio_effect_player_start(audioEffectID, path, config, index);
    return withEffectPlayer("orva_vantix_audio_effect_player_start", index, [&](EffectPlayerState& p) {
      p.effects[audioEffectID] = ORVA_AUDIO_EFFECT_PLAY_STATE_PLAYING;
      fireEffectState(index, audioEffectID, ORVA_AUDIO_EFFECT_PLAY_STATE_PLAYING);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_stop(uint32_t audioEffectID, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_audio_effect_player_stop(audioEffectID, index);
    return withEffectPlayer("orva_vantix_audio_effect_player_stop", index, [&](EffectPlayerState& p) {
      if (!p.effects.erase(audioEffectID)) return;
      fireEffectState(index, audioEffectID, ORVA_AUDIO_EFFECT_PLAY_STATE_NO_PLAY);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_pause(uint32_t audioEffectID, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_audio_effect_player_pause(audioEffectID, index);
    return withEffectPlayer("orva_vantix_audio_effect_player_pause", index, [&](EffectPlayerState& p) {
      auto it = p.effects.find(audioEffectID);
      if (it == p.effects.end() || it->second != ORVA_AUDIO_EFFECT_PLAY_STATE_PLAYING) return;
      it->second = ORVA_AUDIO_EFFECT_PLAY_STATE_PAUSING;
      fireEffectState(index, audioEffectID, ORVA_AUDIO_EFFECT_PLAY_STATE_PAUSING);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_resume(uint32_t audioEffectID, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_audio_effect_player_resume(audioEffectID, index);
    return withEffectPlayer("orva_vantix_audio_effect_player_resume", index, [&](EffectPlayerState& p) {
      auto it = p.effects.find(audioEffectID);
      if (it == p.effects.end() || it->second != ORVA_AUDIO_EFFECT_PLAY_STATE_PAUSING) return;
      it->second = ORVA_AUDIO_EFFECT_PLAY_STATE_PLAYING;
      fireEffectState(index, audioEffectID, ORVA_AUDIO_EFFECT_PLAY_STATE_PLAYING);
    });
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_load_resource(uint32_t audioEffectID, const char* path,
                                                                        int32_t* seq, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_audio_effect_player_load_resource(audioEffectID, path, seq, index);
    constexpr const char* fn = "orva_vantix_audio_effect_player_load_resource";
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      if (!validEffectPlayer(index) && !refusal(fn)) return kErrInvalid;
    }
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::audio_effect_player_load_resource;
    call.base = PayloadBuilder().setInt("index", index).take();
    return core().startAsync(seq, std::move(call));
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_seek_to(uint32_t audioEffectID, uint64_t millisecond,
                                                                  int32_t* seq, int32_t index) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_audio_effect_player_seek_to(audioEffectID, millisecond, seq, index);
    constexpr const char* fn = "orva_vantix_audio_effect_player_seek_to";
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      if (!validEffectPlayer(index) && !refusal(fn)) return kErrInvalid;
    }
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::audio_effect_player_seek_to;
    call.base = PayloadBuilder().setInt("index", index).take();
    return core().startAsync(seq, std::move(call));
  });
}
