#include "bridge/DebugLog.h"

#include <cstdarg>
#include <cstdio>

#include "OrvaVantixSDKWrapper/OrvaVantixSDKWrapper.h"
#include "bridge/OrvaVantixAddonDataCenter.h"

namespace orva {
namespace {

constexpr std::size_t kLogBufferSize = 4096;

}  // namespace

void logToConsole(const char* format, ...) {
  if (!OrvaVantixAddonDataCenter::instance().debugAssistantEnabled.load(std::memory_order_relaxed)) {
    return;
  }
  char buffer[kLogBufferSize] = {};
  va_list args;
  va_start(args, format);
  std::vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  std::printf("%s\n", buffer);
  std::fflush(stdout);
}

void logToEngine(const char* format, ...) {
  char buffer[kLogBufferSize] = {};
  va_list args;
  va_start(args, format);
  std::vsnprintf(buffer, sizeof buffer, format, args);
  va_end(args);
  sdk::customLog(buffer, "Electron");
}

void writeLine(const char* text) {
  std::fputs(text, stdout);
  std::fflush(stdout);
}

}  // namespace orva
