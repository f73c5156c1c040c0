// The script class over the engine's copyrighted-music module, made by CreateCopyrightedMusic.
#pragma once

#include <napi.h>

namespace orva {

class OrvaVantixCopyrightedMusicWrapper : public Napi::ObjectWrap<OrvaVantixCopyrightedMusicWrapper> {
 public:
  // Defines the script class; the addon keeps the constructor (one per environment).
  static Napi::Function Define(Napi::Env env);

  explicit OrvaVantixCopyrightedMusicWrapper(const Napi::CallbackInfo& info);
};

}  // namespace orva
