// The frame buffer slots of the video frame renderer: which script buffer each capture
// channel, played stream and media player renders into, and the per-frame decision (copy,
// announce a size change, stay silent). Node-free, so the native tests drive it directly;
// OrvaVantixAddonCustomVideoRenderer turns its outcomes into script events.
//
// Threads and lifetimes:
//   - Registrations run on the script thread, frames on engine threads, teardown's clear()
//     on the script thread. Every slot is read and written only under its own mutex: one
//     per capture channel, one per stream entry, one per media player entry.
//   - Stream and media player entries are created on their first frame or registration
//     and never removed (the map mutex is held only to find or create one), so a pointer to
//     an entry stays valid after the map mutex is released. Unregistering an entry clears
//     its slot but keeps the entry and its mutex.
//   - Lock order: map mutex, then entry mutex (removal and clear hold both; frames and
//     registrations release the map before taking the entry).
//   - A slot holds the address of a script buffer and the owner tag of the environment that
//     registered it (its addon object). That environment holds a reference to the buffer
//     until the slot is replaced, removed or cleared, and clears the slots it owns
//     (clearOwner) before it lets its references go, so a copy never writes freed memory.
//   - A slot never records more bytes than its buffer really holds: a buffer shorter than
//     its stated sides counts as that short, and frames of the stated size go the way of any
//     slot that is too small (size change announced, nothing copied).
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "common/FrameCopy.h"

namespace orva {

// The first plane of one engine frame and the parameters the renderer reads.
struct FrameSource {
  const uint8_t* plane = nullptr;  // may be null: nothing is copied
  uint32_t planeLength = 0;
  int32_t width = 0;
  int32_t height = 0;
  int32_t stride = 0;  // of the first plane
  int32_t format = 0;  // the engine's pixel format value
};

// Bytes a frame of these sides needs in a script buffer (4 bytes a pixel); 0 when a side is
// not positive.
inline uint64_t neededBytes(int32_t width, int32_t height) {
  return static_cast<uint64_t>(frame::rgbaFrameBytes(width, height));
}

// Bytes of the first plane that the copy of this frame reads. The copy is skipped when the
// engine's plane is shorter, so a lying frame cannot make it read past the plane.
inline uint64_t sourceBytesRead(const FrameSource& f) {
  if (f.width <= 0 || f.height <= 0) return 0;
  const uint64_t row = static_cast<uint64_t>(f.width) * 4;
  if (f.format == frame::kFormatBgraBottomUp) {
    if (f.stride < 0 || static_cast<uint64_t>(f.stride) < row) return 0;  // the kernel copies nothing
    return static_cast<uint64_t>(f.stride) * static_cast<uint64_t>(f.height - 1) + row;
  }
  return row * static_cast<uint64_t>(f.height);
}

// What one frame did to its slot, and so which events it gets.
enum class FrameOutcome : uint8_t {
  kCopied,   // copied into the registered buffer: frame event
  kNoSlot,   // nothing registered for the target: frame event, nothing copied
  kResized,  // slot smaller than the frame: buffer dropped, frame size recorded: size event,
             // then frame event, nothing copied
  kSilent,   // slot fits but holds no buffer (script has not registered one since the last
             // size change): no event at all
};

// A script buffer handed over for rendering: its bytes, how many there really are, the
// sides script stated for it, and who holds it alive.
struct FrameBufferRegistration {
  uint8_t* data = nullptr;
  uint64_t length = 0;  // the buffer's real byte length
  uint32_t width = 0;
  uint32_t height = 0;
  const void* owner = nullptr;  // tag of the registering environment

  // width * height * 4 of the stated sides.
  uint64_t statedBytes() const { return static_cast<uint64_t>(width) * height * 4u; }
  // What the slot records: the stated size, but never more than the buffer holds.
  uint32_t usableBytes() const {
    const uint64_t bytes = statedBytes() < length ? statedBytes() : length;
    return bytes > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(bytes);
  }
};

// One registered script buffer. `data` is guarded by the owner's mutex; width, height and
// size are written with atomic exchanges.
class FrameBufferSlot {
 public:
  // Registration: size = width * height * 4 of the stated sides, cut to the buffer's real
  // length.
  void assign(const FrameBufferRegistration& r) {
    data_ = r.data;
    owner_ = r.owner;
    width_.exchange(r.width);
    height_.exchange(r.height);
    size_.exchange(r.usableBytes());
  }

