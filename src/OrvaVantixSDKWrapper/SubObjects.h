// The engine's sub-objects as the layer holds them: media players, audio effect players,
// screen capture sources and the copyrighted-music module. Each is created by the Engine
// factories (Engine.h), which register it in its EngineContext table under its engine index;
// the trampolines of its callbacks find it there and call its handlers. Each object's calls
// are the engine calls of its kind bound to its index (generated *_calls.inc); they reach the
// engine that exists at the moment of the call, and return neutral values when none does.
//
// The object's address is its identity towards script (the "native pointer").
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvaVantixSDKWrapper/HandlerSlot.h"
#include "engine_events.h"

namespace orva::sdk {

class MediaPlayer {
 public:
  explicit MediaPlayer(int32_t index) : index_(index) {}
  MediaPlayer(const MediaPlayer&) = delete;
  MediaPlayer& operator=(const MediaPlayer&) = delete;

  int32_t index() const { return index_; }

  // Handlers of this player's callbacks (one object may implement all four).
  void setEventHandler(std::shared_ptr<IMediaPlayerEventHandler> handler) { eventHandler_.set(std::move(handler)); }
  void setVideoHandler(std::shared_ptr<IMediaPlayerVideoHandler> handler) { videoHandler_.set(std::move(handler)); }
  void setAudioHandler(std::shared_ptr<IMediaPlayerAudioHandler> handler) { audioHandler_.set(std::move(handler)); }
  void setBlockDataHandler(std::shared_ptr<IMediaPlayerBlockDataHandler> handler) { blockDataHandler_.set(std::move(handler)); }
  std::shared_ptr<IMediaPlayerEventHandler> eventHandler() const { return eventHandler_.get(); }
  std::shared_ptr<IMediaPlayerVideoHandler> videoHandler() const { return videoHandler_.get(); }
  std::shared_ptr<IMediaPlayerAudioHandler> audioHandler() const { return audioHandler_.get(); }
  std::shared_ptr<IMediaPlayerBlockDataHandler> blockDataHandler() const { return blockDataHandler_.get(); }

#include "media_player_calls.inc"

 private:
  const int32_t index_;
  HandlerSlot<IMediaPlayerEventHandler> eventHandler_;
  HandlerSlot<IMediaPlayerVideoHandler> videoHandler_;
  HandlerSlot<IMediaPlayerAudioHandler> audioHandler_;
  HandlerSlot<IMediaPlayerBlockDataHandler> blockDataHandler_;
};

class AudioEffectPlayer {
 public:
  explicit AudioEffectPlayer(int32_t index) : index_(index) {}
  AudioEffectPlayer(const AudioEffectPlayer&) = delete;
  AudioEffectPlayer& operator=(const AudioEffectPlayer&) = delete;

  int32_t index() const { return index_; }
  void setEventHandler(std::shared_ptr<IAudioEffectPlayerEventHandler> handler) { eventHandler_.set(std::move(handler)); }
  std::shared_ptr<IAudioEffectPlayerEventHandler> eventHandler() const { return eventHandler_.get(); }

#include "audio_effect_player_calls.inc"

 private:
  const int32_t index_;
  HandlerSlot<IAudioEffectPlayerEventHandler> eventHandler_;
};

class ScreenCaptureSource {
 public:
  explicit ScreenCaptureSource(int32_t index) : index_(index) {}
  ScreenCaptureSource(const ScreenCaptureSource&) = delete;
  ScreenCaptureSource& operator=(const ScreenCaptureSource&) = delete;

  int32_t index() const { return index_; }
  void setEventHandler(std::shared_ptr<IScreenCaptureSourceEventHandler> handler) { eventHandler_.set(std::move(handler)); }
  std::shared_ptr<IScreenCaptureSourceEventHandler> eventHandler() const { return eventHandler_.get(); }

#include "screen_capture_source_calls.inc"

 private:
  const int32_t index_;
  HandlerSlot<IScreenCaptureSourceEventHandler> eventHandler_;
};

class CopyrightedMusic {
 public:
  CopyrightedMusic() = default;
  CopyrightedMusic(const CopyrightedMusic&) = delete;
  CopyrightedMusic& operator=(const CopyrightedMusic&) = delete;

  void setEventHandler(std::shared_ptr<ICopyrightedMusicEventHandler> handler) { eventHandler_.set(std::move(handler)); }
  std::shared_ptr<ICopyrightedMusicEventHandler> eventHandler() const { return eventHandler_.get(); }

#include "copyrighted_music_calls.inc"

 private:
  HandlerSlot<ICopyrightedMusicEventHandler> eventHandler_;
};

}  // namespace orva::sdk
