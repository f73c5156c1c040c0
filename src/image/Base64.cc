#include "image/Base64.h"

#include <cstdio>
#include <cstdlib>

namespace orva::image {
namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

void base64Encode(const uint8_t* bytes, size_t length, std::string* result) {
  // Kept in release builds too: writing through a null result would corrupt memory on an
  // engine thread, far from the caller's mistake.
  if (nullptr == result) {
    std::fputs("orva::image::base64Encode: assertion failed: nullptr != result\n", stderr);
    std::abort();
  }
  result->clear();
  result->reserve(4 * ((length + 2) / 3));
  size_t i = 0;
  for (; i + 3 <= length; i += 3) {
    const uint32_t group = uint32_t{bytes[i]} << 16 | uint32_t{bytes[i + 1]} << 8 | bytes[i + 2];
    result->push_back(kAlphabet[group >> 18]);
    result->push_back(kAlphabet[(group >> 12) & 0x3F]);
    result->push_back(kAlphabet[(group >> 6) & 0x3F]);
    result->push_back(kAlphabet[group & 0x3F]);
  }
  const size_t rest = length - i;
  if (rest == 0) return;
  const uint32_t group = uint32_t{bytes[i]} << 16 | (rest == 2 ? uint32_t{bytes[i + 1]} << 8 : 0);
  result->push_back(kAlphabet[group >> 18]);
  result->push_back(kAlphabet[(group >> 12) & 0x3F]);
  if (rest == 2) {
    result->push_back(kAlphabet[(group >> 6) & 0x3F]);
    result->push_back('=');
  } else {
    result->append("==");
  }
}

std::string base64Encode(const std::string& bytes) {
  std::string text;
  base64Encode(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), &text);
  return text;
}

}  // namespace orva::image
