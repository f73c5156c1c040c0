// The common shape of an engine wrapper method, written once, so that each method reads like
// its row in the method table: its reported name, the keys and types it checks, the
// conversions, the engine call.
//
// Undefined-returning method (report, check, read, call if an engine exists, undefined):
//
//   Napi::Value OrvaVantixEngineWrapper::setPlayVolume(const Napi::CallbackInfo& info) {
//     MethodCall call(info, "setPlayVolume", errors_);
//     if (!call.check({{"streamID", T::String}, {"volume", T::Number}})) return call.undefined();
//     const ArgObject& a = call.args();
//     return callEngine(call, &sdk::Engine::setPlayVolume, a.string("streamID"),
//                       a.truncatedInt32("volume"));
//   }
//
// Value-returning method: askEngine(call, toScript, &sdk::Engine::x, values...) gives
// toScript(env, engine answer), or the neutral value when no engine exists.
//
// Promise-returning method (report, promise, no argument / no engine / failed check reject,
// call with a completion that resolves on the script thread):
//
//   Napi::Value OrvaVantixEngineWrapper::setRoomExtraInfo(const Napi::CallbackInfo& info) {
//     PromiseCall call(info, "setRoomExtraInfo", errors_);
//     if (!call.begin({{"roomID", T::String}, {"key", T::String}, {"value", T::String}})) {
//       return call.promise();
//     }
//     const ArgObject& a = call.args();
//     return call.settle<ErrorCodeResult>(call.engine().setRoomExtraInfo(
//         a.string("roomID"), a.string("key"), a.string("value"),
//         call.completion<ErrorCodeResult, sdk::RoomSetRoomExtraInfoResultEvent>()));
//   }
//
// Values are read before the engine is asked for (the arguments of callEngine / askEngine are
// evaluated first), as the common shape orders it.
//
// Neutral values. A value method that cannot ask the engine (failed check, or no engine)
// returns undefined, never a made-up answer: 0 reads as success for a result code, and an
// object of zeros would pass for a real video configuration. Script tests `=== undefined`.
//
// No engine. Every undefined method then does nothing, also those whose work is not an engine
// call (registerEventHandler, the frame buffers, the debug assistant switch; use withEngine):
// what they set up is torn down with the engine and would otherwise outlive it, a named
// function keeping the process alive, a buffer receiving the next engine's frames after script
// let it go. The one exception is stopPlayingStream's buffer removal, which only makes safer.
#pragma once

#include <napi.h>

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "OrvaVantixSDKWrapper/Engine.h"
#include "OrvaVantixSDKWrapper/SnapshotImage.h"
#include "bridge/ArgumentChecker.h"
#include "bridge/EventTask.h"
#include "bridge/OrvaVantixAddonDataCenter.h"
#include "image/SnapshotEncoder.h"

namespace orva::wrapper {

using T = ArgType;

// ---- undefined- and value-returning methods ---------------------------------------------

// Calls `method` of the engine with `values` when an engine exists; the method's result is
// undefined either way (its outcome reaches script as events).
template <class Method, class... Values>
Napi::Value callEngine(const MethodCall& call, Method method, Values&&... values) {
  if (std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance()) {
    std::invoke(method, *engine, std::forward<Values>(values)...);
  }
  return call.undefined();
}

// fn(sdk::Engine&) when an engine exists, for work that is not one engine call (a choice of
// calls, or a registration that lives only as long as the engine); undefined either way.
template <class Fn>
Napi::Value withEngine(const MethodCall& call, Fn&& fn) {
  if (std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance()) fn(*engine);
  return call.undefined();
}

// toScript(env, answer of `method`) when an engine exists, else the neutral value (undefined).
template <class ToScript, class Method, class... Values>
Napi::Value askEngine(const MethodCall& call, ToScript toScript, Method method, Values&&... values) {
  std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance();
  if (!engine) return call.undefined();
  return toScript(call.env(), std::invoke(method, *engine, std::forward<Values>(values)...));
}

// Like askEngine, for the getters whose neutral value is an answer of its own (an empty
// device list): toScript(env, `neutral`) when no engine exists.
template <class ToScript, class Answer, class Method, class... Values>
Napi::Value askEngineOr(const MethodCall& call, Answer neutral, ToScript toScript, Method method,
                        Values&&... values) {
  std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance();
  if (!engine) return toScript(call.env(), std::move(neutral));
  return toScript(call.env(), std::invoke(method, *engine, std::forward<Values>(values)...));
}

// An engine answer that is a number (a result code, a support value).
inline Napi::Value numberValue(Napi::Env env, int32_t answer) { return Napi::Number::New(env, answer); }
// An engine answer that is a boolean (a mute state).
inline Napi::Value booleanValue(Napi::Env env, bool answer) { return Napi::Boolean::New(env, answer); }
// An engine answer that is a text (a device ID).
inline Napi::Value textValue(Napi::Env env, const std::string& answer) { return Napi::String::New(env, answer); }

// The completion of an asynchronous engine call whose result reaches script as an event, not
// through this call: stores nothing.
struct NoCompletion {
  template <class Event>
  operator sdk::Completion<Event>() const {  // NOLINT: converts implicitly by design
    return {};
  }
};
inline constexpr NoCompletion kNoCompletion{};

// Unsigned engine values read like signed ones: a 64-bit read cut to 32 bits.
inline uint32_t truncatedUint32(const ArgObject& object, const char* key) {
  return static_cast<uint32_t>(object.int64(key));
}

// The bytes of the ArrayBuffer under `key` (checked as "ArrayBuffer" beforehand), copied.
std::vector<uint8_t> arrayBufferBytes(const ArgObject& object, const char* key);

// The engine's advanced configuration text, "key=value;key=value", from a script object's
// enumerable keys in for...in order, each value kept as text (coerced).
std::string keyValueText(const ArgObject& object);

// Optional keys of a nested object, each looked at only when the object has the property (a
// key present with the value undefined counts as present). The first key of the wrong type
// stores its message, reports it like a failed check and ends the reading; ok() then says
// false and later keys are not looked at.
//
//   OptionalKeys keys(call, a.object("config"));
//   keys.text("roomID", config.roomID, "param roomID type error!")
//       .int32("streamCensorshipMode", config.streamCensorshipMode, "param ... type error!");
//   if (!keys.ok()) return call.undefined();
class OptionalKeys {
 public:
  OptionalKeys(MethodCall& call, ArgObject object) : call_(call), object_(object) {}

