// Lifecycle, version and the shared pieces of the simulated engine's behaviour.
#include "sim_engine.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>

namespace orva::sim {

Engine& engine() {
  static NoDestructor<Engine> instance;
  return instance.get();
}

uint64_t Engine::newToken() {
  static std::atomic<uint64_t> next{1};
  return next.fetch_add(1);
}

void Engine::resetState() {
  std::lock_guard<std::mutex> lock(mu);
  st = EngineState{};
}

void Engine::updateActivityLocked() {
  bool active = false;
  for (const ChannelState& c : st.channels) active = active || c.previewToken || c.publishToken;
  active = active || !st.plays.empty();
  if (active == st.active) return;
  st.active = active;
  core().postEvent([active] {
    gen::fire_engine_state_update(active ? ORVA_ENGINE_STATE_START : ORVA_ENGINE_STATE_STOP);
  });
}

VideoSize Engine::captureSize(int32_t channel) {
  std::lock_guard<std::mutex> lock(mu);
  const ChannelState& c = st.channels[validChannel(channel) ? static_cast<size_t>(channel) : 0];
  return {c.video.captureWidth, c.video.captureHeight};
}

VideoSize Engine::encodeSize(int32_t channel) {
  std::lock_guard<std::mutex> lock(mu);
  const ChannelState& c = st.channels[validChannel(channel) ? static_cast<size_t>(channel) : 0];
  return {c.video.encodeWidth, c.video.encodeHeight};
}

VideoSize Engine::streamSize(const std::string& streamID) {
  std::lock_guard<std::mutex> lock(mu);
  const int c = channelOfStreamLocked(streamID);
  if (c < 0) return {640, 360};
  const ChannelState& ch = st.channels[static_cast<size_t>(c)];
  return {ch.video.encodeWidth, ch.video.encodeHeight};
}

int Engine::channelOfStreamLocked(const std::string& streamID) const {
  for (int c = 0; c < kChannels; ++c) {
    const ChannelState& ch = st.channels[static_cast<size_t>(c)];
    if (ch.publishToken && ch.streamID == streamID) return c;
  }
  return -1;
}

orva_user Engine::roomUserLocked(const std::string& roomID) const {
  auto it = st.rooms.find(roomID);
  return it == st.rooms.end() ? orva_user{} : it->second.user;
}

uint64_t MediaPlayerState::progressNow() const {
  uint64_t p = progressMs;
  if (state == ORVA_MEDIA_PLAYER_STATE_PLAYING) {
    p += static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                   std::chrono::steady_clock::now() - since).count());
  }
  return std::min(p, durationMs);
}

void startTicker(TaskLoop& loop, uint32_t firstDelayMs, std::function<uint32_t()> tick) {
  struct Ticker {
    TaskLoop& loop;
    uint64_t epoch;
    std::function<uint32_t()> tick;
    TaskLoop::Clock::time_point next;
  };
  auto t = std::make_shared<Ticker>(Ticker{loop, core().epoch(), std::move(tick),
                                           TaskLoop::Clock::now() + std::chrono::milliseconds(firstDelayMs)});
  // Each run schedules the next at a fixed cadence from the previous due time, so the
  // rate does not drift with the time a tick takes.
  struct Step {
    std::shared_ptr<Ticker> t;
    void operator()() const {
      if (core().epoch() != t->epoch) return;
      const uint32_t period = t->tick();
      if (period == 0) return;
      t->next += std::chrono::milliseconds(period);
      const auto now = TaskLoop::Clock::now();
      if (t->next < now) t->next = now;  // fell behind: do not burst to catch up
      t->loop.postAt(t->next, Step{t});
    }
  };
  loop.postAt(t->next, Step{t});
}

uint64_t nowUnixMs() {
  return static_cast<uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(
                                   std::chrono::system_clock::now().time_since_epoch()).count());
}

std::string fixedText(const char* s, size_t capacity) { return std::string(s, strnlen(s, capacity)); }

void setFixed(char* dst, size_t capacity, const std::string& s) {
  const size_t n = std::min(s.size(), capacity - 1);
  std::memcpy(dst, s.data(), n);
  dst[n] = '\0';
}

}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

// ---------------------------------------------------------------------------------------
// Lifecycle

ORVA_API void ORVA_CALL orva_vantix_get_version(char* version, uint32_t versionLength) {
  guardedVoid([&] {
    gen::journal_get_version(version, versionLength);
    copyOut(scriptedText("orva_vantix_get_version").value_or(kVersion), version, versionLength);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_engine_init_with_profile(const orva_engine_profile* profile) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_engine_init_with_profile(profile);
    if (auto code = refusal("orva_vantix_engine_init_with_profile")) return *code;
    if (!profile) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.initialized = true;
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_engine_uninit_async(void) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_engine_uninit_async();
    if (auto code = refusal("orva_vantix_engine_uninit_async")) return *code;
    bool wasActive = false;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      wasActive = engine().st.active;
    }
    // Everything running stops: older tasks are skipped from here on, pending calls are
    // never answered, and the state is that of a fresh engine.
    core().bumpEpoch();
    core().dropPending();
    engine().resetState();
    core().postEvent([wasActive] {
      // A frame callback still running must return first: nothing follows engine_uninit.
      core().frames.barrier();
      if (wasActive) gen::fire_engine_state_update(ORVA_ENGINE_STATE_STOP);
      gen::fire_engine_uninit();
    });
    return 0;
  });
}
