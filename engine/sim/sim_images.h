// Pictures the simulated engine hands out: moving test-pattern frames, the four-quadrant
// snapshot image and capture-source thumbnails. All 4 bytes a pixel.
#pragma once

#include <cstdint>

namespace orva::sim::img {

enum class Order { BGRA, RGBA };

// Row length of captured frames: width * 4 rounded up to 64 bytes, so that consumers must
// honour the stride.
inline int alignedStride(int width) { return (width * 4 + 63) / 64 * 64; }

// Colour bars, a box that moves with `frame`, and a strip of 16 blocks along the bottom
// that spells `frame` in binary (white = 1). `bottomUp`: the last row is stored first.
void drawPattern(uint8_t* dst, int width, int height, int stride, uint64_t frame, Order order, bool bottomUp);

// Fills stride * height bytes for formats that are not 4 bytes a pixel: a byte ramp.
void fillRamp(uint8_t* dst, uint64_t length, uint64_t frame);

// Snapshot picture, top-down B,G,R,A: top-left red, top-right green, bottom-left blue,
// bottom-right white, alpha 255.
void drawQuadrants(uint8_t* dst, int width, int height, int stride);

// Capture-source preview, packed B,G,R,A: a diagonal gradient tinted with `rgb`.
void drawThumbnail(uint8_t* dst, int width, int height, uint32_t rgb);

}  // namespace orva::sim::img
