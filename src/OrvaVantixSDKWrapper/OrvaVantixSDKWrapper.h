// The layer over the engine's C interface. This is the only code that includes the engine
// header; everything above it speaks the C++ types declared here. No Node-API in this layer.
//
// Threads: the call side runs on the script thread (any thread is safe: engine calls are
// serialised by one recursive SDK lock). Trampolines run on engine threads and call out only
// after releasing every lock they took.
//
// The layer's other public headers:
//   Engine.h              engine creation/destruction, Engine::instance(), the call side
//   EngineContext.h       handler installation, sub-object and completion tables
//   SubObjects.h          MediaPlayer, AudioEffectPlayer, ScreenCaptureSource, CopyrightedMusic
//   IEngineEventHandler.h / IVideoFrameHandler.h   the handler interfaces and event records
//   engine_records.h      (generated) owned records of the engine's structures
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orva::sdk {

class IEngineEventHandler;       // IEngineEventHandler.h
class IVideoFrameHandler;        // IVideoFrameHandler.h

// Configuration handed to orva_vantix_set_engine_config.
struct EngineConfig {
  std::string logPath;           // copied into the 512-byte field, truncated
  uint64_t logSize = 0;
  // Items in insertion order; written as "k=v;k=v".
  std::vector<std::pair<std::string, std::string>> advanced;
};

struct EngineProfile {
  uint32_t appID = 0;
  std::string appSign;
  int32_t scenario = 0;
};

// Engine library loading. The library is loaded from the addon binary's own directory on
// the first call that needs it; until then it is not available.
bool engineLibraryAvailable();
// The engine's version text, or "unknow" while the library is not available.
std::string engineVersionText();

// Library-level calls that need no engine instance. Each loads the library on first need;
// with no library they do nothing and return -1 (false for queries).
int32_t setEngineConfig(const EngineConfig& config);
int32_t setLogConfig(const std::string& logPath, uint64_t logSize, uint32_t logCount);
int32_t setRoomMode(int32_t mode);
bool isFeatureSupported(int32_t featureType);
int32_t setGeoFence(int32_t type, const std::vector<int32_t>& areaList);
void customLog(const std::string& text, const std::string& module);

}  // namespace orva::sdk
