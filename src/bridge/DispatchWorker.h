// The event bridge's dispatch worker: one detached thread that runs posted work in arrival
// order. Node-free (the native tests drive it directly); the data center gives it the
// jobs that hand events to thread-safe functions.
//
// Threads and lifetimes:
//   - any thread posts; posting holds the queue mutex only for the push, so an engine
//     thread never waits for script or for a job in progress;
//   - the worker swaps the whole queue out under the mutex and runs the jobs with no lock
//     held, in order;
//   - the thread is detached: nothing joins it. It shares the queue state with the
//     DispatchWorker object (shared ownership), so destroying the object while the thread
//     still runs only sets the stop flag; the state dies with whichever lets go last.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <type_traits>
#include <utility>

namespace orva {

// A move-only `void()` callable. Unlike std::function it takes callables that own
// move-only data (an event task behind a unique_ptr), and small ones live inside the
// object, so queueing a delivery allocates nothing beyond the task itself.
class Job {
 public:
  Job() noexcept = default;

  template <typename F, typename = std::enable_if_t<!std::is_same_v<std::decay_t<F>, Job>>>
  Job(F&& f) {  // NOLINT: implicit, so that post([..] { .. }) reads naturally
    using Fn = std::decay_t<F>;
    if constexpr (kFitsInline<Fn>) {
      new (storage_) Fn(std::forward<F>(f));
      ops_ = &InlineOps<Fn>::kOps;
    } else {
      new (storage_) std::unique_ptr<Fn>(std::make_unique<Fn>(std::forward<F>(f)));
      ops_ = &HeapOps<Fn>::kOps;
    }
  }

  Job(Job&& other) noexcept { takeFrom(other); }
  Job& operator=(Job&& other) noexcept {
    if (this != &other) {
      reset();
      takeFrom(other);
    }
    return *this;
  }
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;
  ~Job() { reset(); }

  explicit operator bool() const noexcept { return ops_ != nullptr; }
  void operator()() { ops_->call(storage_); }

 private:
  struct Ops {
    void (*call)(void* storage);
    void (*move)(void* from, void* to) noexcept;  // leaves `from` destroyed
    void (*destroy)(void* storage) noexcept;
  };

  static constexpr std::size_t kInlineSize = 8 * sizeof(void*);

  template <typename Fn>
  static constexpr bool kFitsInline = sizeof(Fn) <= kInlineSize &&
                                      alignof(Fn) <= alignof(std::max_align_t) &&
                                      std::is_nothrow_move_constructible_v<Fn>;

  template <typename Fn>
  struct InlineOps {
    static Fn& get(void* s) { return *std::launder(static_cast<Fn*>(s)); }
    static void call(void* s) { get(s)(); }
    static void move(void* from, void* to) noexcept {
      new (to) Fn(std::move(get(from)));
      get(from).~Fn();
    }
    static void destroy(void* s) noexcept { get(s).~Fn(); }
    static constexpr Ops kOps{call, move, destroy};
  };

  template <typename Fn>
  struct HeapOps {
    using Ptr = std::unique_ptr<Fn>;
    static Ptr& get(void* s) { return *std::launder(static_cast<Ptr*>(s)); }
    static void call(void* s) { (*get(s))(); }
    static void move(void* from, void* to) noexcept {
      new (to) Ptr(std::move(get(from)));
      get(from).~Ptr();
    }
    static void destroy(void* s) noexcept { get(s).~Ptr(); }
    static constexpr Ops kOps{call, move, destroy};
  };

  void takeFrom(Job& other) noexcept {
    if (other.ops_ != nullptr) {
      other.ops_->move(other.storage_, storage_);
      ops_ = other.ops_;
      other.ops_ = nullptr;
    }
  }
  void reset() noexcept {
    if (ops_ != nullptr) {
      ops_->destroy(storage_);
      ops_ = nullptr;
    }
  }

  alignas(std::max_align_t) unsigned char storage_[kInlineSize];
  const Ops* ops_ = nullptr;
};

class DispatchWorker {
 public:
  DispatchWorker() : state_(std::make_shared<State>()) {}
  // Stops without waiting: the detached thread keeps the queue state alive until it has
  // seen the flag.
  ~DispatchWorker() { stop(std::chrono::milliseconds(0)); }
  DispatchWorker(const DispatchWorker&) = delete;
  DispatchWorker& operator=(const DispatchWorker&) = delete;

  // Appends a job; starts the thread on the first post. After stop() the job is dropped
  // (destroyed unrun): the process is on its way out.
  void post(Job job) {
    State& s = *state_;
    std::lock_guard<std::mutex> lock(s.mutex);
    if (s.stopping.load(std::memory_order_relaxed)) return;
    s.queue.push_back(std::move(job));
    if (!s.started) {
      try {
        std::thread(run, state_).detach();
        s.started = true;
      } catch (const std::system_error&) {
        // No thread now: the job stays queued and the next post tries again.
      }
    }
    s.workPending.store(true, std::memory_order_release);
    s.wake.notify_one();
  }

  // Sets the stop flag: the worker finishes the job in hand, drops the rest and ends.
  // Waits up to `grace` for that job to return; true when the worker is known to be out
  // of every job (or never started), so the caller may tear down what jobs touch.
  bool stop(std::chrono::milliseconds grace) {
    State& s = *state_;
    std::unique_lock<std::mutex> lock(s.mutex);
    s.stopping.store(true, std::memory_order_release);
    s.wake.notify_all();
    return s.idle.wait_for(lock, grace, [&] { return !s.running; });
  }

 private:
  struct State {
    std::mutex mutex;
    std::condition_variable wake;  // work or stop
    std::condition_variable idle;  // the worker left its batch
    std::deque<Job> queue;
    std::atomic<bool> workPending{false};
    std::atomic<bool> stopping{false};  // also read between jobs, without the mutex
    bool started = false;               // guarded by mutex
    bool running = false;               // guarded by mutex: a batch is in hand
  };

  static void run(std::shared_ptr<State> state) {
    State& s = *state;
    std::deque<Job> batch;
    std::unique_lock<std::mutex> lock(s.mutex);
    for (;;) {
      s.running = false;
      s.idle.notify_all();
      s.wake.wait(lock, [&] {
        return s.stopping.load(std::memory_order_acquire) ||
               s.workPending.exchange(false, std::memory_order_acq_rel);
      });
      if (s.stopping.load(std::memory_order_acquire)) return;
      batch.swap(s.queue);
      s.running = true;
      lock.unlock();
      for (Job& job : batch) {
        if (s.stopping.load(std::memory_order_acquire)) break;
        try {
          job();
        } catch (...) {
          // One failing job must not end delivery for every later event, and nothing
          // may leave this thread.
        }
      }
      batch.clear();
      lock.lock();
    }
  }

  std::shared_ptr<State> state_;
};

}  // namespace orva
