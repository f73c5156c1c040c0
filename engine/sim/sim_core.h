// The machinery of the simulated engine that is not behaviour: callback registrations, the
// call journal, scripted return values, asynchronous completions, memory handed out to
// callers, and the engine's threads. One process-wide instance, reached through core().
//
// Threads: the caller's thread (script or test) calls entry points and control functions;
// the "events" loop runs every event, completion and behaviour callback; the "frames" loop
// produces raw video frames; burst makes its own threads. Each component below has its own
// lock, and no lock is held while a registered callback runs.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <rapidjson/document.h>

#include "sim_args.h"
#include "sim_generated.h"
#include "sim_loop.h"
#include "sim_serialize.h"

namespace orva::sim {

// An object that is built on first use and never destroyed: engine threads may still be
// running when the process exits, so nothing they touch may be torn down under them.
template <class T>
class NoDestructor {
 public:
  template <class... A>
  explicit NoDestructor(A&&... args) {
    ::new (static_cast<void*>(storage_)) T(std::forward<A>(args)...);
  }
  T& get() { return *std::launder(reinterpret_cast<T*>(storage_)); }

 private:
  alignas(T) unsigned char storage_[sizeof(T)];
};

struct Registration {
  AnyFn callback = nullptr;
  void* context = nullptr;
};

// Callback registrations by callback id, plus the order in which the current ones were made.
//
// A registration that is cleared or replaced is not called any more once set() returns:
// set() waits for calls of the old one still in progress, so a caller may free the
// user_context right after clearing. Only a thread that is itself inside a callback does not
// wait (it could be waiting for itself); the wait gives up after 5 s rather than hang.
class Registry {
 public:
  Registry();
  void set(int id, AnyFn callback, void* context);
  Registration get(int id) const;
  // Changes whenever the registration of `id` changes.
  uint32_t version(int id) const { return versions_[id].load(); }
  std::vector<int> order() const;

  // One call of callback `id` in progress: holds the registration it read.
  class Hold {
   public:
    Hold(Registry& registry, int id);
    ~Hold();
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
    explicit operator bool() const { return reg_.callback != nullptr; }
    const Registration& reg() const { return reg_; }

   private:
    Registry& registry_;
    int id_;
    Registration reg_;
  };

  // For burst's loop, which must not take the lock per call: enter() before reading
  // version() and calling, leave() after the call returned.
  void enter(int id) { inFlight_[id].fetch_add(1); }
  void leave(int id) { inFlight_[id].fetch_sub(1); }
  // Marks the current thread as inside a callback (see set()).
  static void enterCallback();
  static void leaveCallback();

 private:
  mutable std::mutex mu_;
  std::vector<Registration> slots_;
  std::vector<int> order_;
  std::unique_ptr<std::atomic<uint32_t>[]> versions_;
  std::unique_ptr<std::atomic<int32_t>[]> inFlight_;
};

// Every call into the engine's interface, as {"fn", "args"} JSON entries in call order.
class Journal {
 public:
  void append(const char* fn, std::string entry);
  std::string toJson(const char* fnFilter) const;  // a JSON array
  void clear();

 private:
  struct Entry {
    std::string fn;
    std::string json;
  };
  mutable std::mutex mu_;
  std::vector<Entry> entries_;
};

// Builds one journal entry: {"fn": <fn>, "args": {...}}; the generated journal helpers write
// the arguments between construction and commit().
class JournalEntry {
 public:
  explicit JournalEntry(const char* fn);
  json::Writer& w() { return writer_; }
  void commit();

 private:
  const char* fn_;
  rapidjson::StringBuffer buffer_;
  json::Writer writer_;
};

// Return values scripted with setReturn, by entry point name.
class Scripted {
 public:
  void set(std::string fn, std::shared_ptr<const rapidjson::Document> value);
  std::shared_ptr<const rapidjson::Document> get(std::string_view fn) const;
  void clear();

