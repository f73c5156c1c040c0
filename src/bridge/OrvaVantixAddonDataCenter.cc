#include "bridge/OrvaVantixAddonDataCenter.h"

#include <chrono>
#include <cstdlib>
#include <utility>

#include "bridge/DebugAlert.h"
#include "bridge/DebugLog.h"
#include "bridge/ScriptBoundary.h"

namespace orva {
namespace {

// How long the exit hook lets the worker finish the delivery in hand. A delivery never
// waits for script (the queues are unbounded), so this only covers a lock held for an
// instant by a script thread.
constexpr std::chrono::milliseconds kExitGrace{250};

}  // namespace

// Finaliser data of every event function: what the finaliser prints and which table entry
// it must erase.
struct OrvaVantixAddonDataCenter::EventFunctionRecord {
  bool engineEvents = false;     // the engine's function (else one of registerEventHandler)
  std::string name;              // named functions: their table key
  napi_threadsafe_function self = nullptr;
};

OrvaVantixAddonDataCenter& OrvaVantixAddonDataCenter::instance() {
  // Deliberately never destroyed; see the header.
  static OrvaVantixAddonDataCenter* const center = new OrvaVantixAddonDataCenter();
  return *center;
}

OrvaVantixAddonDataCenter::OrvaVantixAddonDataCenter() {
  std::atexit([] { instance().worker_.stop(kExitGrace); });
}

// ---- event functions ----------------------------------------------------------------

napi_threadsafe_function OrvaVantixAddonDataCenter::createEventFunction(
    napi_env env, napi_value callback, std::unique_ptr<EventFunctionRecord> record) {
  napi_value resourceName;
  napi_status status = napi_create_string_utf8(env, "Resource Name", NAPI_AUTO_LENGTH, &resourceName);
  napi_threadsafe_function function = nullptr;
  if (status == napi_ok) {
    status = napi_create_threadsafe_function(env, callback, nullptr, resourceName,
                                             /*max_queue_size=*/0, /*initial_thread_count=*/1,
                                             record.get(), finalizeEventFunction,
                                             /*context=*/nullptr, callIntoScript, &function);
  }
  if (status != napi_ok) throw Napi::Error::New(env);
  record->self = function;
  record.release();  // owned by the function now; its finaliser frees it
  return function;
}

void OrvaVantixAddonDataCenter::finalizeEventFunction(napi_env env, void* data, void*) {
  std::unique_ptr<EventFunctionRecord> record(static_cast<EventFunctionRecord*>(data));
  atBoundary(env, [&] {
    writeLine(record->engineEvents ? "OrvaVantixAddon tsfn finalizer \n" : "tsfn finalizer \n");
    instance().forgetEventFunction(*record);
  });
}

void OrvaVantixAddonDataCenter::forgetEventFunction(const EventFunctionRecord& record) {
  // Only the entry that still holds this very function: a newer engine (or a newer
  // registration of the name) may already have taken the slot.
  if (record.engineEvents) {
    std::lock_guard<std::mutex> lock(engineMutex_);
    for (auto it = engineEventFunctions_.begin(); it != engineEventFunctions_.end();) {
      it = it->second == record.self ? engineEventFunctions_.erase(it) : std::next(it);
    }
  } else {
    std::lock_guard<std::mutex> lock(namedMutex_);
    auto it = namedEventFunctions_.find(record.name);
    if (it != namedEventFunctions_.end() && it->second.function == record.self) {
      namedEventFunctions_.erase(it);
    }
  }
}

void OrvaVantixAddonDataCenter::callIntoScript(napi_env env, napi_value callback, void*,
                                               void* data) {
  std::unique_ptr<EventTask> task(static_cast<EventTask*>(data));
  // Node-API passes no environment for items still queued when the function is torn
  // down: they are only freed.
  if (env == nullptr || callback == nullptr) return;
  atBoundary(env, [&] {
    if (!task) {
      napi_value receiver;
      if (napi_get_undefined(env, &receiver) == napi_ok) {
        napi_call_function(env, receiver, callback, 0, nullptr, nullptr);
      }
      return;
    }
    (*task)(Napi::Env(env), Napi::Function(env, callback));
  });
}

void OrvaVantixAddonDataCenter::createEngineEventFunction(Napi::Env env, Napi::Function callback,
                                                          EngineHandle engine) {
  auto record = std::make_unique<EventFunctionRecord>();
  record->engineEvents = true;
  std::lock_guard<std::mutex> lock(engineMutex_);
  napi_threadsafe_function function = createEventFunction(env, callback, std::move(record));
  engineEventFunctions_[engine] = function;
  currentEngine_ = engine;
}

void OrvaVantixAddonDataCenter::releaseEngineEventFunction(EngineHandle engine) {
  std::lock_guard<std::mutex> lock(engineMutex_);
  if (currentEngine_ == engine) currentEngine_ = 0;
  auto it = engineEventFunctions_.find(engine);
  if (it != engineEventFunctions_.end()) {
    napi_release_threadsafe_function(it->second, napi_tsfn_release);
  }
}

void OrvaVantixAddonDataCenter::createNamedEventFunction(Napi::Env env, const std::string& name,
                                                         Napi::Function callback) {
  auto record = std::make_unique<EventFunctionRecord>();
  record->name = name;
  std::lock_guard<std::mutex> lock(namedMutex_);
  napi_threadsafe_function function = createEventFunction(env, callback, std::move(record));
  auto it = namedEventFunctions_.find(name);
  if (it != namedEventFunctions_.end()) {
    if (it->second.env == env) napi_unref_threadsafe_function(env, it->second.function);
    it->second = {function, env};
  } else {
    namedEventFunctions_.emplace(name, NamedFunction{function, env});
  }
}

void OrvaVantixAddonDataCenter::unrefNamedEventFunctions(napi_env env) {
  std::lock_guard<std::mutex> lock(namedMutex_);
  for (auto& [name, named] : namedEventFunctions_) {
    if (named.env == env) napi_unref_threadsafe_function(env, named.function);
  }
}

void OrvaVantixAddonDataCenter::releaseNamedEventFunction(const std::string& name) {
  std::lock_guard<std::mutex> lock(namedMutex_);
  auto it = namedEventFunctions_.find(name);
  if (it != namedEventFunctions_.end()) {
    napi_release_threadsafe_function(it->second.function, napi_tsfn_release);
    namedEventFunctions_.erase(it);
  }
}

// ---- delivery -------------------------------------------------------------------------

void OrvaVantixAddonDataCenter::post(Job job) { worker_.post(std::move(job)); }

void OrvaVantixAddonDataCenter::sendToEngine(std::unique_ptr<EventTask> task,
                                             const char* failureLine) {
  task->stampTeardowns(engineTeardowns());
  worker_.post([this, task = std::move(task), failureLine]() mutable {
    deliverToEngine(std::move(task), failureLine);
  });
}

void OrvaVantixAddonDataCenter::sendByName(std::string name, std::unique_ptr<EventTask> task,
                                           const char* failureLine) {
  task->stampTeardowns(engineTeardowns());
  worker_.post([this, name = std::move(name), task = std::move(task), failureLine]() mutable {
    deliverByName(name, std::move(task), failureLine);
  });
}

namespace {

// Hands the task to `function` with a blocking call (which never waits: the queue is
// unbounded). On success the function owns the task until callIntoScript frees it.
void callFunction(napi_threadsafe_function function, std::unique_ptr<EventTask> task,
                  const char* failureLine) {
  if (napi_acquire_threadsafe_function(function) != napi_ok) return;  // closing
  if (napi_call_threadsafe_function(function, task.get(), napi_tsfn_blocking) == napi_ok) {
    task.release();
  } else if (failureLine != nullptr) {
    writeLine(failureLine);
  }
  napi_release_threadsafe_function(function, napi_tsfn_release);
}

}  // namespace

void OrvaVantixAddonDataCenter::deliverToEngine(std::unique_ptr<EventTask> task,
                                                const char* failureLine) {
  std::lock_guard<std::mutex> lock(engineMutex_);
  if (currentEngine_ == 0) return;
  auto it = engineEventFunctions_.find(currentEngine_);
  if (it == engineEventFunctions_.end()) return;
  callFunction(it->second, std::move(task), failureLine);
}

void OrvaVantixAddonDataCenter::deliverByName(const std::string& name,
                                              std::unique_ptr<EventTask> task,
                                              const char* failureLine) {
  std::lock_guard<std::mutex> lock(namedMutex_);
  if (namedEventFunctions_.empty()) return;
  auto it = namedEventFunctions_.find(name);
  if (it == namedEventFunctions_.end()) return;
  callFunction(it->second.function, std::move(task), failureLine);
}

// ---- guard and alerts -----------------------------------------------------------------

bool OrvaVantixAddonDataCenter::checkContextDestroy(const char* funcName,
                                                    uint64_t sentAfterTeardowns) const {
  const bool gone = contextDestroyed.load(std::memory_order_acquire) ||
                    sentAfterTeardowns != engineTeardowns();
  if (!gone) return false;
  logToConsole("checkContextDestroy, %s", funcName);
  return true;
}

void OrvaVantixAddonDataCenter::onDebugError(int32_t errorCode, const std::string& funcName,
                                             const std::string& errorInfo) {
  DebugAlert alert = composeDebugAlert(alertLanguage.load(std::memory_order_relaxed), funcName,
                                       errorCode, errorInfo);
  writeLine("OrvaVantixAddonDataCenter::onDebugError \n");
  sendToEngine(
      makeEvent("onDebugError",
                [alert = std::move(alert), funcName, errorCode, errorInfo](Payload& p) {
                  p.set("alertTitle", alert.title)
                      .set("alertBody", alert.body)
                      .set("funcName", funcName)
                      .set("errorCode", errorCode)
                      .set("errorInfo", errorInfo);
                }),
      "OrvaVantixAddonDataCenter::onDebugError blocking call failed \n");
}

void OrvaVantixAddonDataCenter::onDebugInfo(const std::string& funcName) {
  if (!debugAssistantEnabled.load(std::memory_order_relaxed)) return;
  sendToEngine(makeEvent("onDebugInfo",
                         [info = "call func:" + funcName](Payload& p) { p.set("info", info); }),
               "OrvaVantixAddonDataCenter::onDebugInfo blocking call failed \n");
}

}  // namespace orva
