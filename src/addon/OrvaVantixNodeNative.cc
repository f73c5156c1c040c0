// Module registration: one OrvaVantixAddon per script environment, kept as the
// environment's instance data.
#include <napi.h>

#include <memory>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "addon/OrvaVantixAddon.h"

namespace {

// Keeps this module mapped until the process ends. Node unloads an addon when the last
// environment that loaded it goes away (a worker that exits, say), but the addon leaves
// code running that outlives any environment: the data center's dispatch thread and its
// exit hook, and engine callbacks, some of which stay registered after the engine is
// destroyed. Unmapping would pull that code from under them.
void pinThisModule() {
#if defined(_WIN32)
  HMODULE self = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<LPCWSTR>(&pinThisModule), &self);
#else
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&pinThisModule), &info) != 0 && info.dli_fname != nullptr) {
    // Promotes the loaded module to "never unload"; the handle is deliberately kept.
    dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  }
#endif
}

Napi::Object Init(Napi::Env env, Napi::Object exports) {
  static const bool pinned = (pinThisModule(), true);
  (void)pinned;

  auto addon = std::make_unique<orva::OrvaVantixAddon>(env, exports);
  // The instance data finaliser deletes the addon when the environment is torn down. If
  // storing fails the pending Node-API error is thrown into script and the addon dies here.
  env.SetInstanceData<orva::OrvaVantixAddon>(addon.get());
  addon.release();
  return exports;
}

}  // namespace

NODE_API_MODULE(OrvaVantixNodeNative, Init)
