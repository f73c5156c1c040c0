// JPEG snapshots through TurboJPEG (the Windows GDI+ path is checked under Wine by
// test/wine/snapshot_check.cc): result texts and a decoded image's size and colours.
#include <gtest/gtest.h>

#if !defined(_WIN32)

#include <cstdint>
#include <string>
#include <vector>

#include "image/SnapshotEncoder.h"
#include "image_test_support.h"

namespace {

using orva::image::BgraImageView;
using orva::image::encodeSnapshot;

struct Colour {
  uint8_t r, g, b;
};

// 64 x 48, B,G,R,A, rows top-down with padding: red, green / blue, white quadrants.
constexpr int kWidth = 64, kHeight = 48, kStride = kWidth * 4 + 20;
const Colour kQuadrants[2][2] = {{{255, 0, 0}, {0, 255, 0}}, {{0, 0, 255}, {255, 255, 255}}};

std::vector<uint8_t> quadrantImage() {
  std::vector<uint8_t> bgra(size_t(kStride) * kHeight, 0x5A);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const Colour c = kQuadrants[y >= kHeight / 2][x >= kWidth / 2];
      uint8_t* p = &bgra[size_t(y) * kStride + x * 4];
      p[0] = c.b;
      p[1] = c.g;
      p[2] = c.r;
      p[3] = 255;
    }
  }
  return bgra;
}

TEST(Snapshot, EngineErrorKeepsTheErrorTextAndLeavesTheImageAlone) {
  const auto pixels = quadrantImage();
  const BgraImageView good{pixels.data(), pixels.size(), kWidth, kHeight, kStride};
  // An unreadable image would give "Get image failed!" if the encoder looked at it.
  const BgraImageView unreadable{nullptr, 0, kWidth, kHeight, kStride};
  for (int32_t code : {1, -1, 1000001, INT32_MIN}) {
    EXPECT_EQ(encodeSnapshot(code, good), "snap shot error!") << code;
    EXPECT_EQ(encodeSnapshot(code, unreadable), "snap shot error!") << code;
  }
}

TEST(Snapshot, QuadrantImageDecodesToItsSizeAndColours) {
  const auto pixels = quadrantImage();
  const std::string text =
      encodeSnapshot(0, BgraImageView{pixels.data(), pixels.size(), kWidth, kHeight, kStride});
  orva::test::DecodedImage image;
  std::string file;
  ASSERT_TRUE(orva::test::decodeBase64Image(text, &image, &file)) << text.substr(0, 40);
  EXPECT_EQ(file.substr(0, 3), std::string("\xFF\xD8\xFF", 3));  // a JPEG file
  ASSERT_EQ(image.width, kWidth);
  ASSERT_EQ(image.height, kHeight);
  // Away from the quadrant borders, where chroma subsampling blurs, colours hold within
  // JPEG tolerance.
  constexpr int kTolerance = 24;
  for (int qy = 0; qy < 2; ++qy) {
    for (int qx = 0; qx < 2; ++qx) {
      const Colour want = kQuadrants[qy][qx];
      for (int y = qy * 24 + 6; y < qy * 24 + 18; y += 3) {
        for (int x = qx * 32 + 6; x < qx * 32 + 26; x += 4) {
          const uint8_t* got = image.pixel(x, y);
          EXPECT_NEAR(got[0], want.r, kTolerance) << "red at " << x << "," << y;
          EXPECT_NEAR(got[1], want.g, kTolerance) << "green at " << x << "," << y;
          EXPECT_NEAR(got[2], want.b, kTolerance) << "blue at " << x << "," << y;
        }
      }
    }
  }
}

TEST(Snapshot, UnreadableImageCannotBeGot) {
  const std::vector<uint8_t> pixels(16 * 16 * 4);
  EXPECT_EQ(encodeSnapshot(0, BgraImageView{nullptr, 0, 16, 16, 64}), "Get image failed!");
  EXPECT_EQ(encodeSnapshot(0, BgraImageView{pixels.data(), pixels.size(), 0, 16, 64}),
            "Get image failed!");
  EXPECT_EQ(encodeSnapshot(0, BgraImageView{pixels.data(), pixels.size(), 16, 16, 60}),
            "Get image failed!");  // stride shorter than a row
  EXPECT_EQ(encodeSnapshot(0, BgraImageView{pixels.data(), pixels.size() - 1, 16, 16, 64}),
            "Get image failed!");  // last row outside the block
}

// JPEG cannot hold more than 65500 pixels a side: the compressor refuses it.
TEST(Snapshot, CompressionFailureIsASaveFailure) {
  const int width = 70000;
  const std::vector<uint8_t> row(size_t(width) * 4, 0x80);
  EXPECT_EQ(encodeSnapshot(0, BgraImageView{row.data(), row.size(), width, 1, width * 4}),
            "Save image failed!");
}

}  // namespace

#endif  // !_WIN32
