// Engine creation and destruction, the engine accessor and the sub-object factories.
#include "OrvaVantixSDKWrapper/Engine.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "OrvaVantixSDKWrapper/ConvertSupport.h"
#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "OrvaVantixSDKWrapper/EngineLibrary.h"
#include "OrvaVantixSDKWrapper/NoDestroy.h"
#include "OrvaVantixSDKWrapper/SubObjects.h"
#include "OrvaVantixSDKWrapper/Trampolines.h"
#include "engine_api_table.h"

namespace orva::sdk {

namespace {

// Says whether an engine exists. Every creation and destruction consults it first.
struct EngineAccessor {
  std::atomic<bool> exists{false};
};

EngineAccessor& accessor() {
  static EngineAccessor instance;  // trivially destructible: safe to reach during exit
  return instance;
}

// Holds the engine object between creation and destruction; read by every call.
struct EngineHolder {
  std::mutex mutex;
  std::shared_ptr<Engine> engine;
};

EngineHolder& holder() {
  static NoDestroy<EngineHolder> instance;
  return *instance;
}

struct EngineMaker : Engine {};

}  // namespace

std::shared_ptr<Engine> Engine::instance() {
  auto& h = holder();
  std::lock_guard<std::mutex> lock(h.mutex);
  return h.engine;
}

bool Engine::exists() { return accessor().exists.load(); }

int32_t Engine::create(const EngineProfile& profile, std::shared_ptr<IEngineEventHandler> handler) {
  std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
  if (accessor().exists.load()) return -1;
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return -1;
  auto& context = EngineContext::instance();

  detail::registerCallbacks(*api, &context);
  context.eventHandler.set(std::move(handler));
  api->orva_vantix_set_platform_language(kPlatformLanguageScript);
  orva_engine_profile c{};
  c.appID = profile.appID;
  detail::copyFixed(c.appSign, sizeof c.appSign, profile.appSign);
  c.scenario = profile.scenario;
  const int32_t result = api->orva_vantix_engine_init_with_profile(&c);
  if (result != 0) {
    detail::clearCallbacks(*api);
    context.empty();
    return result;
  }
  {
    auto& h = holder();
    std::lock_guard<std::mutex> lock(h.mutex);
    h.engine = std::make_shared<EngineMaker>();
  }
  accessor().exists.store(true);
  return 0;
}

void Engine::destroy(std::function<void()> onUninit) {
  std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
  if (!accessor().exists.load()) return;  // the callable is discarded uncalled
  const EngineApiTable* api = loadedEngineApi();
  auto& context = EngineContext::instance();

  context.setUninitCallback(std::move(onUninit));
  detail::clearCallbacks(*api);
  context.empty();
  std::shared_ptr<Engine> released;
  {
    auto& h = holder();
    std::lock_guard<std::mutex> lock(h.mutex);
    released = std::move(h.engine);
  }
  accessor().exists.store(false);
  api->orva_vantix_engine_uninit_async();
  api->orva_register_api_called_result_callback(nullptr, nullptr);
}

std::shared_ptr<MediaPlayer> Engine::createMediaPlayer() {
  int32_t index = -1;
  {
    std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
    if (const EngineApiTable* api = loadedEngineApi()) index = api->orva_vantix_create_media_player();
  }
  if (index < 0) return nullptr;
  auto player = std::make_shared<MediaPlayer>(index);
  EngineContext::instance().mediaPlayers.add(index, player);
  return player;
}

int32_t Engine::destroyMediaPlayer(const std::shared_ptr<MediaPlayer>& player) {
  if (!player) return -1;
  // Out of the table first, so that its callbacks stop reaching it.
  EngineContext::instance().mediaPlayers.remove(player->index());
  std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
  const EngineApiTable* api = loadedEngineApi();
  return api != nullptr ? api->orva_vantix_destroy_media_player(player->index()) : -1;
}

std::shared_ptr<AudioEffectPlayer> Engine::createAudioEffectPlayer() {
  int32_t index = -1;
  {
    std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
    if (const EngineApiTable* api = loadedEngineApi()) index = api->orva_vantix_create_audio_effect_player();
  }
  if (index < 0) return nullptr;
  auto player = std::make_shared<AudioEffectPlayer>(index);
  EngineContext::instance().audioEffectPlayers.add(index, player);
  return player;
}

int32_t Engine::destroyAudioEffectPlayer(const std::shared_ptr<AudioEffectPlayer>& player) {
  if (!player) return -1;
  EngineContext::instance().audioEffectPlayers.remove(player->index());
  std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
  const EngineApiTable* api = loadedEngineApi();
  return api != nullptr ? api->orva_vantix_destroy_audio_effect_player(player->index()) : -1;
}

std::shared_ptr<ScreenCaptureSource> Engine::createScreenCaptureSource(int64_t sourceId, int32_t sourceType) {
  int32_t index = -1;
  {
    std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
    if (const EngineApiTable* api = loadedEngineApi()) {
      index = api->orva_vantix_create_screen_capture_source(sourceId, sourceType);
    }
  }
  if (index < 0) return nullptr;
  auto source = std::make_shared<ScreenCaptureSource>(index);
  EngineContext::instance().screenCaptureSources.add(index, source);
  return source;
}

int32_t Engine::destroyScreenCaptureSource(const std::shared_ptr<ScreenCaptureSource>& source) {
  if (!source) return -1;
  EngineContext::instance().screenCaptureSources.remove(source->index());
  std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
  const EngineApiTable* api = loadedEngineApi();
  return api != nullptr ? api->orva_vantix_destroy_screen_capture_source(source->index()) : -1;
}

std::shared_ptr<CopyrightedMusic> Engine::createCopyrightedMusic() {
  int32_t result = -1;
  {
    std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
    if (const EngineApiTable* api = loadedEngineApi()) result = api->orva_vantix_create_copyrighted_music();
  }
  if (result != 0) return nullptr;
  auto music = std::make_shared<CopyrightedMusic>();
  EngineContext::instance().copyrightedMusic.add(kCopyrightedMusicIndex, music);
  return music;
}

int32_t Engine::destroyCopyrightedMusic(const std::shared_ptr<CopyrightedMusic>& music) {
  if (!music) return -1;
  auto& table = EngineContext::instance().copyrightedMusic;
  if (table.find(kCopyrightedMusicIndex) == music) table.remove(kCopyrightedMusicIndex);
  std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
  const EngineApiTable* api = loadedEngineApi();
  return api != nullptr ? api->orva_vantix_destroy_copyrighted_music() : -1;
}

}  // namespace orva::sdk
