// The Node-free half of argument checking: type names, the type test each name stands
// for, and the fixed message texts. Kept apart from ArgumentChecker.h so that the native
// tests can pin the table and the wording without a script engine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orva {

// The value types an ArgumentSpec can ask for. The addon's own methods use the first six;
// Function and Buffer serve the wrapper classes.
enum class ArgType : uint8_t { String, Number, Boolean, Object, Array, ArrayBuffer, Function, Buffer };

// The word script developers read in "should be type of <T>".
constexpr const char* typeName(ArgType type) {
  switch (type) {
    case ArgType::String: return "String";
    case ArgType::Number: return "Number";
    case ArgType::Boolean: return "Boolean";
    case ArgType::Object: return "Object";
    case ArgType::Array: return "Array";
    case ArgType::ArrayBuffer: return "ArrayBuffer";
    case ArgType::Function: return "Function";
    case ArgType::Buffer: return "Buffer";
  }
  return "";
}

// One row of an ArgumentSpec: a required key and its type. Optional keys never appear
// in one; the method tests them itself.
struct ArgumentRule {
  const char* key;  // a literal: rules are written inline at the call
  ArgType type;
};

// A script value's typeof, in napi_valuetype's order (the Node side casts directly).
enum class JsKind : uint8_t {
  Undefined, Null, Boolean, Number, String, Symbol, Object, Function, External, BigInt
};

// What the checker needs to know about a value. The brand flags are filled only when the
// type under test asks for them (see brandTest), so a check costs one typeof in most rows.
struct ValueTraits {
  JsKind kind = JsKind::Undefined;
  bool isArray = false;
  bool isArrayBuffer = false;
  bool isBuffer = false;
};

enum class BrandTest : uint8_t { None, Array, ArrayBuffer, Buffer };

// Which brand test beyond typeof a type needs.
constexpr BrandTest brandTest(ArgType type) {
  switch (type) {
    case ArgType::Array: return BrandTest::Array;
    case ArgType::ArrayBuffer: return BrandTest::ArrayBuffer;
    case ArgType::Buffer: return BrandTest::Buffer;
    default: return BrandTest::None;
  }
}

// The type table. "Object" means typeof object or function, so arrays, buffers and
// functions pass it, and null (typeof null is its own kind here) does not.
constexpr bool typeAccepts(ArgType type, const ValueTraits& value) {
  switch (type) {
    case ArgType::String: return value.kind == JsKind::String;
    case ArgType::Number: return value.kind == JsKind::Number;
    case ArgType::Boolean: return value.kind == JsKind::Boolean;
    case ArgType::Object: return value.kind == JsKind::Object || value.kind == JsKind::Function;
    case ArgType::Array: return value.isArray;
    case ArgType::ArrayBuffer: return value.isArrayBuffer;
    case ArgType::Function: return value.kind == JsKind::Function;
    case ArgType::Buffer: return value.isBuffer;
  }
  return false;
}

// "param <object>.<key> missing". The addon passes an empty object name, which gives the
// lone dot of "param .mode missing"; scripts match on that text, so it stays.
inline std::string missingArgumentMessage(std::string_view objectName, std::string_view key) {
  std::string message;
  message.reserve(16 + objectName.size() + key.size());
  message.append("param ").append(objectName).append(".").append(key).append(" missing");
  return message;
}

// "param <object>.<key> should be type of <T>".
inline std::string wrongTypeMessage(std::string_view objectName, std::string_view key, ArgType type) {
  std::string message;
  message.reserve(40 + objectName.size() + key.size());
  message.append("param ").append(objectName).append(".").append(key)
      .append(" should be type of ").append(typeName(type));
  return message;
}

}  // namespace orva
