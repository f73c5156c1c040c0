// The encoder presets that script may pass as a number in place of a configuration object:
// setVideoConfig({config: <video preset>, channel}) and setAudioConfig({config: <audio
// preset>, channel}). The engine has no presets of its own; these are the common rungs of a
// real-time video ladder (16:9, capture size = encode size, 15 fps) and the usual voice and
// music qualities. Bitrates are in kbps; codec 0 is the engine's default codec.
//
//   video preset   size         fps  bitrate      audio preset               bitrate  channels
//   0  180p        320 x 180    15    300         0  basic quality             16     mono
//   1  270p        480 x 270    15    400         1  standard quality          48     mono
//   2  360p        640 x 360    15    600         2  standard quality stereo   56     stereo
//   3  540p        960 x 540    15   1200         3  high quality             128     mono
//   4  720p       1280 x 720    15   1500         4  high quality stereo      192     stereo
//   5  1080p      1920 x 1080   15   3000
//
// A number that names no preset (out of range; fractions are cut to integers first) gives
// the default one, 360p and standard quality, as a default-constructed configuration would.
#pragma once

#include <cstdint>

#include "engine_records.h"

namespace orva::wrapper {

enum VideoConfigPreset : int32_t {
  kVideoPreset180P = 0,
  kVideoPreset270P = 1,
  kVideoPreset360P = 2,
  kVideoPreset540P = 3,
  kVideoPreset720P = 4,
  kVideoPreset1080P = 5,
};

enum AudioConfigPreset : int32_t {
  kAudioPresetBasicQuality = 0,
  kAudioPresetStandardQuality = 1,
  kAudioPresetStandardQualityStereo = 2,
  kAudioPresetHighQuality = 3,
  kAudioPresetHighQualityStereo = 4,
};

// The engine's audio channel count values.
inline constexpr int32_t kAudioChannelMono = 1;
inline constexpr int32_t kAudioChannelStereo = 2;

inline sdk::VideoConfig videoConfigPreset(int32_t preset) {
  struct Rung {
    int32_t width, height, fps, bitrate;
  };
  constexpr Rung kRungs[] = {
      {320, 180, 15, 300}, {480, 270, 15, 400},   {640, 360, 15, 600},
      {960, 540, 15, 1200}, {1280, 720, 15, 1500}, {1920, 1080, 15, 3000},
  };
  constexpr int32_t kCount = static_cast<int32_t>(sizeof kRungs / sizeof kRungs[0]);
  const Rung& r = kRungs[preset >= 0 && preset < kCount ? preset : kVideoPreset360P];
  sdk::VideoConfig config;
  config.captureWidth = config.encodeWidth = r.width;
  config.captureHeight = config.encodeHeight = r.height;
  config.fps = r.fps;
  config.bitrate = r.bitrate;
  config.codecID = 0;
  return config;
}

inline sdk::AudioConfig audioConfigPreset(int32_t preset) {
  struct Quality {
    int32_t bitrate, channel;
  };
  constexpr Quality kQualities[] = {
      {16, kAudioChannelMono},   {48, kAudioChannelMono},    {56, kAudioChannelStereo},
      {128, kAudioChannelMono}, {192, kAudioChannelStereo},
  };
  constexpr int32_t kCount = static_cast<int32_t>(sizeof kQualities / sizeof kQualities[0]);
  const Quality& q = kQualities[preset >= 0 && preset < kCount ? preset : kAudioPresetStandardQuality];
  sdk::AudioConfig config;
  config.bitrate = q.bitrate;
  config.channel = q.channel;
  config.codecID = 0;
  return config;
}

}  // namespace orva::wrapper
