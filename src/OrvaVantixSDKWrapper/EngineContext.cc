#include "OrvaVantixSDKWrapper/EngineContext.h"

#include <utility>

#include "OrvaVantixSDKWrapper/EngineLibrary.h"
#include "OrvaVantixSDKWrapper/NoDestroy.h"
#include "OrvaVantixSDKWrapper/SubObjects.h"
#include "engine_api_table.h"

namespace orva::sdk {

EngineContext& EngineContext::instance() {
  static NoDestroy<EngineContext> context;
  return *context;
}

int32_t EngineContext::setEventHandler(std::shared_ptr<IEngineEventHandler> handler) {
  std::shared_ptr<IEngineEventHandler> previous;
  bool refused = false;
  {
    std::lock_guard<std::recursive_mutex> lock(eventHandler.mutex());
    if (handler && eventHandler.get()) {
      refused = true;
    } else {
      previous = eventHandler.get();
      eventHandler.set(std::move(handler));
    }
  }
  if (!refused) return 0;
  // Reported outside the handler lock: the engine's diagnostics are a call out.
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return kHandlerAlreadyInstalled;
  std::lock_guard<std::recursive_mutex> lock(sdkMutex());
  return api->orva_vantix_handle_api_call_result("setEventHandler", kHandlerAlreadyInstalled);
}

void EngineContext::setUninitCallback(std::function<void()> callback) {
  std::function<void()> previous;
  std::lock_guard<std::mutex> lock(uninitMutex_);
  previous = std::exchange(uninit_, std::move(callback));
}

std::function<void()> EngineContext::takeUninitCallback() {
  std::lock_guard<std::mutex> lock(uninitMutex_);
  return std::exchange(uninit_, std::function<void()>());
}

void EngineContext::empty() {
  eventHandler.releaseWithoutLock();
  videoFrameHandler.releaseWithoutLock();
  mediaPlayers.clear();
  audioEffectPlayers.clear();
  screenCaptureSources.clear();
  copyrightedMusic.clear();
  completions.clear();
}

}  // namespace orva::sdk