 private:
  mutable std::mutex mu_;
  std::atomic<bool> any_{false};  // skips the lock on the common path: nothing scripted
  std::map<std::string, std::shared_ptr<const rapidjson::Document>, std::less<>> values_;
};

// Runs once an asynchronous call is answered, on the events loop, with the result payload
// ({seq, errorCode, ...}). The default sends the payload to the result callback.
using Finisher = std::function<void(const rapidjson::Document& payload)>;

struct AsyncCall {
  const char* fn = nullptr;  // entry point name, for pending()
  int resultCallback = -1;   // callback id of the @result callback
  rapidjson::Document base;  // result keys known at call time (roomID, index, ...)
  Finisher finish;           // behaviour to run with the answer; empty: plain result callback
  std::chrono::milliseconds autoDelay{5};
};

// Memory handed to a caller (lists, texts) that stays valid until its free function.
class HandedOut {
 public:
  void adopt(const void* p, std::unique_ptr<Storage> storage);
  bool release(const void* p);

 private:
  std::mutex mu_;
  std::unordered_map<const void*, std::unique_ptr<Storage>> blocks_;
};

class Core {
 public:
  Core();

  Registry registry;
  Journal journal;
  Scripted scripted;
  HandedOut handedOut;
  TaskLoop events{"orva-sim-events"};
  TaskLoop frames{"orva-sim-frames"};

  // Bumped by reset and uninit; behaviour tasks posted before a bump do nothing.
  uint64_t epoch() const { return epoch_.load(std::memory_order_acquire); }
  void bumpEpoch() { epoch_.fetch_add(1, std::memory_order_acq_rel); }
  // Posts a behaviour task that is skipped when the epoch changed in between.
  void postEvent(std::function<void()> task, std::chrono::milliseconds delay = std::chrono::milliseconds(0));

  // Sequence numbers of asynchronous calls: 1, 2, ... never 0, across resets.
  int32_t nextSeq();
  int32_t startAsync(int32_t* seq, AsyncCall call);
  void setAutoComplete(bool on) { autoComplete_.store(on); }
  std::string pendingJson() const;
  // 1 answered, 0 no such pending call, -1 bad result (err set).
  int32_t complete(int32_t seq, const rapidjson::Value& result, std::string& err);
  void dropPending();

  // Forgets journal, scripted returns, pending calls and simulated state; waits until no
  // task of the old state is still running. Registrations stay.
  void reset();
  void shutdownForExit();

 private:
  struct Pending {
    int32_t seq;
    const char* fn;
    int resultCallback;
    std::shared_ptr<rapidjson::Document> base;
    Finisher finish;
  };
  void finishAsync(int resultCallback, const Finisher& finish, const rapidjson::Document& payload);

  std::atomic<uint64_t> epoch_{1};
  std::atomic<int32_t> seq_{0};
  std::atomic<bool> autoComplete_{true};
  mutable std::mutex pendingMu_;
  std::vector<Pending> pending_;
};

Core& core();

// Sends `payload` to callback `id` on the current thread (an engine thread); false when
// nothing is registered or the payload does not convert.
bool fireJson(int id, const rapidjson::Value& payload);

// Registration entry point body: journals the call and stores the callback.
void registerCallback(int id, const char* fn, AnyFn callback, void* userContext);

// Scripted return values, converted to the C type the entry point returns.
template <class T>
std::optional<T> scriptedNumber(std::string_view fn) {
  auto v = core().scripted.get(fn);
  if (!v) return std::nullopt;
  T out{};
  std::string err;
  if (!readNumber(*v, out, Path{nullptr, "value", -1}, err)) return std::nullopt;
  return out;
}
std::optional<std::string> scriptedText(std::string_view fn);

// A text for a caller's output buffer (NUL-terminated, truncated to fit).
void copyOut(const std::string& text, char* out, uint32_t capacity);

// Runs an entry point body so that no exception crosses the C boundary.
template <class R, class F>
R guarded(R fallback, F&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return fallback;
  }
}
template <class F>
void guardedVoid(F&& body) noexcept {
  try {
    body();
  } catch (...) {
  }
}

// Builds a JSON object document from key/value pairs for asynchronous result payloads.
class PayloadBuilder {
 public:
  PayloadBuilder() { doc_.SetObject(); }
  PayloadBuilder& setText(const char* key, const char* text);
  PayloadBuilder& setText(const char* key, const std::string& text) { return setText(key, text.c_str()); }
  PayloadBuilder& setInt(const char* key, int64_t number);
  PayloadBuilder& setUint(const char* key, uint64_t number);
  PayloadBuilder& setReal(const char* key, double number);
  rapidjson::Document take() { return std::move(doc_); }

 private:
  rapidjson::Document doc_;
};

}  // namespace orva::sim
