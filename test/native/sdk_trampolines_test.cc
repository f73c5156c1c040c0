// The hand-written trampolines, called as the engine would call them: the window message
// task and the engine-uninit report.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>

#include "OrvaVantixSDKWrapper/Engine.h"
#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "OrvaVantixSDKWrapper/Trampolines.h"

namespace orva::sdk {
namespace {

// Counts its own destruction, so a test sees when a task's captures are freed.
struct Tracker {
  explicit Tracker(std::atomic<int>* destroyed) : destroyed(destroyed) {}
  ~Tracker() { destroyed->fetch_add(1); }
  std::atomic<int>* destroyed;
};

uintptr_t postTask(std::atomic<int>* ran, std::atomic<int>* destroyed) {
  auto tracker = std::make_shared<Tracker>(destroyed);
  auto task = std::make_unique<WindowTask>([ran, tracker] { ran->fetch_add(1); });
  return reinterpret_cast<uintptr_t>(task.release());
}

TEST(SdkWindowMessage, TaskMessageRunsTheTaskAndFreesIt) {
  std::atomic<int> ran{0}, destroyed{0};
  detail::onRecvWindowsMessage(ORVA_TASK_WINDOW_MESSAGE, postTask(&ran, &destroyed), nullptr);
  EXPECT_EQ(ran.load(), 1);
  EXPECT_EQ(destroyed.load(), 1);
}

TEST(SdkWindowMessage, OtherMessagesAreIgnored) {
  std::atomic<int> ran{0}, destroyed{0};
  const uintptr_t param = postTask(&ran, &destroyed);
  for (uint32_t message : {0u, 42853u, 42855u, 0x0400u}) detail::onRecvWindowsMessage(message, param, nullptr);
  EXPECT_EQ(ran.load(), 0);
  EXPECT_EQ(destroyed.load(), 0);
  delete reinterpret_cast<WindowTask*>(param);  // not the trampoline's: the message was not ours
  EXPECT_EQ(destroyed.load(), 1);
}

TEST(SdkWindowMessage, ThrowingOrEmptyTasksStayOnThisSideAndAreFreed) {
  std::atomic<int> destroyed{0};
  auto tracker = std::make_shared<Tracker>(&destroyed);
  auto throwing = std::make_unique<WindowTask>([tracker] { throw std::runtime_error("task failed"); });
  tracker.reset();
  testing::internal::CaptureStderr();
  detail::onRecvWindowsMessage(ORVA_TASK_WINDOW_MESSAGE, reinterpret_cast<uintptr_t>(throwing.release()), nullptr);
  detail::onRecvWindowsMessage(ORVA_TASK_WINDOW_MESSAGE, reinterpret_cast<uintptr_t>(new WindowTask()), nullptr);
  const std::string err = testing::internal::GetCapturedStderr();
  EXPECT_EQ(destroyed.load(), 1);
  EXPECT_NE(err.find("recv_windows_message failed: task failed"), std::string::npos) << err;
}

TEST(SdkUninit, CallableRunsOnceOnTheReportingThreadThenNothing) {
  auto& context = EngineContext::instance();
  std::atomic<int> calls{0};
  std::thread::id ranOn;
  context.setUninitCallback([&] {
    calls.fetch_add(1);
    ranOn = std::this_thread::get_id();
  });
  std::thread engineThread([] { detail::onEngineUninit(nullptr); });
  const auto engineId = engineThread.get_id();
  engineThread.join();
  detail::onEngineUninit(nullptr);  // a second report
  EXPECT_EQ(calls.load(), 1);
  EXPECT_EQ(ranOn, engineId);
  EXPECT_FALSE(context.takeUninitCallback());
}

TEST(SdkUninit, DestroyWithoutEngineDiscardsTheCallable) {
  ASSERT_FALSE(Engine::exists());
  int calls = 0;
  Engine::destroy([&] { ++calls; });
  detail::onEngineUninit(nullptr);
  EXPECT_EQ(calls, 0);
}

}  // namespace
}  // namespace orva::sdk
