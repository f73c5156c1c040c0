// Run-time loading of the engine library and the SDK lock. Internal to the layer.
//
// The addon never links the engine: the library is loaded from the directory of the binary
// that contains this code (the addon, or a test executable), on the first call that needs
// it, once per process, and every entry point of the header is resolved into one table. A
// missing library or entry point is reported in one line on standard error and the process
// carries on as with no engine: calls then return their neutral values.
#pragma once

#include <memory>
#include <mutex>
#include <string>

namespace orva::sdk {

struct EngineApiTable;  // engine_api_table.h (generated)

// One engine library file and its resolved entry points.
class EngineLibrary {
 public:
  explicit EngineLibrary(std::string path);
  ~EngineLibrary();
  EngineLibrary(const EngineLibrary&) = delete;
  EngineLibrary& operator=(const EngineLibrary&) = delete;

  // Opens the file and resolves every entry point. On failure writes one line to standard
  // error, keeps the reason in error() and leaves the library closed. Not thread-safe.
  bool load();
  // The resolved table, or null until load() succeeded.
  const EngineApiTable* api() const;
  const std::string& path() const { return path_; }
  const std::string& error() const { return error_; }

 private:
  std::string path_;
  std::string error_;
  void* handle_ = nullptr;
  struct Table;
  std::unique_ptr<Table> table_;  // EngineApiTable is incomplete here
};

// The directory (with a trailing separator) of the binary that contains this code.
std::string engineLibraryDirectory();
// "libOrvaVantixEngine.so", or "OrvaVantixEngine.dll" on Windows.
const char* engineLibraryFileName();

// The process-wide table: loads the library on first need (thread-safe, once); null when it
// cannot be loaded.
const EngineApiTable* ensureEngineApi();
// The process-wide table if this layer has loaded the library; never loads. Null before.
const EngineApiTable* loadedEngineApi();

// Test hook: where the process-wide loader looks. Effective only before the first load.
void setEngineLibraryLocationForTesting(std::string directory, std::string fileName);

// Serialises every engine call. Recursive, because a call may be made while the calling
// thread already holds it (creation runs several engine calls in a row). Never taken by a
// trampoline.
std::recursive_mutex& sdkMutex();

}  // namespace orva::sdk
