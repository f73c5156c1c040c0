// Engine configuration, creation and destruction: SetEngineConfig, CreateEngine,
// DestroyEngine, the shared teardown and the environment cleanup hook.
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#if defined(_WIN32)
#include <objbase.h>
#endif

#include "OrvaVantixSDKWrapper/Engine.h"
#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "OrvaVantixSDKWrapper/SubObjects.h"
#include "addon/EngineHandlers.h"
#include "addon/OrvaVantixAddon.h"
#include "bridge/DebugLog.h"
#include "bridge/OrvaVantixAddonDataCenter.h"
#include "bridge/ScriptBoundary.h"

namespace orva {
namespace {

// Process-wide, like the engine itself: any environment may configure, create or destroy
// it. Atomics because those environments run on different threads.
struct EngineLifecycle {
  // Set once SetEngineConfig has applied a configuration: from then on CreateEngine leaves
  // "enable_toast_on_test_env" to the script's configuration.
  std::atomic<bool> engineConfigApplied{false};
  // The SDK version goes into the engine log once per engine.
  std::atomic<bool> versionLogged{false};
  // The addon whose CreateEngine made the current engine; only its environment's cleanup
  // hook tears the engine down.
  std::atomic<const OrvaVantixAddon*> owner{nullptr};
};

EngineLifecycle& lifecycle() {
  static EngineLifecycle state;  // trivially destructible
  return state;
}

// Advanced configuration items in insertion order; a key keeps its first value. The key set
// keeps a script's large configuration object linear to read.
class AdvancedConfig {
 public:
  void insert(std::string key, std::string value) {
    if (keys_.insert(key).second) items_.emplace_back(std::move(key), std::move(value));
  }
  std::vector<std::pair<std::string, std::string>> take() {
    keys_.clear();
    return std::move(items_);
  }

