// The checker's type table and message texts, without a script engine.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "bridge/ArgumentRules.h"

namespace orva {
namespace {

struct ScriptValue {
  const char* what;
  ValueTraits traits;  // as a script engine would describe it, every brand test answered
};

const std::vector<ScriptValue>& scriptValues() {
  static const std::vector<ScriptValue> values = {
      {"undefined", {JsKind::Undefined}},
      {"null", {JsKind::Null}},
      {"true", {JsKind::Boolean}},
      {"1", {JsKind::Number}},
      {"'1'", {JsKind::String}},
      {"Symbol()", {JsKind::Symbol}},
      {"10n", {JsKind::BigInt}},
      {"{}", {JsKind::Object}},
      {"[]", {JsKind::Object, /*isArray=*/true}},
      {"() => {}", {JsKind::Function}},
      {"new ArrayBuffer(1)", {JsKind::Object, false, /*isArrayBuffer=*/true}},
      {"Buffer.alloc(1)", {JsKind::Object, false, false, /*isBuffer=*/true}},
  };
  return values;
}

// Which values each type name accepts.
const std::vector<std::pair<ArgType, std::set<std::string>>>& acceptance() {
  static const std::vector<std::pair<ArgType, std::set<std::string>>> table = {
      {ArgType::String, {"'1'"}},
      {ArgType::Number, {"1"}},
      {ArgType::Boolean, {"true"}},
      {ArgType::Object, {"{}", "[]", "() => {}", "new ArrayBuffer(1)", "Buffer.alloc(1)"}},
      {ArgType::Array, {"[]"}},
      {ArgType::ArrayBuffer, {"new ArrayBuffer(1)"}},
      {ArgType::Function, {"() => {}"}},
      {ArgType::Buffer, {"Buffer.alloc(1)"}},
  };
  return table;
}

TEST(ArgumentTypeTable, EachTypeNameAcceptsExactlyItsValues) {
  for (const auto& [type, accepted] : acceptance()) {
    for (const ScriptValue& value : scriptValues()) {
      EXPECT_EQ(typeAccepts(type, value.traits), accepted.count(value.what) == 1)
          << typeName(type) << " vs " << value.what;
    }
  }
}

// The Node side answers only the brand test that brandTest() names; the verdict must not
// depend on the tests it skips.
TEST(ArgumentTypeTable, VerdictNeedsOnlyTheBrandTestItAsksFor) {
  for (const auto& [type, accepted] : acceptance()) {
    for (const ScriptValue& value : scriptValues()) {
      ValueTraits partial{value.traits.kind};
      switch (brandTest(type)) {
        case BrandTest::Array: partial.isArray = value.traits.isArray; break;
        case BrandTest::ArrayBuffer: partial.isArrayBuffer = value.traits.isArrayBuffer; break;
        case BrandTest::Buffer: partial.isBuffer = value.traits.isBuffer; break;
        case BrandTest::None: break;
      }
      EXPECT_EQ(typeAccepts(type, partial), typeAccepts(type, value.traits))
          << typeName(type) << " vs " << value.what;
    }
  }
}

TEST(ArgumentMessages, KeepTheirExactWording) {
  struct Row {
    std::string actual;
    std::string expected;
  };
  const std::vector<Row> rows = {
      {missingArgumentMessage("", "mode"), "param .mode missing"},
      {missingArgumentMessage("user", "userID"), "param user.userID missing"},
      {wrongTypeMessage("", "featureType", ArgType::Number),
       "param .featureType should be type of Number"},
      {wrongTypeMessage("config", "layout", ArgType::Object),
       "param config.layout should be type of Object"},
      {wrongTypeMessage("", "render_buffer", ArgType::Buffer),
       "param .render_buffer should be type of Buffer"},
  };
  for (const Row& row : rows) EXPECT_EQ(row.actual, row.expected);
}

}  // namespace
}  // namespace orva
