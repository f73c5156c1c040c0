// The addon object: one per script environment (the main thread, each worker, each extra
// context), kept as the environment's instance data and deleted by its finaliser when the
// environment is torn down. It is the module's only entry point: its methods configure the
// engine library, create and destroy the process's one engine, and hand out the script
// objects through which everything else is reached.
//
// Lifetimes: the constructor references live exactly as long as the addon object (the
// environment). The engine, the SDK layer's context and the data center are process-wide
// and outlive any addon object; an environment that created the engine tears it down in its
// cleanup hook (registered by CreateEngine) before its addon object is deleted.
#pragma once

#include <napi.h>

#include <array>
#include <cstddef>
#include <memory>
#include <vector>

#include "bridge/ArgumentChecker.h"
#include "bridge/HeldScriptValues.h"

namespace orva {
namespace sdk {
class MediaPlayer;
class AudioEffectPlayer;
}  // namespace sdk

class OrvaVantixAddon : public Napi::Addon<OrvaVantixAddon> {
 public:
  // The script classes, in the order their constructors are defined and kept.
  enum class ScriptClass : std::size_t {
    EngineWrapper,
    MediaPlayerWrapper,
    AudioEffectPlayerWrapper,
    CopyrightedMusicWrapper,
    ScreenCaptureSourceWrapper,
  };
  static constexpr std::size_t kScriptClassCount = 5;

  OrvaVantixAddon(Napi::Env env, Napi::Object exports);
  ~OrvaVantixAddon();
  OrvaVantixAddon(const OrvaVantixAddon&) = delete;
  OrvaVantixAddon& operator=(const OrvaVantixAddon&) = delete;

  // A new instance of `cls`, made from the kept constructor with no arguments.
  Napi::Object newInstance(ScriptClass cls);

  // Players created through this addon, oldest first; engine teardown destroys those still
  // listed, newest first.
  std::vector<std::shared_ptr<sdk::MediaPlayer>>& mediaPlayers() { return mediaPlayers_; }
  std::vector<std::shared_ptr<sdk::AudioEffectPlayer>>& audioEffectPlayers() {
    return audioEffectPlayers_;
  }

  ArgumentErrors& argumentErrors() { return errors_; }

  // The frame buffers this environment registered, held until replaced, removed or torn
  // down; the renderer's slots carry this addon as their owner tag.
  HeldScriptValues& frameBuffers() { return frameBuffers_; }
  const void* ownerTag() const { return this; }

 private:
  // Script methods (OrvaVantixAddon_config.cc, OrvaVantixAddon_engine.cc).
  Napi::Value GetNativeDllVersion(const Napi::CallbackInfo& info);
  Napi::Value SetLogConfig(const Napi::CallbackInfo& info);
  Napi::Value SetRoomMode(const Napi::CallbackInfo& info);
  Napi::Value SetEngineConfig(const Napi::CallbackInfo& info);
  Napi::Value CreateEngine(const Napi::CallbackInfo& info);
  Napi::Value DestroyEngine(const Napi::CallbackInfo& info);
  Napi::Value IsFeatureSupported(const Napi::CallbackInfo& info);
  Napi::Value setGeoFence(const Napi::CallbackInfo& info);

  // The engine teardown shared by DestroyEngine and the environment cleanup hook.
  void tearDownEngine();
  static void cleanUpEnvironment(void* record);

  napi_env env_;  // the environment this addon object belongs to
  bool cleanupHookAdded_ = false;
  ArgumentErrors errors_;
  HeldScriptValues frameBuffers_;
  std::vector<std::shared_ptr<sdk::MediaPlayer>> mediaPlayers_;
  std::vector<std::shared_ptr<sdk::AudioEffectPlayer>> audioEffectPlayers_;
  std::array<Napi::FunctionReference, kScriptClassCount> constructors_;
};

}  // namespace orva
