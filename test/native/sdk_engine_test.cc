// Engine creation and destruction against the simulated engine beside this binary: the
// registrations and their context values as the engine journal saw them, what destruction
// clears and keeps, the handler refusal, completions of real asynchronous calls, the uninit
// report, sub-object routing and events delivered from the engine's own threads.
//
// The simulated engine exports control functions (orva_sim_*); against a library without
// them (a placeholder, or the vendor's) these tests are skipped.
#include <gtest/gtest.h>
#include <rapidjson/document.h>

#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include "../../engine/sim/orva_sim_control.h"
#include "OrvaVantixSDKWrapper/Engine.h"
#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "OrvaVantixSDKWrapper/EngineLibrary.h"
#include "OrvaVantixSDKWrapper/SubObjects.h"

namespace orva::sdk {
namespace {

using namespace std::chrono_literals;

// The simulated engine's control functions, resolved in the library the layer loaded.
struct Sim {
  orva_sim_reset_fn reset = nullptr;
  orva_sim_calls_fn calls = nullptr;
  orva_sim_registered_fn registered = nullptr;
  orva_sim_emit_fn emit = nullptr;
  orva_sim_burst_fn burst = nullptr;
  orva_sim_frame_fn frame = nullptr;
  orva_sim_set_return_fn setReturn = nullptr;
  orva_sim_auto_complete_fn autoComplete = nullptr;
  orva_sim_pending_fn pending = nullptr;
  orva_sim_complete_fn complete = nullptr;
  orva_sim_free_fn free = nullptr;

  static const Sim* get() {
    static const Sim* sim = [] () -> const Sim* {
      if (ensureEngineApi() == nullptr) return nullptr;
      const std::string path = engineLibraryDirectory() + engineLibraryFileName();
      void* lib = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
      if (lib == nullptr) return nullptr;
      static Sim s;
      auto resolve = [lib](auto& slot, const char* name) {
        slot = reinterpret_cast<std::remove_reference_t<decltype(slot)>>(dlsym(lib, name));
        return slot != nullptr;
      };
      const bool all = resolve(s.reset, "orva_sim_reset") && resolve(s.calls, "orva_sim_calls") &&
                       resolve(s.registered, "orva_sim_registered") && resolve(s.emit, "orva_sim_emit") &&
                       resolve(s.burst, "orva_sim_burst") && resolve(s.frame, "orva_sim_frame") &&
                       resolve(s.setReturn, "orva_sim_set_return") && resolve(s.autoComplete, "orva_sim_auto_complete") &&
                       resolve(s.pending, "orva_sim_pending") && resolve(s.complete, "orva_sim_complete") &&
                       resolve(s.free, "orva_sim_free");
      return all ? &s : nullptr;
    }();
    return sim;
  }

  std::string take(char* text) const {
    std::string out = text != nullptr ? text : "";
    if (text != nullptr) free(text);
    return out;
  }
  rapidjson::Document json(char* text) const {
    rapidjson::Document doc;
    doc.Parse(take(text).c_str());
    return doc;
  }
  int32_t fire(const char* name, const std::string& payload) const {
    char* error = nullptr;
    const int32_t r = emit(name, payload.c_str(), &error);
    const std::string why = take(error);
    EXPECT_GE(r, 0) << name << ": " << why;
    return r;
  }
  std::vector<std::string> registeredNames() const {
    std::vector<std::string> names;
    auto doc = json(registered());
    for (const auto& v : doc.GetArray()) names.emplace_back(v.GetString());
    return names;
  }
};

// The names of test/fixtures/engine-names.js, the list every part of the project checks against.
std::vector<std::string> fixtureList(const std::string& constant) {
  std::string file = __FILE__;
  file = file.substr(0, file.find_last_of('/')) + "/../fixtures/engine-names.js";
  std::ifstream in(file);
  std::stringstream text;
  text << in.rdbuf();
  const std::string all = text.str();
  const auto start = all.find("const " + constant + " = [");
  EXPECT_NE(start, std::string::npos) << constant;
  const auto end = all.find("];", start);
  const std::string body = all.substr(start, end - start);
  std::vector<std::string> names;
  for (auto open = body.find('\''); open != std::string::npos; open = body.find('\'', open + 1)) {
    const auto close = body.find('\'', open + 1);
    names.push_back(body.substr(open + 1, close - open - 1));
    open = close;
  }
  return names;
}

// Waits for a condition set on an engine thread.
class Signal {
 public:
  void notify() {
    std::lock_guard<std::mutex> lock(mutex_);
    ++count_;
    cv_.notify_all();
  }
  bool waitFor(int count, std::chrono::milliseconds timeout = 3000ms) {
    std::unique_lock<std::mutex> lock(mutex_);
    return cv_.wait_for(lock, timeout, [&] { return count_ >= count; });
  }
  int count() {
    std::lock_guard<std::mutex> lock(mutex_);
    return count_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable cv_;
  int count_ = 0;
};

class Handler : public IEngineEventHandler {
 public:
  void onRoomStateUpdate(RoomStateUpdateEvent e) override {
    {
      std::lock_guard<std::mutex> lock(mutex);
      rooms.push_back(e.roomID);
      threads.insert(std::this_thread::get_id());
    }
    signal.notify();
  }
  std::mutex mutex;
  std::vector<std::string> rooms;
  std::set<std::thread::id> threads;
  Signal signal;
};

class SdkEngine : public ::testing::Test {
 protected:
  void SetUp() override {
    sim = Sim::get();
    if (sim == nullptr) GTEST_SKIP() << "the engine library beside the tests has no simulation controls";
    sim->reset();
  }

