// AVX2 red/blue exchange: one vpshufb per 8 pixels. The shuffle works within each 128-bit
// lane, which is enough because no pixel straddles a lane.
//
// Every helper taking a 256-bit value is forced inline: MinGW's GCC cannot align the Win64
// stack to 32 bytes, so a 256-bit value passed to a real call could be spilled to a
// misaligned slot and fault under Windows.
#include "common/FrameCopyKernels.h"

#if ORVA_FRAME_COPY_X86

#include <immintrin.h>

namespace orva::frame::detail {
namespace {

__attribute__((target("avx2"), always_inline)) inline __m256i swapped(const uint8_t* src,
                                                                      __m256i order) {
  return _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src)), order);
}

// Neither buffer is aligned (script memory, engine planes): unaligned loads and stores,
// addressed in bytes, except for streaming stores, which the caller aligns.
__attribute__((target("avx2"), always_inline)) inline void store(uint8_t* dst, __m256i v,
                                                                 bool streaming) {
  if (streaming) {
    _mm256_stream_si256(reinterpret_cast<__m256i*>(dst), v);
  } else {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst), v);
  }
}

template <bool kStreaming>
__attribute__((target("avx2"))) void swapRow(uint8_t* dst, const uint8_t* src, size_t pixels) {
  const __m256i order = _mm256_setr_epi8(2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15,
                                         2, 1, 0, 3, 6, 5, 4, 7, 10, 9, 8, 11, 14, 13, 12, 15);
  const size_t bytes = pixels * 4;
  size_t i = 0;
  if constexpr (kStreaming) {
    // Whole pixels up to the first 32-byte boundary of dst, then aligned streaming stores.
    const size_t head = (32 - (reinterpret_cast<uintptr_t>(dst) & 31)) & 31;
    if (head % 4 == 0 && head + 128 <= bytes) {
      swapRedBlueRowScalar(dst, src, head / 4);
      for (i = head; i + 128 <= bytes; i += 128) {
        const __m256i a = swapped(src + i, order), b = swapped(src + i + 32, order);
        const __m256i c = swapped(src + i + 64, order), d = swapped(src + i + 96, order);
        store(dst + i, a, true);
        store(dst + i + 32, b, true);
        store(dst + i + 64, c, true);
        store(dst + i + 96, d, true);
      }
    }
  }
  for (; i + 128 <= bytes; i += 128) {
    const __m256i a = swapped(src + i, order), b = swapped(src + i + 32, order);
    const __m256i c = swapped(src + i + 64, order), d = swapped(src + i + 96, order);
    store(dst + i, a, false);
    store(dst + i + 32, b, false);
    store(dst + i + 64, c, false);
    store(dst + i + 96, d, false);
  }
  for (; i + 32 <= bytes; i += 32) store(dst + i, swapped(src + i, order), false);
  if (i + 16 <= bytes) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + i));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i),
                     _mm_shuffle_epi8(v, _mm256_castsi256_si128(order)));
    i += 16;
  }
  swapRedBlueRowScalar(dst + i, src + i, (bytes - i) / 4);
}

}  // namespace

void swapRedBlueRowAvx2(uint8_t* dst, const uint8_t* src, size_t pixels) {
  swapRow<false>(dst, src, pixels);
}

void swapRedBlueRowAvx2Streaming(uint8_t* dst, const uint8_t* src, size_t pixels) {
  swapRow<true>(dst, src, pixels);
}

}  // namespace orva::frame::detail

#endif  // ORVA_FRAME_COPY_X86
