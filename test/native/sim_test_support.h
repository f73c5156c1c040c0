// Support for the simulated engine's native tests: the library is opened at run time from
// this executable's directory (as the addon would), entry points are resolved by name, and
// callbacks are recorded with the generated recorder.
#pragma once

#include <gtest/gtest.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#include <unistd.h>
#endif

#include "../../engine/sim/orva_sim_control.h"
#include "orva_vantix_engine.h"
#include "sim_recorder.h"

namespace orva::sim::test {

using rec::AnyFn;
using RegisterFn = void (*)(AnyFn, void*);

class SimLibrary {
 public:
  static SimLibrary& get() {
    static SimLibrary lib;  // loaded once, never unloaded: engine threads may outlive a test
    return lib;
  }

  void* symbol(const std::string& name) const {
#if defined(_WIN32)
    return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name.c_str()));
#else
    return dlsym(handle_, name.c_str());
#endif
  }
  template <class F>
  F fn(const std::string& name) const {
    void* p = symbol(name);
    if (!p) ADD_FAILURE() << "missing entry point " << name;
    return reinterpret_cast<F>(p);
  }
  bool loaded() const { return handle_ != nullptr; }
  const std::string& path() const { return path_; }

 private:
  SimLibrary() {
#if defined(_WIN32)
    char buf[MAX_PATH];
    const DWORD n = GetModuleFileNameA(nullptr, buf, MAX_PATH);
    std::string exe(buf, n);
    path_ = exe.substr(0, exe.find_last_of("\\/") + 1) + "OrvaVantixEngine.dll";
    handle_ = reinterpret_cast<void*>(LoadLibraryA(path_.c_str()));
#else
    char buf[4096];
    const ssize_t n = readlink("/proc/self/exe", buf, sizeof buf - 1);
    std::string exe(buf, n > 0 ? static_cast<size_t>(n) : 0);
    path_ = exe.substr(0, exe.find_last_of('/') + 1) + "libOrvaVantixEngine.so";
    handle_ = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
#endif
  }
  void* handle_ = nullptr;
  std::string path_;
};

// An engine entry point, typed as the header declares it: ENGINE(orva_vantix_stop_preview)(0).
#define ENGINE(name) (::orva::sim::test::SimLibrary::get().fn<decltype(&name)>(#name))

// The control interface with texts already released.
struct Control {
  static std::string text(char* t) {
    std::string s = t ? t : "";
    ENGINE(orva_sim_free)(t);
    return s;
  }
  static void reset() { ENGINE(orva_sim_reset)(); }
  static std::string calls(const char* fn = nullptr) { return text(ENGINE(orva_sim_calls)(fn)); }
  static std::string registered() { return text(ENGINE(orva_sim_registered)()); }
  static std::string pending() { return text(ENGINE(orva_sim_pending)()); }
  static std::string version() { return text(ENGINE(orva_sim_version)()); }
  static void autoComplete(bool on) { ENGINE(orva_sim_auto_complete)(on); }
  // rc, with the error text (if any) in *error.
  static int32_t emit(const std::string& name, const std::string& payload, std::string* error = nullptr) {
    char* e = nullptr;
    const int32_t rc = ENGINE(orva_sim_emit)(name.c_str(), payload.c_str(), &e);
    const std::string msg = text(e);
    if (error) *error = msg;
    return rc;
  }
  static int32_t setReturn(const std::string& fn, const std::string& value, std::string* error = nullptr) {
    char* e = nullptr;
    const int32_t rc = ENGINE(orva_sim_set_return)(fn.c_str(), value.c_str(), &e);
    const std::string msg = text(e);
    if (error) *error = msg;
    return rc;
  }
  static int32_t complete(int32_t seq, const std::string& result, std::string* error = nullptr) {
    char* e = nullptr;
    const int32_t rc = ENGINE(orva_sim_complete)(seq, result.c_str(), &e);
    const std::string msg = text(e);
    if (error) *error = msg;
    return rc;
  }
};

inline RegisterFn registration(const std::string& callback) {
  return SimLibrary::get().fn<RegisterFn>("orva_register_" + callback + "_callback");
}

// Collects recorded callbacks (name, JSON of the arguments, thread) in arrival order.
class Sink final : public rec::Sink {
 public:
  struct Event {
    std::string name;
    std::string json;
    std::thread::id thread;
  };

  void record(const char* name, std::string json) override {
    std::lock_guard<std::mutex> lock(mu_);
    events_.push_back(Event{name, std::move(json), std::this_thread::get_id()});
    cv_.notify_all();
  }

  // Waits until at least `n` events arrived; the events so far.
  std::vector<Event> waitFor(size_t n, std::chrono::milliseconds timeout = std::chrono::seconds(5)) {
    std::unique_lock<std::mutex> lock(mu_);
    cv_.wait_for(lock, timeout, [&] { return events_.size() >= n; });
    return events_;
  }
  // Waits until `count` events of callback `name` arrived; those events.
  std::vector<Event> waitForNamed(const std::string& name, size_t count,
                                  std::chrono::milliseconds timeout = std::chrono::seconds(5)) {
    std::unique_lock<std::mutex> lock(mu_);
    auto named = [&] {
      std::vector<Event> out;
      for (const Event& e : events_) {
        if (e.name == name) out.push_back(e);
      }
      return out;
    };
    cv_.wait_for(lock, timeout, [&] { return named().size() >= count; });
    return named();
  }
  std::vector<Event> events() {
    std::lock_guard<std::mutex> lock(mu_);
    return events_;
  }
  std::vector<Event> named(const std::string& name) {
    std::vector<Event> out;
    for (const Event& e : events()) {
      if (e.name == name) out.push_back(e);
    }
    return out;
  }

 private:
  std::mutex mu_;
  std::condition_variable cv_;
  std::vector<Event> events_;
};

// Registers the generated recorder of each named callback with `sink`, and clears them
// again when the scope ends.
class Recording {
 public:
  Recording(Sink& sink, std::vector<std::string> names) : names_(std::move(names)) {
    for (const std::string& n : names_) registration(n)(rec::recorderFor(n), &sink);
  }
  ~Recording() {
    for (const std::string& n : names_) registration(n)(nullptr, nullptr);
  }
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;

 private:
  std::vector<std::string> names_;
};

inline rapidjson::Document parseJson(const std::string& text) {
  rapidjson::Document d;
  d.Parse<rapidjson::kParseFullPrecisionFlag>(text.c_str());
  EXPECT_FALSE(d.HasParseError()) << text;
  return d;
}

inline std::string toJson(const rapidjson::Value& v) {
  rapidjson::StringBuffer sb;
  rapidjson::Writer<rapidjson::StringBuffer> w(sb);
  v.Accept(w);
  return sb.GetString();
}

// Equality of JSON texts as values (member order does not matter, 2 == 2.0).
inline ::testing::AssertionResult sameJson(const std::string& expected, const std::string& actual) {
  if (parseJson(expected) == parseJson(actual)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "\n  expected: " << expected << "\n  actual:   " << actual;
}

// Every test starts from a reset engine with no registration of ours left behind.
class SimTest : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SimLibrary::get().loaded()) << "cannot open " << SimLibrary::get().path();
    Control::reset();
  }
  void TearDown() override { Control::reset(); }
};

constexpr bool kSanitized =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    true;
#else
    false;
#endif

}  // namespace orva::sim::test
