#include "bridge/ArgumentChecker.h"

#include <utility>

#include "bridge/OrvaVantixAddonDataCenter.h"

namespace orva {
namespace {

std::size_t typedArrayElementSize(napi_typedarray_type type) {
  switch (type) {
    case napi_int8_array:
    case napi_uint8_array:
    case napi_uint8_clamped_array:
      return 1;
    case napi_int16_array:
    case napi_uint16_array:
      return 2;
    case napi_int32_array:
    case napi_uint32_array:
    case napi_float32_array:
      return 4;
    default:  // float64, bigint64, biguint64
      return 8;
  }
}

}  // namespace
namespace {

static_assert(static_cast<int>(JsKind::Undefined) == napi_undefined &&
                  static_cast<int>(JsKind::Null) == napi_null &&
                  static_cast<int>(JsKind::Boolean) == napi_boolean &&
                  static_cast<int>(JsKind::Number) == napi_number &&
                  static_cast<int>(JsKind::String) == napi_string &&
                  static_cast<int>(JsKind::Symbol) == napi_symbol &&
                  static_cast<int>(JsKind::Object) == napi_object &&
                  static_cast<int>(JsKind::Function) == napi_function &&
                  static_cast<int>(JsKind::External) == napi_external &&
                  static_cast<int>(JsKind::BigInt) == napi_bigint,
              "JsKind mirrors napi_valuetype");

bool isObjectKind(napi_env env, napi_value value) {
  napi_valuetype kind = napi_undefined;
  if (value == nullptr || napi_typeof(env, value, &kind) != napi_ok) return false;
  return kind == napi_object || kind == napi_function;
}

}  // namespace

bool valueHasType(napi_env env, napi_value value, ArgType type) {
  napi_valuetype kind;
  if (value == nullptr || napi_typeof(env, value, &kind) != napi_ok) return false;
  ValueTraits traits;
  traits.kind = static_cast<JsKind>(kind);
  // Arrays, array buffers and buffers are all objects; only ask what the type needs.
  if (kind == napi_object) {
    bool flag = false;
    switch (brandTest(type)) {
      case BrandTest::Array:
        traits.isArray = napi_is_array(env, value, &flag) == napi_ok && flag;
        break;
      case BrandTest::ArrayBuffer:
        traits.isArrayBuffer = napi_is_arraybuffer(env, value, &flag) == napi_ok && flag;
        break;
      case BrandTest::Buffer:
        traits.isBuffer = napi_is_buffer(env, value, &flag) == napi_ok && flag;
        break;
      case BrandTest::None:
        break;
    }
  }
  return typeAccepts(type, traits);
}

bool checkObjectArguments(napi_env env, napi_value object, std::string_view objectName,
                          const ArgumentRule* rules, std::size_t count, std::string& message) {
  // Asking a primitive for a key would throw in script (undefined and null cannot be
  // converted to objects); a primitive simply has no keys.
  const bool isObject = isObjectKind(env, object);
  for (std::size_t i = 0; i < count; ++i) {
    const ArgumentRule& rule = rules[i];
    bool present = false;
    if (isObject && napi_has_named_property(env, object, rule.key, &present) != napi_ok) {
      present = false;
    }
    if (!present) {
      message = missingArgumentMessage(objectName, rule.key);
      return false;
    }
    napi_value value = nullptr;
    if (napi_get_named_property(env, object, rule.key, &value) != napi_ok ||
        !valueHasType(env, value, rule.type)) {
      message = wrongTypeMessage(objectName, rule.key, rule.type);
      return false;
    }
  }
  return true;
}

// ---- ArgObject ------------------------------------------------------------------------

bool ArgObject::isObject() const { return isObjectKind(env_, value_); }

bool ArgObject::has(const char* key) const {
  bool present = false;
  return isObject() && napi_has_named_property(env_, value_, key, &present) == napi_ok && present;
}

bool ArgObject::is(const char* key, ArgType type) const {
  if (!has(key)) return false;
  napi_value value = nullptr;
  return napi_get_named_property(env_, value_, key, &value) == napi_ok &&
         valueHasType(env_, value, type);
}

Napi::Value ArgObject::get(const char* key) const { return Napi::Object(env_, value_).Get(key); }

ArgObject::Bytes ArgObject::bytes(const char* key) const {
  napi_value value = get(key);
  void* data = nullptr;
  Bytes out;
  bool isDataView = false;
  NAPI_THROW_IF_FAILED(env_, napi_is_dataview(env_, value, &isDataView), out);
  if (isDataView) {
    NAPI_THROW_IF_FAILED(env_, napi_get_dataview_info(env_, value, &out.length, &data, nullptr, nullptr), out);
  } else {
    napi_typedarray_type type;
    std::size_t elements = 0;
    NAPI_THROW_IF_FAILED(env_, napi_get_typedarray_info(env_, value, &type, &elements, &data, nullptr, nullptr), out);
    out.length = elements * typedArrayElementSize(type);
  }
  out.data = static_cast<uint8_t*>(data);  // already moved to the view's first byte
  return out;
}

std::string ArgObject::string(const char* key) const {
  return get(key).As<Napi::String>().Utf8Value();
}

std::string ArgObject::coercedString(const char* key) const { return get(key).ToString().Utf8Value(); }

int64_t ArgObject::int64(const char* key) const { return get(key).As<Napi::Number>().Int64Value(); }

int64_t ArgObject::coercedInt64(const char* key) const { return get(key).ToNumber().Int64Value(); }

int32_t ArgObject::int32(const char* key) const { return get(key).As<Napi::Number>().Int32Value(); }

uint32_t ArgObject::uint32(const char* key) const {
  return get(key).As<Napi::Number>().Uint32Value();
}

double ArgObject::number(const char* key) const { return get(key).As<Napi::Number>().DoubleValue(); }

float ArgObject::float32(const char* key) const {
  return static_cast<float>(get(key).As<Napi::Number>().DoubleValue());
}

bool ArgObject::boolean(const char* key) const { return get(key).As<Napi::Boolean>().Value(); }

ArgObject ArgObject::object(const char* key) const { return ArgObject(env_, get(key)); }

std::vector<int32_t> ArgObject::int32List(const char* key) const {
  return list(key, [](const Napi::Value& element) { return element.As<Napi::Number>().Int32Value(); });
}

uint32_t ArgObject::length(const char* key) const { return get(key).As<Napi::Array>().Length(); }

Napi::Value ArgObject::at(const char* key, uint32_t index) const {
  return get(key).As<Napi::Object>().Get(index);
}

int32_t ArgObject::int32At(const char* key, uint32_t index) const {
  return at(key, index).As<Napi::Number>().Int32Value();
}

float ArgObject::float32At(const char* key, uint32_t index) const {
  return static_cast<float>(at(key, index).As<Napi::Number>().DoubleValue());
}

// ---- MethodCall -----------------------------------------------------------------------

MethodCall::MethodCall(const Napi::CallbackInfo& info, std::string apiName,
                       ArgumentErrors& errors, Mode mode)
    : info_(info),
      apiName_(std::move(apiName)),
      errors_(errors),
      mode_(mode),
      args_(info.Env(), info[0]) {
  OrvaVantixAddonDataCenter::instance().onDebugInfo(apiName_);
  if (mode_ != Mode::Report) deferred_.emplace(Napi::Promise::Deferred::New(info.Env()));
}

bool MethodCall::check(const ArgObject& object, std::string_view objectName,
                       const ArgumentRule* rules, std::size_t count) {
  if (checkObjectArguments(env(), object.value(), objectName, rules, count, errors_.message)) {
    return true;
  }
  return reportFailure();
}

bool MethodCall::check(const ArgObject& object, std::string_view objectName,
                       std::initializer_list<ArgumentRule> rules) {
  return check(object, objectName, rules.begin(), rules.size());
}

bool MethodCall::check(const ArgObject& object, std::string_view objectName,
                       const ArgumentSpec& rules) {
  return check(object, objectName, rules.data(), rules.size());
}

bool MethodCall::checkElements(const char* key, std::initializer_list<ArgumentRule> rules) {
  const Napi::Array array = args_.get(key).As<Napi::Array>();
  const uint32_t length = array.Length();
  for (uint32_t i = 0; i < length; ++i) {
    if (!check(ArgObject(env(), array.Get(i)), key, rules)) return false;
  }
  return true;
}

bool MethodCall::fail(std::string message) {
  errors_.message = std::move(message);
  return reportFailure();
}

bool MethodCall::reportFailure() {
  if (mode_ != Mode::Reject) {
    OrvaVantixAddonDataCenter::instance().onDebugError(errors_.code, apiName_, errors_.message);
  }
  if (mode_ != Mode::Report) reject(Napi::String::New(env(), errors_.message));
  return false;
}

Napi::Promise MethodCall::promise() const { return deferred_.value().Promise(); }

Napi::Value MethodCall::reject(Napi::Value reason) {
  if (!settled_) {
    settled_ = true;
    deferred_.value().Reject(reason);
  }
  return promise();
}

Napi::Value throwTypeError(Napi::Env env, const char* message) {
  Napi::TypeError::New(env, message).ThrowAsJavaScriptException();
  return env.Undefined();
}

}  // namespace orva
