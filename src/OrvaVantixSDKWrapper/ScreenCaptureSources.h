// The engine's list of capturable screens and windows, with each thumbnail and icon already
// encoded as PNG (Base64) for script.
//
// The generic call side (Engine::getScreenCaptureSources) copies every image's pixels into
// owned vectors before the list is released; a listing with ten windows would copy megabytes
// only to encode them once. This call encodes straight from the engine's pixels while its
// list is alive, then releases the list.
#pragma once

#include <cstdint>
#include <string>

#include "image/PngEncoder.h"

namespace orva::sdk {

struct EncodedScreenCaptureSource {
  int32_t sourceType = 0;
  int64_t sourceID = 0;
  std::string sourceName;
  image::ThumbnailImage thumbnailImage;  // Base64 PNG with the engine's width and height
  image::ThumbnailImage iconImage;
};

}  // namespace orva::sdk
