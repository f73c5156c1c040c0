// A thread of the simulated engine: runs posted tasks one at a time, in due-time order and,
// for equal due times, in posting order. Everything the engine calls back is run by one of
// these, so callbacks never arrive on the caller's thread and stay ordered per source.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <queue>
#include <string>
#include <thread>
#include <vector>

namespace orva::sim {

class TaskLoop {
 public:
  using Task = std::function<void()>;
  using Clock = std::chrono::steady_clock;

  explicit TaskLoop(std::string name);
  TaskLoop(const TaskLoop&) = delete;
  TaskLoop& operator=(const TaskLoop&) = delete;
  ~TaskLoop();

  // The thread starts with the first task, so loading the library starts no thread.
  void post(Task task) { postAt(Clock::now(), std::move(task)); }
  void postAfter(std::chrono::milliseconds delay, Task task) { postAt(Clock::now() + delay, std::move(task)); }
  void postAt(Clock::time_point due, Task task);

  bool onLoopThread() const;

  // Runs `task` on the loop thread and waits until it has returned (runs it inline when
  // already on the loop thread). False when it did not finish within `timeout`; the task
  // then still runs later, so it must own what it uses.
  bool runAndWait(Task task, std::chrono::milliseconds timeout);

  // Waits until every task due now has run.
  void barrier();

  // At process exit: runs no further task and gives the running one `grace` to return.
  // A thread still busy after that (stuck in a caller's callback) is left behind.
  void shutdown(std::chrono::milliseconds grace);

 private:
  struct Item {
    Clock::time_point due;
    uint64_t order;
    Task task;
  };
  struct Later {
    bool operator()(const Item& a, const Item& b) const {
      return a.due != b.due ? a.due > b.due : a.order > b.order;
    }
  };

  void run();

  const std::string name_;
  mutable std::mutex mu_;
  std::condition_variable cv_;
  std::priority_queue<Item, std::vector<Item>, Later> queue_;
  uint64_t nextOrder_ = 0;
  bool stopping_ = false;
  bool exited_ = false;
  std::condition_variable exitedCv_;
  std::thread thread_;
  std::atomic<std::thread::id> threadId_{};
};

}  // namespace orva::sim