  void TearDown() override {
    if (sim == nullptr) return;
    destroyAndWait();
    EngineContext::instance().setEventHandler(nullptr);
    sim->reset();
  }

  int32_t create(std::shared_ptr<IEngineEventHandler> handler) {
    EngineProfile profile;
    profile.appID = 1234;
    profile.appSign = "sign";
    profile.scenario = 3;
    return Engine::create(profile, std::move(handler));
  }

  // Destroys the engine and waits for the engine's uninit report, so that no report of this
  // test reaches the next one.
  void destroyAndWait() {
    if (!Engine::exists()) return;
    auto done = std::make_shared<Signal>();
    Engine::destroy([done] { done->notify(); });
    EXPECT_TRUE(done->waitFor(1));
  }

  // The registration calls of the journal: (name, callback, user_context).
  struct Registration {
    std::string name;
    uint64_t callback;
    uint64_t context;
  };
  std::vector<Registration> registrations() const {
    std::vector<Registration> out;
    auto doc = sim->json(sim->calls(nullptr));
    const std::string prefix = "orva_register_", suffix = "_callback";
    for (const auto& call : doc.GetArray()) {
      const std::string fn = call["fn"].GetString();
      if (fn.rfind(prefix, 0) != 0) continue;
      const auto& args = call["args"];
      out.push_back({fn.substr(prefix.size(), fn.size() - prefix.size() - suffix.size()), args["callback"].GetUint64(),
                     args["user_context"].GetUint64()});
    }
    return out;
  }

  const Sim* sim = nullptr;
};

TEST_F(SdkEngine, CreationRegistersEveryTrampolineInOrderThenInitialises) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  ASSERT_TRUE(Engine::instance());

  const auto order = fixtureList("REGISTRATION_ORDER");
  ASSERT_EQ(order.size(), 194u);
  const auto regs = registrations();
  ASSERT_EQ(regs.size(), order.size());
  const auto context = reinterpret_cast<uint64_t>(&EngineContext::instance());
  const std::set<std::string> contextless = {"recv_windows_message", "engine_uninit", "fatal_error"};
  uint64_t mixerStart = 0, mixerStop = 0;
  for (std::size_t i = 0; i < order.size(); ++i) {
    SCOPED_TRACE(order[i]);
    EXPECT_EQ(regs[i].name, order[i]);
    EXPECT_EQ(std::string(kRegistrationOrder[i]), order[i]);
    EXPECT_NE(regs[i].callback, 0u);
    const bool zero = contextless.count(order[i]) > 0 || order[i].rfind("ai_voice_changer_", 0) == 0;
    EXPECT_EQ(regs[i].context, zero ? 0u : context);
    if (order[i] == "mixer_start_result") mixerStart = regs[i].callback;
    if (order[i] == "mixer_stop_result") mixerStop = regs[i].callback;
    if (order[i] == "auto_mixer_start_result") {
      EXPECT_EQ(regs[i].callback, mixerStart);
    }
    if (order[i] == "auto_mixer_stop_result") {
      EXPECT_EQ(regs[i].callback, mixerStop);
    }
  }
  // Everything is registered now (names kept from an earlier engine keep their first place
  // in the engine's own order, so compare as sets; the journal above has the order).
  auto now = sim->registeredNames();
  auto expected = order;
  std::sort(now.begin(), now.end());
  std::sort(expected.begin(), expected.end());
  EXPECT_EQ(now, expected);

