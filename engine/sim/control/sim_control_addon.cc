// Native part of the simulated engine's control module (engine/sim/index.js).
//
// It loads the engine library at run time from its own directory, the same file the addon
// loads, so both talk to one engine instance in the process; it never links the library.
// Everything crosses as JSON text: index.js converts script values, this file only moves
// texts and Buffers to and from the control interface (orva_sim_control.h).
#include <napi.h>

#include <mutex>
#include <string>
#include <type_traits>
#include <utility>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX  // std::min/max, not the macros
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "orva_sim_control.h"

namespace {

struct ControlApi {
  orva_sim_reset_fn reset = nullptr;
  orva_sim_calls_fn calls = nullptr;
  orva_sim_registered_fn registered = nullptr;
  orva_sim_emit_fn emit = nullptr;
  orva_sim_burst_fn burst = nullptr;
  orva_sim_frame_fn frame = nullptr;
  orva_sim_set_return_fn setReturn = nullptr;
  orva_sim_auto_complete_fn autoComplete = nullptr;
  orva_sim_pending_fn pending = nullptr;
  orva_sim_complete_fn complete = nullptr;
  orva_sim_version_fn version = nullptr;
  orva_sim_free_fn free = nullptr;
  std::string error;  // set when the library or an entry point is missing
};

#if defined(_WIN32)
constexpr const char* kLibraryName = "OrvaVantixEngine.dll";

std::wstring widen(const std::string& s) {
  const int n = MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, nullptr, 0);
  std::wstring w(static_cast<size_t>(n > 0 ? n - 1 : 0), L'\0');
  if (n > 1) MultiByteToWideChar(CP_UTF8, 0, s.c_str(), -1, w.data(), n);
  return w;
}

std::string narrow(const std::wstring& w) {
  const int n = WideCharToMultiByte(CP_UTF8, 0, w.c_str(), -1, nullptr, 0, nullptr, nullptr);
  std::string s(static_cast<size_t>(n > 0 ? n - 1 : 0), '\0');
  if (n > 1) WideCharToMultiByte(CP_UTF8, 0, w.c_str(), -1, s.data(), n, nullptr, nullptr);
  return s;
}

// The directory of this module, with a trailing separator.
std::string moduleDir() {
  HMODULE self = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&moduleDir), &self);
  std::wstring path(32768, L'\0');
  const DWORD n = GetModuleFileNameW(self, path.data(), static_cast<DWORD>(path.size()));
  path.resize(n);
  const size_t slash = path.find_last_of(L"\\/");
  return narrow(slash == std::wstring::npos ? std::wstring() : path.substr(0, slash + 1));
}

void* openLibrary(const std::string& path, std::string& err) {
  HMODULE h = LoadLibraryW(widen(path).c_str());
  if (!h) err = "cannot load " + path + " (error " + std::to_string(GetLastError()) + ")";
  return reinterpret_cast<void*>(h);
}

void* symbol(void* lib, const char* name) {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(lib), name));
}
#else
constexpr const char* kLibraryName = "libOrvaVantixEngine.so";

