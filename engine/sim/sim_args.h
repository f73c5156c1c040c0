// Turning JSON payloads into C arguments: owned storage for everything a C argument points
// to, and strict readers that name the offending key in their error text.
//
// The generated glue (sim_generated.cc) builds one args holder per callback type from these
// pieces; the hand-written special cases (sim_special_args.cc) use them too.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include <rapidjson/document.h>

namespace orva::sim {

// Any registered C callback, stored type-erased; cast back to its orva_on_* type to call.
using AnyFn = void (*)();

// Owns the memory that converted C arguments point to (texts, byte blocks, arrays) for as
// long as the holder that made them lives. Addresses never move once handed out.
class Storage {
 public:
  Storage() = default;
  Storage(const Storage&) = delete;
  Storage& operator=(const Storage&) = delete;

  const char* text(std::string_view s);
  uint8_t* bytes(size_t n);  // zeroed
  template <class T>
  T* array(size_t n) {  // value-initialised (zero for C structs); never null
    auto block = std::make_unique<Block<T>>(n);
    T* p = block->data.get();
    blocks_.push_back(std::move(block));
    return p;
  }

 private:
  struct AnyBlock {
    virtual ~AnyBlock() = default;
  };
  template <class T>
  struct Block final : AnyBlock {
    explicit Block(size_t n) : data(std::make_unique<T[]>(n == 0 ? 1 : n)) {}
    std::unique_ptr<T[]> data;
  };
  std::vector<std::unique_ptr<AnyBlock>> blocks_;
};

// Where a value sits in a payload, kept as a chain on the stack and spelled out only when
// an error is reported ("payload.streamList[1].user.userID").
struct Path {
  const Path* parent = nullptr;
  const char* key = nullptr;
  long index = -1;

