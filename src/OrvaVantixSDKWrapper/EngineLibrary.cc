#include "OrvaVantixSDKWrapper/EngineLibrary.h"

#include <atomic>
#include <cstdio>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "OrvaVantixSDKWrapper/NoDestroy.h"
#include "OrvaVantixSDKWrapper/OrvaVantixSDKWrapper.h"
#include "engine_api_table.h"

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
#else
#include <dlfcn.h>
#include <limits.h>
#include <stdlib.h>
#endif

namespace orva::sdk {

struct EngineLibrary::Table : EngineApiTable {};

namespace {

constexpr const char* kPrefix = "OrvaVantixNodeNative: ";

void reportOneLine(const std::string& line) {
  std::fprintf(stderr, "%s%s\n", kPrefix, line.c_str());
  std::fflush(stderr);
}

#if defined(_WIN32)
std::wstring widen(const std::string& s) {
  if (s.empty()) return std::wstring();
  int n = MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), nullptr, 0);
  std::wstring out(static_cast<std::size_t>(n), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), out.data(), n);
  return out;
}

std::string narrow(const std::wstring& s) {
  if (s.empty()) return std::string();
  int n = WideCharToMultiByte(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), nullptr, 0, nullptr, nullptr);
  std::string out(static_cast<std::size_t>(n), '\0');
  WideCharToMultiByte(CP_UTF8, 0, s.data(), static_cast<int>(s.size()), out.data(), n, nullptr, nullptr);
  return out;
}

std::string lastErrorText() {
  const DWORD code = GetLastError();
  char* text = nullptr;
  const DWORD n = FormatMessageA(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
      0, reinterpret_cast<char*>(&text), 0, nullptr);
  std::string out = n != 0 && text != nullptr ? std::string(text, n) : "error " + std::to_string(code);
  if (text != nullptr) LocalFree(text);
  while (!out.empty() && (out.back() == '\n' || out.back() == '\r' || out.back() == ' ')) out.pop_back();
  return out;
}
#endif

struct Location {
  std::mutex mutex;
  std::string directory;  // empty: the binary's own directory
  std::string fileName;   // empty: engineLibraryFileName()
};

Location& location() {
  static NoDestroy<Location> instance;
  return *instance;
}

struct ProcessLibrary {
  std::once_flag once;
  std::atomic<const EngineApiTable*> api{nullptr};
  std::unique_ptr<EngineLibrary> library;  // never released: the engine may call back until exit
};

ProcessLibrary& processLibrary() {
  static NoDestroy<ProcessLibrary> instance;
  return *instance;
}

}  // namespace

EngineLibrary::EngineLibrary(std::string path) : path_(std::move(path)) {}

EngineLibrary::~EngineLibrary() {
  table_.reset();
#if defined(_WIN32)
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
#else
  if (handle_ != nullptr) dlclose(handle_);
#endif
}

const EngineApiTable* EngineLibrary::api() const { return table_.get(); }

bool EngineLibrary::load() {
  if (table_ != nullptr) return true;
#if defined(_WIN32)
  HMODULE module = LoadLibraryExW(widen(path_).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
  if (module == nullptr) {
    error_ = "cannot load engine library " + path_ + ": " + lastErrorText();
    reportOneLine(error_);
    return false;
  }
  auto lookup = [module](const char* name) { return reinterpret_cast<void*>(GetProcAddress(module, name)); };
#else
  void* module = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) {
    const char* why = dlerror();
    error_ = "cannot load engine library " + path_ + ": " + (why != nullptr ? why : "unknown error");
    reportOneLine(error_);
    return false;
  }
  auto lookup = [module](const char* name) { return dlsym(module, name); };
#endif
  auto table = std::make_unique<Table>();
  resolveEngineApi(*table, lookup);
  std::vector<const char*> missing;
  forEachEngineApiEntry(*table, [&missing](const char* name, bool resolved) {
    if (!resolved) missing.push_back(name);
  });
  if (!missing.empty()) {
    error_ = std::string("entry point ") + missing.front() + " missing in " + path_;
    if (missing.size() > 1) error_ += " (and " + std::to_string(missing.size() - 1) + " more)";
    reportOneLine(error_);
#if defined(_WIN32)
    FreeLibrary(module);
#else
    dlclose(module);
#endif
    return false;
  }
  handle_ = module;
  table_ = std::move(table);
  return true;
}

std::string engineLibraryDirectory() {
  std::string file;
#if defined(_WIN32)
  HMODULE self = nullptr;
  if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<LPCWSTR>(&engineLibraryDirectory), &self)) {
    std::wstring buffer(32768, L'\0');
    DWORD n = GetModuleFileNameW(self, buffer.data(), static_cast<DWORD>(buffer.size()));
    buffer.resize(n);
    file = narrow(buffer);
  }
  const auto slash = file.find_last_of("\\/");
#else
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&engineLibraryDirectory), &info) != 0 && info.dli_fname != nullptr) {
    file = info.dli_fname;
  }
  // The main executable may be named as it was started (a relative path); resolve it now.
  char resolved[PATH_MAX];
  if (!file.empty() && realpath(file.c_str(), resolved) != nullptr) {
    file = resolved;
  } else if (realpath("/proc/self/exe", resolved) != nullptr) {
    file = resolved;
  }
  const auto slash = file.find_last_of('/');
#endif
  return slash == std::string::npos ? std::string() : file.substr(0, slash + 1);
}

const char* engineLibraryFileName() {
#if defined(_WIN32)
  return "OrvaVantixEngine.dll";
#else
  return "libOrvaVantixEngine.so";
#endif
}

const EngineApiTable* ensureEngineApi() {
  auto& process = processLibrary();
  std::call_once(process.once, [&process] {
    std::string path;
    {
      auto& where = location();
      std::lock_guard<std::mutex> lock(where.mutex);
      path = (where.directory.empty() ? engineLibraryDirectory() : where.directory) +
             (where.fileName.empty() ? std::string(engineLibraryFileName()) : where.fileName);
    }
    process.library = std::make_unique<EngineLibrary>(std::move(path));
    if (process.library->load()) process.api.store(process.library->api(), std::memory_order_release);
  });
  return process.api.load(std::memory_order_acquire);
}

const EngineApiTable* loadedEngineApi() { return processLibrary().api.load(std::memory_order_acquire); }

void setEngineLibraryLocationForTesting(std::string directory, std::string fileName) {
  if (!directory.empty() && directory.back() != '/' && directory.back() != '\\') directory += '/';
  auto& where = location();
  std::lock_guard<std::mutex> lock(where.mutex);
  where.directory = std::move(directory);
  where.fileName = std::move(fileName);
}

std::recursive_mutex& sdkMutex() {
  static NoDestroy<std::recursive_mutex> mutex;
  return *mutex;
}

bool engineLibraryAvailable() { return loadedEngineApi() != nullptr; }

std::string engineVersionText() {
  const EngineApiTable* api = loadedEngineApi();
  if (api == nullptr) return "unknow";
  char version[ORVA_MAX_VERSION_LEN] = {};
  {
    std::lock_guard<std::recursive_mutex> lock(sdkMutex());
    api->orva_vantix_get_version(version, static_cast<uint32_t>(sizeof version));
  }
  version[sizeof version - 1] = '\0';
  return version;
}

}  // namespace orva::sdk
