// Raw frames delivered on request (sim.frame and the emitted raw-frame callbacks).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "sim_args.h"

namespace orva::sim {

enum class FrameTarget { Captured, Remote, MediaPlayer };

struct FrameRequest {
  FrameTarget target = FrameTarget::Captured;
  int32_t key = 0;       // channel or media player index
  std::string streamID;  // remote frames
  int32_t width = 0;
  int32_t height = 0;
  int32_t format = 4;
  int32_t stride = 0;  // 0: width * 4
  int32_t flipMode = 0;
  const uint8_t* data = nullptr;  // first plane; null: a generated pattern of stride * height
  uint32_t dataLength = 0;
};

// Callback id that a target's frames go to.
int frameCallbackId(FrameTarget target);

// Copies the plane (or draws the pattern) into the holder; err for impossible sizes.
std::unique_ptr<CallbackArgs> makeFrameArgs(const FrameRequest& request, std::string& err);

}  // namespace orva::sim
