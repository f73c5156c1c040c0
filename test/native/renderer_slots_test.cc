// The video frame renderer's slots without script: the per-frame decision of capture and
// stream slots (copy, size change, silence), registration, removal, teardown's clear, the
// media player lookup's lock, and frames racing registrations (run under ASan and TSan:
// every buffer is allocated to exactly its registered size, so a copy past it shows).
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include "events/FrameBufferStore.h"

namespace orva {
namespace {

using namespace std::chrono_literals;
using O = FrameOutcome;

// A packed RGBA frame (format 5 unless told) whose plane is allocated to its exact length.
struct TestFrame {
  std::vector<uint8_t> plane;
  FrameSource source;

  TestFrame(int32_t w, int32_t h, int32_t format = 5, uint8_t fill = 0x11) {
    plane.assign(static_cast<size_t>(w) * h * 4, fill);
    source = {plane.data(), static_cast<uint32_t>(plane.size()), w, h, w * 4, format};
  }
};

uint32_t bytesOf(uint32_t w, uint32_t h) { return w * h * 4; }

// A registration of `buffer` (its real length) with the stated sides.
FrameBufferRegistration reg(std::vector<uint8_t>& buffer, uint32_t w, uint32_t h,
                            const void* owner = nullptr) {
  return {buffer.data(), buffer.size(), w, h, owner};
}

// ---- the decision, as a sequence of steps on one capture slot and one stream slot ------

struct Step {
  const char* what;
  enum Kind { kRegister, kFrame, kRemove } kind;
  int32_t width, height;
  O captured;  // outcome on capture channel 0 (kRegister/kRemove: ignored)
  O remote;    // outcome on stream "s"
};

// One table drives both paths, so the asymmetry between them is visible side by side.
const Step kSteps[] = {
    {"first frame, nothing registered", Step::kFrame, 8, 6, O::kResized, O::kNoSlot},
    {"same size again, still no buffer", Step::kFrame, 8, 6, O::kSilent, O::kNoSlot},
    {"register exactly the frame's size", Step::kRegister, 8, 6, {}, {}},
    {"exact fit is copied (strict less-than)", Step::kFrame, 8, 6, O::kCopied, O::kCopied},
    {"smaller frame keeps copying", Step::kFrame, 5, 3, O::kCopied, O::kCopied},
    {"larger frame drops the buffer", Step::kFrame, 9, 6, O::kResized, O::kResized},
    {"then silence at that size", Step::kFrame, 9, 6, O::kSilent, O::kSilent},
    {"and at any size that fits", Step::kFrame, 2, 2, O::kSilent, O::kSilent},
    {"register the new size", Step::kRegister, 9, 6, {}, {}},
    {"copied again", Step::kFrame, 9, 6, O::kCopied, O::kCopied},
    {"stopPlayingStream (streams only)", Step::kRemove, 0, 0, {}, {}},
    {"stream frames announced, never copied", Step::kFrame, 9, 6, O::kCopied, O::kNoSlot},
};

TEST(RendererSlots, CaptureAndStreamFollowTheirSequences) {
  FrameBufferStore store;
  std::vector<uint8_t> captureBuffer, streamBuffer;
  for (const Step& step : kSteps) {
    SCOPED_TRACE(step.what);
    switch (step.kind) {
      case Step::kRegister:
        captureBuffer.assign(bytesOf(step.width, step.height), 0);
        streamBuffer.assign(bytesOf(step.width, step.height), 0);
        store.registerCapture(0, reg(captureBuffer, step.width, step.height));
        store.registerPlay("s", reg(streamBuffer, step.width, step.height));
        break;
      case Step::kRemove:
        store.removePlay("s");
        break;
      case Step::kFrame: {
        TestFrame f(step.width, step.height);
        EXPECT_EQ(store.renderCaptured(0, f.source), step.captured);
        EXPECT_EQ(store.renderRemote("s", f.source), step.remote);
        break;
      }
    }
  }
}

TEST(RendererSlots, RegistrationSizeComesFromTheNumbers) {
  FrameBufferStore store;
  // The buffer is larger than stated: the stated numbers decide, so a frame one row taller
  // than stated is a size change although it would fit the memory.
  std::vector<uint8_t> buffer(bytesOf(4, 8), 0);
  store.registerPlay("s", reg(buffer, 4, 4));
  TestFrame fits(4, 4), taller(4, 5);
  EXPECT_EQ(store.renderRemote("s", fits.source), O::kCopied);
  EXPECT_EQ(store.renderRemote("s", taller.source), O::kResized);
}

// A buffer shorter than its stated sides counts only its real length: frames of the stated
// size find the slot too small (size change, nothing written), frames that fit the real
// length are copied. ASan shows a write past the 16 bytes.
TEST(RendererSlots, ShortBufferCountsOnlyItsRealLength) {
  FrameBufferStore store;
  std::vector<uint8_t> tiny(16, 0);
  store.registerCapture(0, reg(tiny, 1920, 1080));
  store.registerPlay("s", reg(tiny, 1920, 1080));
  TestFrame big(1920, 1080), fits(2, 2, 5, 0x77);
  EXPECT_EQ(store.renderCaptured(0, big.source), O::kResized);
  EXPECT_EQ(store.renderRemote("s", big.source), O::kResized);

  store.registerCapture(0, reg(tiny, 1920, 1080));
  EXPECT_EQ(store.renderCaptured(0, fits.source), O::kCopied);
  EXPECT_EQ(tiny, std::vector<uint8_t>(16, 0x77));

  // Sides whose product wraps in 32 bits do not make a small size either.
  store.registerCapture(1, reg(tiny, 65536, 65536));
  EXPECT_EQ(store.renderCaptured(1, big.source), O::kResized);
}

// An environment that goes away forgets its own buffers only.
TEST(RendererSlots, ClearOwnerForgetsOnlyThatOwnersBuffers) {
  FrameBufferStore store;
  int mine = 0, theirs = 0;
  std::vector<uint8_t> a(bytesOf(2, 2)), b(bytesOf(2, 2)), c(bytesOf(2, 2)), d(bytesOf(2, 2));
  store.registerCapture(0, reg(a, 2, 2, &mine));
  store.registerCapture(1, reg(b, 2, 2, &theirs));
  store.registerPlay("mine", reg(c, 2, 2, &mine));
  store.registerMediaPlayer(0, reg(d, 2, 2, &mine));
  store.clearOwner(&mine);
  TestFrame f(2, 2);
  EXPECT_EQ(store.renderCaptured(0, f.source), O::kResized);
  EXPECT_EQ(store.renderCaptured(1, f.source), O::kCopied);
  EXPECT_EQ(store.renderRemote("mine", f.source), O::kNoSlot);
  EXPECT_FALSE(store.lockMediaPlayer(0));
}

// A frame whose plane is shorter than its parameters say (or missing) is announced but not
// read: ASan shows any read past the exact-length plane.
TEST(RendererSlots, ShortOrMissingPlaneIsNotRead) {
  FrameBufferStore store;
  std::vector<uint8_t> buffer(bytesOf(6, 4), 0xEE);
  store.registerPlay("s", reg(buffer, 6, 4));
  for (int32_t format : {4, 5, 0}) {
    SCOPED_TRACE(format);
    TestFrame f(6, 4, format);
    f.plane.resize(f.plane.size() - 1);
    f.source.plane = f.plane.data();
    f.source.planeLength = static_cast<uint32_t>(f.plane.size());
    EXPECT_EQ(store.renderRemote("s", f.source), O::kCopied);
    f.source.plane = nullptr;
    EXPECT_EQ(store.renderRemote("s", f.source), O::kCopied);
  }
  // Format 4 with padded rows: the last row needs only width * 4 bytes past its start.
  std::vector<uint8_t> padded(static_cast<size_t>(32) * 3 + 24, 0x42);
  FrameSource f{padded.data(), static_cast<uint32_t>(padded.size()), 6, 4, 32, 4};
  EXPECT_EQ(store.renderRemote("s", f), O::kCopied);
  EXPECT_EQ(std::vector<uint8_t>(buffer.begin(), buffer.end()), std::vector<uint8_t>(bytesOf(6, 4), 0x42));
  EXPECT_EQ(buffer.size(), bytesOf(6, 4));
}

TEST(RendererSlots, ClearForgetsEveryBuffer) {
  FrameBufferStore store;
  std::vector<uint8_t> a(bytesOf(2, 2)), b(bytesOf(2, 2)), c(bytesOf(2, 2));
  store.registerCapture(3, reg(a, 2, 2));
  store.registerPlay("s", reg(b, 2, 2));
  store.registerMediaPlayer(5, reg(c, 2, 2));
  store.clear();
  TestFrame f(2, 2);
  EXPECT_EQ(store.renderCaptured(3, f.source), O::kResized);
  EXPECT_EQ(store.renderRemote("s", f.source), O::kNoSlot);
  EXPECT_FALSE(store.lockMediaPlayer(5));
}

TEST(RendererSlots, MediaPlayerLookupHoldsTheSlotLock) {
  FrameBufferStore store;
  EXPECT_FALSE(store.lockMediaPlayer(1)) << "nothing registered";
  std::vector<uint8_t> first(bytesOf(2, 2), 0), second(bytesOf(2, 2), 0);
  store.registerMediaPlayer(1, reg(first, 2, 2));

  std::atomic<bool> reRegistered{false};
  std::thread script;
  {
    LockedFrameSlot slot = store.lockMediaPlayer(1);
    ASSERT_TRUE(slot);
    EXPECT_EQ(slot->data(), first.data());
    script = std::thread([&] {
      store.registerMediaPlayer(1, reg(second, 2, 2));
      reRegistered = true;
    });
    std::this_thread::sleep_for(50ms);
    EXPECT_FALSE(reRegistered) << "a registration got past the held slot lock";
    TestFrame f(2, 2, 5, 0x33);
    EXPECT_EQ(slot->render(f.source), O::kCopied);
  }
  script.join();
  EXPECT_EQ(first, std::vector<uint8_t>(bytesOf(2, 2), 0x33));
  EXPECT_EQ(store.lockMediaPlayer(1)->data(), second.data());
}

// Engine threads render while the script thread registers, re-registers smaller buffers,
// removes streams and clears. Each buffer is exactly its registered size and is freed only
// after it was replaced and the store said so (clear/remove/register return after the copy
// in progress): ASan shows an overflow or a write after free, TSan a missing lock.
TEST(RendererSlots, FramesRacingRegistrationsStayInsideTheirBuffers) {
  FrameBufferStore store;
  std::atomic<bool> stop{false};
  std::vector<std::thread> engine;
  for (int t = 0; t < 3; ++t) {
    engine.emplace_back([&, t] {
      TestFrame frames[] = {TestFrame(3, 3, 4), TestFrame(8, 5, 5), TestFrame(16, 9, 0)};
      const std::string streams[] = {"a", "b"};
      for (unsigned i = 0; !stop; ++i) {
        const FrameSource& f = frames[(i + t) % 3].source;
        store.renderCaptured(static_cast<int32_t>(i % 5), f);
        store.renderRemote(streams[i % 2], f);
        if (LockedFrameSlot slot = store.lockMediaPlayer(0)) slot->render(f);
      }
    });
  }
  const uint32_t sizes[][2] = {{3, 3}, {8, 5}, {16, 9}, {1, 1}};
  std::vector<uint8_t> live[4][3];  // [size][capture, stream, media player]
  const auto until = std::chrono::steady_clock::now() + 600ms;
  for (unsigned i = 0; std::chrono::steady_clock::now() < until; ++i) {
    const auto& wh = sizes[i % 4];
    auto& bufs = live[i % 4];
    // These vectors were last registered a cycle ago, and the clear that ended that cycle
    // forgot them, so no slot points into them while they are reallocated.
    for (auto& b : bufs) b.assign(bytesOf(wh[0], wh[1]), 0);
    store.registerCapture(static_cast<int32_t>(i % 4), reg(bufs[0], wh[0], wh[1]));
    store.registerPlay(i % 2 ? "a" : "b", reg(bufs[1], wh[0], wh[1]));
    store.registerMediaPlayer(0, reg(bufs[2], wh[0], wh[1]));
    if (i % 7 == 0) store.removePlay("a");
    if (i % 4 == 3) store.clear();  // every buffer of this round may go now
  }
  stop = true;
  for (auto& t : engine) t.join();
  store.clear();
}

}  // namespace
}  // namespace orva
