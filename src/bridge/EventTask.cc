#include "bridge/EventTask.h"

#include <cstring>

#include "bridge/OrvaVantixAddonDataCenter.h"

namespace orva {

Payload::Payload(napi_env env) : env_(env) { check(napi_create_object(env_, &object_)); }

Payload::Payload(napi_env env, napi_value object) : env_(env), object_(object) {}

void Payload::check(napi_status status) const {
  if (status != napi_ok) throw Napi::Error::New(env_);
}

Payload& Payload::setValue(const char* key, napi_value value) {
  check(napi_set_named_property(env_, object_, key, value));
  return *this;
}

napi_value Payload::string(const std::string& value) const {
  napi_value result;
  check(napi_create_string_utf8(env_, value.data(), value.size(), &result));
  return result;
}

napi_value Payload::string(const char* value) const {
  napi_value result;
  check(napi_create_string_utf8(env_, value, NAPI_AUTO_LENGTH, &result));
  return result;
}

napi_value Payload::number(double value) const {
  napi_value result;
  check(napi_create_double(env_, value, &result));
  return result;
}

napi_value Payload::boolean(bool value) const {
  napi_value result;
  check(napi_get_boolean(env_, value, &result));
  return result;
}

napi_value Payload::arrayBuffer(const void* data, std::size_t size) const {
  void* bytes = nullptr;
  napi_value result;
  check(napi_create_arraybuffer(env_, size, &bytes, &result));
  if (size > 0) std::memcpy(bytes, data, size);
  return result;
}

napi_value Payload::array(std::size_t length) const {
  napi_value result;
  check(napi_create_array_with_length(env_, length, &result));
  return result;
}

void Payload::setElement(napi_value array, uint32_t index, napi_value value) const {
  check(napi_set_element(env_, array, index, value));
}

void EventTask::operator()(Napi::Env env, Napi::Function callback) {
  if (OrvaVantixAddonDataCenter::instance().checkContextDestroy("operator ()", sentAfterTeardowns_)) {
    return;
  }
  run(env, callback);
}

void emitEvent(napi_env env, napi_value callback, const char* name, napi_value payload) {
  napi_value argv[2];
  napi_value receiver;
  if (napi_create_string_utf8(env, name, NAPI_AUTO_LENGTH, &argv[0]) != napi_ok) {
    throw Napi::Error::New(env);
  }
  argv[1] = payload;
  if (napi_get_undefined(env, &receiver) != napi_ok) throw Napi::Error::New(env);
  // A throwing script callback leaves its exception pending; the thread-safe function's
  // caller reports it as uncaught, like any other callback exception.
  napi_call_function(env, receiver, callback, 2, argv, nullptr);
}

}  // namespace orva
