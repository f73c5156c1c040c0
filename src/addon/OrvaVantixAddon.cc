// The addon object's frame (construction, the method table, destruction) and its
// configuration methods that need no engine instance.
#include "addon/OrvaVantixAddon.h"

#include <cstdio>
#include <string>
#include <utility>

#include "OrvaVantixSDKWrapper/OrvaVantixSDKWrapper.h"
#include "bridge/DebugLog.h"
#include "bridge/OrvaVantixAddonDataCenter.h"
#include "bridge/ScriptBoundary.h"
#include "events/OrvaVantixAddonCustomVideoRenderer.h"
#include "wrappers/OrvaVantixAudioEffectPlayerWrapper.h"
#include "wrappers/OrvaVantixCopyrightedMusicWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixMediaPlayerWrapper.h"
#include "wrappers/OrvaVantixScreenCaptureSourceWrapper.h"

namespace orva {
namespace {

// Like a property assigned in script: the table is visible to Object.keys in its order.
constexpr napi_property_attributes kMethodAttributes =
    static_cast<napi_property_attributes>(napi_writable | napi_enumerable | napi_configurable);

// Log files the engine keeps when script gives no logCount.
constexpr uint32_t kDefaultLogCount = 3;

}  // namespace

OrvaVantixAddon::OrvaVantixAddon(Napi::Env env, Napi::Object exports) : env_(env) {
  logToConsole("OrvaVantixAddon construct!");

  // Each class definition returns its constructor; the persistent reference is all that
  // is kept of it.
  using Define = Napi::Function (*)(Napi::Env);
  constexpr std::array<Define, kScriptClassCount> kDefinitions = {
      &OrvaVantixEngineWrapper::Define,
      &OrvaVantixMediaPlayerWrapper::Define,
      &OrvaVantixAudioEffectPlayerWrapper::Define,
      &OrvaVantixCopyrightedMusicWrapper::Define,
      &OrvaVantixScreenCaptureSourceWrapper::Define,
  };
  for (std::size_t i = 0; i < kScriptClassCount; ++i) {
    constructors_[i] = Napi::Persistent(kDefinitions[i](env));
  }

  // The methods of the addon's table that exist so far, in the table's order. The
  // sub-object factories (CreateMediaPlayer ... destroyScreenCaptureSource) join later
  // between DestroyEngine and IsFeatureSupported.
  DefineAddon(exports, {
      InstanceMethod<&OrvaVantixAddon::GetNativeDllVersion>("GetNativeDllVersion", kMethodAttributes),
      InstanceMethod<&OrvaVantixAddon::SetLogConfig>("SetLogConfig", kMethodAttributes),
      InstanceMethod<&OrvaVantixAddon::SetRoomMode>("SetRoomMode", kMethodAttributes),
      InstanceMethod<&OrvaVantixAddon::SetEngineConfig>("SetEngineConfig", kMethodAttributes),
      InstanceMethod<&OrvaVantixAddon::CreateEngine>("CreateEngine", kMethodAttributes),
      InstanceMethod<&OrvaVantixAddon::DestroyEngine>("DestroyEngine", kMethodAttributes),
      InstanceMethod<&OrvaVantixAddon::IsFeatureSupported>("IsFeatureSupported", kMethodAttributes),
      InstanceMethod<&OrvaVantixAddon::setGeoFence>("setGeoFence", kMethodAttributes),
  });
}

OrvaVantixAddon::~OrvaVantixAddon() {
  // Runs from the environment's instance-data finaliser: nothing may escape.
  atBoundary(nullptr, [&] {
    logToConsole("OrvaVantixAddon destruct!");
    // The engine may belong to another environment and keep delivering frames: this
    // environment's buffers leave the renderer before their references go.
    OrvaVantixAddonCustomVideoRenderer::instance()->forgetOwner(ownerTag());
    frameBuffers_.releaseAll();
    // Last defined, first released: the screen capture source's constructor goes first,
    // the engine wrapper's last.
    for (auto it = constructors_.rbegin(); it != constructors_.rend(); ++it) {
      if (!it->IsEmpty()) it->Reset();
    }
    mediaPlayers_.clear();
    audioEffectPlayers_.clear();
  });
}

Napi::Object OrvaVantixAddon::newInstance(ScriptClass cls) {
  return constructors_[static_cast<std::size_t>(cls)].New({});
}

// ---- configuration without an engine instance ------------------------------------------

Napi::Value OrvaVantixAddon::GetNativeDllVersion(const Napi::CallbackInfo& info) {
  return Napi::String::New(info.Env(), sdk::engineVersionText());
}

Napi::Value OrvaVantixAddon::SetLogConfig(const Napi::CallbackInfo& info) {
  MethodCall call(info, "SetLogConfig", errors_);
  if (!call.args().has("config")) return throwTypeError(info.Env(), "Wrong arguments");
  ArgObject config = call.args().object("config");
  if (!call.check(config, "", {{"logPath", ArgType::String}, {"logSize", ArgType::Number}})) {
    return call.undefined();
  }
  uint32_t logCount = kDefaultLogCount;
  if (config.has("logCount")) {
    if (!config.is("logCount", ArgType::Number)) {
      // The one addon method that both reports and throws.
      std::string message = "SetLogConfig: Wrong arguments logCount";
      std::printf("SetLogConfig: Wrong arguments -> %s\n", message.c_str());
      std::fflush(stdout);
      call.fail(std::move(message));
      return throwTypeError(info.Env(), "Wrong arguments");
    }
    logCount = static_cast<uint32_t>(config.int32("logCount"));
  }
  sdk::setLogConfig(config.string("logPath"), static_cast<uint64_t>(config.int64("logSize")),
                    logCount);
  return call.undefined();
}

Napi::Value OrvaVantixAddon::SetRoomMode(const Napi::CallbackInfo& info) {
  // Reported under the wrapper-style name: alerts and traces are matched against it.
  MethodCall call(info, "setRoomMode", errors_);
  if (!call.check({{"mode", ArgType::Number}})) return call.undefined();
  sdk::setRoomMode(static_cast<int32_t>(call.args().int64("mode")));
  return call.undefined();
}

Napi::Value OrvaVantixAddon::IsFeatureSupported(const Napi::CallbackInfo& info) {
  MethodCall call(info, "IsFeatureSupported", errors_);
  if (!call.check({{"featureType", ArgType::Number}})) return Napi::Boolean::New(info.Env(), false);
  const bool supported =
      sdk::isFeatureSupported(static_cast<int32_t>(call.args().int64("featureType")));
  return Napi::Boolean::New(info.Env(), supported);
}

Napi::Value OrvaVantixAddon::setGeoFence(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setGeoFence", errors_);
  if (!call.check({{"type", ArgType::Number}, {"areaList", ArgType::Array}})) {
    return call.undefined();
  }
  sdk::setGeoFence(call.args().int32("type"), call.args().int32List("areaList"));
  return call.undefined();
}

}  // namespace orva
