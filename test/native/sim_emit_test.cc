// Emitting callbacks through the simulated engine: every callback's payload converts into
// its C arguments and back (driven by the generated samples and recorder), on an engine
// thread; registrations and their order; bursts.
#include <atomic>
#include <map>
#include <set>

#include "sim_test_support.h"

namespace orva::sim::test {
namespace {

class SimEmit : public SimTest {};

TEST_F(SimEmit, EverySampleRoundTripsOnAnEngineThread) {
  std::set<std::string> covered;
  for (size_t i = 0; i < rec::kSampleCount; ++i) {
    const rec::Sample& s = rec::kSamples[i];
    SCOPED_TRACE(std::string(s.name) + " " + s.payload);
    covered.insert(s.name);
    Sink sink;
    Recording recording(sink, {s.name});
    std::string error;
    ASSERT_EQ(Control::emit(s.name, s.payload, &error), 1) << error;
    // emit returns after the callback returned: the record is already there.
    const auto events = sink.events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].name, s.name);
    EXPECT_NE(events[0].thread, std::this_thread::get_id());
    EXPECT_TRUE(sameJson(s.expected, events[0].json));
  }
  EXPECT_EQ(covered.size(), rec::kRecorderCount) << "a callback has no sample";
}

TEST_F(SimEmit, KeysLeftOutAreZeroEmptyOrNull) {
  Sink sink;
  Recording recording(sink, {"room_stream_update", "publisher_quality_update", "im_recv_custom_command"});
  ASSERT_EQ(Control::emit("room_stream_update", "{}"), 1);
  ASSERT_EQ(Control::emit("publisher_quality_update", R"({"streamID":"s","quality":{"level":2}})"), 1);
  // An explicit null asks for a NULL pointer.
  ASSERT_EQ(Control::emit("im_recv_custom_command", R"({"roomID":null,"fromUser":null,"extra":1})"), 1);
  const auto e = sink.events();
  ASSERT_EQ(e.size(), 3u);
  EXPECT_TRUE(sameJson(R"({"roomID":"","updateType":0,"streamList":[],"extendedData":""})", e[0].json));
  const auto quality = parseJson(e[1].json);
  EXPECT_EQ(quality["quality"]["level"].GetInt(), 2);
  EXPECT_EQ(quality["quality"]["rtt"].GetDouble(), 0.0);
  EXPECT_FALSE(quality["quality"]["isHardwareEncode"].GetBool());
  EXPECT_TRUE(sameJson(R"({"roomID":null,"fromUser":null,"command":""})", e[2].json));
}

TEST_F(SimEmit, ByteBlocksAcceptBase64AndNumberArrays) {
  Sink sink;
  Recording recording(sink, {"player_recv_media_side_info", "captured_audio_spectrum_update"});
  ASSERT_EQ(Control::emit("player_recv_media_side_info", R"({"streamID":"s","data":{"$bytes":"AQL/"}})"), 1);
  // Four little-endian float bytes of 1.0 stand for a one-element list.
  ASSERT_EQ(Control::emit("captured_audio_spectrum_update", R"({"$bytes":"AACAPw=="})"), 1);
  const auto e = sink.events();
  ASSERT_EQ(e.size(), 2u);
  EXPECT_TRUE(sameJson(R"({"streamID":"s","data":[1,2,255]})", e[0].json));
  EXPECT_TRUE(sameJson("[1]", e[1].json));
}

