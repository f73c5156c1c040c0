#include "wrappers/OrvaVantixScreenCaptureSourceWrapper.h"

#include "bridge/DebugLog.h"

namespace orva {

Napi::Function OrvaVantixScreenCaptureSourceWrapper::Define(Napi::Env env) {
  logToConsole("OrvaVantixScreenCaptureSourceWrapper Init!");
  return DefineClass(env, "OrvaVantixScreenCaptureSourceWrapper", {});
}

OrvaVantixScreenCaptureSourceWrapper::OrvaVantixScreenCaptureSourceWrapper(const Napi::CallbackInfo& info)
    : Napi::ObjectWrap<OrvaVantixScreenCaptureSourceWrapper>(info) {}

}  // namespace orva