  // After the registrations: the platform language, then the engine with the profile.
  auto doc = sim->json(sim->calls(nullptr));
  std::vector<std::string> rest;
  for (const auto& call : doc.GetArray()) {
    const std::string fn = call["fn"].GetString();
    if (fn.rfind("orva_register_", 0) != 0) rest.push_back(fn);
  }
  EXPECT_EQ(rest, (std::vector<std::string>{"orva_vantix_set_platform_language", "orva_vantix_engine_init_with_profile"}));
  auto init = sim->json(sim->calls("orva_vantix_engine_init_with_profile"));
  const auto& profile = init[0]["args"]["profile"];
  EXPECT_EQ(profile["appID"].GetUint(), 1234u);
  EXPECT_STREQ(profile["appSign"].GetString(), "sign");
  EXPECT_EQ(profile["scenario"].GetInt(), 3);
  auto language = sim->json(sim->calls("orva_vantix_set_platform_language"));
  EXPECT_EQ(language[0]["args"]["language"].GetInt(), 5);

  EXPECT_EQ(create(std::make_shared<Handler>()), -1);  // one engine at a time
}

TEST_F(SdkEngine, DestructionClearsItsListAndKeepsTheRestRegistered) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  sim->reset();
  destroyAndWait();
  EXPECT_FALSE(Engine::instance());

  const auto order = fixtureList("REGISTRATION_ORDER");
  const auto kept = fixtureList("KEPT_AFTER_DESTRUCTION");
  const auto extra = fixtureList("CLEARED_NEVER_REGISTERED");
  std::vector<std::string> expectedCleared;
  for (const auto& name : order) {
    if (std::find(kept.begin(), kept.end(), name) == kept.end()) expectedCleared.push_back(name);
  }
  expectedCleared.insert(expectedCleared.end(), extra.begin(), extra.end());
  ASSERT_EQ(expectedCleared.size(), 184u);

  std::vector<std::string> cleared;
  for (const auto& r : registrations()) {
    if (r.name == "api_called_result") continue;
    EXPECT_EQ(r.callback, 0u) << r.name;
    EXPECT_EQ(r.context, 0u) << r.name;
    cleared.push_back(r.name);
  }
  EXPECT_EQ(cleared, expectedCleared);
  for (std::size_t i = 0; i < kClearedOnDestruction.size(); ++i) EXPECT_EQ(kClearedOnDestruction[i], expectedCleared[i]);

  // What stays registered, in registration order.
  std::vector<std::string> keptInOrder;
  for (const auto& name : order) {
    if (std::find(kept.begin(), kept.end(), name) != kept.end()) keptInOrder.push_back(name);
  }
  EXPECT_EQ(sim->registeredNames(), keptInOrder);

  // The uninit call, then the API-result callback cleared last.
  auto doc = sim->json(sim->calls(nullptr));
  std::vector<std::string> tail;
  for (const auto& call : doc.GetArray()) {
    const std::string fn = call["fn"].GetString();
    if (fn == "orva_vantix_engine_uninit_async" || fn == "orva_register_api_called_result_callback") tail.push_back(fn);
  }
  EXPECT_EQ(tail, (std::vector<std::string>{"orva_vantix_engine_uninit_async", "orva_register_api_called_result_callback"}));
  EXPECT_EQ(std::string(doc[doc.Size() - 1]["fn"].GetString()), "orva_register_api_called_result_callback");