 private:
  std::unordered_set<std::string> keys_;
  std::vector<std::pair<std::string, std::string>> items_;
};

OrvaVantixAddonDataCenter::EngineHandle handleOf(const std::shared_ptr<sdk::Engine>& engine) {
  return reinterpret_cast<OrvaVantixAddonDataCenter::EngineHandle>(engine.get());
}

bool isObjectLike(const Napi::Value& value) { return value.IsObject() || value.IsFunction(); }

// Registered per CreateEngine; freed by the hook.
struct EnvCleanupRecord {
  OrvaVantixAddon* addon;
};

}  // namespace

Napi::Value OrvaVantixAddon::SetEngineConfig(const Napi::CallbackInfo& info) {
  Napi::Env env = info.Env();
  logToConsole("OrvaVantixAddon SetEngineConfig");
  ArgObject arg(env, info[0]);
  if (!arg.has("config") || !isObjectLike(arg.get("config"))) {
    return throwTypeError(env, "Wrong arguments");
  }
  ArgObject config = arg.object("config");

  sdk::EngineConfig engineConfig;
  if (config.has("logConfig")) {
    ArgObject logConfig = config.object("logConfig");
    engineConfig.logPath = logConfig.coercedString("logPath");
    engineConfig.logSize = static_cast<uint64_t>(logConfig.coercedInt64("logSize"));
  }
  // Put in before the script's keys, and first wins: a script cannot turn the toast on.
  AdvancedConfig advanced;
  advanced.insert("enable_toast_on_test_env", "false");
  if (config.has("advancedConfig")) {
    Napi::Object items = config.get("advancedConfig").As<Napi::Object>();
    Napi::Array names = items.GetPropertyNames();
    for (uint32_t i = 0, n = names.Length(); i < n; ++i) {
      Napi::Value name = names.Get(i);
      advanced.insert(name.ToString().Utf8Value(), items.Get(name).ToString().Utf8Value());
    }
  }
  engineConfig.advanced = advanced.take();

  lifecycle().engineConfigApplied.store(true);
  sdk::setEngineConfig(engineConfig);
  return env.Undefined();
}

Napi::Value OrvaVantixAddon::CreateEngine(const Napi::CallbackInfo& info) {
  Napi::Env env = info.Env();
  logToConsole("OrvaVantixAddon CreateEngine");
  if (sdk::Engine::exists()) {
    return throwTypeError(env, "Calling init is disallowed when engine is already initialized");
  }
  if (info.Length() < 1) return throwTypeError(env, "Wrong number of arguments");
  if (!isObjectLike(info[0])) return throwTypeError(env, "Wrong arguments");
  ArgObject arg(env, info[0]);
  for (const char* key : {"profile", "tsfn", "SDKVersion", "electronVersion"}) {
    if (!arg.has(key)) return throwTypeError(env, "Wrong arguments");
  }
  ArgObject profile = arg.object("profile");
  if (!profile.has("appID") || !profile.has("scenario")) {
    return throwTypeError(env, "Wrong profile arguments");
  }

  const std::string electronVersion = arg.string("electronVersion");
  logToConsole("electron version: %s", electronVersion.c_str());

  AdvancedConfig advanced;
  advanced.insert("thirdparty_framework_info", "electron_v" + electronVersion);
  advanced.insert("video_data_image_colorspace", "rgba");
  if (!lifecycle().engineConfigApplied.load()) advanced.insert("enable_toast_on_test_env", "false");
  sdk::EngineConfig engineConfig;
  engineConfig.advanced = advanced.take();
  sdk::setEngineConfig(engineConfig);

  sdk::EngineProfile engineProfile;
  engineProfile.appID = profile.uint32("appID");
  engineProfile.scenario = profile.int32("scenario");
  if (profile.has("appSign")) engineProfile.appSign = profile.string("appSign");
  Napi::Function eventCallback = arg.get("tsfn").As<Napi::Function>();
  const std::string sdkVersion = arg.string("SDKVersion");

  EngineHandlers handlers = makeEngineHandlers();
  // Another environment (a worker) may have created the engine since the check above: the
  // engine's own creation decides, and only its creator goes on with it.
  const int32_t created = sdk::Engine::create(engineProfile, handlers.events);
  if (created != 0 && sdk::Engine::exists()) {
    return throwTypeError(env, "Calling init is disallowed when engine is already initialized");
  }
  std::shared_ptr<sdk::Engine> engine = created == 0 ? sdk::Engine::instance() : nullptr;
  if (engine) {
    auto& center = OrvaVantixAddonDataCenter::instance();
    center.contextDestroyed.store(false);
    try {
      center.createEngineEventFunction(env, eventCallback, handleOf(engine));
    } catch (const Napi::Error&) {
      // No way to reach script and no cleanup hook yet: the engine must not outlive this
      // call. The script gets the Node-API error.
      engine.reset();
      tearDownEngine();
      throw;
    }
    center.debugAssistantEnabled.store(false);
    center.alertLanguage.store(0);
    lifecycle().owner.store(this);

    engine->setPlatformLanguage(sdk::kPlatformLanguageScript);

    if (!lifecycle().versionLogged.load()) {
      logToEngine("*** Electron SDK Version: %s", sdkVersion.c_str());
      lifecycle().versionLogged.store(true);
    }

    // Frames arrive as raw RGBA and are drawn by script from its own buffers, never by the
    // engine. The event handler went in with the engine itself.
    sdk::CustomVideoRenderConfig renderConfig;
    renderConfig.bufferType = 1;         // raw data
    renderConfig.frameFormatSeries = 1;  // RGBA
    renderConfig.enableEngineRender = false;
    engine->enableCustomVideoRender(true, renderConfig);
    sdk::EngineContext::instance().videoFrameHandler.set(handlers.videoFrames);

    // One hook per environment, added with its first engine: the hook tears down whichever
    // engine this environment owns when it goes, so later engines need no hook of their own.
    if (!cleanupHookAdded_) {
      auto record = std::make_unique<EnvCleanupRecord>(EnvCleanupRecord{this});
      if (napi_add_env_cleanup_hook(env, cleanUpEnvironment, record.get()) == napi_ok) {
        record.release();  // freed by the hook
        cleanupHookAdded_ = true;
      }
    }
  }
  return newInstance(ScriptClass::EngineWrapper);
}

Napi::Value OrvaVantixAddon::DestroyEngine(const Napi::CallbackInfo& info) {
  logToConsole("OrvaVantixAddon DestroyEngine");
  tearDownEngine();
  return Napi::Number::New(info.Env(), 0);
}

void OrvaVantixAddon::tearDownEngine() {
  std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance();
  if (!engine) return;
  const auto handle = handleOf(engine);

#if defined(_WIN32)
  CoUninitialize();
#endif

  // Newest first, like the engine expects sub-objects to go.
  for (auto it = mediaPlayers_.rbegin(); it != mediaPlayers_.rend(); ++it) {
    engine->destroyMediaPlayer(*it);
  }
  mediaPlayers_.clear();
  for (auto it = audioEffectPlayers_.rbegin(); it != audioEffectPlayers_.rend(); ++it) {
    engine->destroyAudioEffectPlayer(*it);
  }
  audioEffectPlayers_.clear();

  // The frame renderer goes first so that no frame is copied into a script buffer from
  // here on; the event handler is released by the engine's destruction. (Plugin managers
  // and sub-object handlers are cleared here as they arrive.)
  sdk::EngineContext::instance().videoFrameHandler.set(nullptr);
  engine.reset();

  sdk::Engine::destroy();

  auto& center = OrvaVantixAddonDataCenter::instance();
  center.contextDestroyed.store(true);
  center.countEngineTeardown();  // the engine no longer calls back: what it sent is stale
  center.releaseEngineEventFunction(handle);
  resetEngineHandlerState();
  frameBuffers_.releaseAll();  // the renderer no longer writes into any of them
  center.releaseNamedEventFunction("tsfn");
  center.unrefNamedEventFunctions(env_);
  lifecycle().versionLogged.store(false);
  lifecycle().owner.store(nullptr);
}

void OrvaVantixAddon::cleanUpEnvironment(void* data) {
  std::unique_ptr<EnvCleanupRecord> record(static_cast<EnvCleanupRecord*>(data));
  atBoundary(nullptr, [&] {
    logToConsole("clean vantix electron env!");
    // An engine made by another environment (after this one destroyed its own) is not this
    // environment's to take down.
    if (lifecycle().owner.load() == record->addon) record->addon->tearDownEngine();
  });
}

}  // namespace orva
