// A read-only view of a 32-bit B,G,R,A image in memory, rows top-down. The engine layer
// builds it from the engine's own image structures, so the encoders never see engine types.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>

namespace orva::image {

struct BgraImageView {
  const uint8_t* data = nullptr;
  size_t size = 0;      // bytes readable from data
  int32_t width = 0;
  int32_t height = 0;
  int32_t stride = 0;   // bytes from the start of one row to the next, at least width * 4

  // Rows packed at width * 4 bytes, as thumbnails and icons come. A width whose row length
  // does not fit the stride type yields a view that isReadable() refuses.
  static BgraImageView packed(const uint8_t* data, size_t size, int32_t width, int32_t height) {
    const int64_t rowBytes = int64_t{width} * 4;
    const bool fits = rowBytes >= 0 && rowBytes <= std::numeric_limits<int32_t>::max();
    return {data, size, width, height, fits ? static_cast<int32_t>(rowBytes) : 0};
  }
};

// Whether the view has pixels and every row lies inside [data, data + size): the encoders
// refuse anything else instead of reading outside the block.
inline bool isReadable(const BgraImageView& view) {
  if (view.data == nullptr || view.width <= 0 || view.height <= 0) return false;
  const uint64_t rowBytes = uint64_t(view.width) * 4;
  if (view.stride < 0 || uint64_t(view.stride) < rowBytes) return false;
  const uint64_t needed = uint64_t(view.height - 1) * uint64_t(view.stride) + rowBytes;
  return needed <= view.size;
}

}  // namespace orva::image
