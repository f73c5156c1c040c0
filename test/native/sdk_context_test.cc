// The context's building blocks: completion tables, sub-object tables, handler slots and
// the handler installation rule.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "OrvaVantixSDKWrapper/CompletionTable.h"
#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "OrvaVantixSDKWrapper/HandlerSlot.h"
#include "OrvaVantixSDKWrapper/SubObjectTable.h"

namespace orva::sdk {
namespace {

struct Result {
  int32_t errorCode = 0;
  std::string text;
};

Result makeResult(int32_t code) { return Result{code, "r" + std::to_string(code)}; }

TEST(SdkCompletionTable, StoredCompletionRunsOnceAndIsRemoved) {
  CompletionTable<Result> table;
  std::vector<Result> seen;
  table.beginCall().store(7, [&](Result r) { seen.push_back(std::move(r)); });
  EXPECT_EQ(table.size(), 1u);

  table.complete(7, [] { return makeResult(5); });
  table.complete(7, [] { return makeResult(6); });

  ASSERT_EQ(seen.size(), 1u);
  EXPECT_EQ(seen[0].errorCode, 5);
  EXPECT_EQ(seen[0].text, "r5");
  EXPECT_EQ(table.size(), 0u);
}

TEST(SdkCompletionTable, UnknownSequenceNumberIsDroppedWithoutConverting) {
  CompletionTable<Result> table;
  int called = 0;
  table.beginCall().store(1, [&](Result) { ++called; });
  bool converted = false;
  table.complete(2, [&] { converted = true; return makeResult(0); });
  EXPECT_EQ(called, 0);
  EXPECT_FALSE(converted);
  EXPECT_EQ(table.size(), 1u);
}

TEST(SdkCompletionTable, EmptyCallableStoresNothing) {
  CompletionTable<Result> table;
  table.beginCall().store(3, CompletionTable<Result>::Callable());
  EXPECT_EQ(table.size(), 0u);
}

// The engine may answer on its thread before the call that returned the number has stored
// its completion: the answer waits for the store instead of being lost.
TEST(SdkCompletionTable, ResultBeforeStoreReachesTheCompletion) {
  CompletionTable<Result> table;
  auto flight = table.beginCall();
  table.complete(9, [] { return makeResult(42); });  // the answer overtakes the store
  int32_t got = -1;
  flight.store(9, [&](Result r) { got = r.errorCode; });
  EXPECT_EQ(got, 42);
  EXPECT_EQ(table.size(), 0u);
}

// A snapshot's image handle is valid only inside the engine callback, so an early answer
// carrying one must not be kept: the engine thread waits for the store and the completion
// runs there, while the handle is still alive.
TEST(SdkCompletionTable, EarlyAnswerWithBorrowedImageRunsInsideTheCallback) {
  struct Snapshot {
    int32_t errorCode = 0;
    void* image = nullptr;
  };
  static_assert(BorrowsEngineMemory<Snapshot>::value);
  static_assert(!BorrowsEngineMemory<Result>::value);
  CompletionTable<Snapshot> table;
  auto flight = table.beginCall();
  std::atomic<bool> imageAlive{false};
  std::atomic<bool> sawLiveImage{false};
  std::thread engine([&] {
    int pixels = 7;
    imageAlive = true;
    table.complete(4, [&] { return Snapshot{0, &pixels}; });
    imageAlive = false;  // the engine frees the image once the callback returned
  });
  while (!imageAlive) std::this_thread::yield();
  std::this_thread::sleep_for(std::chrono::milliseconds(20));  // the answer is waiting now
  flight.store(4, [&](Snapshot s) { sawLiveImage = imageAlive && *static_cast<int*>(s.image) == 7; });
  engine.join();
  EXPECT_TRUE(sawLiveImage);
  EXPECT_EQ(table.size(), 0u);
}

TEST(SdkCompletionTable, EarlyResultsAreForgottenWhenNoCallIsInFlight) {
  CompletionTable<Result> table;
  {
    auto flight = table.beginCall();
    table.complete(11, [] { return makeResult(1); });  // belongs to no call
  }  // the flight ends without a store (refused call)
  int called = 0;
  table.beginCall().store(11, [&](Result) { ++called; });
  EXPECT_EQ(called, 0);
  EXPECT_EQ(table.size(), 1u);
}

TEST(SdkCompletionTable, ConcurrentAnswersForOneNumberCallItOnce) {
  CompletionTable<Result> table;
  std::atomic<int> calls{0};
  table.beginCall().store(4, [&](Result) { calls.fetch_add(1); });
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) threads.emplace_back([&table] { table.complete(4, [] { return makeResult(0); }); });
  for (auto& t : threads) t.join();
  EXPECT_EQ(calls.load(), 1);
}

// No lock is held while a completion runs, so it may start the next call itself.
TEST(SdkCompletionTable, CompletionMayStoreTheNextOne) {
  CompletionTable<Result> table;
  int chain = 0;
  table.beginCall().store(1, [&](Result) {
    ++chain;
    table.beginCall().store(2, [&](Result) { ++chain; });
  });
  table.complete(1, [] { return makeResult(0); });
  table.complete(2, [] { return makeResult(0); });
  EXPECT_EQ(chain, 2);
}

TEST(SdkCompletionTable, ClearDropsEveryCompletionUncalled) {
  CompletionTable<Result> table;
  int called = 0;
  table.beginCall().store(1, [&](Result) { ++called; });
  table.beginCall().store(2, [&](Result) { ++called; });
  table.clear();
  table.complete(1, [] { return makeResult(0); });
  EXPECT_EQ(called, 0);
  EXPECT_EQ(table.size(), 0u);
}

TEST(SdkSubObjectTable, AddFindRemove) {
  SubObjectTable<std::string> table;
  table.add(0, std::make_shared<std::string>("zero"));
  table.add(3, std::make_shared<std::string>("three"));
  ASSERT_TRUE(table.find(3));
  EXPECT_EQ(*table.find(3), "three");
  EXPECT_FALSE(table.find(1));

  auto held = table.find(0);
  auto removed = table.remove(0);
  EXPECT_EQ(removed, held);
  EXPECT_FALSE(table.find(0));
  EXPECT_EQ(*held, "zero");  // a found object outlives its removal
  EXPECT_FALSE(table.remove(0));

  table.clear();
  EXPECT_EQ(table.size(), 0u);
}

struct Probe {
  explicit Probe(std::atomic<int>* destroyed) : destroyed(destroyed) {}
  ~Probe() { destroyed->fetch_add(1); }
  std::atomic<int>* destroyed;
};

TEST(SdkHandlerSlot, ReplacingReleasesThePreviousOnceNoCopyIsLeft) {
  std::atomic<int> destroyed{0};
  HandlerSlot<Probe> slot;
  slot.set(std::make_shared<Probe>(&destroyed));
  auto inFlight = slot.get();  // an event being delivered
  slot.set(nullptr);
  EXPECT_FALSE(slot.get());
  EXPECT_EQ(destroyed.load(), 0);
  inFlight.reset();
  EXPECT_EQ(destroyed.load(), 1);

  slot.set(std::make_shared<Probe>(&destroyed));
  slot.releaseWithoutLock();
  EXPECT_FALSE(slot.get());
  EXPECT_EQ(destroyed.load(), 2);
}

// Readers copy under the lock while writers replace and release without it; run under
// TSan this is the slot's whole contract.
TEST(SdkHandlerSlot, ConcurrentReadersAndWriters) {
  std::atomic<int> destroyed{0};
  HandlerSlot<Probe> slot;
  std::atomic<bool> stop{false};
  std::vector<std::thread> readers;
  for (int i = 0; i < 3; ++i) {
    readers.emplace_back([&] {
      while (!stop.load()) {
        if (auto p = slot.get()) {
          EXPECT_EQ(p->destroyed, &destroyed);
        }
      }
    });
  }
  for (int i = 0; i < 2000; ++i) {
    slot.set(std::make_shared<Probe>(&destroyed));
    if (i % 2 == 0) slot.releaseWithoutLock();
  }
  stop.store(true);
  for (auto& t : readers) t.join();
  slot.set(nullptr);
  EXPECT_EQ(destroyed.load(), 2000);
}

}  // namespace
}  // namespace orva::sdk
