// Loading the engine library: the one-line messages for a missing library or entry point,
// the version before and after loading, and the complete entry-point table.
//
// The process-wide loader loads once per process, so the tests that need it untouched run
// in a fresh child process (threadsafe death tests re-execute this binary).
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "OrvaVantixSDKWrapper/EngineLibrary.h"
#include "OrvaVantixSDKWrapper/OrvaVantixSDKWrapper.h"
#include "engine_api_table.h"

namespace orva::sdk {
namespace {

class SdkLoader : public ::testing::Test {
 protected:
  void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

std::string enginePath() { return engineLibraryDirectory() + engineLibraryFileName(); }

TEST_F(SdkLoader, MissingLibraryIsOneLineNamingThePath) {
  EngineLibrary library("/nonexistent/dir/libOrvaVantixEngine.so");
  testing::internal::CaptureStderr();
  EXPECT_FALSE(library.load());
  const std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(err.rfind("OrvaVantixNodeNative: cannot load engine library /nonexistent/dir/libOrvaVantixEngine.so: ", 0), 0u)
      << err;
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
  EXPECT_EQ(library.api(), nullptr);
}

// A library without our entry points (the C library) names the first missing one.
TEST_F(SdkLoader, MissingEntryPointIsOneLineNamingItAndThePath) {
  Dl_info info{};
  ASSERT_NE(dladdr(reinterpret_cast<void*>(&std::strlen), &info), 0);
  const std::string libc = info.dli_fname;
  EngineLibrary library(libc);
  testing::internal::CaptureStderr();
  EXPECT_FALSE(library.load());
  const std::string err = testing::internal::GetCapturedStderr();
  const std::string expected = std::string("OrvaVantixNodeNative: entry point ") + kEngineApiNames[0] + " missing in " + libc;
  EXPECT_EQ(err.rfind(expected, 0), 0u) << err;
  EXPECT_NE(err.find(" more)"), std::string::npos) << err;
  EXPECT_EQ(std::count(err.begin(), err.end(), '\n'), 1) << err;
}

// The process-wide loader, pointed elsewhere: the addon carries on as with no engine.
TEST_F(SdkLoader, ProcessCarriesOnWithoutTheLibrary) {
  EXPECT_EXIT(
      {
        setEngineLibraryLocationForTesting("/nonexistent/dir", "libNoEngine.so");
        const bool fine = ensureEngineApi() == nullptr && !engineLibraryAvailable() &&
                          engineVersionText() == "unknow" && setRoomMode(1) == -1 && !isFeatureSupported(1) &&
                          setEngineConfig(EngineConfig{}) == -1;
        customLog("ignored", "Electron");
        std::exit(fine ? 0 : 1);
      },
      ::testing::ExitedWithCode(0),
      "^OrvaVantixNodeNative: cannot load engine library /nonexistent/dir/libNoEngine.so: [^\n]*\n$");
}

TEST_F(SdkLoader, VersionIsUnknowUntilLoadedAndQueryingDoesNotLoad) {
  const std::string path = enginePath();
  EXPECT_EXIT(
      {
        // Something else mapping the library does not make it available to the layer.
        void* other = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        bool fine = other != nullptr && engineVersionText() == "unknow" && !engineLibraryAvailable() &&
                    engineVersionText() == "unknow";
        fine = fine && ensureEngineApi() != nullptr && engineLibraryAvailable();
        const std::string version = engineVersionText();
        fine = fine && !version.empty() && version != "unknow";
        std::exit(fine ? 0 : 1);
      },
      ::testing::ExitedWithCode(0), "");
}

TEST_F(SdkLoader, EveryEntryPointResolvesInTheEngineBesideTheBinary) {
  EngineLibrary library(enginePath());
  ASSERT_TRUE(library.load()) << library.error();
  std::size_t resolved = 0;
  forEachEngineApiEntry(*library.api(), [&resolved](const char* name, bool ok) {
    EXPECT_TRUE(ok) << name;
    resolved += ok ? 1 : 0;
  });
  EXPECT_EQ(resolved, kEngineApiEntryCount);
  EXPECT_EQ(kEngineApiEntryCount, 227u + 197u);
}

}  // namespace
}  // namespace orva::sdk
