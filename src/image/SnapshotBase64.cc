#include "image/SnapshotBase64.h"

namespace orva::image {
namespace {

// Built once when the module loads and only read afterwards, so snapshot threads share it
// without a lock. Nothing encodes a snapshot during static initialisation.
const std::string kSnapshotAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

}  // namespace

std::string snapshotBase64(const uint8_t* bytes, size_t length) {
  // Sized once and filled in place: a 1080p snapshot is half a megabyte of JPEG.
  std::string text(4 * ((length + 2) / 3), '=');
  const std::string& alphabet = kSnapshotAlphabet;
  char* out = text.data();
  size_t i = 0;
  for (; i + 3 <= length; i += 3, out += 4) {
    const uint8_t b0 = bytes[i], b1 = bytes[i + 1], b2 = bytes[i + 2];
    out[0] = alphabet[b0 >> 2];
    out[1] = alphabet[((b0 & 0x03) << 4) | (b1 >> 4)];
    out[2] = alphabet[((b1 & 0x0F) << 2) | (b2 >> 6)];
    out[3] = alphabet[b2 & 0x3F];
  }
  // A final group of one or two bytes: missing bits are zeros, missing characters stay "=".
  if (i < length) {
    const uint8_t b0 = bytes[i];
    const uint8_t b1 = i + 1 < length ? bytes[i + 1] : 0;
    out[0] = alphabet[b0 >> 2];
    out[1] = alphabet[((b0 & 0x03) << 4) | (b1 >> 4)];
    if (i + 1 < length) out[2] = alphabet[(b1 & 0x0F) << 2];
  }
  return text;
}

}  // namespace orva::image
