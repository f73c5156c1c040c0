// Storage for a process-wide object that is built on first use and never destroyed: engine
// threads may still call into the layer while the process exits, after static destructors
// would have run.
#pragma once

#include <new>
#include <utility>

namespace orva::sdk {

template <class T>
class NoDestroy {
 public:
  template <class... Args>
  explicit NoDestroy(Args&&... args) {
    new (storage_) T(std::forward<Args>(args)...);
  }
  NoDestroy(const NoDestroy&) = delete;
  NoDestroy& operator=(const NoDestroy&) = delete;

  T& operator*() { return *std::launder(reinterpret_cast<T*>(storage_)); }
  T* operator->() { return &**this; }

 private:
  alignas(T) unsigned char storage_[sizeof(T)];
};

}  // namespace orva::sdk