std::string moduleDir() {
  Dl_info info{};
  if (!dladdr(reinterpret_cast<void*>(&moduleDir), &info) || !info.dli_fname) return std::string();
  const std::string path = info.dli_fname;
  const size_t slash = path.find_last_of('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

void* openLibrary(const std::string& path, std::string& err) {
  void* h = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!h) {
    const char* why = dlerror();
    err = "cannot load " + path + (why ? std::string(": ") + why : std::string());
  }
  return h;
}

void* symbol(void* lib, const char* name) { return dlsym(lib, name); }
#endif

// Loaded on first use, once per process; the library stays loaded for the process's life.
const ControlApi& api() {
  static ControlApi a;
  static std::once_flag once;
  std::call_once(once, [] {
    const std::string path = moduleDir() + kLibraryName;
    void* lib = openLibrary(path, a.error);
    if (!lib) return;
    auto resolve = [&](auto& fn, const char* name) {
      fn = reinterpret_cast<std::remove_reference_t<decltype(fn)>>(symbol(lib, name));
      if (!fn && a.error.empty()) a.error = path + " has no entry point " + name + " (not the simulated engine?)";
    };
    resolve(a.reset, "orva_sim_reset");
    resolve(a.calls, "orva_sim_calls");
    resolve(a.registered, "orva_sim_registered");
    resolve(a.emit, "orva_sim_emit");
    resolve(a.burst, "orva_sim_burst");
    resolve(a.frame, "orva_sim_frame");
    resolve(a.setReturn, "orva_sim_set_return");
    resolve(a.autoComplete, "orva_sim_auto_complete");
    resolve(a.pending, "orva_sim_pending");
    resolve(a.complete, "orva_sim_complete");
    resolve(a.version, "orva_sim_version");
    resolve(a.free, "orva_sim_free");
  });
  return a;
}

const ControlApi& require(const Napi::Env& env) {
  const ControlApi& a = api();
  if (!a.error.empty()) throw Napi::Error::New(env, "simulated engine: " + a.error);
  return a;
}

// Takes ownership of a text the library allocated.
std::string take(const ControlApi& a, char* text) {
  std::string s = text ? text : "";
  a.free(text);
  return s;
}

std::string optionalString(const Napi::Value& v) { return v.IsString() ? v.As<Napi::String>().Utf8Value() : std::string(); }

// A result code: -1 becomes a TypeError with the library's explanation.
Napi::Value code(const Napi::Env& env, const ControlApi& a, int32_t rc, char* error) {
  const std::string message = take(a, error);
  if (rc < 0) throw Napi::TypeError::New(env, message.empty() ? "simulated engine refused the request" : message);
  return Napi::Number::New(env, rc);
}

Napi::Value Reset(const Napi::CallbackInfo& info) {
  require(info.Env()).reset();
  return info.Env().Undefined();
}

Napi::Value Calls(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  const bool filtered = info.Length() > 0 && info[0].IsString();
  const std::string fn = filtered ? info[0].As<Napi::String>().Utf8Value() : std::string();
  return Napi::String::New(info.Env(), take(a, a.calls(filtered ? fn.c_str() : nullptr)));
}

Napi::Value Registered(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  return Napi::String::New(info.Env(), take(a, a.registered()));
}

// emit(name, payloadJson) -> 1 | 0
Napi::Value Emit(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  const std::string name = optionalString(info[0]);
  const std::string payload = optionalString(info[1]);
  char* error = nullptr;
  const int32_t rc = a.emit(name.c_str(), payload.empty() ? nullptr : payload.c_str(), &error);
  return code(info.Env(), a, rc, error);
}

// The burst blocks until its last call, so it runs on a worker thread of libuv's pool; the
// callbacks it makes reach the addon, whose script events need this thread to be free.
class BurstWorker final : public Napi::AsyncWorker {
 public:
  BurstWorker(const Napi::Env& env, const ControlApi& a, std::string name, std::string payload, uint32_t count,
              uint32_t threads, std::string counterKey, std::string threadKey, bool hasCounter, bool hasThread)
      : Napi::AsyncWorker(env, "orva_sim_burst"),
        deferred_(Napi::Promise::Deferred::New(env)),
        api_(a),
        name_(std::move(name)),
        payload_(std::move(payload)),
        count_(count),
        threads_(threads),
        counterKey_(std::move(counterKey)),
        threadKey_(std::move(threadKey)),
        hasCounter_(hasCounter),
        hasThread_(hasThread) {}

  Napi::Promise promise() const { return deferred_.Promise(); }

  void Execute() override {
    char* error = nullptr;
    rc_ = api_.burst(name_.c_str(), payload_.empty() ? nullptr : payload_.c_str(), count_, threads_,
                     hasCounter_ ? counterKey_.c_str() : nullptr, hasThread_ ? threadKey_.c_str() : nullptr, &calls_,
                     &seconds_, &error);
    error_ = take(api_, error);
  }

  // A burst may end while its environment is going away (a terminated worker, process exit):
  // settling the promise then fails, and an exception leaving OnOK/OnError would end the
  // process. Nothing is left to tell, so the failure is dropped.
  void OnOK() override {
    try {
      Napi::Env env = Env();
      if (rc_ < 0) {
        deferred_.Reject(Napi::TypeError::New(env, error_).Value());
        return;
      }
      Napi::Object result = Napi::Object::New(env);
      result.Set("calls", Napi::Number::New(env, static_cast<double>(calls_)));
      result.Set("seconds", Napi::Number::New(env, seconds_));
      deferred_.Resolve(result);
    } catch (...) {
    }
  }

  void OnError(const Napi::Error& e) override {
    try {
      deferred_.Reject(e.Value());
    } catch (...) {
    }
  }

 private:
  Napi::Promise::Deferred deferred_;
  const ControlApi& api_;
  std::string name_, payload_;
  uint32_t count_, threads_;
  std::string counterKey_, threadKey_;
  bool hasCounter_, hasThread_;
  int32_t rc_ = 0;
  uint64_t calls_ = 0;
  double seconds_ = 0;
  std::string error_;
};

// burst(name, payloadJson, count, threads, counterKey|null, threadKey|null) -> Promise
Napi::Value Burst(const Napi::CallbackInfo& info) {
  Napi::Env env = info.Env();
  const ControlApi& a = require(env);
  auto* worker = new BurstWorker(env, a, optionalString(info[0]), optionalString(info[1]),
                                 info[2].As<Napi::Number>().Uint32Value(), info[3].As<Napi::Number>().Uint32Value(),
                                 optionalString(info[4]), optionalString(info[5]), info[4].IsString(),
                                 info[5].IsString());
  Napi::Promise promise = worker->promise();
  worker->Queue();  // the worker deletes itself once settled
  return promise;
}

// frame(targetJson, frameJson, data?: Buffer) -> 1 | 0
Napi::Value Frame(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  const std::string target = optionalString(info[0]);
  const std::string frame = optionalString(info[1]);
  const uint8_t* data = nullptr;
  uint32_t length = 0;
  if (info.Length() > 2 && info[2].IsBuffer()) {
    auto buf = info[2].As<Napi::Buffer<uint8_t>>();
    data = buf.Data();
    length = static_cast<uint32_t>(buf.Length());
  }
  char* error = nullptr;
  const int32_t rc = a.frame(target.c_str(), frame.c_str(), data, length, &error);
  return code(info.Env(), a, rc, error);
}

Napi::Value SetReturn(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  const std::string fn = optionalString(info[0]);
  const std::string value = optionalString(info[1]);
  char* error = nullptr;
  const int32_t rc = a.setReturn(fn.c_str(), value.c_str(), &error);
  code(info.Env(), a, rc, error);
  return info.Env().Undefined();
}

Napi::Value AutoComplete(const Napi::CallbackInfo& info) {
  require(info.Env()).autoComplete(info[0].ToBoolean().Value());
  return info.Env().Undefined();
}

Napi::Value Pending(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  return Napi::String::New(info.Env(), take(a, a.pending()));
}

// complete(seq, resultJson) -> 1 | 0
Napi::Value Complete(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  const int32_t seq = info[0].As<Napi::Number>().Int32Value();
  const std::string result = optionalString(info[1]);
  char* error = nullptr;
  const int32_t rc = a.complete(seq, result.c_str(), &error);
  return code(info.Env(), a, rc, error);
}

Napi::Value Version(const Napi::CallbackInfo& info) {
  const ControlApi& a = require(info.Env());
  return Napi::String::New(info.Env(), take(a, a.version()));
}

Napi::Object Init(Napi::Env env, Napi::Object exports) {
  exports.Set("reset", Napi::Function::New(env, Reset, "reset"));
  exports.Set("calls", Napi::Function::New(env, Calls, "calls"));
  exports.Set("registered", Napi::Function::New(env, Registered, "registered"));
  exports.Set("emit", Napi::Function::New(env, Emit, "emit"));
  exports.Set("burst", Napi::Function::New(env, Burst, "burst"));
  exports.Set("frame", Napi::Function::New(env, Frame, "frame"));
  exports.Set("setReturn", Napi::Function::New(env, SetReturn, "setReturn"));
  exports.Set("autoComplete", Napi::Function::New(env, AutoComplete, "autoComplete"));
  exports.Set("pending", Napi::Function::New(env, Pending, "pending"));
  exports.Set("complete", Napi::Function::New(env, Complete, "complete"));
  exports.Set("version", Napi::Function::New(env, Version, "version"));
  return exports;
}

}  // namespace

NODE_API_MODULE(orva_sim_control, Init)
