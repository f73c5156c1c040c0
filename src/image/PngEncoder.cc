#include "image/PngEncoder.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

#include <zlib.h>

#include "image/Base64.h"

namespace orva::image {
namespace {

// zlib level for thumbnails and icons. stb_image_write's own deflate (a plain hash chain)
// takes most of a thumbnail's encoding time; zlib's fastest levels do the same work several
// times faster and compress screen pictures about as well (bench/README.md, `image`).
constexpr int kZlibLevel = 1;

// stb_image_write's replacement compressor: a zlib stream of `data`, allocated with
// STBIW_MALLOC (malloc), which the writer frees. `quality` is stb's level, not used.
unsigned char* zlibCompress(unsigned char* data, int length, int* outLength, int /*quality*/) {
  uLongf size = compressBound(static_cast<uLong>(length));
  auto* out = static_cast<unsigned char*>(std::malloc(size));
  if (out == nullptr) return nullptr;
  if (compress2(out, &size, data, static_cast<uLong>(length), kZlibLevel) != Z_OK) {
    std::free(out);
    return nullptr;
  }
  *outLength = static_cast<int>(size);
  return out;
}

}  // namespace
}  // namespace orva::image

// The one definition of stb_image_write in the module. Static linkage keeps its symbols
// private, so another library built with its own copy cannot clash with ours.
#define STBIW_ZLIB_COMPRESS orva::image::zlibCompress
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