  // Kept registrations still reach their trampolines; cleared ones reach nothing.
  EXPECT_EQ(sim->fire("room_token_will_expire", R"({"roomID":"r","remainTimeInSecond":30})"), 1);
  EXPECT_EQ(sim->fire("media_player_video_size_changed", R"({"index":0,"width":1,"height":1})"), 1);
  EXPECT_EQ(sim->fire("room_state_update", R"({"roomID":"r"})"), 0);
}

TEST_F(SdkEngine, RefusedCreationClearsRegistrationsAndEmptiesTheContext) {
  char* error = nullptr;
  ASSERT_EQ(sim->setReturn("orva_vantix_engine_init_with_profile", "1000001", &error), 0) << sim->take(error);
  EXPECT_EQ(create(std::make_shared<Handler>()), 1000001);
  EXPECT_FALSE(Engine::exists());
  EXPECT_FALSE(Engine::instance());
  EXPECT_FALSE(EngineContext::instance().eventHandler.get());
  const auto kept = fixtureList("KEPT_AFTER_DESTRUCTION");
  EXPECT_EQ(sim->registeredNames().size(), kept.size());
}

TEST_F(SdkEngine, SecondHandlerIsRefusedWithTheEnginesAnswer) {
  auto first = std::make_shared<Handler>();
  auto second = std::make_shared<Handler>();
  ASSERT_EQ(create(first), 0);
  char* error = nullptr;
  ASSERT_EQ(sim->setReturn("orva_vantix_handle_api_call_result", "4242", &error), 0) << sim->take(error);

  auto& context = EngineContext::instance();
  EXPECT_EQ(context.setEventHandler(second), 4242);
  auto reported = sim->json(sim->calls("orva_vantix_handle_api_call_result"));
  ASSERT_EQ(reported.Size(), 1u);
  EXPECT_STREQ(reported[0]["args"]["apiName"].GetString(), "setEventHandler");
  EXPECT_EQ(reported[0]["args"]["errorCode"].GetInt(), 1000008);
  EXPECT_EQ(context.eventHandler.get(), first);

  EXPECT_EQ(context.setEventHandler(nullptr), 0);
  EXPECT_EQ(context.setEventHandler(second), 0);
  EXPECT_EQ(sim->fire("room_state_update", R"({"roomID":"to-second","state":2})"), 1);
  EXPECT_EQ(second->rooms, (std::vector<std::string>{"to-second"}));
  EXPECT_TRUE(first->rooms.empty());
}

TEST_F(SdkEngine, EventsArriveOnEngineThreads) {
  auto handler = std::make_shared<Handler>();
  ASSERT_EQ(create(handler), 0);
  EXPECT_EQ(sim->fire("room_state_update", R"({"roomID":"r1","state":1,"errorCode":0,"extendedData":""})"), 1);
  ASSERT_EQ(handler->rooms, (std::vector<std::string>{"r1"}));
  EXPECT_EQ(handler->threads.count(std::this_thread::get_id()), 0u);
}

TEST_F(SdkEngine, CompletionOfARealCallRunsOnceOnAnEngineThread) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  auto engine = Engine::instance();
  sim->autoComplete(false);

  Signal done;
  std::atomic<int32_t> code{-1};
  std::thread::id ranOn;
  const int32_t result = engine->setRoomExtraInfo("room", "key", "value", [&](RoomSetRoomExtraInfoResultEvent e) {
    code = e.errorCode;
    ranOn = std::this_thread::get_id();
    done.notify();
  });
  ASSERT_EQ(result, 0);
  auto pending = sim->json(sim->pending());
  ASSERT_EQ(pending.Size(), 1u);
  const int32_t seq = pending[0]["seq"].GetInt();
  EXPECT_EQ(EngineContext::instance().completions.roomSetRoomExtraInfoResult.size(), 1u);

  char* error = nullptr;
  ASSERT_EQ(sim->complete(seq, R"({"errorCode":3})", &error), 1) << sim->take(error);
  ASSERT_TRUE(done.waitFor(1));
  EXPECT_EQ(code.load(), 3);
  EXPECT_NE(ranOn, std::this_thread::get_id());

  // The same answer again, and an answer nobody waits for: nothing runs.
  const std::string again = "{\"seq\":" + std::to_string(seq) + ",\"errorCode\":4,\"roomID\":\"room\",\"key\":\"key\"}";
  EXPECT_EQ(sim->fire("room_set_room_extra_info_result", again), 1);
  EXPECT_EQ(sim->fire("room_set_room_extra_info_result", R"({"seq":987654,"errorCode":5})"), 1);
  EXPECT_EQ(done.count(), 1);
  EXPECT_EQ(EngineContext::instance().completions.roomSetRoomExtraInfoResult.size(), 0u);
}

TEST_F(SdkEngine, QuickAnswersAndRefusedCalls) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  auto engine = Engine::instance();
  // Answered automatically, possibly before the call is back here: never lost.
  Signal done;
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(engine->setStreamExtraInfo("extra", 0, [&](PublisherUpdateStreamExtraInfoResultEvent) { done.notify(); }), 0);
  }
  EXPECT_TRUE(done.waitFor(20));

  // A refused call returns the engine's code and its completion never runs.
  char* error = nullptr;
  ASSERT_EQ(sim->setReturn("orva_vantix_set_stream_extra_info", "1000002", &error), 0) << sim->take(error);
  bool ran = false;
  EXPECT_EQ(engine->setStreamExtraInfo("extra", 0, [&](PublisherUpdateStreamExtraInfoResultEvent) { ran = true; }),
            1000002);
  EXPECT_EQ(EngineContext::instance().completions.publisherUpdateStreamExtraInfoResult.size(), 0u);
  EXPECT_FALSE(ran);
}

