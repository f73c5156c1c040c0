// Argument checking and reading for every script method of the module.
//
// A method reads like its row in the method table: its reported name, the keys and types
// it requires, the conversions, the engine call. Reporting ("call func:" before the check,
// the debug alert or the promise rejection after a failed one) happens inside MethodCall,
// once for all methods.
//
//   Napi::Value OrvaVantixEngineWrapper::loginRoom(const Napi::CallbackInfo& info) {
//     MethodCall call(info, "loginRoom", errors_);        // onDebugInfo("loginRoom")
//     if (!call.check({{"roomID", ArgType::String}, {"user", ArgType::Object}})) {
//       return call.undefined();                          // onDebugError already sent
//     }
//     if (!call.check("user", {{"userID", ArgType::String}, {"userName", ArgType::String}})) {
//       return call.undefined();                          // "param user.userID missing", ...
//     }
//     std::string roomID = call.args().string("roomID");
//     ...
//   }
//
// Promise methods pass MethodCall::Mode::Reject: the promise is created right after the
// debug-info report, a failed check rejects it with the message (no alert), and the method
// returns call.promise() on every path:
//
//   MethodCall call(info, "setRoomExtraInfo", errors_, MethodCall::Mode::Reject);
//   if (!call.hasArgument()) return call.reject(call.env().Undefined());
//   if (!call.check({{"roomID", ArgType::String}, ...})) return call.promise();
//   ... engine call with a completion that captures call.deferred() ...
//   return call.promise();
//
// Mode::ReportAndReject does both (getScreenCaptureSources). A method that reports under
// another name than its own simply passes that name ("setRoomMode", "enableCheckPoc").
// Messages of a method's own (not the checker's) go through call.fail("param config is
// missing"), which stores and reports them the same way.
//
// Optional keys never enter the rules: test them with args().has(key) or
// args().is(key, type) and read them only when present. Readers convert as the method
// tables say: string() (UTF-8), coercedString(), int64(), coercedInt64(), int32(),
// truncatedInt32() (64-bit read cut to 32 bits, the wrappers' rule for engine integers),
// uint32(), number() (double), float32(), boolean(), object(), list(), and by array index
// length(), at(), objectAt(), int32At(), float32At(). A reader whose
// Node-API call fails throws the pending Node-API error into script (node-addon-api's
// error path).
#pragma once

#include <napi.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "bridge/ArgumentRules.h"

namespace orva {

// The per-object record of the last argument failure (the addon object and every wrapper
// instance keep one).
struct ArgumentErrors {
  int32_t code = -1;     // handed to onDebugError with every argument failure
  std::string message;   // the message of the last failed check
};

// Rules kept in a variable (a list built step by step); inline rules are written as braced
// lists at the call.
using ArgumentSpec = std::vector<ArgumentRule>;

// Tests `object` against the rules in order; the first failing rule writes its message
// into `message` and the result is false; on success `message` is untouched. Never throws.
// A value that is not an object has no keys: its first rule reports "missing".
bool checkObjectArguments(napi_env env, napi_value object, std::string_view objectName,
                          const ArgumentRule* rules, std::size_t count, std::string& message);
inline bool checkObjectArguments(napi_env env, napi_value object, std::string_view objectName,
                                 const ArgumentSpec& rules, std::string& message) {
  return checkObjectArguments(env, object, objectName, rules.data(), rules.size(), message);
}

// Whether `value` passes `type` (the checker's type table). Never throws.
bool valueHasType(napi_env env, napi_value value, ArgType type);

// A script object (or any value: a non-object has no keys) with the typed readers.
class ArgObject {
 public:
  ArgObject(napi_env env, napi_value value) : env_(env), value_(value) {}

  Napi::Value value() const { return Napi::Value(env_, value_); }
  bool isObject() const;

  bool has(const char* key) const;                 // napi_has_named_property
  bool is(const char* key, ArgType type) const;    // present and of that type
  Napi::Value get(const char* key) const;

  std::string string(const char* key) const;
  std::string coercedString(const char* key) const;   // any value kept as text
  int64_t int64(const char* key) const;
  int64_t coercedInt64(const char* key) const;        // numeric text accepted
  int32_t int32(const char* key) const;
  int32_t truncatedInt32(const char* key) const { return static_cast<int32_t>(int64(key)); }
  uint32_t uint32(const char* key) const;
  double number(const char* key) const;
  float float32(const char* key) const;
  bool boolean(const char* key) const;
  ArgObject object(const char* key) const;

