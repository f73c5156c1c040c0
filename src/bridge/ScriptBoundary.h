// The places where Node-API calls back into this module with no script caller above to take
// an exception: thread-safe-function callbacks, finalisers, environment cleanup hooks. A C++
// exception leaving one of them ends the process (std::terminate), so each runs its body
// through atBoundary.
//
// What a failure becomes there:
//   - a Napi::Error (a failed Node-API call, a script exception caught on the way): thrown into
//     script when the environment can still take it, so it surfaces as an uncaught exception
//     like any callback's; while the environment is going away (worker termination, process
//     exit) nothing can run there, and it is dropped quietly;
//   - anything else: dropped. Nothing here can report it safely, and a dying environment is
//     the usual cause.
#pragma once

#include <napi.h>

#include <exception>

namespace orva {

// Throws `error` into script unless the environment refuses (terminating) or already has an
// exception pending, which then stands. Never throws.
inline void throwQuietly(napi_env env, const Napi::Error& error) noexcept {
  if (env == nullptr) return;
  try {
    bool pending = false;
    if (napi_is_exception_pending(env, &pending) != napi_ok || pending) return;
    napi_value value = error.Value();
    if (value != nullptr) napi_throw(env, value);  // a refusal means the environment is going
  } catch (...) {
    // Reading the error back failed: the environment is going away.
  }
}

inline void throwQuietly(napi_env env, const char* message) noexcept {
  if (env == nullptr) return;
  bool pending = false;
  if (napi_is_exception_pending(env, &pending) != napi_ok || pending) return;
  napi_throw_error(env, nullptr, message);
}

// Runs body() and keeps every exception inside; `env` (may be null, as in finalisers run at
// teardown) is where a Node-API error is rethrown as a script exception if it still can be.
template <class Body>
void atBoundary(napi_env env, Body&& body) noexcept {
  try {
    body();
  } catch (const Napi::Error& error) {
    throwQuietly(env, error);
  } catch (const std::exception& error) {
    throwQuietly(env, error.what());
  } catch (...) {
  }
}

}  // namespace orva
