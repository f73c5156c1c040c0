#include "image/PngEncoder.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include "image/Base64.h"

// The one definition of stb_image_write in the module. Static linkage keeps its symbols
// private, so another library built with its own copy cannot clash with ours.
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wsign-compare"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace orva::image {
namespace {

// stb_image_write sizes its buffers with int; stay far below that.
constexpr uint64_t kMaxPixelBytes = uint64_t{1} << 30;

// Frees the writer's output the way the writer allocated it.
struct StbFree {
  void operator()(unsigned char* p) const { STBIW_FREE(p); }
};

}  // namespace

std::string encodePng(const BgraImageView& image) {
  if (!isReadable(image)) return {};
  const size_t rowBytes = static_cast<size_t>(image.width) * 4;
  const uint64_t total = uint64_t{rowBytes} * static_cast<uint64_t>(image.height);
  if (total > kMaxPixelBytes) return {};

  // The writer takes R,G,B,A: exchange blue and red into a packed copy.
  std::unique_ptr<uint8_t[]> rgba(new (std::nothrow) uint8_t[total]);
  if (!rgba) return {};
  for (int32_t y = 0; y < image.height; ++y) {
    const uint8_t* in = image.data + static_cast<size_t>(y) * static_cast<size_t>(image.stride);
    uint8_t* out = rgba.get() + static_cast<size_t>(y) * rowBytes;
    for (size_t x = 0; x < rowBytes; x += 4) {
      out[x] = in[x + 2];
      out[x + 1] = in[x + 1];
      out[x + 2] = in[x];
      out[x + 3] = in[x + 3];
    }
  }

  int length = 0;
  std::unique_ptr<unsigned char, StbFree> png(stbi_write_png_to_mem(
      rgba.get(), static_cast<int>(rowBytes), image.width, image.height, 4, &length));
  if (!png || length <= 0) return {};
  return std::string(reinterpret_cast<const char*>(png.get()), static_cast<size_t>(length));
}

ThumbnailImage encodeThumbnail(const BgraImageView& image) {
  ThumbnailImage result;
  const std::string png = encodePng(image);
  base64Encode(reinterpret_cast<const uint8_t*>(png.data()), png.size(), &result.buffer);
  result.width = image.width;
  result.height = image.height;
  return result;
}

}  // namespace orva::image