  // Forgets the buffer: no pointer, size 0, so the next frame announces its size.
  void clear() {
    data_ = nullptr;
    owner_ = nullptr;
    width_.exchange(0);
    height_.exchange(0);
    size_.exchange(0);
  }

  // The frame step; the caller holds the owner's mutex. A slot smaller than the frame (a
  // strict less-than) drops its buffer before anything is written, so a frame never
  // overflows a registered buffer.
  FrameOutcome render(const FrameSource& f) {
    const uint64_t needed = neededBytes(f.width, f.height);
    if (size_.load() < needed) {
      data_ = nullptr;  // the owner still holds the buffer until it registers another
      width_.exchange(static_cast<uint32_t>(f.width));
      height_.exchange(static_cast<uint32_t>(f.height));
      size_.exchange(static_cast<uint32_t>(needed));
      return FrameOutcome::kResized;
    }
    if (data_ == nullptr) return FrameOutcome::kSilent;
    // A frame narrower than the registration is packed at its own width.
    if (f.plane != nullptr && f.planeLength >= sourceBytesRead(f)) {
      frame::copyFrameToRGBA(data_, f.plane, f.width, f.height, f.stride, f.format);
    }
    return FrameOutcome::kCopied;
  }

  uint8_t* data() const { return data_; }
  const void* owner() const { return owner_; }
  uint32_t width() const { return width_.load(); }
  uint32_t height() const { return height_.load(); }
  uint32_t size() const { return size_.load(); }

 private:
  uint8_t* data_ = nullptr;
  const void* owner_ = nullptr;
  std::atomic<uint32_t> width_{0};
  std::atomic<uint32_t> height_{0};
  std::atomic<uint32_t> size_{0};
};

// A slot held under its lock, for a frame path outside the renderer (the media player's).
// Empty (no slot, no lock) when nothing is registered for the target.
class LockedFrameSlot {
 public:
  LockedFrameSlot() = default;
  LockedFrameSlot(std::unique_lock<std::mutex> lock, FrameBufferSlot* slot)
      : lock_(std::move(lock)), slot_(slot) {}

  explicit operator bool() const { return slot_ != nullptr; }
  FrameBufferSlot* operator->() const { return slot_; }
  FrameBufferSlot& operator*() const { return *slot_; }

 private:
  std::unique_lock<std::mutex> lock_;
  FrameBufferSlot* slot_ = nullptr;
};

class FrameBufferStore {
 public:
  // Publish channels with a capture slot: 0 to 3.
  static constexpr int32_t kCaptureChannels = 4;

  // ---- registration (script thread)
  // A channel outside 0 to 3 has no slot: the registration is ignored.
  void registerCapture(int32_t channel, const FrameBufferRegistration& r) {
    if (!isCaptureChannel(channel)) return;
    CaptureSlot& c = capture_[static_cast<std::size_t>(channel)];
    std::lock_guard<std::mutex> lock(c.mutex);
    c.slot.assign(r);
  }

  void registerPlay(const std::string& streamID, const FrameBufferRegistration& r) {
    Entry& e = streams_.findOrCreate(streamID);
    std::lock_guard<std::mutex> lock(e.mutex);
    e.registered = true;
    e.slot.assign(r);
  }

  void registerMediaPlayer(int32_t index, const FrameBufferRegistration& r) {
    Entry& e = mediaPlayers_.findOrCreate(index);
    std::lock_guard<std::mutex> lock(e.mutex);
    e.registered = true;
    e.slot.assign(r);
  }

  // stopPlayingStream: under the map lock, then the stream's own lock, forgets the buffer,
  // so no frame of the stream is written into it once this returns.
  void removePlay(const std::string& streamID) { streams_.unregister(streamID); }

