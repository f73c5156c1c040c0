// Helpers shared by the image tests: an independent Base64 decoder and stb_image to read back
// the PNG and JPEG files that the encoders produce.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

// Each test file gets its own private copy of the decoder (static linkage), PNG and JPEG only.
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wsign-compare"
#include <stb_image.h>
#pragma GCC diagnostic pop

namespace orva::test {

// Strict RFC 4648 decoding: fails on a character outside the alphabet, a length that is not a
// multiple of 4, misplaced padding, or padding bits that are not zero.
inline bool base64Decode(const std::string& text, std::string* bytes) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  bytes->clear();
  if (text.size() % 4 != 0) return false;
  for (size_t i = 0; i < text.size(); i += 4) {
    const bool last = i + 4 == text.size();
    const int pad = (text[i + 3] == '=') + (text[i + 2] == '=');
    if (pad > 0 && !last) return false;
    if (text[i + 2] == '=' && text[i + 3] != '=') return false;
    uint32_t group = 0;
    for (int k = 0; k < 4; ++k) {
      uint32_t value = 0;
      if (k < 4 - pad) {
        const char* at = std::strchr(kAlphabet, text[i + k]);
        if (at == nullptr || text[i + k] == '\0') return false;
        value = static_cast<uint32_t>(at - kAlphabet);
      }
      group = group << 6 | value;
    }
    if ((pad == 1 && (group & 0xFF) != 0) || (pad == 2 && (group & 0xFFFF) != 0)) return false;
    bytes->push_back(static_cast<char>(group >> 16));
    if (pad < 2) bytes->push_back(static_cast<char>((group >> 8) & 0xFF));
    if (pad < 1) bytes->push_back(static_cast<char>(group & 0xFF));
  }
  return true;
}

struct DecodedImage {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> rgba;  // 4 bytes a pixel, rows top-down, packed

  const uint8_t* pixel(int x, int y) const { return &rgba[(size_t(y) * width + x) * 4]; }
};

// Decodes a PNG or JPEG file held in memory into R,G,B,A.
inline bool decodeImage(const std::string& file, DecodedImage* image) {
  int channels = 0;
  stbi_uc* pixels = stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(file.data()),
                                          static_cast<int>(file.size()), &image->width,
                                          &image->height, &channels, 4);
  if (pixels == nullptr) return false;
  image->rgba.assign(pixels, pixels + size_t(image->width) * image->height * 4);
  stbi_image_free(pixels);
  return true;
}

// Base64 text of an image file → decoded pixels.
inline bool decodeBase64Image(const std::string& text, DecodedImage* image,
                              std::string* file = nullptr) {
  std::string bytes;
  if (!base64Decode(text, &bytes)) return false;
  if (file != nullptr) *file = bytes;
  return decodeImage(bytes, image);
}

}  // namespace orva::test
