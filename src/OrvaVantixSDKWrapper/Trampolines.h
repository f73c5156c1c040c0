// Registration of the callback trampolines and the hand-written ones. Internal to the layer.
#pragma once

#include <exception>
#include <string_view>

#include "engine_api_table.h"

namespace orva::sdk::detail {

// Registers every trampoline, in registration order; the first three and the voice changer
// ones with a null context, the others with `context`.
void registerCallbacks(const EngineApiTable& api, void* context);
// Clears the registrations destruction clears (NULL callback, NULL context).
void clearCallbacks(const EngineApiTable& api);

// The trampoline registered for `callback` (a registration name), or null. Lets tests call a
// trampoline exactly as the engine would.
const void* trampolineOf(std::string_view callback);

void ORVA_CALL onRecvWindowsMessage(uint32_t message, uintptr_t param, void* userContext);
void ORVA_CALL onEngineUninit(void* userContext);
void ORVA_CALL onCopyAudioMixingData(orva_audio_mixing_data* data, void* userContext);

void reportTrampolineException(const char* callback, const char* what) noexcept;

// Runs a trampoline body; no exception crosses the engine boundary.
template <class Body>
void guard(const char* callback, Body&& body) noexcept {
  try {
    body();
  } catch (const std::exception& e) {
    reportTrampolineException(callback, e.what());
  } catch (...) {
    reportTrampolineException(callback, "unknown exception");
  }
}

}  // namespace orva::sdk::detail
