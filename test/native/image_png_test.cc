// PNG thumbnails and icons: the blue/red exchange, a lossless round trip through a real PNG
// decoder, and what script gets for images that cannot be written.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "image/PngEncoder.h"
#include "image_test_support.h"

namespace {

using orva::image::BgraImageView;
using orva::image::encodeThumbnail;
using orva::test::DecodedImage;

const std::string kPngSignature("\x89PNG\r\n\x1a\n", 8);

TEST(PngThumbnail, OnePixelIsWrittenAsRedGreenBlueAlpha) {
  const uint8_t bgra[4] = {10, 20, 30, 255};  // blue 10, green 20, red 30, alpha 255
  const auto thumb = encodeThumbnail(BgraImageView::packed(bgra, sizeof bgra, 1, 1));
  EXPECT_EQ(thumb.width, 1);
  EXPECT_EQ(thumb.height, 1);
  DecodedImage image;
  std::string file;
  ASSERT_TRUE(orva::test::decodeBase64Image(thumb.buffer, &image, &file)) << thumb.buffer;
  EXPECT_EQ(file.substr(0, 8), kPngSignature);
  ASSERT_EQ(image.width, 1);
  ASSERT_EQ(image.height, 1);
  EXPECT_EQ(image.rgba, (std::vector<uint8_t>{30, 20, 10, 255}));
}

// An odd-sized image with random colours and alpha comes back exactly (PNG is lossless),
// both packed and from a view whose rows are padded.
TEST(PngThumbnail, OddSizedImageRoundTripsExactly) {
  const int w = 37, h = 23;
  for (int padding : {0, 12}) {
    const int stride = w * 4 + padding;
    std::vector<uint8_t> bgra(size_t(stride) * h);
    std::mt19937 rng(5 + padding);
    for (auto& b : bgra) b = static_cast<uint8_t>(rng());
    const auto thumb = encodeThumbnail({bgra.data(), bgra.size(), w, h, stride});
    EXPECT_EQ(thumb.width, w);
    EXPECT_EQ(thumb.height, h);
    DecodedImage image;
    ASSERT_TRUE(orva::test::decodeBase64Image(thumb.buffer, &image)) << "padding " << padding;
    ASSERT_EQ(image.width, w);
    ASSERT_EQ(image.height, h);
    for (int y = 0; y < h; ++y) {
      for (int x = 0; x < w; ++x) {
        const uint8_t* in = &bgra[size_t(y) * stride + x * 4];
        const uint8_t* out = image.pixel(x, y);
        ASSERT_EQ(std::vector<uint8_t>(out, out + 4),
                  (std::vector<uint8_t>{in[2], in[1], in[0], in[3]}))
            << "pixel " << x << "," << y << ", padding " << padding;
      }
    }
  }
}

// Sources without an icon come as 0 x 0; a block shorter than its stated size must not be
// read. Script gets an empty buffer with the engine's width and height.
TEST(PngThumbnail, ImagesThatCannotBeWrittenGiveAnEmptyBuffer) {
  const std::vector<uint8_t> pixels(16 * 4, 0x80);
  struct Case {
    const char* what;
    BgraImageView view;
  };
  const Case cases[] = {
      {"no icon", BgraImageView::packed(nullptr, 0, 0, 0)},
      {"zero height", BgraImageView::packed(pixels.data(), pixels.size(), 16, 0)},
      {"null data", BgraImageView::packed(nullptr, 64, 4, 4)},
      {"block too short", BgraImageView::packed(pixels.data(), pixels.size(), 5, 4)},
      {"negative width", BgraImageView::packed(pixels.data(), pixels.size(), -4, 4)},
      {"row length overflows", BgraImageView::packed(pixels.data(), pixels.size(), 1 << 30, 1)},
  };
  for (const Case& c : cases) {
    const auto thumb = encodeThumbnail(c.view);
    EXPECT_EQ(thumb.buffer, "") << c.what;
    EXPECT_EQ(thumb.width, c.view.width) << c.what;
    EXPECT_EQ(thumb.height, c.view.height) << c.what;
  }
}

}  // namespace
