// Frame copy kernels against memcpy of the same bytes, measured in the same run.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "bench.h"
#include "common/FrameCopy.h"

namespace {

using orva::frame::SimdLevel;
using orva::frame::StoreMode;

constexpr int kRounds = 25;
constexpr int kWarmCalls = 2;

struct Case {
  std::string label;
  std::function<void()> call;
};

void benchSize(int width, int height) {
  const size_t rowBytes = size_t(width) * 4;
  const size_t bytes = rowBytes * height;
  // Packed source rows, as the engine delivers RGBA frames; dst stands in for script memory.
  // Both are written once up front so that no page fault lands in a timed call.
  std::vector<uint8_t> src(bytes);
  std::vector<uint8_t> dst(bytes, 0);
  for (size_t i = 0; i < bytes; ++i) src[i] = static_cast<uint8_t>(i * 131 + (i >> 12));
  const int stride = static_cast<int>(rowBytes);
  const bool autoStreams = bytes > orva::frame::kStreamingThresholdBytes;

  auto format4 = [&](SimdLevel level, StoreMode stores) {
    return [&, level, stores] {
      orva::frame::copyFrameToRGBA(dst.data(), src.data(), width, height, stride,
                                   orva::frame::kFormatBgraBottomUp, level, stores);
    };
  };
  std::vector<Case> cases;
  for (SimdLevel level : {SimdLevel::kScalar, SimdLevel::kSsse3, SimdLevel::kAvx2}) {
    if (!orva::frame::simdLevelSupported(level)) continue;
    const std::string name = std::string("format 4 ") + orva::frame::simdLevelName(level);
    if (level == SimdLevel::kScalar) {
      cases.push_back({name, format4(level, StoreMode::kCached)});
      continue;
    }
    // The automatic store mode first, then the other one for comparison.
    cases.push_back({name + (autoStreams ? " streaming (auto)" : " cached (auto)"),
                     format4(level, StoreMode::kAuto)});
    cases.push_back({name + (autoStreams ? " cached" : " streaming"),
                     format4(level, autoStreams ? StoreMode::kCached : StoreMode::kStreaming)});
  }
  cases.push_back({"format 5 (row memcpy)", [&] {
                     orva::frame::copyFrameToRGBA(dst.data(), src.data(), width, height, stride,
                                                  orva::frame::kFormatRgbaBottomUp);
                   }});
  cases.push_back({"other format (memcpy)", [&] {
                     orva::frame::copyFrameToRGBA(dst.data(), src.data(), width, height, stride,
                                                  0);
                   }});

  std::vector<std::function<void()>> calls;
  for (const auto& c : cases) calls.push_back(c.call);
  orva::bench::Measurement base;
  const auto results = orva::bench::measureAgainst(
      [&] { std::memcpy(dst.data(), src.data(), bytes); }, calls, kRounds, kWarmCalls, &base);

  std::printf("frame_copy %dx%d: %.1f MB a frame; medians of %d rounds, each timing memcpy and "
              "then the case after %d untimed calls of each\n",
              width, height, bytes / 1e6, kRounds, kWarmCalls);
  auto line = [&](const std::string& label, const orva::bench::Measurement& m) {
    std::printf("frame_copy %dx%d %-34s %8.3f ms %7.2f GB/s %6.2fx memcpy time\n", width,
                height, label.c_str(), m.seconds * 1e3, bytes / m.seconds / 1e9, m.ratio);
  };
  line("memcpy (baseline)", base);
  for (size_t i = 0; i < cases.size(); ++i) line(cases[i].label, results[i]);
  // Keeps the copies observable.
  volatile uint8_t sink = dst[bytes / 2];
  (void)sink;
}

void runFrameCopyBench() {
  std::printf("frame_copy: detected variant %s; streaming stores above %zu MiB by default\n",
              orva::frame::simdLevelName(orva::frame::bestSimdLevel()),
              orva::frame::kStreamingThresholdBytes >> 20);
  benchSize(1920, 1080);
  benchSize(3840, 2160);
}

const orva::bench::Registration kRegistration("frame_copy", &runFrameCopyBench);

}  // namespace
