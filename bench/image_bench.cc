// Image encoding times: the JPEG snapshot of a 1080p frame (GDI+ on Windows, TurboJPEG
// elsewhere), PNG thumbnails and icons, and Base64 throughput of both encoders.
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#if defined(_WIN32)
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#endif

#include "bench.h"
#include "image/Base64.h"
#include "image/PngEncoder.h"
#include "image/SnapshotBase64.h"
#include "image/SnapshotEncoder.h"

// A second, private copy of stb_image_write with its own deflate: the baseline that the
// module's PNG encoder (stb_image_write writing through zlib) is compared with.
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#define STBI_WRITE_NO_STDIO
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wsign-compare"
#include <stb_image_write.h>
#pragma GCC diagnostic pop

namespace {

// Gradients with a little texture: compresses like a camera frame rather than a flat fill.
void fillPicture(uint8_t* bgra, int width, int height, size_t stride) {
  uint32_t noise = 12345;
  for (int y = 0; y < height; ++y) {
    uint8_t* row = bgra + y * stride;
    for (int x = 0; x < width; ++x) {
      noise = noise * 1664525u + 1013904223u;
      const int n = static_cast<int>(noise >> 28);
      row[x * 4 + 0] = static_cast<uint8_t>((x * 255 / width + n) & 0xFF);
      row[x * 4 + 1] = static_cast<uint8_t>((y * 255 / height + n) & 0xFF);
      row[x * 4 + 2] = static_cast<uint8_t>(((x + y) * 255 / (width + height)) & 0xFF);
      row[x * 4 + 3] = 255;
    }
  }
}

void report(const char* label, double seconds, const std::string& detail) {
  std::printf("image %-34s %9.3f ms  %s\n", label, seconds * 1e3, detail.c_str());
}

std::string kib(size_t bytes) { return std::to_string((bytes + 512) / 1024) + " KiB"; }

void benchSnapshot() {
  const int width = 1920, height = 1080;
  std::string text;
#if defined(_WIN32)
  // The engine hands over an HBITMAP: a top-down 32-bit DIB section like a captured frame.
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof(info.bmiHeader);
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  HBITMAP bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  if (bitmap == nullptr) {
    std::printf("image snapshot: CreateDIBSection failed\n");
    return;
  }
  fillPicture(static_cast<uint8_t*>(bits), width, height, size_t(width) * 4);
  const orva::image::SnapshotImage image = bitmap;
  const char* label = "snapshot 1920x1080 JPEG (GDI+)";
#else
  std::vector<uint8_t> pixels(size_t(width) * height * 4);
  fillPicture(pixels.data(), width, height, size_t(width) * 4);
  const orva::image::SnapshotImage image{pixels.data(), pixels.size(), width, height, width * 4};
  const char* label = "snapshot 1920x1080 JPEG (TurboJPEG)";
#endif
  const double s =
      orva::bench::medianSeconds([&] { text = orva::image::encodeSnapshot(0, image); }, 2, 11);
  report(label, s, "Base64 text " + kib(text.size()) + ", JPEG ~" + kib(text.size() * 3 / 4) +
                       " (median of 11)");
#if defined(_WIN32)
  DeleteObject(bitmap);
#endif
}

// encodeThumbnail's steps with stb_image_write's own deflate: blue/red exchange, PNG, Base64.
std::string stbDefaultThumbnail(const uint8_t* bgra, int width, int height) {
  std::vector<uint8_t> rgba(size_t(width) * height * 4);
  for (size_t i = 0; i < rgba.size(); i += 4) {
    rgba[i] = bgra[i + 2];
    rgba[i + 1] = bgra[i + 1];
    rgba[i + 2] = bgra[i];
    rgba[i + 3] = bgra[i + 3];
  }
  int length = 0;
  unsigned char* png = stbi_write_png_to_mem(rgba.data(), width * 4, width, height, 4, &length);
  std::string text;
  orva::image::base64Encode(png, size_t(length), &text);
  STBIW_FREE(png);
  return text;
}

// The module's encoder against stb's own deflate, alternating round by round (25 rounds,
// each call once untimed, then timed): medians of the times and of the ratio module / stb.
void benchPng(int width, int height, const char* label) {
  std::vector<uint8_t> pixels(size_t(width) * height * 4);
  fillPicture(pixels.data(), width, height, size_t(width) * 4);
  const auto view = orva::image::BgraImageView::packed(pixels.data(), pixels.size(), width, height);
  std::string stbText;
  orva::image::ThumbnailImage thumb;
  orva::bench::Measurement stb;
  const auto zlib = orva::bench::measureAgainst(
      [&] { stbText = stbDefaultThumbnail(pixels.data(), width, height); },
      {[&] { thumb = orva::image::encodeThumbnail(view); }}, 25, 1, &stb)[0];
  char line[128];
  std::snprintf(line, sizeof line, "%s stb deflate", label);
  report(line, stb.seconds, "Base64 text " + kib(stbText.size()) + " (median of 25)");
  std::snprintf(line, sizeof line, "%s zlib", label);
  char ratio[96];
  std::snprintf(ratio, sizeof ratio, " (median of 25), %.2fx the time of stb deflate", zlib.ratio);
  report(line, zlib.seconds, "Base64 text " + kib(thumb.buffer.size()) + ratio);
}

void benchBase64() {
  std::vector<uint8_t> bytes(size_t{4} << 20);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 2654435761u >> 13);
  std::string a, b;
  const double s[2] = {
      orva::bench::medianSeconds(
          [&] { orva::image::base64Encode(bytes.data(), bytes.size(), &a); }, 2, 21),
      orva::bench::medianSeconds(
          [&] { b = orva::image::snapshotBase64(bytes.data(), bytes.size()); }, 2, 21)};
  const double mb = bytes.size() / 1e6;
  char detail[96];
  std::snprintf(detail, sizeof detail, "%.0f MB/s of input (median of 21)", mb / s[0]);
  report("base64 4 MiB (image/Base64)", s[0], detail);
  std::snprintf(detail, sizeof detail, "%.0f MB/s of input (median of 21)%s", mb / s[1],
                a == b ? "" : "  OUTPUTS DIFFER");
  report("base64 4 MiB (snapshot encoder)", s[1], detail);
}

void runImageBench() {
  benchSnapshot();
  benchPng(320, 180, "png thumbnail 320x180");
  benchPng(64, 64, "png icon 64x64");
  benchBase64();
}

const orva::bench::Registration kRegistration("image", &runImageBench);

}  // namespace
