// Copy kernels of the raw video frame path: one engine frame (first plane) into the packed
// RGBA buffer that script registered for it. They run on engine threads under the slot's
// lock, once per frame, so they allocate nothing and hold no state besides the CPU feature
// choice made once per process.
//
// Preconditions (the renderer checks them before calling): dst holds width * height * 4
// bytes; src holds (height - 1) * srcStride + width * 4 bytes for format 4 and
// width * height * 4 bytes for every other format; dst and src do not overlap. Neither
// pointer needs any alignment.
#pragma once

#include <cstddef>
#include <cstdint>

namespace orva::frame {

// The engine's pixel format values that change the copy; every other value is copied as is.
// 4: B,G,R,A with rows bottom-up at the plane's stride.
inline constexpr int32_t kFormatBgraBottomUp = 4;
// 5: R,G,B,A with rows bottom-up, packed at width * 4 (the stride is not used).
inline constexpr int32_t kFormatRgbaBottomUp = 5;

// Instruction-set variants of the red/blue exchange. All produce identical bytes.
enum class SimdLevel : uint8_t { kScalar = 0, kSsse3 = 1, kAvx2 = 2 };

// How the SIMD variants of the red/blue exchange write the destination. Streaming
// (non-temporal) stores skip the read of every destination line that ordinary stores cost,
// which pays once source and destination no longer fit the last-level cache together; below
// that they would push a frame that script is about to read out to memory. The scalar
// variant always uses ordinary stores. All modes produce identical bytes.
enum class StoreMode : uint8_t { kAuto, kCached, kStreaming };
// kAuto streams frames of more than this many destination bytes (4K frames; 1080p and
// 1440p stay cached).
inline constexpr size_t kStreamingThresholdBytes = size_t{16} << 20;

// The best variant this CPU (and OS) supports, detected once per process.
SimdLevel bestSimdLevel();
// Whether `level` can run here (tests and benchmarks skip the ones that cannot).
bool simdLevelSupported(SimdLevel level);
// "scalar", "ssse3" or "avx2".
const char* simdLevelName(SimdLevel level);

// Bytes a frame of this size occupies in the destination: width * height * 4, or 0 when a
// side is not positive.
size_t rgbaFrameBytes(int32_t width, int32_t height);

// The frame copy of the renderer, dispatching on the engine's pixel format. Does nothing
// when width or height is not positive.
void copyFrameToRGBA(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height,
                     int32_t srcStride, int32_t format);
// The same with a forced variant and store mode for the format 4 exchange (tests and
// benchmarks). A level that the CPU does not support falls back to bestSimdLevel().
void copyFrameToRGBA(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height,
                     int32_t srcStride, int32_t format, SimdLevel level,
                     StoreMode stores = StoreMode::kAuto);

// Format 4: source row height-1-r (starting at (height-1-r) * srcStride) becomes destination
// row r, with bytes 0 and 2 of every pixel exchanged. A stride shorter than a row copies
// nothing.
void flipRowsSwapRedBlue(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height,
                         int32_t srcStride, SimdLevel level, StoreMode stores = StoreMode::kAuto);
// Format 5: packed source rows in reverse order, bytes unchanged.
void flipRows(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height);
// Any other format: width * height * 4 bytes as they are.
void copyPlain(uint8_t* dst, const uint8_t* src, int32_t width, int32_t height);

}  // namespace orva::frame
