// The handler objects the addon installs into the SDK layer for each engine it creates:
// the seam between engine lifecycle and the event side (src/events/).
#pragma once

#include <memory>

#include "engine_events.h"

namespace orva {

struct EngineHandlers {
  // Engine events -> script events (AddonEventHandler).
  std::shared_ptr<sdk::IEngineEventHandler> events;
  // Raw video frames -> registered script buffers (OrvaVantixAddonCustomVideoRenderer).
  std::shared_ptr<sdk::IVideoFrameHandler> videoFrames;
};

// Handlers for a new engine. Called on the script thread by CreateEngine.
EngineHandlers makeEngineHandlers();

// Engine teardown: clears what the event handler keeps between engines.
void resetEngineHandlerState();

}  // namespace orva
