// The simulated engine's bookkeeping: the journal of calls, scripted return values, and
// asynchronous calls answered automatically or by hand.
#include <cstring>
#include <functional>

#include "sim_test_support.h"

namespace orva::sim::test {
namespace {

class SimJournal : public SimTest {};

TEST_F(SimJournal, RecordsArgumentsByTheirKind) {
  struct Case {
    const char* what;
    std::function<void()> call;
    const char* fn;
    const char* args;
  };
  const Case cases[] = {
      {"structure by pointer, nested fixed texts, 64-bit",
       [] {
         orva_user user{};
         std::strcpy(user.userID, "u-1");
         std::strcpy(user.userName, "Ünïcode");
         orva_room_config config{};
         config.maxMemberCount = 4000000000u;
         config.isUserStatusNotify = true;
         std::strcpy(config.token, "tok");
         int32_t seq = 0;
         ENGINE(orva_vantix_login_room_with_callback)("room-1", &user, &config, &seq);
       },
       "orva_vantix_login_room_with_callback",
       R"({"roomID":"room-1","user":{"userID":"u-1","userName":"Ünïcode"},
           "config":{"maxMemberCount":4000000000,"isUserStatusNotify":true,"token":"tok","capabilityNegotiationTypes":0}})"},
      {"list of scalars",
       [] {
         const int32_t areas[] = {3, -4, 5};
         ENGINE(orva_vantix_set_geo_fence)(1, areas, 3);
       },
       "orva_vantix_set_geo_fence", R"({"type":1,"areaList":[3,-4,5]})"},
      {"list of structures",
       [] {
         const orva_roi_rect rects[] = {{1, 2, 3, 4, 5}, {6, 7, 8, 9, 10}};
         ENGINE(orva_vantix_set_custom_video_capture_region_of_interest)(rects, 2, 1);
       },
       "orva_vantix_set_custom_video_capture_region_of_interest",
       R"({"rectList":[{"x":1,"y":2,"width":3,"height":4,"strength":5},{"x":6,"y":7,"width":8,"height":9,"strength":10}],"channel":1})"},
      {"byte block",
       [] {
         const uint8_t sei[] = {0, 127, 255};
         ENGINE(orva_vantix_send_sei)(sei, 3, 2);
       },
       "orva_vantix_send_sei", R"({"data":[0,127,255],"channel":2})"},
      {"NULL structure pointer", [] { ENGINE(orva_vantix_enable_publish_direct_to_cdn)(true, nullptr, 0); },
       "orva_vantix_enable_publish_direct_to_cdn", R"({"enable":true,"config":null,"channel":0})"},
      {"unsigned 64-bit beyond 2^53, output left out",
       [] {
         int32_t seq = 0;
         ENGINE(orva_vantix_media_player_seek_to)(18446744073709551611ull, &seq, 1);
       },
       "orva_vantix_media_player_seek_to", R"({"millisecond":18446744073709551611,"index":1})"},
      {"signed 64-bit", [] { ENGINE(orva_vantix_create_screen_capture_source)(-9007199254740993ll, 2); },
       "orva_vantix_create_screen_capture_source", R"({"sourceId":-9007199254740993,"sourceType":2})"},
      {"float", [] { ENGINE(orva_vantix_set_audio_equalizer_gain)(3, 1.5f); }, "orva_vantix_set_audio_equalizer_gain",
       R"({"bandIndex":3,"bandGain":1.5})"},
      {"fixed numeric arrays",
       [] {
         orva_reverb_echo_param p{};
         p.inGain = 0.25f;
         p.numDelays = 2;
         p.delay[0] = 10;
         p.decay[1] = 0.5f;
         ENGINE(orva_vantix_set_reverb_echo_param)(&p);
       },
       "orva_vantix_set_reverb_echo_param",
       R"({"param":{"inGain":0.25,"outGain":0,"numDelays":2,"delay":[10,0,0,0,0,0,0],"decay":[0,0.5,0,0,0,0,0]}})"},
      {"output text buffer left out",
       [] {
         char buf[64];
         ENGINE(orva_vantix_get_version)(buf, sizeof buf);
       },
       "orva_vantix_get_version", "{}"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    Control::reset();
    c.call();
    const auto calls = parseJson(Control::calls());
    ASSERT_EQ(calls.Size(), 1u) << Control::calls();
    EXPECT_STREQ(calls[0]["fn"].GetString(), c.fn);
    EXPECT_TRUE(sameJson(c.args, toJson(calls[0]["args"])));
  }
}

TEST_F(SimJournal, KeepsCallOrderAndFiltersByName) {
  ENGINE(orva_vantix_set_room_mode)(1);
  ENGINE(orva_vantix_enable_aec)(true);
  ENGINE(orva_vantix_set_room_mode)(2);
  const auto all = parseJson(Control::calls());
  ASSERT_EQ(all.Size(), 3u);
  EXPECT_STREQ(all[1]["fn"].GetString(), "orva_vantix_enable_aec");
  EXPECT_TRUE(sameJson(R"([{"fn":"orva_vantix_set_room_mode","args":{"mode":1}},{"fn":"orva_vantix_set_room_mode","args":{"mode":2}}])",
                       Control::calls("orva_vantix_set_room_mode")));
  // The control interface itself leaves no trace; reset forgets everything.
  Control::version();
  Control::pending();
  EXPECT_EQ(parseJson(Control::calls()).Size(), 3u);
  Control::reset();
  EXPECT_EQ(Control::calls(), "[]");
}

TEST_F(SimJournal, ScriptedReturnsOfEveryShape) {
  ASSERT_EQ(Control::setReturn("orva_vantix_set_room_mode", "1003"), 0);
  EXPECT_EQ(ENGINE(orva_vantix_set_room_mode)(0), 1003);
  ASSERT_EQ(Control::setReturn("orva_vantix_is_feature_supported", "true"), 0);
  EXPECT_TRUE(ENGINE(orva_vantix_is_feature_supported)(7));
  ASSERT_EQ(Control::setReturn("orva_vantix_media_player_get_total_duration", "18446744073709551615"), 0);
  EXPECT_EQ(ENGINE(orva_vantix_media_player_get_total_duration)(0), UINT64_MAX);

  ASSERT_EQ(Control::setReturn("orva_vantix_get_video_config", R"({"fps":30,"captureWidth":1280})"), 0);
  const orva_video_config vc = ENGINE(orva_vantix_get_video_config)(0);
  EXPECT_EQ(vc.fps, 30);
  EXPECT_EQ(vc.captureWidth, 1280);
  EXPECT_EQ(vc.bitrate, 0);  // keys left out are zero

  ASSERT_EQ(Control::setReturn("orva_vantix_get_audio_device_list", R"([{"deviceID":"x","deviceName":"X"},{"deviceID":"y"}])"), 0);
  uint32_t count = 0;
  orva_device_info* list = ENGINE(orva_vantix_get_audio_device_list)(0, &count);
  ASSERT_EQ(count, 2u);
  EXPECT_STREQ(list[0].deviceName, "X");
  EXPECT_STREQ(list[1].deviceID, "y");
  ENGINE(orva_vantix_free_audio_device_list)(list);

  ASSERT_EQ(Control::setReturn("orva_vantix_call_experimental_api", R"("scripted answer")"), 0);
  char* answer = ENGINE(orva_vantix_call_experimental_api)("{}");
  EXPECT_STREQ(answer, "scripted answer");
  ENGINE(orva_vantix_free_call_experimental_api_result)(answer);

  ASSERT_EQ(Control::setReturn("orva_vantix_get_version", R"("9.9.9")"), 0);
  char version[4];
  ENGINE(orva_vantix_get_version)(version, sizeof version);
  EXPECT_STREQ(version, "9.9");  // truncated to the caller's buffer
  EXPECT_EQ(Control::version(), "9.9.9");

  Control::reset();
  EXPECT_EQ(ENGINE(orva_vantix_set_room_mode)(0), 0);
  EXPECT_EQ(ENGINE(orva_vantix_get_video_config)(0).fps, 15);
  EXPECT_EQ(Control::version(), "1.0.0-sim");
}

TEST_F(SimJournal, ScriptedValuesMustFitTheReturnType) {
  struct Case {
    const char* fn;
    const char* value;
    const char* errorMentions;
  } cases[] = {
      {"orva_vantix_no_such_function", "0", "unknown entry point"},
      {"orva_vantix_custom_log", "0", "returns nothing"},
      {"orva_vantix_set_room_mode", R"("1")", "int32"},
      {"orva_vantix_get_video_config", "[]", "an object"},
      {"orva_vantix_get_audio_device_list", R"([{"deviceID":5}])", "value[0].deviceID"},
      {"orva_vantix_call_experimental_api", "{}", "a string"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fn);
    std::string error;
    EXPECT_EQ(Control::setReturn(c.fn, c.value, &error), -1);
    EXPECT_NE(error.find(c.errorMentions), std::string::npos) << error;
  }
}

// ---------------------------------------------------------------------------------------
// Asynchronous calls

TEST_F(SimJournal, AsynchronousCallsAreAnsweredOnAnEngineThreadWithTheirSequenceNumber) {
  Sink sink;
  Recording recording(sink, {"upload_log_result", "room_set_room_extra_info_result"});
  int32_t first = 0, second = 0, third = 0;
  EXPECT_EQ(ENGINE(orva_vantix_upload_log)(&first), 0);
  EXPECT_EQ(ENGINE(orva_vantix_upload_log)(&second), 0);
  EXPECT_EQ(ENGINE(orva_vantix_set_room_extra_info)("room", "key", "value", &third), 0);
  EXPECT_GT(first, 0);
  EXPECT_EQ(second, first + 1);
  EXPECT_EQ(third, second + 1);
  const auto events = sink.waitFor(3);
  ASSERT_EQ(events.size(), 3u);
  EXPECT_TRUE(sameJson(R"({"seq":)" + std::to_string(first) + R"(,"errorCode":0})", events[0].json));
  EXPECT_TRUE(sameJson(R"({"seq":)" + std::to_string(second) + R"(,"errorCode":0})", events[1].json));
  // Result keys that name arguments of the call carry them.
  EXPECT_TRUE(sameJson(R"({"errorCode":0,"roomID":"room","key":"key","seq":)" + std::to_string(third) + "}", events[2].json));
  for (const auto& e : events) EXPECT_NE(e.thread, std::this_thread::get_id());
}

TEST_F(SimJournal, WithoutAutoCompletionCallsWaitForComplete) {
  Sink sink;
  Recording recording(sink, {"upload_log_result", "mixer_start_result"});
  Control::autoComplete(false);
  int32_t a = 0, b = 0;
  ENGINE(orva_vantix_upload_log)(&a);
  orva_mixer_task task{};
  ENGINE(orva_vantix_start_mixer_task)(&task, &b);
  EXPECT_TRUE(sameJson(R"([{"fn":"orva_vantix_upload_log","seq":)" + std::to_string(a) +
                           R"(},{"fn":"orva_vantix_start_mixer_task","seq":)" + std::to_string(b) + "}]",
                       Control::pending()));
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(sink.events().empty());

  std::string error;
  EXPECT_EQ(Control::complete(b, R"({"errorCode":"bad"})", &error), -1);
  EXPECT_NE(error.find("errorCode"), std::string::npos) << error;
  EXPECT_EQ(Control::complete(b, R"({"errorCode":1005,"extendedData":"{\"why\":1}","seq":999})"), 1);
  auto events = sink.events();  // complete returns after the callback returned
  ASSERT_EQ(events.size(), 1u);
  EXPECT_TRUE(sameJson(R"({"errorCode":1005,"seq":)" + std::to_string(b) + R"(,"extendedData":"{\"why\":1}"})",
                       events[0].json));
  EXPECT_NE(events[0].thread, std::this_thread::get_id());
  EXPECT_TRUE(sameJson(R"([{"fn":"orva_vantix_upload_log","seq":)" + std::to_string(a) + "}]", Control::pending()));

  EXPECT_EQ(Control::complete(b, "{}"), 0);  // already answered
  EXPECT_EQ(Control::complete(123456789, "{}"), 0);
  Control::reset();  // forgets pending calls and turns automatic completion back on
  EXPECT_EQ(Control::pending(), "[]");
  EXPECT_EQ(Control::complete(a, "{}"), 0);
}

TEST_F(SimJournal, AScriptedNonZeroResultRefusesTheCallWithoutAnAnswer) {
  Sink sink;
  Recording recording(sink, {"upload_log_result"});
  ASSERT_EQ(Control::setReturn("orva_vantix_upload_log", "1000001"), 0);
  int32_t seq = 0;
  EXPECT_EQ(ENGINE(orva_vantix_upload_log)(&seq), 1000001);
  EXPECT_NE(seq, 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(sink.events().empty());
  EXPECT_EQ(Control::pending(), "[]");
}

}  // namespace
}  // namespace orva::sim::test
