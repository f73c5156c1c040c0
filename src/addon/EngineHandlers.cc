#include "addon/EngineHandlers.h"

#include "events/AddonEventHandler.h"
#include "events/OrvaVantixAddonCustomVideoRenderer.h"

namespace orva {

// One event handler per engine; the frame renderer is process-wide, because the engine
// wrapper registers script buffers with it independently of any engine.
EngineHandlers makeEngineHandlers() {
  return EngineHandlers{std::make_shared<AddonEventHandler>(),
                        OrvaVantixAddonCustomVideoRenderer::instance()};
}

// Script may release its frame buffers once the engine is gone, so none may stay registered.
void resetEngineHandlerState() { OrvaVantixAddonCustomVideoRenderer::instance()->reset(); }

}  // namespace orva
