// Small helpers of the C <-> record converters. No engine header here: the generated
// converters (engine_convert.h) build on these.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace orva::sdk::detail {

// Keeps the C structures and arrays that a converted argument points into alive until the
// engine call has returned. Blocks are value-initialised, so C structures start zero-filled.
class CArena {
 public:
  template <class T>
  T* make(std::size_t count) {
    auto block = std::make_unique<T[]>(count);
    T* raw = block.get();
    blocks_.emplace_back(block.release(), [](void* p) { delete[] static_cast<T*>(p); });
    return raw;
  }

  // A mutable copy, for the few C fields that are non-const byte pointers.
  uint8_t* copyBytes(const std::vector<uint8_t>& bytes) {
    if (bytes.empty()) return nullptr;
    uint8_t* out = make<uint8_t>(bytes.size());
    std::memcpy(out, bytes.data(), bytes.size());
    return out;
  }

 private:
  std::vector<std::unique_ptr<void, void (*)(void*)>> blocks_;
};

// A C string lent by the engine; NULL reads as "".
inline std::string textOf(const char* text) { return text != nullptr ? std::string(text) : std::string(); }

// A fixed character array: up to its first NUL, never past its size.
inline std::string fixedText(const char* field, std::size_t size) {
  std::size_t length = 0;
  while (length < size && field[length] != '\0') ++length;
  return std::string(field, length);
}

// Truncating copy into a fixed character array of `size` bytes, terminator included.
// The structure is zero-filled beforehand, so the bytes past the text stay zero.
inline void copyFixed(char* field, std::size_t size, const std::string& text) {
  if (size == 0) return;
  const std::size_t length = text.size() < size - 1 ? text.size() : size - 1;
  std::memcpy(field, text.data(), length);
  field[length] = '\0';
}

inline std::vector<uint8_t> bytesOf(const uint8_t* data, uint32_t length) {
  if (data == nullptr || length == 0) return {};
  return std::vector<uint8_t>(data, data + length);
}

template <class T>
std::vector<T> scalarsFromC(const T* items, uint32_t count) {
  if (items == nullptr || count == 0) return {};
  return std::vector<T>(items, items + count);
}

}  // namespace orva::sdk::detail
