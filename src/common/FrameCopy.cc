#include "common/FrameCopy.h"

#include <cstring>

#include "common/FrameCopyKernels.h"

namespace orva::frame {
namespace detail {

void swapRedBlueRowScalar(uint8_t* dst, const uint8_t* src, size_t pixels) {
  for (size_t i = 0; i < pixels; ++i) {
    // memcpy in and out: the buffers have no alignment, and this keeps the access legal.
    uint32_t v;
    std::memcpy(&v, src + i * 4, 4);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    v = (v & 0x00FF00FFu) | ((v >> 16) & 0xFF00u) | ((v & 0xFF00u) << 16);
#else
    v = (v & 0xFF00FF00u) | ((v >> 16) & 0xFFu) | ((v & 0xFFu) << 16);
#endif
    std::memcpy(dst + i * 4, &v, 4);
  }
}

}  // namespace detail

namespace {

SimdLevel detectSimdLevel() {
#if ORVA_FRAME_COPY_X86
  // May run before libgcc's own constructor has filled in the CPU model.
  __builtin_cpu_init();
  // libgcc reports AVX2 only when the OS also saves the YMM registers.
  if (__builtin_cpu_supports("avx2")) return SimdLevel::kAvx2;
  if (__builtin_cpu_supports("ssse3")) return SimdLevel::kSsse3;
#endif
  return SimdLevel::kScalar;
}

detail::SwapRedBlueRowFn swapRowKernel(SimdLevel level, bool streaming) {
  if (!simdLevelSupported(level)) level = bestSimdLevel();
  switch (level) {
#if ORVA_FRAME_COPY_X86
    case SimdLevel::kAvx2:
      return streaming ? detail::swapRedBlueRowAvx2Streaming : detail::swapRedBlueRowAvx2;
    case SimdLevel::kSsse3:
      return streaming ? detail::swapRedBlueRowSsse3Streaming : detail::swapRedBlueRowSsse3;
#endif
    default:
      return detail::swapRedBlueRowScalar;
  }
}

// Callers then size everything in size_t: width * 4 and row offsets overflow 32 bits for
// absurd engine values.
bool hasPixels(int32_t width, int32_t height) { return width > 0 && height > 0; }

}  // namespace

SimdLevel bestSimdLevel() {
  static const SimdLevel level = detectSimdLevel();
  return level;
}

bool simdLevelSupported(SimdLevel level) {
  return static_cast<uint8_t>(level) <= static_cast<uint8_t>(bestSimdLevel());
}

const char* simdLevelName(SimdLevel level) {
  switch (level) {
    case SimdLevel::kAvx2:
      return "avx2";
    case SimdLevel::kSsse3:
      return "ssse3";
    case SimdLevel::kScalar:
      break;
  }
  return "scalar";
}

size_t rgbaFrameBytes(int32_t width, int32_t height) {
  if (!hasPixels(width, height)) return 0;
  return static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
}

void flipRowsSwapRedBlue(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height,
                         int32_t srcStride, SimdLevel level, StoreMode stores) {
  // A stride shorter than a row would make source rows overlap or run backwards: copy
  // nothing rather than read outside the plane.
  if (!hasPixels(width, height) || static_cast<int64_t>(srcStride) < int64_t{width} * 4) return;
  const size_t rowBytes = static_cast<size_t>(width) * 4;
  const size_t stride = static_cast<size_t>(srcStride);
  const size_t rows = static_cast<size_t>(height);
  const bool streaming =
      stores == StoreMode::kStreaming ||
      (stores == StoreMode::kAuto && rowBytes * rows > kStreamingThresholdBytes);
  const detail::SwapRedBlueRowFn swapRow = swapRowKernel(level, streaming);
  // Walks the source forwards and the destination backwards: the loads, which stall, then
  // run in one ascending stream that the hardware prefetcher follows across rows.
  for (size_t r = 0; r < rows; ++r) {
    swapRow(dst + (rows - 1 - r) * rowBytes, src + r * stride, static_cast<size_t>(width));
  }
#if ORVA_FRAME_COPY_X86
  // Streaming stores are weakly ordered: make them visible before the caller unlocks the
  // slot and announces the frame to another thread.
  if (streaming) detail::storeFence();
#endif
}

void flipRows(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height) {
  if (!hasPixels(width, height)) return;
  const size_t rowBytes = static_cast<size_t>(width) * 4;
  const size_t rows = static_cast<size_t>(height);
  // Source forwards, destination backwards, as in flipRowsSwapRedBlue().
  for (size_t r = 0; r < rows; ++r) {
    std::memcpy(dst + (rows - 1 - r) * rowBytes, src + r * rowBytes, rowBytes);
  }
}

void copyPlain(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height) {
  const size_t bytes = rgbaFrameBytes(width, height);
  if (bytes != 0) std::memcpy(dst, src, bytes);
}

void copyFrameToRGBA(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height,
                     int32_t srcStride, int32_t format, SimdLevel level, StoreMode stores) {
  switch (format) {
    case kFormatBgraBottomUp:
      flipRowsSwapRedBlue(dst, src, width, height, srcStride, level, stores);
      break;
    case kFormatRgbaBottomUp:
      flipRows(dst, src, width, height);
      break;
    default:
      copyPlain(dst, src, width, height);
      break;
  }
}

void copyFrameToRGBA(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height,
                     int32_t srcStride, int32_t format) {
  copyFrameToRGBA(dst, src, width, height, srcStride, format, bestSimdLevel());
}

}  // namespace orva::frame
