// The unit of delivery from engine threads to script, and the payload builder it uses.
//
// An event is written as its name plus a lambda that fills the payload from the values the
// lambda captured by value:
//
//   void AddonEventHandler::onRoomStateUpdate(sdk::RoomStateUpdateEvent e) {
//     OrvaVantixAddonDataCenter::instance().sendToEngine(
//         makeEvent("onRoomStateUpdate", [e = std::move(e)](Payload& p) {
//           p.set("roomID", e.roomID).set("state", e.state)
//            .set("errorCode", e.errorCode).set("extendedData", e.extendedData);
//         }),
//         "AddonEventHandler::onRoomStateUpdate blocking call failed \n");
//   }
//
// Nested records and lists: p.setObject("user", [&](Payload& u) { ... }),
// p.setList("streamList", e.streamList, [](Payload& s, const auto& stream) { ... }),
// p.setBytes("data", bytes). A payload that is not an object (an array, say) comes from a
// lambda taking Napi::Env and returning the value; promise settlement and other script
// work use makeTask.
//
// The capture is the copy the bridge requires: owned strings, numbers and byte vectors,
// never pointers into engine memory, which is gone once the engine callback returns. The
// task is allocated once (the capture lives inside it) and moves, without copying, through
// the dispatch queue and the thread-safe function to the script thread.
#pragma once

#include <napi.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace orva {

// Builds one plain script object on the script thread. Keys appear in the order they are
// set; every number becomes a script number (double) whatever its native width; strings
// are UTF-8; byte blocks become new ArrayBuffers holding a copy. Raw Node-API calls only:
// payload building is the cost of every event. A failing call throws Napi::Error, which the
// bridge turns into a script exception.
class Payload {
 public:
  explicit Payload(napi_env env);                // a new empty object
  Payload(napi_env env, napi_value object);      // fills an object made elsewhere

  Payload& set(const char* key, const std::string& value) { return setValue(key, string(value)); }
  Payload& set(const char* key, const char* value) { return setValue(key, string(value)); }
  Payload& set(const char* key, bool value) { return setValue(key, boolean(value)); }
  template <typename N, std::enable_if_t<(std::is_arithmetic_v<N> || std::is_enum_v<N>) &&
                                             !std::is_same_v<N, bool>, int> = 0>
  Payload& set(const char* key, N value) {
    return setValue(key, number(static_cast<double>(value)));
  }
  Payload& set(const char* key, const Payload& nested) { return setValue(key, nested.object_); }
  Payload& setValue(const char* key, napi_value value);

  // key: a new ArrayBuffer holding a copy of the bytes.
  Payload& setBytes(const char* key, const std::vector<uint8_t>& bytes) {
    return setValue(key, arrayBuffer(bytes.data(), bytes.size()));
  }

  // key: a nested object that fill(Payload&) builds.
  template <typename Fill>
  Payload& setObject(const char* key, Fill&& fill) {
    Payload nested(env_);
    fill(nested);
    return setValue(key, nested.object_);
  }

  // key: an array with one object per item, in order, each built by fill(Payload&, item).
  template <typename T, typename Fill>
  Payload& setList(const char* key, const std::vector<T>& items, Fill&& fill) {
    napi_value list = array(items.size());
    for (std::size_t i = 0; i < items.size(); ++i) {
      Payload element(env_);
      fill(element, items[i]);
      setElement(list, static_cast<uint32_t>(i), element.object_);
    }
    return setValue(key, list);
  }

  // key: an array of numbers, in order.
  template <typename N>
  Payload& setNumbers(const char* key, const std::vector<N>& values) {
    return setValue(key, numbers(values));
  }

  napi_env env() const { return env_; }
  napi_value object() const { return object_; }

  // Value makers for payloads of other shapes (an array as the whole payload, integer
  // property indexes).
  napi_value string(const std::string& value) const;
  napi_value string(const char* value) const;
  napi_value number(double value) const;
  napi_value boolean(bool value) const;
  napi_value arrayBuffer(const void* data, std::size_t size) const;
  napi_value array(std::size_t length) const;
  template <typename N>
  napi_value numbers(const std::vector<N>& values) const {
    napi_value list = array(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      setElement(list, static_cast<uint32_t>(i), number(static_cast<double>(values[i])));
    }
    return list;
  }
  void setElement(napi_value array, uint32_t index, napi_value value) const;

 private:
  void check(napi_status status) const;

  napi_env env_;
  napi_value object_ = nullptr;
};

// Work that runs once on the script thread with the environment and the target script
// callback. Every task begins with the data center's checkContextDestroy: once the engine
// context is destroyed a task prints the guard line and touches no script value.
class EventTask {
 public:
  virtual ~EventTask() = default;
  void operator()(Napi::Env env, Napi::Function callback);

  // The data center's count of engine teardowns when the task was sent: a task of an engine
  // that is gone drops itself even after a new engine has come up.
  void stampTeardowns(uint64_t teardowns) { sentAfterTeardowns_ = teardowns; }

 protected:
  virtual void run(Napi::Env env, Napi::Function callback) = 0;

 private:
  uint64_t sentAfterTeardowns_ = 0;
};

// Calls callback(name, payload) with an undefined receiver. A script exception thrown by
// the callback stays pending and surfaces as an uncaught exception on the script thread.
void emitEvent(napi_env env, napi_value callback, const char* name, napi_value payload);

namespace detail {

template <typename Fill>
class PayloadEvent final : public EventTask {
 public:
  PayloadEvent(const char* name, Fill fill) : name_(name), fill_(std::move(fill)) {}

 protected:
  void run(Napi::Env env, Napi::Function callback) override {
    if constexpr (std::is_invocable_v<Fill&, Payload&>) {
      Payload payload(env);
      fill_(payload);
      emitEvent(env, callback, name_, payload.object());
    } else {
      // fill(Napi::Env) -> napi_value: a payload that is not a plain object.
      napi_value payload = fill_(env);
      emitEvent(env, callback, name_, payload);
    }
  }

 private:
  const char* name_;
  Fill fill_;
};

template <typename Body>
class BodyTask final : public EventTask {
 public:
  explicit BodyTask(Body body) : body_(std::move(body)) {}

 protected:
  void run(Napi::Env env, Napi::Function callback) override { body_(env, callback); }

 private:
  Body body_;
};

}  // namespace detail

// The event `name` (a string literal: the task keeps the pointer) whose payload
// fill(Payload&) builds; or, for a payload that is not an object, fill(Napi::Env) returns
// the payload value.
template <typename Fill>
std::unique_ptr<EventTask> makeEvent(const char* name, Fill&& fill) {
  return std::make_unique<detail::PayloadEvent<std::decay_t<Fill>>>(name, std::forward<Fill>(fill));
}

// Any other script-thread work, e.g. settling a promise: body(Napi::Env, Napi::Function),
// run after the same guard.
template <typename Body>
std::unique_ptr<EventTask> makeTask(Body&& body) {
  return std::make_unique<detail::BodyTask<std::decay_t<Body>>>(std::forward<Body>(body));
}

}  // namespace orva