TEST_F(SimEmit, RefusesWhatItCannotConvert) {
  struct Case {
    const char* name;
    const char* payload;
    const char* errorMentions;
  } cases[] = {
      {"no_such_callback", "{}", "unknown callback name"},
      {"room_state_update", R"({"state":"connected"})", "state"},
      {"room_state_update", R"({"state":1.5})", "int32"},
      {"room_online_user_count_update", R"({"count":2147483648})", "int32"},
      {"audio_effect_play_state_update", R"({"audioEffectID":-1})", "uint32"},
      {"room_stream_update", R"({"streamList":[{"user":{"userID":7}}]})", "streamList[0].user.userID"},
      {"player_recv_media_side_info", R"({"data":[256]})", "data[0]"},
      {"player_recv_media_side_info", R"({"data":{"$bytes":"!!"}})", "base64"},
      {"mixer_sound_level_update", R"({"abc":1})", "sound level ID"},
      {"room_state_update", "{not json", "not valid JSON"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + " " + c.payload);
    std::string error;
    EXPECT_EQ(Control::emit(c.name, c.payload, &error), -1);
    EXPECT_NE(error.find(c.errorMentions), std::string::npos) << error;
  }
}

TEST_F(SimEmit, AnUnregisteredCallbackIsNotCalled) {
  EXPECT_EQ(Control::emit("room_state_update", R"({"roomID":"r"})"), 0);
}

TEST_F(SimEmit, RegisteredListsCurrentRegistrationsInRegistrationOrder) {
  for (size_t i = 0; i < rec::kRecorderCount; ++i) registration(rec::kRecorders[i].name)(nullptr, nullptr);
  ASSERT_EQ(Control::registered(), "[]");
  Sink sink;
  auto reg = [&](const char* n) { registration(n)(rec::recorderFor(n), &sink); };
  auto clear = [&](const char* n) { registration(n)(nullptr, nullptr); };
  reg("room_state_update");
  reg("engine_uninit");
  reg("fatal_error");
  reg("engine_uninit");  // again while registered: keeps its place
  EXPECT_EQ(Control::registered(), R"(["room_state_update","engine_uninit","fatal_error"])");
  clear("room_state_update");
  clear("room_login_result");  // never registered: nothing changes
  EXPECT_EQ(Control::registered(), R"(["engine_uninit","fatal_error"])");
  reg("room_state_update");  // after a clear: at the end
  EXPECT_EQ(Control::registered(), R"(["engine_uninit","fatal_error","room_state_update"])");
  for (const char* n : {"room_state_update", "engine_uninit", "fatal_error"}) clear(n);
  EXPECT_EQ(Control::registered(), "[]");
  // Registrations are entry points like any other: journaled, and kept by reset.
  reg("fatal_error");
  const auto calls = parseJson(Control::calls("orva_register_fatal_error_callback"));
  ASSERT_GE(calls.Size(), 2u);
  const auto& last = calls[calls.Size() - 1]["args"];
  EXPECT_EQ(last["callback"].GetUint64(), reinterpret_cast<uintptr_t>(rec::recorderFor("fatal_error")));
  EXPECT_EQ(last["user_context"].GetUint64(), reinterpret_cast<uintptr_t>(&sink));
  Control::reset();
  EXPECT_EQ(Control::registered(), R"(["fatal_error"])");
  clear("fatal_error");
}

// The sim library exports every entry point and registration of the header; the tests
// resolve them the way the addon does.
TEST_F(SimEmit, ExportsEveryRegistration) {
  for (size_t i = 0; i < rec::kRecorderCount; ++i) {
    const std::string name = std::string("orva_register_") + rec::kRecorders[i].name + "_callback";
    EXPECT_NE(SimLibrary::get().symbol(name), nullptr) << name;
  }
}

// ---------------------------------------------------------------------------------------
// Burst

struct BurstLog {
  std::mutex mu;
  std::map<std::string, std::vector<int32_t>> statesByRoom;  // thread key -> counters in order
  std::map<std::string, std::set<std::thread::id>> threadsByRoom;
};

void ORVA_CALL logRoomState(const char* roomID, int32_t state, int32_t errorCode, const char* extendedData, void* ctx) {
  auto* log = static_cast<BurstLog*>(ctx);
  std::lock_guard<std::mutex> lock(log->mu);
  log->statesByRoom[roomID].push_back(state);
  log->threadsByRoom[roomID].insert(std::this_thread::get_id());
  EXPECT_EQ(errorCode, 7);
  EXPECT_STREQ(extendedData, "x");
}

