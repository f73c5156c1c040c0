// Row kernels behind FrameCopy, one per instruction set. Internal to the frame copy: the
// SIMD ones live in their own files so that only they are built for SSSE3 / AVX2 (through
// target attributes), while the rest of the library stays baseline x86-64.
#pragma once

#include <cstddef>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#define ORVA_FRAME_COPY_X86 1
#else
#define ORVA_FRAME_COPY_X86 0
#endif

namespace orva::frame::detail {

// Copies `pixels` 4-byte pixels from src to dst, exchanging bytes 0 and 2 of each.
using SwapRedBlueRowFn = void (*)(uint8_t* dst, const uint8_t* src, size_t pixels);

void swapRedBlueRowScalar(uint8_t* dst, const uint8_t* src, size_t pixels);
#if ORVA_FRAME_COPY_X86
// Callers make sure the CPU supports the instruction set (see bestSimdLevel()).
void swapRedBlueRowSsse3(uint8_t* dst, const uint8_t* src, size_t pixels);
void swapRedBlueRowAvx2(uint8_t* dst, const uint8_t* src, size_t pixels);
// The same with non-temporal stores for the aligned body of the row (a destination that is
// not 4-byte aligned, or a short row, is written with ordinary stores). After the last row,
// call storeFence() so that the stores are visible before the frame is announced.
void swapRedBlueRowSsse3Streaming(uint8_t* dst, const uint8_t* src, size_t pixels);
void swapRedBlueRowAvx2Streaming(uint8_t* dst, const uint8_t* src, size_t pixels);
void storeFence();
#endif

}  // namespace orva::frame::detail
