// Windows-only check, run under Wine (the native GoogleTest suite is not built for MinGW):
// the GDI+ snapshot path from a real HBITMAP, and the SIMD frame copy kernels under the
// Win64 calling convention. Prints the Base64 JPEG of the quadrant image on a line starting
// with "jpeg-base64: " for scripts that want to decode it themselves, then one line per
// check and a closing "N passed, M failed" line; exits non-zero on any failure.
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "common/FrameCopy.h"
#include "image/SnapshotEncoder.h"

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wsign-compare"
#include <stb_image.h>
#pragma GCC diagnostic pop

namespace {

int passed = 0;
int failed = 0;

void check(bool ok, const std::string& what) {
  std::printf("%s %s\n", ok ? "ok  " : "FAIL", what.c_str());
  (ok ? passed : failed) += 1;
}

bool base64Decode(const std::string& text, std::string* bytes) {
  static const char kAlphabet[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  bytes->clear();
  if (text.size() % 4 != 0) return false;
  uint32_t group = 0;
  int bits = 0;
  for (char c : text) {
    if (c == '=') break;
    const char* at = std::strchr(kAlphabet, c);
    if (at == nullptr || c == '\0') return false;
    group = group << 6 | static_cast<uint32_t>(at - kAlphabet);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      bytes->push_back(static_cast<char>((group >> bits) & 0xFF));
    }
  }
  return true;
}

struct Colour {
  uint8_t r, g, b;
};

// 64 x 48: red, green / blue, white quadrants, as a top-down 32-bit DIB section.
constexpr int kWidth = 64, kHeight = 48;
const Colour kQuadrants[2][2] = {{{255, 0, 0}, {0, 255, 0}}, {{0, 0, 255}, {255, 255, 255}}};

HBITMAP makeQuadrantBitmap() {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = kWidth;
  info.bmiHeader.biHeight = -kHeight;  // top-down
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap == nullptr) return nullptr;
  auto* pixels = static_cast<uint8_t*>(bits);
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const Colour c = kQuadrants[y >= kHeight / 2][x >= kWidth / 2];
      uint8_t* p = pixels + (y * kWidth + x) * 4;
      p[0] = c.b;
      p[1] = c.g;
      p[2] = c.r;
      p[3] = 255;
    }
  }
  GdiFlush();
  return bitmap;
}

void checkSnapshot() {
  check(orva::image::encodeSnapshot(5, nullptr) == "snap shot error!",
        "engine error code keeps \"snap shot error!\"");

  CLSID clsid{};
  check(orva::image::findImageEncoder(L"image/jpeg", &clsid) >= 0, "GDI+ lists a JPEG encoder");
  check(orva::image::findImageEncoder(L"image/x-none", &clsid) == -1,
        "an unknown MIME type has no encoder");

  HBITMAP bitmap = makeQuadrantBitmap();
  check(bitmap != nullptr, "CreateDIBSection");
  if (bitmap == nullptr) return;
  const std::string text = orva::image::encodeSnapshot(0, bitmap);
  DeleteObject(bitmap);
  std::printf("jpeg-base64: %s\n", text.c_str());

  std::string jpeg;
  check(base64Decode(text, &jpeg), "snapshot text is Base64");
  check(jpeg.size() > 3 && jpeg.compare(0, 3, "\xFF\xD8\xFF") == 0, "snapshot is a JPEG file");
  int w = 0, h = 0, channels = 0;
  stbi_uc* rgb = stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(jpeg.data()),
                                       static_cast<int>(jpeg.size()), &w, &h, &channels, 3);
  check(rgb != nullptr, "JPEG decodes");
  if (rgb == nullptr) return;
  check(w == kWidth && h == kHeight,
        "decoded size " + std::to_string(w) + "x" + std::to_string(h) + " is 64x48");
  if (w == kWidth && h == kHeight) {
    constexpr int kTolerance = 24;
    for (int qy = 0; qy < 2; ++qy) {
      for (int qx = 0; qx < 2; ++qx) {
        const Colour want = kQuadrants[qy][qx];
        int worst = 0;
        for (int y = qy * 24 + 6; y < qy * 24 + 18; ++y) {
          for (int x = qx * 32 + 6; x < qx * 32 + 26; ++x) {
            const stbi_uc* p = rgb + (y * w + x) * 3;
            worst = std::max({worst, std::abs(p[0] - want.r), std::abs(p[1] - want.g),
                              std::abs(p[2] - want.b)});
          }
        }
        check(worst <= kTolerance, "quadrant " + std::to_string(qy * 2 + qx) +
                                       " colour within " + std::to_string(kTolerance) +
                                       " (worst " + std::to_string(worst) + ")");
      }
    }
  }
  stbi_image_free(rgb);

  // A handle that is not a bitmap: the save fails and, as documented, the stream's (empty)
  // content is what script gets.
  check(orva::image::encodeSnapshot(0, reinterpret_cast<void*>(0x12345)).empty(),
        "an invalid bitmap gives the empty text");
}

// Format 4 through every variant and store mode against the scalar result; the AVX2 kernel
// must not fault on the Win64 stack (MinGW cannot align it to 32 bytes).
void checkFrameCopy() {
  using orva::frame::SimdLevel;
  using orva::frame::StoreMode;
  const int w = 67, h = 9, stride = w * 4 + 12;
  std::vector<uint8_t> src(size_t(stride) * h + 3);
  for (size_t i = 0; i < src.size(); ++i) src[i] = static_cast<uint8_t>(i * 37 + 11);
  std::vector<uint8_t> want(size_t(w) * h * 4 + 8), got(want.size());
  orva::frame::copyFrameToRGBA(want.data() + 4, src.data() + 3, w, h, stride, 4,
                               SimdLevel::kScalar, StoreMode::kCached);
  for (SimdLevel level : {SimdLevel::kSsse3, SimdLevel::kAvx2}) {
    if (!orva::frame::simdLevelSupported(level)) {
      std::printf("skip %s not supported here\n", orva::frame::simdLevelName(level));
      continue;
    }
    for (StoreMode stores : {StoreMode::kCached, StoreMode::kStreaming}) {
      std::fill(got.begin(), got.end(), 0);
      orva::frame::copyFrameToRGBA(got.data() + 4, src.data() + 3, w, h, stride, 4, level,
                                   stores);
      check(got == want, std::string("frame copy ") + orva::frame::simdLevelName(level) +
                             (stores == StoreMode::kStreaming ? " streaming" : " cached") +
                             " equals scalar");
    }
  }
}

}  // namespace

int main() {
  // Unbuffered: under Wine a crash must not swallow the lines printed before it.
  std::setvbuf(stdout, nullptr, _IONBF, 0);
  checkSnapshot();
  checkFrameCopy();
  std::printf("snapshot_check: %d passed, %d failed\n", passed, failed);
  return failed == 0 && passed > 0 ? 0 : 1;
}
