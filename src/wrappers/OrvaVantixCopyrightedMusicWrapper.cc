#include "wrappers/OrvaVantixCopyrightedMusicWrapper.h"

namespace orva {

Napi::Function OrvaVantixCopyrightedMusicWrapper::Define(Napi::Env env) {
  return DefineClass(env, "OrvaVantixCopyrightedMusicWrapper", {});
}

OrvaVantixCopyrightedMusicWrapper::OrvaVantixCopyrightedMusicWrapper(const Napi::CallbackInfo& info)
    : Napi::ObjectWrap<OrvaVantixCopyrightedMusicWrapper>(info) {}

}  // namespace orva
