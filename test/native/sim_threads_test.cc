// The simulated engine under concurrency: callbacks that call back into the engine, reset
// while activity runs, and entry points called from several threads at once (run under
// ThreadSanitizer too).
#include <atomic>

#include "sim_test_support.h"

namespace orva::sim::test {
namespace {

class SimThreads : public SimTest {};

struct Reentry {
  std::atomic<int> inner{0};
  int32_t emitResult = -2;
  int32_t completeResult = -2;
  int32_t pendingSeq = 0;
};

void ORVA_CALL onInner(int32_t, void* ctx) { static_cast<Reentry*>(ctx)->inner.fetch_add(1); }
void ORVA_CALL onResult(int32_t, int32_t, void* ctx) { static_cast<Reentry*>(ctx)->inner.fetch_add(1); }

// Runs on the events thread: emitting and completing from here must not wait for itself.
void ORVA_CALL onOuter(int32_t, void* ctx) {
  auto* r = static_cast<Reentry*>(ctx);
  r->emitResult = ENGINE(orva_sim_emit)("start_dump_data", R"({"errorCode":3})", nullptr);
  r->completeResult = ENGINE(orva_sim_complete)(r->pendingSeq, "{}", nullptr);
  ENGINE(orva_sim_reset)();
}

TEST_F(SimThreads, ACallbackMayEmitCompleteAndResetWithoutDeadlock) {
  Reentry r;
  registration("fatal_error")(reinterpret_cast<AnyFn>(&onOuter), &r);
  registration("start_dump_data")(reinterpret_cast<AnyFn>(&onInner), &r);
  registration("upload_log_result")(reinterpret_cast<AnyFn>(&onResult), &r);
  Control::autoComplete(false);
  ENGINE(orva_vantix_upload_log)(&r.pendingSeq);
  EXPECT_EQ(Control::emit("fatal_error", R"({"errorCode":1})"), 1);
  EXPECT_EQ(r.emitResult, 1);
  EXPECT_EQ(r.completeResult, 1);
  EXPECT_EQ(r.inner.load(), 2);
  EXPECT_EQ(Control::pending(), "[]");
  for (const char* n : {"fatal_error", "start_dump_data", "upload_log_result"}) registration(n)(nullptr, nullptr);
}

struct SlowFrames {
  std::atomic<int> frames{0};
  std::atomic<bool> inside{false};
};

void ORVA_CALL onSlowFrame(const uint8_t**, const uint32_t*, const orva_video_frame_param*, int32_t, int32_t, void* ctx) {
  auto* s = static_cast<SlowFrames*>(ctx);
  s->inside = true;
  std::this_thread::sleep_for(std::chrono::milliseconds(30));
  s->frames.fetch_add(1);
  s->inside = false;
}

TEST_F(SimThreads, ResetWaitsForTheRunningCallbackAndStopsActivity) {
  SlowFrames s;
  registration("custom_video_render_captured_frame_data")(reinterpret_cast<AnyFn>(&onSlowFrame), &s);
  orva_video_config vc{32, 32, 32, 32, 60, 100, 0};
  ENGINE(orva_vantix_set_video_config)(&vc, 0);
  ENGINE(orva_vantix_start_preview)(nullptr, 0);
  while (s.frames.load() < 2) std::this_thread::sleep_for(std::chrono::milliseconds(5));
  Control::reset();
  EXPECT_FALSE(s.inside.load()) << "a callback of the old state still runs after reset";
  const int after = s.frames.load();
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  EXPECT_EQ(s.frames.load(), after);
  // Reset gives back the engine's defaults.
  EXPECT_EQ(ENGINE(orva_vantix_get_video_config)(0).captureWidth, 640);
  registration("custom_video_render_captured_frame_data")(nullptr, nullptr);
}

void ORVA_CALL ignoreFrame(const uint8_t**, const uint32_t*, const orva_video_frame_param*, int32_t, int32_t, void*) {}
void ORVA_CALL ignoreState(const char*, int32_t, int32_t, const char*, void*) {}

TEST_F(SimThreads, EntryPointsEmitsAndResetsFromManyThreads) {
  registration("custom_video_render_captured_frame_data")(reinterpret_cast<AnyFn>(&ignoreFrame), nullptr);
  registration("room_state_update")(reinterpret_cast<AnyFn>(&ignoreState), nullptr);
  std::atomic<bool> stop{false};
  std::vector<std::thread> threads;
  for (int32_t c = 0; c < 3; ++c) {
    threads.emplace_back([c, &stop] {
      orva_user u{};
      std::snprintf(u.userID, sizeof u.userID, "u%d", c);
      const std::string room = "room-" + std::to_string(c);
      for (int i = 0; !stop.load(); ++i) {
        orva_video_config vc{16 + c, 16, 16, 16, 120, 100, 0};
        ENGINE(orva_vantix_set_video_config)(&vc, c);
        ENGINE(orva_vantix_get_video_config)(c);
        ENGINE(orva_vantix_start_preview)(nullptr, c);
        int32_t seq = 0;
        ENGINE(orva_vantix_login_room_with_callback)(room.c_str(), &u, nullptr, &seq);
        ENGINE(orva_vantix_start_publishing_stream_with_config)(("s" + std::to_string(c)).c_str(), nullptr, c);
        ENGINE(orva_vantix_start_playing_stream_with_config)("sim-peer-stream", nullptr, nullptr);
        Control::emit("room_state_update", R"({"roomID":"x","state":1})");
        if (i % 3 == 0) {
          ENGINE(orva_vantix_stop_preview)(c);
          ENGINE(orva_vantix_stop_publishing_stream)(c);
          ENGINE(orva_vantix_logout_room_with_callback)(room.c_str(), &seq);
        }
      }
    });
  }
  threads.emplace_back([&stop] {
    while (!stop.load()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
      Control::reset();
    }
  });
  std::this_thread::sleep_for(std::chrono::milliseconds(kSanitized ? 1500 : 500));
  stop = true;
  for (auto& t : threads) t.join();
  Control::reset();
  // After the storm the engine still answers like a fresh one.
  orva_video_config vc{100, 50, 100, 50, 10, 100, 0};
  EXPECT_EQ(ENGINE(orva_vantix_set_video_config)(&vc, 2), 0);
  EXPECT_EQ(ENGINE(orva_vantix_get_video_config)(2).captureWidth, 100);
  EXPECT_EQ(Control::calls("orva_vantix_start_preview"), "[]");
  registration("custom_video_render_captured_frame_data")(nullptr, nullptr);
  registration("room_state_update")(nullptr, nullptr);
}

}  // namespace
}  // namespace orva::sim::test
