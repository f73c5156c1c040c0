// The engine event interface: one virtual operation per engine event of the main handler,
// named as the module's handler methods are named (onRoomStateUpdate, onPlayerRecvSEI, ...),
// each taking the event's owned record by value so that an implementation can move it into
// its closure. Declared, with the event records, in the generated engine_events.h.
//
// Operations run on engine threads, concurrently, after every lock of the layer has been
// released. Install an implementation with EngineContext::setEventHandler (EngineContext.h)
// or through Engine::create (Engine.h).
#pragma once

#include "engine_events.h"