int32_t burst(const char* name, const char* payload, uint32_t count, uint32_t threads, const char* counterKey,
              const char* threadKey, uint64_t* calls, double* seconds, std::string* error = nullptr) {
  char* e = nullptr;
  const int32_t rc = ENGINE(orva_sim_burst)(name, payload, count, threads, counterKey, threadKey, calls, seconds, &e);
  const std::string msg = Control::text(e);
  if (error) *error = msg;
  return rc;
}

TEST_F(SimEmit, BurstKeepsEachThreadsCallsInOrder) {
  BurstLog log;
  registration("room_state_update")(reinterpret_cast<AnyFn>(&logRoomState), &log);
  uint64_t calls = 0;
  double seconds = -1;
  ASSERT_EQ(burst("room_state_update", R"({"roomID":"ignored","errorCode":7,"extendedData":"x"})", 3000, 4, "state",
                  "roomID", &calls, &seconds),
            1);
  registration("room_state_update")(nullptr, nullptr);
  EXPECT_EQ(calls, 12000u);
  EXPECT_GE(seconds, 0.0);
  ASSERT_EQ(log.statesByRoom.size(), 4u);
  for (const char* key : {"0", "1", "2", "3"}) {
    SCOPED_TRACE(key);
    const auto& states = log.statesByRoom[key];
    ASSERT_EQ(states.size(), 3000u);
    for (int32_t i = 0; i < 3000; ++i) ASSERT_EQ(states[static_cast<size_t>(i)], i);
    ASSERT_EQ(log.threadsByRoom[key].size(), 1u);
    EXPECT_EQ(log.threadsByRoom[key].count(std::this_thread::get_id()), 0u);
  }
}

TEST_F(SimEmit, BurstRefusesKeysThatAreNotArgumentsOfTheirKind) {
  uint64_t calls = 0;
  double seconds = 0;
  std::string error;
  EXPECT_EQ(burst("room_state_update", "{}", 1, 1, "roomID", nullptr, &calls, &seconds, &error), -1);
  EXPECT_NE(error.find("counterKey roomID"), std::string::npos) << error;
  EXPECT_EQ(burst("room_state_update", "{}", 1, 1, nullptr, "state", &calls, &seconds, &error), -1);
  EXPECT_NE(error.find("threadKey state"), std::string::npos) << error;
  EXPECT_EQ(burst("room_state_update", "{}", 1, 0, nullptr, nullptr, &calls, &seconds, &error), -1);
  EXPECT_EQ(burst("room_state_update", "{}", 5, 1, nullptr, nullptr, &calls, &seconds), 0);  // nothing registered
  EXPECT_EQ(calls, 0u);
}

std::atomic<uint64_t> gCheapCalls{0};
void ORVA_CALL countRoomState(const char*, int32_t, int32_t, const char*, void*) {
  gCheapCalls.fetch_add(1, std::memory_order_relaxed);
}

TEST_F(SimEmit, BurstOfAMillionCheapCallsTakesWellUnderASecond) {
  gCheapCalls = 0;
  registration("room_state_update")(reinterpret_cast<AnyFn>(&countRoomState), nullptr);
  uint64_t calls = 0;
  double seconds = 0;
  ASSERT_EQ(burst("room_state_update", R"({"roomID":"r","state":2,"errorCode":0,"extendedData":""})", 1000000, 1,
                  "state", nullptr, &calls, &seconds),
            1);
  registration("room_state_update")(nullptr, nullptr);
  EXPECT_EQ(calls, 1000000u);
  EXPECT_EQ(gCheapCalls.load(), 1000000u);
  EXPECT_LT(seconds, kSanitized ? 10.0 : 0.5);
  RecordProperty("burst_seconds", std::to_string(seconds));
}

}  // namespace
}  // namespace orva::sim::test
