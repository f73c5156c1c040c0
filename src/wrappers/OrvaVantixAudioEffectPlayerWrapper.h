// The script class of one engine audio effect player, made by CreateAudioEffectPlayer.
#pragma once

#include <napi.h>

namespace orva {

class OrvaVantixAudioEffectPlayerWrapper : public Napi::ObjectWrap<OrvaVantixAudioEffectPlayerWrapper> {
 public:
  // Defines the script class; the addon keeps the constructor (one per environment).
  static Napi::Function Define(Napi::Env env);

  explicit OrvaVantixAudioEffectPlayerWrapper(const Napi::CallbackInfo& info);
};

}  // namespace orva
