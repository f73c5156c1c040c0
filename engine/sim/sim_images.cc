#include "sim_images.h"

#include <algorithm>
#include <cstring>

namespace orva::sim::img {
namespace {

struct Rgb {
  uint8_t r, g, b;
};

// The classic eight bars, left to right.
constexpr Rgb kBars[8] = {{235, 235, 235}, {235, 235, 16}, {16, 235, 235}, {16, 235, 16},
                          {235, 16, 235},  {235, 16, 16},  {16, 16, 235},  {16, 16, 16}};

inline void put(uint8_t* px, Rgb c, Order order) {
  if (order == Order::BGRA) {
    px[0] = c.b;
    px[1] = c.g;
    px[2] = c.r;
  } else {
    px[0] = c.r;
    px[1] = c.g;
    px[2] = c.b;
  }
  px[3] = 255;
}

}  // namespace

void drawPattern(uint8_t* dst, int width, int height, int stride, uint64_t frame, Order order, bool bottomUp) {
  if (!dst || width <= 0 || height <= 0) return;
  const int box = std::max(1, std::min(width, height) / 4);
  const int travel = std::max(1, width - box);
  const int boxX = static_cast<int>((frame * 4) % static_cast<uint64_t>(travel));
  const int boxY = (height - box) / 2;
  const int stripTop = height - std::max(1, height / 12);
  const int blockW = std::max(1, width / 16);
  for (int y = 0; y < height; ++y) {
    uint8_t* row = dst + static_cast<size_t>(bottomUp ? height - 1 - y : y) * static_cast<size_t>(stride);
    for (int x = 0; x < width; ++x) {
      Rgb c;
      if (y >= stripTop) {
        const int bit = x / blockW;
        const bool on = bit < 16 && ((frame >> (15 - bit)) & 1u);
        c = on ? Rgb{255, 255, 255} : Rgb{0, 0, 0};
      } else if (x >= boxX && x < boxX + box && y >= boxY && y < boxY + box) {
        c = Rgb{255, 128, 0};
      } else {
        c = kBars[std::min(7, x * 8 / width)];
      }
      put(row + static_cast<size_t>(x) * 4, c, order);
    }
    // Padding bytes of a wide stride stay deterministic.
    if (stride > width * 4) std::memset(row + width * 4, 0, static_cast<size_t>(stride - width * 4));
  }
}

void fillRamp(uint8_t* dst, uint64_t length, uint64_t frame) {
  for (uint64_t i = 0; i < length; ++i) dst[i] = static_cast<uint8_t>((i + frame) & 0xFF);
}

void drawQuadrants(uint8_t* dst, int width, int height, int stride) {
  if (!dst || width <= 0 || height <= 0) return;
  for (int y = 0; y < height; ++y) {
    uint8_t* row = dst + static_cast<size_t>(y) * static_cast<size_t>(stride);
    const bool top = y < height / 2;
    for (int x = 0; x < width; ++x) {
      const bool left = x < width / 2;
      const Rgb c = top ? (left ? Rgb{255, 0, 0} : Rgb{0, 255, 0}) : (left ? Rgb{0, 0, 255} : Rgb{255, 255, 255});
      put(row + static_cast<size_t>(x) * 4, c, Order::BGRA);
    }
    if (stride > width * 4) std::memset(row + width * 4, 0, static_cast<size_t>(stride - width * 4));
  }
}

void drawThumbnail(uint8_t* dst, int width, int height, uint32_t rgb) {
  if (!dst || width <= 0 || height <= 0) return;
  const int tr = static_cast<int>((rgb >> 16) & 0xFF), tg = static_cast<int>((rgb >> 8) & 0xFF), tb = static_cast<int>(rgb & 0xFF);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int shade = 64 + 191 * (x + y) / std::max(1, width + height - 2);
      uint8_t* px = dst + (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 4;
      put(px, Rgb{static_cast<uint8_t>(tr * shade / 255), static_cast<uint8_t>(tg * shade / 255),
                  static_cast<uint8_t>(tb * shade / 255)}, Order::BGRA);
    }
  }
}

}  // namespace orva::sim::img
