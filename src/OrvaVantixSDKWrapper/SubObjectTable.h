// Engine object index -> the sub-object that owns it (media player, audio effect player,
// screen capture source, copyrighted music), under the table's recursive mutex.
//
// find() hands out a shared reference, so an object found by a trampoline lives until that
// trampoline returns even if it is removed meanwhile. Removed objects are released after
// unlocking: their destructors may reach other layers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace orva::sdk {

template <class T>
class SubObjectTable {
 public:
  SubObjectTable() : map_(8) { map_.max_load_factor(1.0f); }

  // Adds or replaces the object of `index`.
  void add(int32_t index, std::shared_ptr<T> object) {
    std::shared_ptr<T> previous;
    {
      std::lock_guard<std::recursive_mutex> lock(mutex_);
      auto& slot = map_[index];
      previous = std::exchange(slot, std::move(object));
    }
  }

  // The object of `index`, or null.
  std::shared_ptr<T> find(int32_t index) const {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    auto it = map_.find(index);
    return it != map_.end() ? it->second : nullptr;
  }

  // Removes the object of `index` and returns it (null when absent).
  std::shared_ptr<T> remove(int32_t index) {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    auto it = map_.find(index);
    if (it == map_.end()) return nullptr;
    auto object = std::move(it->second);
    map_.erase(it);
    return object;
  }

  void clear() {
    std::unordered_map<int32_t, std::shared_ptr<T>> dropped(8);
    {
      std::lock_guard<std::recursive_mutex> lock(mutex_);
      dropped.swap(map_);
    }
  }

  std::size_t size() const {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    return map_.size();
  }

 private:
  mutable std::recursive_mutex mutex_;
  std::unordered_map<int32_t, std::shared_ptr<T>> map_;
};

}  // namespace orva::sdk