  // The bytes under `key`, which passed the "Buffer" check: a Buffer, any typed array or a
  // DataView (all of them pass it). `length` is the view's real byte length.
  struct Bytes {
    uint8_t* data = nullptr;
    std::size_t length = 0;
  };
  Bytes bytes(const char* key) const;

  // The array under `key`, element i read by read(Napi::Value) for i from 0.
  template <typename Read>
  auto list(const char* key, Read read) const {
    Napi::Array array = get(key).As<Napi::Array>();
    const uint32_t length = array.Length();
    std::vector<decltype(read(Napi::Value()))> out;
    out.reserve(length);
    for (uint32_t i = 0; i < length; ++i) out.push_back(read(array.Get(i)));
    return out;
  }
  std::vector<int32_t> int32List(const char* key) const;

  // Single elements of the array under `key`, fetched by index (for arrays walked by their
  // length, or read with a fixed index range). An index past the end gives undefined, which
  // a numeric read rejects with the number-expected error, thrown into script.
  uint32_t length(const char* key) const;
  Napi::Value at(const char* key, uint32_t index) const;
  ArgObject objectAt(const char* key, uint32_t index) const { return ArgObject(env_, at(key, index)); }
  int32_t int32At(const char* key, uint32_t index) const;  // napi_get_value_int32
  float float32At(const char* key, uint32_t index) const;  // a double narrowed to float

 private:
  napi_env env_;
  napi_value value_;
};

// One call of a checked script method: reports its name, checks and reads its argument
// object, and reports or rejects failures as its mode says.
class MethodCall {
 public:
  enum class Mode : uint8_t {
    Report,           // failures go to onDebugError (undefined- and value-returning methods)
    Reject,           // failures reject the call's promise with the message
    ReportAndReject,  // both
  };

  // Reports `apiName` through onDebugInfo; promise modes then create the promise.
  MethodCall(const Napi::CallbackInfo& info, std::string apiName, ArgumentErrors& errors,
             Mode mode = Mode::Report);

  Napi::Env env() const { return info_.Env(); }
  const Napi::CallbackInfo& info() const { return info_; }
  const std::string& apiName() const { return apiName_; }
  bool hasArgument() const { return info_.Length() > 0; }
  // Argument 0 (undefined when absent).
  const ArgObject& args() const { return args_; }
  Napi::Value undefined() const { return env().Undefined(); }

  // Checks the argument object (object name "").
  bool check(std::initializer_list<ArgumentRule> rules) { return check(args_, "", rules); }
  bool check(const ArgumentSpec& rules) { return check(args_, "", rules); }
  // Checks the object under `key` of the argument object, named by that key in messages
  // ("param user.userID missing"). Only after the key itself passed a check.
  bool check(const char* key, std::initializer_list<ArgumentRule> rules) {
    return check(args_.object(key), key, rules);
  }
  // Checks any object; `objectName` prefixes its keys in messages.
  bool check(const ArgObject& object, std::string_view objectName,
             std::initializer_list<ArgumentRule> rules);
  bool check(const ArgObject& object, std::string_view objectName, const ArgumentSpec& rules);
  // Checks each element of the array under `key` of the argument object (after the key
  // itself passed as "Array"), in order, each named by that key ("param toUserList.userName
  // missing"); the first failing element decides.
  bool checkElements(const char* key, std::initializer_list<ArgumentRule> rules);
  // A failure with the method's own message: stored, then reported like a failed check.
  // Always false.
  bool fail(std::string message);

  // ---- promise modes
  Napi::Promise promise() const;
  // Rejects with `reason` (once) and gives the promise back.
  Napi::Value reject(Napi::Value reason);
  // The deferred, for the completion that will resolve the promise later.
  const Napi::Promise::Deferred& deferred() const { return *deferred_; }

 private:
  bool check(const ArgObject& object, std::string_view objectName, const ArgumentRule* rules,
             std::size_t count);
  bool reportFailure();

  const Napi::CallbackInfo& info_;
  std::string apiName_;
  ArgumentErrors& errors_;
  Mode mode_;
  ArgObject args_;
  std::optional<Napi::Promise::Deferred> deferred_;
  bool settled_ = false;
};

// Throws a script TypeError with `message` (the method-level faults: "Wrong arguments",
// ...) and gives the method's undefined result.
Napi::Value throwTypeError(Napi::Env env, const char* message);

}  // namespace orva
