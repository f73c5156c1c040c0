// Feeds the captured microphone into the custom audio input of one publish channel, so that
// the channel publishes the microphone too (the experimental request
// "set_microphone_in_designated_channel").
//
// Installed as the engine's audio processing handler (EngineContext::audioProcessHandler).
// Once custom audio capture processing is on, the engine hands every captured microphone
// frame to that handler (process_captured_audio_data); the feeder sends a copy of it into its
// channel as custom-captured PCM and leaves the frame itself untouched, so the main channel
// keeps its microphone.
//
// Threads: runs on the engine's audio thread, inside the trampoline. It calls the engine's
// entry point directly and allocates nothing. It never takes the SDK lock, which no
// trampoline takes: a script-thread call holding it may be waiting for this very callback
// to return.
//
// Lifetime: the handler slot keeps the feeder until another handler replaces it; engine
// destruction does not empty that slot. The feeder acts only while the engine it was
// installed for exists, so a later engine is not fed without asking.
#pragma once

#include <cstdint>
#include <memory>

#include "engine_events.h"

namespace orva::sdk {

class Engine;

class MicrophoneChannelFeeder final : public IAudioProcessHandler {
 public:
  MicrophoneChannelFeeder(const std::shared_ptr<Engine>& engine, int32_t channel)
      : engine_(engine), channel_(channel) {}

  void onProcessCapturedAudioData(uint8_t* data, uint32_t dataLength, const AudioFrameParam& param,
                                  double timestamp) override;

  int32_t channel() const { return channel_; }

 private:
  std::weak_ptr<Engine> engine_;
  int32_t channel_;
};

// Installs a feeder into `channel` for `engine`, in place of the audio processing handler
// installed before.
void installMicrophoneChannelFeeder(const std::shared_ptr<Engine>& engine, int32_t channel);

}  // namespace orva::sdk
