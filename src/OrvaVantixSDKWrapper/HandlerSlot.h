// One installed handler reference: a shared pointer under its own recursive mutex.
//
// The mutex is held only to copy or replace the reference; the caller calls the handler on
// its copy after the lock is gone, so a handler may call back into the layer, and clearing
// the slot while an event is in flight either lets that event finish with the old handler
// or drops it. The reference itself is read and written with the atomic shared_ptr
// operations, so engine destruction can empty the slot without taking the mutex.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace orva::sdk {

template <class T>
class HandlerSlot {
 public:
  std::shared_ptr<T> get() const {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    return std::atomic_load(&ref_);
  }

  // Installs `handler` (empty clears). The previous handler is released after unlocking:
  // its destructor is code of another layer.
  void set(std::shared_ptr<T> handler) {
    std::shared_ptr<T> previous;
    {
      std::lock_guard<std::recursive_mutex> lock(mutex_);
      previous = std::atomic_exchange(&ref_, std::move(handler));
    }
  }

  // Empties the slot without the mutex (engine destruction).
  void releaseWithoutLock() { std::atomic_store(&ref_, std::shared_ptr<T>()); }

  // For a test-and-set that must be atomic with respect to other installers.
  std::recursive_mutex& mutex() const { return mutex_; }

 private:
  mutable std::recursive_mutex mutex_;
  std::shared_ptr<T> ref_;
};

}  // namespace orva::sdk
