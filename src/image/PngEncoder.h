// PNG encoding of screen capture source thumbnails and icons, handed to script as Base64.
#pragma once

#include <cstdint>
#include <string>

#include "image/BgraImageView.h"

namespace orva::image {

// What script receives for one thumbnail or icon: { buffer, width, height }.
struct ThumbnailImage {
  std::string buffer;  // Base64 of the PNG file; empty when no PNG could be made
  int32_t width = 0;   // as the engine reported them, even when buffer is empty
  int32_t height = 0;
};

// A complete PNG file (RGBA, 8 bits a channel) of a B,G,R,A image, as a byte string. Empty
// when the view is not readable (no pixels, rows outside its block), when the image exceeds
// 1 GiB of pixels, or when the PNG writer fails: engines report sources without an icon as
// 0 x 0 images, and script tells "no image" by the empty text.
std::string encodePng(const BgraImageView& image);

// encodePng() in Base64 with the view's width and height.
ThumbnailImage encodeThumbnail(const BgraImageView& image);

}  // namespace orva::image
