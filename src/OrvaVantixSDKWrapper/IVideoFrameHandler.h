// The custom video render handler: raw frames of the publish channels
// (onCapturedVideoFrameRawData) and of played streams (onRemoteVideoFrameRawData). Plane
// pointers and lengths are the engine's own, valid only during the call: the handler copies
// what it keeps. Declared in the generated engine_events.h; installed in
// EngineContext::videoFrameHandler.
#pragma once

#include "engine_events.h"
