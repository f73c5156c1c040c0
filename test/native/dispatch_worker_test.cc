// The dispatch worker on its own: order, exactly-once, stop, and the move-only jobs it
// carries. Run under TSan, the multi-producer cases check the queue's locking.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "bridge/DispatchWorker.h"

namespace orva {
namespace {

using namespace std::chrono_literals;

// Waits (bounded) until `count` reaches `target`.
bool waitFor(const std::atomic<int>& count, int target, std::chrono::milliseconds limit = 10s) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (count.load() < target) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(1ms);
  }
  return true;
}

// Counts how many copies of itself are alive, so that a test can tell a job was destroyed.
struct Tracked {
  explicit Tracked(std::shared_ptr<std::atomic<int>> alive) : alive(std::move(alive)) { ++*this->alive; }
  Tracked(Tracked&& other) noexcept : alive(other.alive) { ++*alive; }
  ~Tracked() { --*alive; }
  std::shared_ptr<std::atomic<int>> alive;
};

TEST(DispatchWorker, KeepsEachProducersOrderAndRunsEveryJobOnce) {
  DispatchWorker worker;
  constexpr int kThreads = 4;
  constexpr int kJobsEach = 20000;
  std::array<std::vector<int>, kThreads> seen;
  std::atomic<int> done{0};
  std::vector<std::thread> producers;
  for (int t = 0; t < kThreads; ++t) {
    producers.emplace_back([&, t] {
      for (int i = 0; i < kJobsEach; ++i) {
        worker.post([&, t, i] {
          seen[t].push_back(i);
          ++done;
        });
      }
    });
  }
  for (auto& p : producers) p.join();
  ASSERT_TRUE(waitFor(done, kThreads * kJobsEach));
  for (int t = 0; t < kThreads; ++t) {
    ASSERT_EQ(seen[t].size(), static_cast<size_t>(kJobsEach));
    for (int i = 0; i < kJobsEach; ++i) ASSERT_EQ(seen[t][i], i) << "producer " << t;
  }
}

TEST(DispatchWorker, AThrowingJobDoesNotStopLaterOnes) {
  DispatchWorker worker;
  std::atomic<int> done{0};
  worker.post([] { throw std::runtime_error("job failed"); });
  worker.post([&] { ++done; });
  EXPECT_TRUE(waitFor(done, 1));
}

TEST(DispatchWorker, StopWaitsForTheJobInHandAndDropsLaterWork) {
  DispatchWorker worker;
  std::mutex mutex;
  std::condition_variable cv;
  bool started = false;
  std::atomic<bool> finished{false};
  worker.post([&] {
    {
      std::lock_guard<std::mutex> lock(mutex);
      started = true;
    }
    cv.notify_one();
    std::this_thread::sleep_for(50ms);
    finished = true;
  });
  auto alive = std::make_shared<std::atomic<int>>(0);
  std::atomic<bool> queuedRan{false};
  worker.post([&queuedRan, t = Tracked(alive)] { queuedRan = true; });
  {
    std::unique_lock<std::mutex> lock(mutex);
    cv.wait(lock, [&] { return started; });
  }
  EXPECT_TRUE(worker.stop(5s));
  EXPECT_TRUE(finished.load()) << "stop returned while the job in hand still ran";
  // Posted after stop: destroyed without running.
  worker.post([&queuedRan, t = Tracked(alive)] { queuedRan = true; });
  std::this_thread::sleep_for(20ms);
  EXPECT_FALSE(queuedRan.load());
}

TEST(DispatchWorker, OutlivingTheObjectIsSafe) {
  auto alive = std::make_shared<std::atomic<int>>(0);
  std::atomic<int> entered{0};
  std::atomic<bool> release{false};
  {
    DispatchWorker worker;
    worker.post([&] {
      ++entered;
      while (!release.load()) std::this_thread::sleep_for(1ms);
    });
    for (int i = 0; i < 100; ++i) worker.post([t = Tracked(alive)] {});
    ASSERT_TRUE(waitFor(entered, 1));
  }  // the thread still runs the first job; the queue state lives on with it
  release = true;
  const auto deadline = std::chrono::steady_clock::now() + 5s;
  while (alive->load() != 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(1ms);
  }
  EXPECT_EQ(alive->load(), 0) << "queued jobs were not destroyed after the worker ended";
}

TEST(Job, CarriesMoveOnlyCapturesInlineAndOnTheHeap) {
  auto alive = std::make_shared<std::atomic<int>>(0);
  int calls = 0;
  {
    auto owned = std::make_unique<int>(7);
    Job small([&calls, p = std::move(owned), t = Tracked(alive)] { calls += *p; });
    std::array<char, 256> bulk{};
    bulk[255] = 1;
    Job large([&calls, bulk, t = Tracked(alive)] { calls += bulk[255]; });
    EXPECT_EQ(alive->load(), 2);

    Job moved(std::move(small));
    EXPECT_FALSE(static_cast<bool>(small));
    moved();
    Job assigned;
    assigned = std::move(large);
    assigned();
    EXPECT_EQ(calls, 8);
    EXPECT_EQ(alive->load(), 2);
  }
  EXPECT_EQ(alive->load(), 0);
}

}  // namespace
}  // namespace orva
