// Frame copy kernels: every instruction-set variant against a byte-by-byte reference, on
// layouts that hit the SIMD loop tails (odd widths), padded and odd strides, and pointers
// with no alignment. Source planes are allocated to their exact length, so an over-read
// past the last row shows under ASan; the destination carries guard bytes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "common/FrameCopy.h"

namespace {

using orva::frame::SimdLevel;
using orva::frame::StoreMode;

constexpr uint8_t kGuard = 0xA5;
constexpr size_t kGuardBytes = 32;

// The copy as the renderer describes it, one byte at a time.
std::vector<uint8_t> referenceCopy(const uint8_t* src, int w, int h, int stride, int format) {
  const size_t rowBytes = static_cast<size_t>(w) * 4;
  std::vector<uint8_t> out(rowBytes * h);
  for (int r = 0; r < h; ++r) {
    for (size_t b = 0; b < rowBytes; ++b) {
      uint8_t value;
      if (format == 4) {
        const uint8_t* row = src + static_cast<size_t>(h - 1 - r) * stride;
        static const size_t kExchange[4] = {2, 1, 0, 3};
        value = row[b - b % 4 + kExchange[b % 4]];
      } else if (format == 5) {
        value = src[static_cast<size_t>(h - 1 - r) * rowBytes + b];
      } else {
        value = src[r * rowBytes + b];
      }
      out[r * rowBytes + b] = value;
    }
  }
  return out;
}

struct Layout {
  int width;
  int height;
  int stride;        // bytes per source row (used by format 4 only)
  size_t srcOffset;  // misalignment of the source pointer
  size_t dstOffset;  // misalignment of the destination pointer
};

std::string describe(const Layout& l, int format) {
  return "format " + std::to_string(format) + ", " + std::to_string(l.width) + "x" +
         std::to_string(l.height) + ", stride " + std::to_string(l.stride) + ", src+" +
         std::to_string(l.srcOffset) + ", dst+" + std::to_string(l.dstOffset);
}

// Exact bytes the source plane must hold: the last row needs only its pixels.
size_t sourceBytes(const Layout& l, int format) {
  const size_t rowBytes = static_cast<size_t>(l.width) * 4;
  if (format == 4) return static_cast<size_t>(l.height - 1) * l.stride + rowBytes;
  return rowBytes * l.height;
}

// Runs one copy and compares it with the reference; returns false (with a failure) on the
// first difference so that a broken kernel does not flood the log.
bool copyMatchesReference(const Layout& l, int format, SimdLevel level, StoreMode stores,
                          std::mt19937& rng) {
  const size_t srcLen = sourceBytes(l, format);
  std::vector<uint8_t> srcStore(l.srcOffset + srcLen);
  for (auto& b : srcStore) b = static_cast<uint8_t>(rng());
  const uint8_t* src = srcStore.data() + l.srcOffset;

  const size_t dstLen = static_cast<size_t>(l.width) * l.height * 4;
  std::vector<uint8_t> dstStore(l.dstOffset + dstLen + kGuardBytes, kGuard);
  uint8_t* dst = dstStore.data() + l.dstOffset;

  orva::frame::copyFrameToRGBA(dst, src, l.width, l.height, l.stride, format, level, stores);

  const std::vector<uint8_t> expected = referenceCopy(src, l.width, l.height, l.stride, format);
  for (size_t i = 0; i < dstLen; ++i) {
    if (dst[i] != expected[i]) {
      ADD_FAILURE() << describe(l, format) << ": byte " << i << " is " << int(dst[i])
                    << ", expected " << int(expected[i]);
      return false;
    }
  }
  for (size_t i = 0; i < l.dstOffset; ++i) {
    if (dstStore[i] != kGuard) {
      ADD_FAILURE() << describe(l, format) << ": wrote before the destination";
      return false;
    }
  }
  for (size_t i = l.dstOffset + dstLen; i < dstStore.size(); ++i) {
    if (dstStore[i] != kGuard) {
      ADD_FAILURE() << describe(l, format) << ": wrote past the destination";
      return false;
    }
  }
  return true;
}

// Widths around every vector and unroll boundary of the kernels (4, 8, 16, 32 pixels).
const int kWidths[] = {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 63, 64, 65, 127, 129, 161};
const int kHeights[] = {1, 2, 3, 7};
const int kStridePadding[] = {0, 1, 3, 4, 13, 64};
// 4 and 8: 4-byte aligned but not 16 or 32, so streaming stores need a head.
const size_t kOffsets[] = {0, 1, 3, 4, 8};

const char* storeModeName(StoreMode mode) {
  switch (mode) {
    case StoreMode::kCached:
      return "cached";
    case StoreMode::kStreaming:
      return "streaming";
    case StoreMode::kAuto:
      break;
  }
  return "auto";
}

// Every width, height, stride padding and pointer misalignment for one format.
void checkAllLayouts(int format, SimdLevel level, StoreMode stores) {
  std::mt19937 rng(1234u + format);
  for (int w : kWidths) {
    for (int h : kHeights) {
      for (int pad : kStridePadding) {
        for (size_t so : kOffsets) {
          for (size_t dO : kOffsets) {
            const Layout l{w, h, w * 4 + pad, so, dO};
            if (!copyMatchesReference(l, format, level, stores, rng)) return;
          }
        }
      }
    }
  }
}

// The format 4 exchange per instruction set and store mode.
class FrameCopyVariant : public ::testing::TestWithParam<std::tuple<SimdLevel, StoreMode>> {
 protected:
  void SetUp() override {
    if (!orva::frame::simdLevelSupported(level())) {
      GTEST_SKIP() << orva::frame::simdLevelName(level()) << " is not supported by this CPU";
    }
  }
  SimdLevel level() const { return std::get<0>(GetParam()); }
  StoreMode stores() const { return std::get<1>(GetParam()); }
};

TEST_P(FrameCopyVariant, BgraBottomUpFlipsRowsAndSwapsRedBlue) {
  checkAllLayouts(4, level(), stores());
}

// Frames on both sides of the size where the automatic store mode starts streaming, with
// padded strides and unaligned pointers.
TEST_P(FrameCopyVariant, FramesAroundTheStreamingThreshold) {
  std::mt19937 rng(99);
  EXPECT_TRUE(copyMatchesReference({1920, 1080, 1920 * 4 + 68, 1, 2}, 4, level(), stores(), rng));
  static_assert(size_t{2304} * 1824 * 4 > orva::frame::kStreamingThresholdBytes);
  EXPECT_TRUE(copyMatchesReference({2304, 1824, 2304 * 4 + 36, 3, 4}, 4, level(), stores(), rng));
}

INSTANTIATE_TEST_SUITE_P(
    Variants, FrameCopyVariant,
    ::testing::Combine(::testing::Values(SimdLevel::kScalar, SimdLevel::kSsse3, SimdLevel::kAvx2),
                       ::testing::Values(StoreMode::kAuto, StoreMode::kCached,
                                         StoreMode::kStreaming)),
    [](const auto& info) {
      return std::string(orva::frame::simdLevelName(std::get<0>(info.param))) + "_" +
             storeModeName(std::get<1>(info.param));
    });

// Formats 5 and "other" involve no variant; they are checked through the default choice.
TEST(FrameCopy, RgbaBottomUpFlipsPackedRowsIgnoringStride) {
  checkAllLayouts(5, orva::frame::bestSimdLevel(), StoreMode::kAuto);
}

TEST(FrameCopy, OtherFormatsCopyBytesAsTheyAre) {
  for (int format : {0, 1, 6, 8, -1}) {
    checkAllLayouts(format, orva::frame::bestSimdLevel(), StoreMode::kAuto);
  }
}

// The default entry point uses the detected variant and gives the same bytes.
TEST(FrameCopy, DefaultEntryPointMatchesReference) {
  std::mt19937 rng(7);
  for (int format : {4, 5, 0}) {
    const Layout l{33, 5, 33 * 4 + 5, 1, 3};
    std::vector<uint8_t> src(sourceBytes(l, format) + l.srcOffset);
    for (auto& b : src) b = static_cast<uint8_t>(rng());
    std::vector<uint8_t> dst(l.width * l.height * 4 + l.dstOffset);
    orva::frame::copyFrameToRGBA(dst.data() + l.dstOffset, src.data() + l.srcOffset, l.width,
                                 l.height, l.stride, format);
    const auto expected =
        referenceCopy(src.data() + l.srcOffset, l.width, l.height, l.stride, format);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), dst.begin() + l.dstOffset))
        << describe(l, format);
  }
}

