// The snapshot side's own Base64 encoder. Its output is identical to base64Encode()
// (image/Base64.h); it is kept beside the snapshot code so that snapshot encoding depends on
// nothing else in the image folder.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orva::image {

// Base64 text (RFC 4648 alphabet, "=" padding, no line breaks) of `length` bytes.
std::string snapshotBase64(const uint8_t* bytes, size_t length);

}  // namespace orva::image
