// Pending completions of one kind of asynchronous engine call, keyed by the 32-bit sequence
// number that the call returned.
//
// Protocol. The call side opens a Flight before the engine call and stores the completion
// under the returned number through it. The result trampoline finds, copies and erases the
// completion under the table's recursive mutex (taken nested: lookup, then removal) and
// calls the copy after unlocking, on the engine thread. A number nobody stored is dropped.
//
// The engine answers on its own threads and may do so before the call that returned the
// number is back on the calling thread. So while a flight is open, a result for an unknown
// number is kept (not dropped) and handed to the completion the moment it is stored; that
// completion then runs on the storing thread. Nothing is kept once no flight is open. No lock
// is held across the engine call itself: an engine that calls back on a thread of its own
// while it holds its own locks could otherwise deadlock against the caller.
//
// A result that borrows engine memory (a snapshot's image handle, valid only during the
// callback) cannot be kept for later: its trampoline waits instead, bounded, for the open
// flights to land, so the completion still runs inside the engine callback.
#pragma once

#include <cstddef>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orva::sdk {

// Events whose `image` is a raw engine handle: the handle dies when the callback returns.
template <class Event, class = void>
struct BorrowsEngineMemory : std::false_type {};
template <class Event>
struct BorrowsEngineMemory<Event, std::void_t<decltype(std::declval<Event&>().image)>>
    : std::is_pointer<std::remove_reference_t<decltype(std::declval<Event&>().image)>> {};

template <class Event>
class CompletionTable {
 public:
  using Callable = std::function<void(Event)>;

  // An asynchronous call between its engine call and the storing of its completion.
  class Flight {
   public:
    explicit Flight(CompletionTable* table) : table_(table) {}
    Flight(Flight&& other) noexcept : table_(std::exchange(other.table_, nullptr)) {}
    Flight(const Flight&) = delete;
    Flight& operator=(const Flight&) = delete;
    Flight& operator=(Flight&&) = delete;
    ~Flight() {
      if (table_ != nullptr) table_->land(0, Callable(), false);
    }

    // Stores `done` under `seq` (an empty callable stores nothing) and closes the flight.
    void store(int32_t seq, Callable done) {
      if (table_ != nullptr) std::exchange(table_, nullptr)->land(seq, std::move(done), true);
    }

   private:
    CompletionTable* table_;
  };

  CompletionTable() : pending_(8) { pending_.max_load_factor(1.0f); }

  Flight beginCall() {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    ++flights_;
    return Flight(this);
  }

  // Result trampoline: calls the completion stored under `seq` once, with make()'s event.
  // make() converts the engine's arguments; it runs outside the lock and only when needed.
  template <class MakeEvent>
  void complete(int32_t seq, MakeEvent&& make) {
    std::optional<Event> event;
    for (;;) {
      Callable done;
      {
        std::unique_lock<std::recursive_mutex> lock(mutex_);
        if constexpr (BorrowsEngineMemory<Event>::value) {
          // Wait for the call that returned `seq` to store its completion (or give up).
          landed_.wait_for(lock, kBorrowedWait, [&] { return flights_ == 0 || pending_.count(seq) != 0; });
        }
        {
          std::lock_guard<std::recursive_mutex> lookup(mutex_);
          auto it = pending_.find(seq);
          if (it != pending_.end()) done = it->second;
        }
        if (done) {
          std::lock_guard<std::recursive_mutex> removal(mutex_);
          pending_.erase(seq);
        } else if (flights_ == 0 || BorrowsEngineMemory<Event>::value) {
          return;  // unknown sequence number
        } else if (event) {
          early_.emplace_back(seq, std::move(*event));
          if (early_.size() > kMaxEarly) early_.erase(early_.begin());
          return;
        }
      }
      if (done) {
        done(event ? std::move(*event) : make());
        return;
      }
      event.emplace(make());  // a flight is open: convert, then look again
    }
  }

  // Drops every stored completion uncalled (engine destruction).
  void clear() {
    std::unordered_map<int32_t, Callable> dropped(8);
    {
      std::lock_guard<std::recursive_mutex> lock(mutex_);
      dropped.swap(pending_);
      pending_.max_load_factor(1.0f);
    }
  }

  std::size_t size() const {
    std::lock_guard<std::recursive_mutex> lock(mutex_);
    return pending_.size();
  }

 private:
  static constexpr std::size_t kMaxEarly = 64;
  static constexpr std::chrono::milliseconds kBorrowedWait{2000};

  void land(int32_t seq, Callable done, bool stored) {
    std::optional<Event> early;
    {
      std::lock_guard<std::recursive_mutex> lock(mutex_);
      if (stored) {
        for (auto it = early_.begin(); it != early_.end(); ++it) {
          if (it->first == seq) {
            early.emplace(std::move(it->second));
            early_.erase(it);
            break;
          }
        }
        if (!early && done) pending_[seq] = std::move(done);
      }
      if (--flights_ == 0) early_.clear();
    }
    landed_.notify_all();
    if (early && done) done(std::move(*early));
  }

  mutable std::recursive_mutex mutex_;
  std::condition_variable_any landed_;
  std::unordered_map<int32_t, Callable> pending_;
  std::vector<std::pair<int32_t, Event>> early_;
  int flights_ = 0;
};

}  // namespace orva::sdk
