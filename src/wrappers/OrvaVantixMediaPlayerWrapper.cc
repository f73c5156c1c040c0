#include "wrappers/OrvaVantixMediaPlayerWrapper.h"

#include "bridge/DebugLog.h"

namespace orva {

Napi::Function OrvaVantixMediaPlayerWrapper::Define(Napi::Env env) {
  // The text carries its own line feed and logToConsole adds one: the blank line is
  // part of what developers see, so it stays.
  logToConsole("init OrvaVantixMediaPlayerWrapper \n");
  return DefineClass(env, "OrvaVantixMediaPlayerWrapper", {});
}

OrvaVantixMediaPlayerWrapper::OrvaVantixMediaPlayerWrapper(const Napi::CallbackInfo& info)
    : Napi::ObjectWrap<OrvaVantixMediaPlayerWrapper>(info) {}

}  // namespace orva