  Path child(const char* k) const { return Path{this, k, -1}; }
  Path at(long i) const { return Path{this, nullptr, i}; }
  std::string str() const;
};

// Sets `err` to "<path>: expected <what>, got <kind of v>" and returns false.
bool fail(std::string& err, const Path& path, const char* what, const rapidjson::Value& v);
bool failText(std::string& err, const Path& path, const std::string& message);
const char* jsonKind(const rapidjson::Value& v);

// A member of an object payload, or null when absent or JSON null (both mean "left out").
inline const rapidjson::Value* member(const rapidjson::Value& obj, const char* key) {
  if (!obj.IsObject()) return nullptr;
  auto it = obj.FindMember(key);
  if (it == obj.MemberEnd() || it->value.IsNull()) return nullptr;
  return &it->value;
}
// True when the key is present with an explicit JSON null (a NULL pointer was asked for).
inline bool isExplicitNull(const rapidjson::Value& obj, const char* key) {
  if (!obj.IsObject()) return false;
  auto it = obj.FindMember(key);
  return it != obj.MemberEnd() && it->value.IsNull();
}

// Numbers: integers must be integral and in range of T (64-bit values arrive exactly as
// RapidJSON Int64/Uint64); floating targets take any number; booleans and numbers convert
// into each other.
template <class T>
bool readNumber(const rapidjson::Value& v, T& out, const Path& path, std::string& err) {
  if constexpr (std::is_same_v<T, bool>) {
    if (v.IsBool()) { out = v.GetBool(); return true; }
    if (v.IsNumber()) { out = v.GetDouble() != 0.0; return true; }
    return fail(err, path, "a boolean", v);
  } else if constexpr (std::is_floating_point_v<T>) {
    if (v.IsNumber()) { out = static_cast<T>(v.GetDouble()); return true; }
    if (v.IsBool()) { out = v.GetBool() ? T(1) : T(0); return true; }
    return fail(err, path, "a number", v);
  } else {
    static_assert(std::is_integral_v<T>);
    constexpr const char* what = std::is_signed_v<T>
        ? (sizeof(T) == 8 ? "an integer in int64 range" : "an integer in int32 range")
        : (sizeof(T) == 8 ? "an integer in uint64 range" : "an integer in uint32 range");
    if (v.IsBool()) { out = v.GetBool() ? T(1) : T(0); return true; }
    if (v.IsInt64()) {
      const int64_t x = v.GetInt64();
      if constexpr (std::is_signed_v<T>) {
        if (x < static_cast<int64_t>(std::numeric_limits<T>::min()) ||
            x > static_cast<int64_t>(std::numeric_limits<T>::max())) return fail(err, path, what, v);
      } else {
        if (x < 0 || static_cast<uint64_t>(x) > static_cast<uint64_t>(std::numeric_limits<T>::max()))
          return fail(err, path, what, v);
      }
      out = static_cast<T>(x);
      return true;
    }
    if (v.IsUint64()) {  // above INT64_MAX
      const uint64_t x = v.GetUint64();
      if (x > static_cast<uint64_t>(std::numeric_limits<T>::max())) return fail(err, path, what, v);
      out = static_cast<T>(x);
      return true;
    }
    if (v.IsDouble()) {
      // Integral doubles only, inside [min, max + 1); max + 1 is exact as a double even
      // where max itself is not (2^63, 2^64).
      const double d = v.GetDouble();
      const double lo = static_cast<double>(std::numeric_limits<T>::min());
      const double hiExclusive = static_cast<double>(std::numeric_limits<T>::max()) + 1.0;
      if (!(d >= lo && d < hiExclusive) || std::trunc(d) != d) return fail(err, path, what, v);
      out = static_cast<T>(d);
      return true;
    }
    return fail(err, path, what, v);
  }
}

// Texts: a string, copied into storage. JSON null gives NULL (callers handle "absent").
bool readText(const rapidjson::Value& v, const char*& out, Storage& st, const Path& path, std::string& err);
// Fixed character arrays: copied and NUL-terminated, truncated to fit as the header says.
bool readFixedText(const rapidjson::Value& v, char* out, size_t capacity, const Path& path, std::string& err);
// Byte blocks: an array of integers 0..255, or {"$bytes": "<base64>"} as the control module
// sends Buffers and typed arrays.
bool readBytes(const rapidjson::Value& v, uint8_t*& out, uint32_t& length, Storage& st, const Path& path,
               std::string& err);
// Handles: a non-negative integer taken as an address.
bool readHandle(const rapidjson::Value& v, void*& out, const Path& path, std::string& err);

// Lists of numbers: an array, or a byte block whose bytes are the elements in native order
// (a Float32Array sent from script, for instance).
template <class T>
bool readScalarList(const rapidjson::Value& v, const T*& out, uint32_t& count, Storage& st, const Path& path,
                    std::string& err) {
  if (v.IsObject()) {
    uint8_t* raw = nullptr;
    uint32_t n = 0;
    if (!readBytes(v, raw, n, st, path, err)) return false;
    if (n % sizeof(T) != 0) return failText(err, path, "byte block length is not a multiple of the element size");
    T* elems = st.array<T>(n / sizeof(T));
    if (n) std::memcpy(elems, raw, n);
    out = elems;
    count = n / static_cast<uint32_t>(sizeof(T));
    return true;
  }
  if (!v.IsArray()) return fail(err, path, "an array", v);
  T* elems = st.array<T>(v.Size());
  for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
    if (!readNumber(v[i], elems[i], path.at(static_cast<long>(i)), err)) return false;
  }
  out = elems;
  count = v.Size();
  return true;
}

// Fixed numeric arrays (int32_t delay[7]): at most N numbers; the rest stay zero.
template <class T, size_t N>
bool readFixedArray(const rapidjson::Value& v, T (&out)[N], const Path& path, std::string& err) {
  if (!v.IsArray()) return fail(err, path, "an array", v);
  if (v.Size() > N) return failText(err, path, "too many elements (at most " + std::to_string(N) + ")");
  for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
    if (!readNumber(v[i], out[i], path.at(static_cast<long>(i)), err)) return false;
  }
  return true;
}

// Base64 (RFC 4648, padding optional); false on a character outside the alphabet.
bool decodeBase64(std::string_view in, std::vector<uint8_t>& out);

// One callback's C arguments, converted once from a payload and kept for as many calls as
// needed (emit calls once, burst many times). Not copyable: members point into the holder.
class CallbackArgs {
 public:
  CallbackArgs() = default;
  CallbackArgs(const CallbackArgs&) = delete;
  CallbackArgs& operator=(const CallbackArgs&) = delete;
  virtual ~CallbackArgs() = default;

  // Calls `callback` (the registered orva_on_* function) with the arguments.
  virtual void invoke(AnyFn callback, void* userContext) = 0;

  // Burst support: resolve a top-level key once, then update it per call without
  // allocating. -1 when the key is not a numeric (resp. text) argument.
  virtual int numberSlot(std::string_view /*key*/) { return -1; }
  virtual void setNumber(int /*slot*/, uint64_t /*value*/) {}
  virtual int textSlot(std::string_view /*key*/) { return -1; }
  virtual void setText(int /*slot*/, std::string /*text*/) {}
};

}  // namespace orva::sim
