// The process-wide hub between engine threads and script: the event function tables, the
// dispatch worker, the engine-context flags and the debug alerts.
//
// Sending an event (any thread; see EventTask.h for building one):
//
//   auto& center = OrvaVantixAddonDataCenter::instance();
//   center.sendToEngine(makeEvent("onEngineStateUpdate", [state](Payload& p) { p.set("state", state); }),
//                       "AddonEventHandler::onEngineStateUpdate blocking call failed \n");
//   center.sendByName("tsfn", makeEvent(...), "...blocking call failed \n");
//
// Both return at once; the dispatch worker later hands the task to the target thread-safe
// function, or drops it silently when there is none, and writes the failure line if the
// thread-safe function refuses it.
//
// Threads and lifetimes:
//   - The singleton is created on first use and never destroyed. Engine threads and the
//     detached dispatch worker may still use it while the process exits; a destructor run
//     at exit would pull the mutexes and tables out from under them.
//   - The worker's stop flag is set by an exit hook registered when the singleton is made
//     (so it runs before static destructors of the host that were registered earlier). The
//     hook waits briefly for the job in hand, so the worker calls no thread-safe function
//     once exit has begun to take the host down; queued work is dropped. The module pins
//     itself in memory at load (OrvaVantixNodeNative.cc), so the thread's code and the
//     hook stay mapped even after the last environment that loaded the addon is gone.
//   - Thread-safe functions are created, stored and released on the script thread of their
//     environment. A table entry is erased by the function's own finaliser, under the table
//     mutex, before Node-API frees the function; the worker holds the same mutex across
//     acquire, call and release, so it never touches a freed function.
//   - The flags are atomics: engine teardown may run on one script thread (an environment
//     calling DestroyEngine) while tasks read contextDestroyed on another, and engine
//     threads read debugAssistantEnabled through logToConsole.
#pragma once

#include <napi.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "bridge/DispatchWorker.h"
#include "bridge/EventTask.h"

namespace orva {

class OrvaVantixAddonDataCenter {
 public:
  // Identifies the engine whose event function carries its events.
  using EngineHandle = std::uintptr_t;

  static OrvaVantixAddonDataCenter& instance();

  // ---- flags
  // Set by engine teardown so that queued tasks drop themselves; cleared by CreateEngine.
  std::atomic<bool> contextDestroyed{false};
  // Gates logToConsole and onDebugInfo. On from load until CreateEngine clears it.
  std::atomic<bool> debugAssistantEnabled{true};
  // 1 selects the Chinese alert texts, anything else English.
  std::atomic<int32_t> alertLanguage{0};

  // Counts engine teardowns. Tasks are stamped with the count when they are sent; engine
  // teardown bumps it (once the engine has stopped calling back), so everything sent before
  // drops itself, whatever engine exists when it reaches the script thread.
  uint64_t engineTeardowns() const { return engineTeardowns_.load(std::memory_order_acquire); }
  void countEngineTeardown() { engineTeardowns_.fetch_add(1, std::memory_order_acq_rel); }

  // ---- event functions (script thread)
  // Creates the engine's event function for `callback` and stores it under `engine`, which
  // becomes the current engine. Throws Napi::Error, storing nothing, if creation fails.
  void createEngineEventFunction(Napi::Env env, Napi::Function callback, EngineHandle engine);
  // Releases the event function stored for `engine`; events sent from now on are dropped.
  // The entry itself goes when the function is finalised.
  void releaseEngineEventFunction(EngineHandle engine);
  // registerEventHandler: creates a function for `callback` and stores it under `name`,
  // overwriting an earlier one of that name without releasing it. The overwritten function
  // can never be called again, so it stops holding its event loop open (unref; same
  // environment only, as Node-API requires).
  void createNamedEventFunction(Napi::Env env, const std::string& name, Napi::Function callback);
  // Releases and erases the named function, if there is one ("tsfn" at engine teardown).
  void releaseNamedEventFunction(const std::string& name);
  // Engine teardown: the named functions `env` registered stay registered, unreleased, but no
  // longer keep its event loop alive: with no engine nothing sends to them, and a process
  // whose script is done must be able to exit.
  void unrefNamedEventFunctions(napi_env env);

  // ---- delivery (any thread)
  // To the current engine's event function. `failureLine` (a literal, or null) is written
  // if the thread-safe function refuses the task.
  void sendToEngine(std::unique_ptr<EventTask> task, const char* failureLine);
  // To the function registered under `name`; an unknown name drops the task silently.
  void sendByName(std::string name, std::unique_ptr<EventTask> task, const char* failureLine);
  // Any other job for the dispatch worker, run in order with the deliveries.
  void post(Job job);

  // ---- the script-thread guard
  // True when the engine context is destroyed: writes "checkContextDestroy, <funcName>"
  // through logToConsole, and the caller returns without touching script. A task sent before
  // a teardown (`sentAfterTeardowns`, its stamp) finds the context destroyed also once another
  // engine has taken its place: the flag alone would let an event queued before DestroyEngine
  // through after the next CreateEngine cleared it.
  bool checkContextDestroy(const char* funcName, uint64_t sentAfterTeardowns) const;

  // ---- debug alerts (any thread)
  // "onDebugError" with the alert texts; always sent.
  void onDebugError(int32_t errorCode, const std::string& funcName, const std::string& errorInfo);
  // "onDebugInfo" {info: "call func:" + funcName}; only while debugAssistantEnabled.
  void onDebugInfo(const std::string& funcName);

 private:
  struct EventFunctionRecord;

  OrvaVantixAddonDataCenter();

  static napi_threadsafe_function createEventFunction(napi_env env, napi_value callback,
                                                      std::unique_ptr<EventFunctionRecord> record);
  static void finalizeEventFunction(napi_env env, void* data, void* hint);
  static void callIntoScript(napi_env env, napi_value callback, void* context, void* data);

  void deliverToEngine(std::unique_ptr<EventTask> task, const char* failureLine);
  void deliverByName(const std::string& name, std::unique_ptr<EventTask> task,
                     const char* failureLine);
  void forgetEventFunction(const EventFunctionRecord& record);

  // Engine handle -> its event function; the current engine's handle. engineMutex_ is held
  // across acquire/call/release of a function taken from the table.
  std::mutex engineMutex_;
  std::unordered_map<EngineHandle, napi_threadsafe_function> engineEventFunctions_;
  EngineHandle currentEngine_ = 0;

  // Name -> function registered by registerEventHandler, with the environment that made it
  // (only that environment's thread may ref or unref it); same locking rule.
  struct NamedFunction {
    napi_threadsafe_function function;
    napi_env env;
  };
  std::mutex namedMutex_;
  std::map<std::string, NamedFunction> namedEventFunctions_;

  std::atomic<uint64_t> engineTeardowns_{0};

  DispatchWorker worker_;
};

}  // namespace orva