TEST_F(SdkEngine, UninitCallableRunsOnceOnTheReportingThread) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  Signal done;
  std::thread::id ranOn;
  Engine::destroy([&] {
    ranOn = std::this_thread::get_id();
    done.notify();
  });
  ASSERT_TRUE(done.waitFor(1));
  EXPECT_NE(ranOn, std::this_thread::get_id());
  EXPECT_EQ(sim->fire("engine_uninit", "{}"), 1);  // still registered; reports again
  EXPECT_EQ(done.count(), 1);
}

class PlayerEvents : public IMediaPlayerEventHandler {
 public:
  void onMediaPlayerStateUpdate(MediaPlayer& player, MediaPlayerStateUpdateEvent e) override {
    std::lock_guard<std::mutex> lock(mutex);
    seen.emplace_back(&player, e.state);
  }
  std::mutex mutex;
  std::vector<std::pair<MediaPlayer*, int32_t>> seen;
};

TEST_F(SdkEngine, MediaPlayerEventsReachTheirPlayerUntilDestroyed) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  auto engine = Engine::instance();
  auto player = engine->createMediaPlayer();
  ASSERT_TRUE(player);
  auto events = std::make_shared<PlayerEvents>();
  player->setEventHandler(events);
  EXPECT_EQ(player->setVolume(30), 0);
  auto volumes = sim->json(sim->calls("orva_vantix_media_player_set_volume"));
  ASSERT_EQ(volumes.Size(), 1u);
  EXPECT_EQ(volumes[0]["args"]["index"].GetInt(), player->index());

  const std::string mine = "{\"index\":" + std::to_string(player->index()) + ",\"state\":1}";
  const std::string other = "{\"index\":" + std::to_string(player->index() + 1) + ",\"state\":2}";
  EXPECT_EQ(sim->fire("media_player_state_update", mine), 1);
  EXPECT_EQ(sim->fire("media_player_state_update", other), 1);
  EXPECT_EQ(engine->destroyMediaPlayer(player), 0);
  EXPECT_EQ(sim->fire("media_player_state_update", mine), 1);

  ASSERT_EQ(events->seen.size(), 1u);
  EXPECT_EQ(events->seen[0].first, player.get());
  EXPECT_EQ(events->seen[0].second, 1);
}

TEST_F(SdkEngine, ListResultsAreCopiedAndReleased) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  char* error = nullptr;
  ASSERT_EQ(sim->setReturn("orva_vantix_get_video_device_list",
                           R"([{"deviceID":"cam-1","deviceName":"Front"},{"deviceID":"cam-2","deviceName":"Back"}])",
                           &error),
            0)
      << sim->take(error);
  auto devices = Engine::instance()->getVideoDeviceList();
  ASSERT_EQ(devices.size(), 2u);
  EXPECT_EQ(devices[0].deviceID, "cam-1");
  EXPECT_EQ(devices[1].deviceName, "Back");
  EXPECT_EQ(sim->json(sim->calls("orva_vantix_free_video_device_list")).Size(), 1u);
}

TEST_F(SdkEngine, WindowMessageFromTheEngineRunsTheTask) {
  ASSERT_EQ(create(std::make_shared<Handler>()), 0);
  std::atomic<int> ran{0};
  auto* task = new WindowTask([&ran] { ran.fetch_add(1); });
  const std::string payload = "{\"message\":42854,\"param\":" + std::to_string(reinterpret_cast<uintptr_t>(task)) + "}";
  EXPECT_EQ(sim->fire("recv_windows_message", payload), 1);
  EXPECT_EQ(ran.load(), 1);  // and freed: ASan reports the task otherwise
}

// Engine threads flood events while the handler is cleared and installed again.
TEST_F(SdkEngine, HandlerClearedWhileEngineThreadsDeliver) {
  auto handler = std::make_shared<Handler>();
  ASSERT_EQ(create(handler), 0);
  std::atomic<bool> stop{false};
  std::thread toggler([&] {
    auto& context = EngineContext::instance();
    while (!stop.load()) {
      context.setEventHandler(nullptr);
      context.setEventHandler(std::make_shared<Handler>());
    }
  });
  uint64_t calls = 0;
  double seconds = 0;
  char* error = nullptr;
  const int32_t r = sim->burst("room_state_update", R"({"roomID":"flood","state":2})", 500, 3, nullptr, nullptr, &calls,
                               &seconds, &error);
  stop.store(true);
  toggler.join();
  EXPECT_EQ(r, 1) << sim->take(error);
  EXPECT_EQ(calls, 1500u);
}

}  // namespace
}  // namespace orva::sdk
