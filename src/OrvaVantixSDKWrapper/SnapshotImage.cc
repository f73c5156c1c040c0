#include "OrvaVantixSDKWrapper/SnapshotImage.h"

#include "orva_vantix_engine.h"

namespace orva::sdk {

#if defined(_WIN32)

image::SnapshotImage snapshotImageOf(void* handle) { return handle; }

#else

image::SnapshotImage snapshotImageOf(void* handle) {
  const auto* pixels = static_cast<const orva_pixel_image*>(handle);
  // The encoder reads B,G,R,A only; another layout would come out with the wrong colours.
  if (pixels == nullptr || pixels->format != ORVA_VIDEO_FRAME_FORMAT_BGRA32) return {};
  image::BgraImageView view;
  view.data = pixels->data;
  view.size = pixels->dataLength;
  view.width = pixels->width;
  view.height = pixels->height;
  view.stride = pixels->stride;
  return view;
}

#endif

}  // namespace orva::sdk
