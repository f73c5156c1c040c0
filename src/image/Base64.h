// Base64 (RFC 4648 alphabet, "=" padding, no line breaks) for the thumbnail and icon images
// handed to script as text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orva::image {

// Replaces *result with the Base64 text of `length` bytes at `bytes`. The result string is
// cleared and given its final capacity first, so one allocation at most. A null result is a
// programming error: the call aborts with "nullptr != result" in every build type.
void base64Encode(const uint8_t* bytes, size_t length, std::string* result);

// Convenience for a byte string.
std::string base64Encode(const std::string& bytes);

}  // namespace orva::image
