// Library-level calls: configuration that needs no engine instance. Each loads the engine
// library on first need; with no library they do nothing and return -1 (false for queries).
#include <string>

#include "OrvaVantixSDKWrapper/ConvertSupport.h"
#include "OrvaVantixSDKWrapper/EngineLibrary.h"
#include "OrvaVantixSDKWrapper/OrvaVantixSDKWrapper.h"
#include "engine_api_table.h"

namespace orva::sdk {

namespace {

// "k=v;k=v", no separator after the last item.
std::string advancedText(const std::vector<std::pair<std::string, std::string>>& items) {
  std::string text;
  for (const auto& [key, value] : items) {
    if (!text.empty()) text += ';';
    text += key;
    text += '=';
    text += value;
  }
  return text;
}

}  // namespace

int32_t setEngineConfig(const EngineConfig& config) {
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return -1;
  const std::string advanced = advancedText(config.advanced);
  orva_engine_config c{};
  detail::copyFixed(c.logConfig.logPath, sizeof c.logConfig.logPath, config.logPath);
  c.logConfig.logSize = config.logSize;
  c.advancedConfig = advanced.c_str();
  std::lock_guard<std::recursive_mutex> lock(sdkMutex());
  return api->orva_vantix_set_engine_config(&c);
}

int32_t setLogConfig(const std::string& logPath, uint64_t logSize, uint32_t logCount) {
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return -1;
  orva_log_config c{};
  detail::copyFixed(c.logPath, sizeof c.logPath, logPath);
  c.logSize = logSize;
  c.logCount = logCount;
  std::lock_guard<std::recursive_mutex> lock(sdkMutex());
  return api->orva_vantix_set_log_config(&c);
}

int32_t setRoomMode(int32_t mode) {
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return -1;
  std::lock_guard<std::recursive_mutex> lock(sdkMutex());
  return api->orva_vantix_set_room_mode(mode);
}

bool isFeatureSupported(int32_t featureType) {
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return false;
  std::lock_guard<std::recursive_mutex> lock(sdkMutex());
  return api->orva_vantix_is_feature_supported(featureType);
}

int32_t setGeoFence(int32_t type, const std::vector<int32_t>& areaList) {
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return -1;
  std::lock_guard<std::recursive_mutex> lock(sdkMutex());
  return api->orva_vantix_set_geo_fence(type, areaList.empty() ? nullptr : areaList.data(),
                                        static_cast<uint32_t>(areaList.size()));
}

void customLog(const std::string& text, const std::string& module) {
  const EngineApiTable* api = ensureEngineApi();
  if (api == nullptr) return;
  std::lock_guard<std::recursive_mutex> lock(sdkMutex());
  api->orva_vantix_custom_log(text.c_str(), module.c_str());
}

}  // namespace orva::sdk
