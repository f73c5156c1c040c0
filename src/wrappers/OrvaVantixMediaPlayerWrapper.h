// The script class of one engine media player, made by the addon's CreateMediaPlayer.
#pragma once

#include <napi.h>

namespace orva {

class OrvaVantixMediaPlayerWrapper : public Napi::ObjectWrap<OrvaVantixMediaPlayerWrapper> {
 public:
  // Defines the script class; the addon keeps the constructor (one per environment).
  static Napi::Function Define(Napi::Env env);

  explicit OrvaVantixMediaPlayerWrapper(const Napi::CallbackInfo& info);
};

}  // namespace orva