  OptionalKeys& text(const char* key, std::string& field, const char* message);
  // A number read as a 64-bit integer and truncated to 32 bits.
  OptionalKeys& int32(const char* key, int32_t& field, const char* message);
  // An unsigned number, read like the signed ones (64-bit read cut to 32 bits).
  OptionalKeys& uint32(const char* key, uint32_t& field, const char* message);
  OptionalKeys& boolean(const char* key, bool& field, const char* message);
  // An array of numbers, each element read as a 32-bit integer.
  OptionalKeys& int32List(const char* key, std::vector<int32_t>& field, const char* message);
  // The bytes of an ArrayBuffer, copied.
  OptionalKeys& bytes(const char* key, std::vector<uint8_t>& field, const char* message);
  // A nested object, handed to read(const ArgObject&), which checks and reads its keys and
  // says whether they passed (a failure it found is already reported). A value that is not
  // an object fails with `message`, or, when `message` is null, is ignored like an absent key.
  template <class Read>
  OptionalKeys& object(const char* key, const char* message, Read read) {
    if (!ok_ || !object_.has(key)) return *this;
    if (!object_.is(key, ArgType::Object)) {
      if (message != nullptr) ok_ = call_.fail(message);
      return *this;
    }
    ok_ = read(object_.object(key));
    return *this;
  }

  // A nested object (type "Object"), whose own optional keys read(OptionalKeys&) reads; its
  // first wrong key ends the reading here too.
  template <class Read>
  OptionalKeys& nested(const char* key, const char* message, Read&& read) {
    if (take(key, ArgType::Object, message)) {
      OptionalKeys nested(call_, object_.object(key));
      read(nested);
      ok_ = nested.ok();
    }
    return *this;
  }

  bool ok() const { return ok_; }

 private:
  // Whether `key` is present with `type` and so is to be read.
  bool take(const char* key, ArgType type, const char* message);

  MethodCall& call_;
  ArgObject object_;
  bool ok_ = true;
};

// ---- frame buffers registered for rendering (OrvaVantixEngineWrapper_frame.cc)

// The key under which the environment holds the buffer registered for a played stream.
std::string playBufferKey(const std::string& streamID);
// Lets go of the buffer held under `key` in the calling environment; the renderer must no
// longer write into it.
void releaseFrameBuffer(const MethodCall& call, const std::string& key);

// ---- promise-returning methods ----------------------------------------------------------

// { errorCode }: the result of most asynchronous calls.
struct ErrorCodeResult {
  int32_t errorCode = 0;

  template <class Event>
  static ErrorCodeResult of(const Event& event) { return {event.errorCode}; }
  static ErrorCodeResult refused(int32_t code) { return {code}; }
  void fill(Payload& p) const { p.set("errorCode", errorCode); }
};

// { errorCode, image }: a snapshot, encoded as Base64 JPEG text (or a failure text) on the
// engine thread that delivered it, while the engine's image handle is still valid.
struct SnapshotResult {
  int32_t errorCode = 0;
  std::string image;

