// The script class of one screen capture source, made by createScreenCaptureSource.
#pragma once

#include <napi.h>

namespace orva {

class OrvaVantixScreenCaptureSourceWrapper : public Napi::ObjectWrap<OrvaVantixScreenCaptureSourceWrapper> {
 public:
  // Defines the script class; the addon keeps the constructor (one per environment).
  static Napi::Function Define(Napi::Env env);

  explicit OrvaVantixScreenCaptureSourceWrapper(const Napi::CallbackInfo& info);
};

}  // namespace orva
