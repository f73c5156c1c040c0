#include "sim_loop.h"

namespace orva::sim {

TaskLoop::TaskLoop(std::string name) : name_(std::move(name)) {}

TaskLoop::~TaskLoop() {
  {
    std::lock_guard<std::mutex> lock(mu_);
    stopping_ = true;
  }
  cv_.notify_all();
  if (thread_.joinable()) {
    if (thread_.get_id() == std::this_thread::get_id()) thread_.detach();
    else thread_.join();
  }
}

void TaskLoop::postAt(Clock::time_point due, Task task) {
  {
    std::lock_guard<std::mutex> lock(mu_);
    if (stopping_) return;
    queue_.push(Item{due, nextOrder_++, std::move(task)});
    if (!thread_.joinable()) thread_ = std::thread([this] { run(); });
  }
  cv_.notify_one();
}

bool TaskLoop::onLoopThread() const { return threadId_.load() == std::this_thread::get_id(); }

bool TaskLoop::runAndWait(Task task, std::chrono::milliseconds timeout) {
  if (onLoopThread()) {
    task();
    return true;
  }
  struct Done {
    std::mutex mu;
    std::condition_variable cv;
    bool done = false;
  };
  auto done = std::make_shared<Done>();
  post([task = std::move(task), done] {
    // Signal even when the task throws, so the waiter never hangs on a failure.
    struct Signal {
      Done& d;
      ~Signal() {
        std::lock_guard<std::mutex> lock(d.mu);
        d.done = true;
        d.cv.notify_all();
      }
    } signal{*done};
    task();
  });
  std::unique_lock<std::mutex> lock(done->mu);
  return done->cv.wait_for(lock, timeout, [&] { return done->done; });
}

void TaskLoop::barrier() {
  {
    std::lock_guard<std::mutex> lock(mu_);
    if (!thread_.joinable() || stopping_) return;
  }
  runAndWait([] {}, std::chrono::milliseconds(60000));
}

void TaskLoop::shutdown(std::chrono::milliseconds grace) {
  std::unique_lock<std::mutex> lock(mu_);
  stopping_ = true;
  cv_.notify_all();
  if (!thread_.joinable()) return;
  if (thread_.get_id() == std::this_thread::get_id()) {
    thread_.detach();
    return;
  }
  const bool exited = exitedCv_.wait_for(lock, grace, [&] { return exited_; });
  lock.unlock();
  if (exited) thread_.join();
  else thread_.detach();
}

void TaskLoop::run() {
  threadId_.store(std::this_thread::get_id());
  std::unique_lock<std::mutex> lock(mu_);
  while (!stopping_) {
    if (queue_.empty()) {
      cv_.wait(lock);
      continue;
    }
    const auto due = queue_.top().due;
    if (due > Clock::now()) {
      cv_.wait_until(lock, due);
      continue;
    }
    // priority_queue::top is const; the task is moved out before the pop discards it.
    Task task = std::move(const_cast<Item&>(queue_.top()).task);
    queue_.pop();
    lock.unlock();
    try {
      task();
    } catch (...) {
      // A task's failure must not end the engine thread.
    }
    task = nullptr;  // release captures before taking the lock again
    lock.lock();
  }
  exited_ = true;
  exitedCv_.notify_all();
}

}  // namespace orva::sim
