#include "wrappers/OrvaVantixAudioEffectPlayerWrapper.h"

#include "bridge/DebugLog.h"

namespace orva {

Napi::Function OrvaVantixAudioEffectPlayerWrapper::Define(Napi::Env env) {
  logToConsole("init OrvaVantixAudioEffectPlayerWrapper!");
  return DefineClass(env, "OrvaVantixAudioEffectPlayerWrapper", {});
}

OrvaVantixAudioEffectPlayerWrapper::OrvaVantixAudioEffectPlayerWrapper(const Napi::CallbackInfo& info)
    : Napi::ObjectWrap<OrvaVantixAudioEffectPlayerWrapper>(info) {}

}  // namespace orva