// Empty frames and a stride shorter than a row must leave the destination untouched (and,
// under ASan, read nothing from a null plane).
TEST(FrameCopy, DegenerateFramesTouchNothing) {
  std::vector<uint8_t> dst(64, kGuard);
  const std::vector<uint8_t> src(64, 1);
  for (SimdLevel level : {SimdLevel::kScalar, SimdLevel::kSsse3, SimdLevel::kAvx2}) {
    for (int format : {4, 5, 0}) {
      orva::frame::copyFrameToRGBA(dst.data(), nullptr, 0, 10, 40, format, level);
      orva::frame::copyFrameToRGBA(dst.data(), nullptr, 10, 0, 40, format, level);
      orva::frame::copyFrameToRGBA(dst.data(), nullptr, -4, 4, 16, format, level);
      orva::frame::copyFrameToRGBA(dst.data(), nullptr, 4, -4, 16, format, level);
    }
    orva::frame::copyFrameToRGBA(dst.data(), src.data(), 4, 2, 15, 4, level);  // stride < 16
    orva::frame::copyFrameToRGBA(dst.data(), src.data(), 4, 2, -16, 4, level);
  }
  EXPECT_EQ(dst, std::vector<uint8_t>(64, kGuard));
  EXPECT_EQ(orva::frame::rgbaFrameBytes(0, 5), 0u);
  EXPECT_EQ(orva::frame::rgbaFrameBytes(-1, 5), 0u);
  EXPECT_EQ(orva::frame::rgbaFrameBytes(65535, 65535), size_t{65535} * 65535 * 4);
}

}  // namespace
