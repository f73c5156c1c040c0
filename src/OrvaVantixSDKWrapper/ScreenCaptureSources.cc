#include "OrvaVantixSDKWrapper/ScreenCaptureSources.h"

#include <memory>
#include <mutex>

#include "OrvaVantixSDKWrapper/ConvertSupport.h"
#include "OrvaVantixSDKWrapper/Engine.h"
#include "OrvaVantixSDKWrapper/EngineLibrary.h"
#include "engine_api_table.h"

namespace orva::sdk {
namespace {

image::ThumbnailImage encodedImage(const orva_image_buffer& image) {
  return image::encodeThumbnail(
      image::BgraImageView::packed(image.buffer, image.bufferLength, image.width, image.height));
}

// Releases the engine's list, under the SDK lock like every engine call.
struct SourceListFree {
  const EngineApiTable* api;
  void operator()(orva_screen_capture_source_info* list) const {
    std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
    api->orva_vantix_free_screen_capture_source_list(list);
  }
};

}  // namespace

std::vector<EncodedScreenCaptureSource> Engine::getEncodedScreenCaptureSources(
    int32_t thumbnailWidth, int32_t thumbnailHeight, int32_t iconWidth, int32_t iconHeight) {
  const EngineApiTable* api = loadedEngineApi();
  if (api == nullptr) return {};
  uint32_t count = 0;
  std::unique_ptr<orva_screen_capture_source_info, SourceListFree> list(nullptr, SourceListFree{api});
  {
    std::lock_guard<std::recursive_mutex> sdk(sdkMutex());
    list.reset(api->orva_vantix_get_screen_capture_sources(thumbnailWidth, thumbnailHeight, iconWidth,
                                                           iconHeight, &count));
  }
  if (!list) return {};
  // The list stays valid until it is released, so the encoding, which takes most of the time,
  // runs without the SDK lock.
  std::vector<EncodedScreenCaptureSource> sources(count);
  for (uint32_t i = 0; i < count; ++i) {
    const orva_screen_capture_source_info& in = list.get()[i];
    EncodedScreenCaptureSource& out = sources[i];
    out.sourceType = in.sourceType;
    out.sourceID = in.sourceID;
    out.sourceName = detail::fixedText(in.sourceName, sizeof in.sourceName);
    out.thumbnailImage = encodedImage(in.thumbnailImage);
    out.iconImage = encodedImage(in.iconImage);
  }
  return sources;
}

}  // namespace orva::sdk