  template <class Event>
  static SnapshotResult of(const Event& event);
  static SnapshotResult refused(int32_t code) { return {code, image::kSnapshotErrorText}; }
  void fill(Payload& p) const { p.set("errorCode", errorCode).set("image", image); }
};

// { errorCode, extendedData }: the engine's answer with a text of its own (mixer tasks).
struct ExtendedDataResult {
  int32_t errorCode = 0;
  std::string extendedData;

  template <class Event>
  static ExtendedDataResult of(const Event& event) { return {event.errorCode, event.extendedData}; }
  static ExtendedDataResult refused(int32_t code) { return {code, std::string()}; }
  void fill(Payload& p) const { p.set("errorCode", errorCode).set("extendedData", extendedData); }
};

// { errorCode, messageID }: a sent room message, its ID the engine's number (broadcast) or
// text (barrage).
template <class Id>
struct MessageResult {
  int32_t errorCode = 0;
  Id messageID{};

  template <class Event>
  static MessageResult of(const Event& event) { return {event.errorCode, event.messageID}; }
  static MessageResult refused(int32_t code) { return {code, Id{}}; }
  void fill(Payload& p) const { p.set("errorCode", errorCode).set("messageID", messageID); }
};

// "OrvaVantixEngineWrapper::<apiName> blocking call failed \n", kept for the life of the
// process (the dispatch worker prints it after the completion that named it has gone).
const char* resultFailureLine(const std::string& apiName);

// One call of a promise method. The promise exists from construction (after the "call func:"
// report) and is the method's result on every path.
class PromiseCall : public MethodCall {
 public:
  // Mode::ReportAndReject also raises the debug alert for a failed check.
  PromiseCall(const Napi::CallbackInfo& info, std::string apiName, ArgumentErrors& errors,
              Mode mode = Mode::Reject)
      : MethodCall(info, std::move(apiName), errors, mode) {}

  // The steps before the engine call, in order: called with no argument at all → rejects with
  // undefined; no engine → rejects with argument 0 itself (the object exactly as script gave
  // it); a failed check → rejects with the checker's message. True when all passed.
  bool begin(std::initializer_list<ArgumentRule> rules);

  // The same steps for a method that reads its whole argument before it asks for the engine
  // (the mixer tasks): requireArgument() first (no argument → rejects with undefined), then
  // the method's own checks, then requireEngine() (no engine → rejects with argument 0).
  bool requireArgument();
  bool requireEngine();

  // The engine found by begin() or requireEngine(); valid after either returned true.
  sdk::Engine& engine() const { return *engine_; }

  // The completion to hand to the engine call: on the engine thread it turns the result
  // event into a Result (Result::of(event)), then posts a task that, on the script thread
  // and after the context guard, resolves the promise with the Result's object. Engine
  // errors resolve (errorCode), they never reject. Once the engine context is destroyed the
  // task touches nothing and the promise stays pending.
  template <class Result, class Event>
  sdk::Completion<Event> completion() const;

  // After the engine call: a call the engine refused (non-zero) is never answered, so its
  // promise is resolved at once with Result::refused(code). Gives the promise.
  template <class Result>
  Napi::Value settle(int32_t engineResult) {
    if (engineResult != 0) resolveNow(Result::refused(engineResult));
    return promise();
  }

  // For an engine call that answers at once: resolves with `value` now. Gives the promise.
  Napi::Value resolve(napi_value value) {
    deferred().Resolve(value);
    return promise();
  }

 private:
  template <class Result>
  void resolveNow(const Result& result) {
    Payload payload(env());
    result.fill(payload);
    deferred().Resolve(payload.object());
  }

  std::shared_ptr<sdk::Engine> engine_;
};

template <class Result, class Event>
sdk::Completion<Event> PromiseCall::completion() const {
  return [env = napi_env(env()), deferred = deferred(),
          failureLine = resultFailureLine(apiName())](Event event) {
    Result result = Result::of(event);
    OrvaVantixAddonDataCenter::instance().sendToEngine(
        makeTask([env, deferred, result = std::move(result)](Napi::Env taskEnv, Napi::Function) {
          // The engine's event function belongs to the environment that created the engine;
          // a promise of another environment (a wrapper outliving its engine) is not ours to
          // touch there.
          if (napi_env(taskEnv) != env) return;
          Payload payload(taskEnv);
          result.fill(payload);
          deferred.Resolve(payload.object());
        }),
        failureLine);
  };
}

template <class Event>
SnapshotResult SnapshotResult::of(const Event& event) {
  return {event.errorCode, image::encodeSnapshot(event.errorCode, sdk::snapshotImageOf(event.image))};
}

}  // namespace orva::wrapper
