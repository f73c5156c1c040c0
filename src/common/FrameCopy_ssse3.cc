// SSSE3 red/blue exchange: one pshufb per 4 pixels.
#include "common/FrameCopyKernels.h"

#if ORVA_FRAME_COPY_X86

#include <immintrin.h>

namespace orva::frame::detail {
namespace {

__attribute__((target("ssse3"), always_inline)) inline __m128i swapped(const uint8_t* src,
                                                                       __m128i order) {
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src)), order);
}

// Neither buffer is aligned (script memory, engine planes): unaligned loads and stores,
// addressed in bytes, except for streaming stores, which the caller aligns.
__attribute__((target("ssse3"), always_inline)) inline void store(uint8_t* dst, __m128i v,
                                                                  bool streaming) {
  if (streaming) {
    _mm_stream_si128(reinterpret_cast<__m128i*>(dst), v);
  } else {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), v);
  }
}

template <bool kStreaming>
__attribute__((target("ssse3"))) void swapRow(uint8_t* dst, const uint8_t* src, size_t pixels) {
  const __m128i order = _mm_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15);
  const size_t bytes = pixels * 4;
  size_t i = 0;
  if constexpr (kStreaming) {
    // Whole pixels up to the first 16-byte boundary of dst, then aligned streaming stores.
    const size_t head = (16 - (reinterpret_cast<uintptr_t>(dst) & 15)) & 15;
    if (head % 4 == 0 && head + 64 <= bytes) {
      swapRedBlueRowScalar(dst, src, head / 4);
      for (i = head; i + 64 <= bytes; i += 64) {
        const __m128i a = swapped(src + i, order), b = swapped(src + i + 16, order);
        const __m128i c = swapped(src + i + 32, order), d = swapped(src + i + 48, order);
        store(dst + i, a, true);
        store(dst + i + 16, b, true);
        store(dst + i + 32, c, true);
        store(dst + i + 48, d, true);
      }
    }
  }
  // Four vectors an iteration keep enough loads in flight to reach memory bandwidth.
  for (; i + 64 <= bytes; i += 64) {
    const __m128i a = swapped(src + i, order), b = swapped(src + i + 16, order);
    const __m128i c = swapped(src + i + 32, order), d = swapped(src + i + 48, order);
    store(dst + i, a, false);
    store(dst + i + 16, b, false);
    store(dst + i + 32, c, false);
    store(dst + i + 48, d, false);
  }
  for (; i + 16 <= bytes; i += 16) store(dst + i, swapped(src + i, order), false);
  swapRedBlueRowScalar(dst + i, src + i, (bytes - i) / 4);
}

}  // namespace

void swapRedBlueRowSsse3(uint8_t* dst, const uint8_t* src, size_t pixels) {
  swapRow<false>(dst, src, pixels);
}

void swapRedBlueRowSsse3Streaming(uint8_t* dst, const uint8_t* src, size_t pixels) {
  swapRow<true>(dst, src, pixels);
}

__attribute__((target("sse"))) void storeFence() { _mm_sfence(); }

}  // namespace orva::frame::detail

#endif  // ORVA_FRAME_COPY_X86