  // Engine teardown: forgets every buffer (entries and their mutexes stay). Waits for a
  // copy in progress, so script may release its buffers once this returns.
  void clear() { clearWhere([](const FrameBufferSlot&) { return true; }); }

  // An environment going away: forgets the buffers it registered (waiting for a copy in
  // progress), so it may drop its references once this returns. Slots of others stay.
  void clearOwner(const void* owner) {
    if (owner == nullptr) return;
    clearWhere([owner](const FrameBufferSlot& slot) { return slot.owner() == owner; });
  }

  // ---- frames (engine threads)
  FrameOutcome renderCaptured(int32_t channel, const FrameSource& f) {
    if (!isCaptureChannel(channel)) return FrameOutcome::kNoSlot;
    CaptureSlot& c = capture_[static_cast<std::size_t>(channel)];
    std::lock_guard<std::mutex> lock(c.mutex);
    return c.slot.render(f);
  }

  // The stream's entry is made on its first frame even when nothing is registered.
  FrameOutcome renderRemote(const std::string& streamID, const FrameSource& f) {
    Entry& e = streams_.findOrCreate(streamID);
    std::lock_guard<std::mutex> lock(e.mutex);
    if (!e.registered) return FrameOutcome::kNoSlot;
    return e.slot.render(f);
  }

  // The media player's slot under its lock, or empty when none is registered.
  LockedFrameSlot lockMediaPlayer(int32_t index) { return mediaPlayers_.lock(index); }

 private:
  struct CaptureSlot {
    std::mutex mutex;
    FrameBufferSlot slot;
  };

  struct Entry {
    std::mutex mutex;
    bool registered = false;  // guarded by mutex, like the slot
    FrameBufferSlot slot;
  };

  // Key -> entry; entries live on the heap and are never erased (see the header comment).
  template <class Key>
  class EntryMap {
   public:
    Entry& findOrCreate(const Key& key) {
      std::lock_guard<std::mutex> lock(mutex_);
      auto it = entries_.find(key);
      if (it == entries_.end()) it = entries_.emplace(key, std::make_unique<Entry>()).first;
      return *it->second;
    }

    void unregister(const Key& key) {
      std::lock_guard<std::mutex> mapLock(mutex_);
      auto it = entries_.find(key);
      if (it == entries_.end()) return;
      Entry& e = *it->second;
      std::lock_guard<std::mutex> entryLock(e.mutex);
      e.registered = false;
      e.slot.clear();
    }

    template <class Pred>
    void unregisterWhere(Pred pred) {
      std::lock_guard<std::mutex> mapLock(mutex_);
      for (auto& [key, entry] : entries_) {
        std::lock_guard<std::mutex> entryLock(entry->mutex);
        if (!entry->registered || !pred(entry->slot)) continue;
        entry->registered = false;
        entry->slot.clear();
      }
    }

    LockedFrameSlot lock(const Key& key) {
      Entry* e = find(key);
      if (e == nullptr) return {};
      std::unique_lock<std::mutex> lock(e->mutex);
      if (!e->registered) return {};
      return LockedFrameSlot(std::move(lock), &e->slot);
    }

   private:
    Entry* find(const Key& key) {
      std::lock_guard<std::mutex> lock(mutex_);
      auto it = entries_.find(key);
      return it == entries_.end() ? nullptr : it->second.get();
    }

    std::mutex mutex_;
    std::map<Key, std::unique_ptr<Entry>> entries_;
  };

  template <class Pred>
  void clearWhere(Pred pred) {
    for (CaptureSlot& c : capture_) {
      std::lock_guard<std::mutex> lock(c.mutex);
      if (pred(c.slot)) c.slot.clear();
    }
    streams_.unregisterWhere(pred);
    mediaPlayers_.unregisterWhere(pred);
  }

  static bool isCaptureChannel(int32_t channel) {
    return channel >= 0 && channel < kCaptureChannels;
  }

  std::array<CaptureSlot, kCaptureChannels> capture_;
  EntryMap<std::string> streams_;
  EntryMap<int32_t> mediaPlayers_;
};

}  // namespace orva
