// What the simulated engine does by itself: room sequences, captured and remote frames,
// snapshots, players, uninit — all through the registered callbacks, on engine threads.
#include <array>
#include <cstring>

#include "sim_test_support.h"

namespace orva::sim::test {
namespace {

class SimBehaviour : public SimTest {};

std::vector<std::string> names(const std::vector<Sink::Event>& events) {
  std::vector<std::string> out;
  for (const auto& e : events) out.push_back(e.name);
  return out;
}

orva_user user(const char* id) {
  orva_user u{};
  std::strcpy(u.userID, id);
  std::strcpy(u.userName, id);
  return u;
}

TEST_F(SimBehaviour, LoginAnnouncesTheRoomThePeerAndOwnStreamsThenLogoutLeaves) {
  Sink sink;
  Recording recording(sink, {"room_state_update", "room_state_changed", "room_login_result", "room_logout_result",
                             "room_user_update", "room_stream_update", "publisher_state_update"});
  // A stream published before the login is announced with the room's streams.
  orva_publisher_config pc{};
  std::strcpy(pc.roomID, "room-1");
  ASSERT_EQ(ENGINE(orva_vantix_start_publishing_stream_with_config)("own-stream", &pc, 0), 0);
  const orva_user me = user("me");
  int32_t seq = 0;
  ASSERT_EQ(ENGINE(orva_vantix_login_room_with_callback)("room-1", &me, nullptr, &seq), 0);
  auto events = sink.waitFor(9);
  std::vector<Sink::Event> room;
  for (const auto& e : events) {
    if (e.name != "publisher_state_update") room.push_back(e);
  }
  ASSERT_EQ(names(room), (std::vector<std::string>{"room_state_changed", "room_state_update", "room_state_update",
                                                   "room_state_changed", "room_login_result", "room_user_update",
                                                   "room_stream_update"}));
  EXPECT_TRUE(sameJson(R"({"roomID":"room-1","reason":0,"errorCode":0,"extendedData":""})", room[0].json));
  EXPECT_TRUE(sameJson(R"({"roomID":"room-1","state":1,"errorCode":0,"extendedData":""})", room[1].json));
  EXPECT_TRUE(sameJson(R"({"roomID":"room-1","state":2,"errorCode":0,"extendedData":""})", room[2].json));
  EXPECT_TRUE(sameJson(R"({"roomID":"room-1","reason":1,"errorCode":0,"extendedData":""})", room[3].json));
  EXPECT_TRUE(sameJson(R"({"errorCode":0,"extendedData":"","roomID":"room-1","seq":)" + std::to_string(seq) + "}", room[4].json));
  EXPECT_TRUE(sameJson(R"({"roomID":"room-1","updateType":0,"userList":[{"userID":"sim-peer","userName":"Sim Peer"}]})",
                       room[5].json));
  const auto streams = parseJson(room[6].json);
  ASSERT_EQ(streams["streamList"].Size(), 2u);
  EXPECT_STREQ(streams["streamList"][0]["streamID"].GetString(), "sim-peer-stream");
  EXPECT_STREQ(streams["streamList"][1]["streamID"].GetString(), "own-stream");
  EXPECT_STREQ(streams["streamList"][1]["user"]["userID"].GetString(), "me");
  for (const auto& e : events) EXPECT_NE(e.thread, std::this_thread::get_id());

  uint32_t count = 0;
  orva_stream* list = ENGINE(orva_vantix_get_room_stream_list)("room-1", 0, &count);
  EXPECT_EQ(count, 2u);
  ENGINE(orva_vantix_free_room_stream_list)(list);

  const size_t before = sink.events().size();
  int32_t logoutSeq = 0;
  ASSERT_EQ(ENGINE(orva_vantix_logout_room_with_callback)("room-1", &logoutSeq), 0);
  events = sink.waitFor(before + 3);
  const std::vector<Sink::Event> tail(events.begin() + static_cast<long>(before), events.end());
  ASSERT_EQ(names(tail), (std::vector<std::string>{"room_state_update", "room_state_changed", "room_logout_result"}));
  EXPECT_TRUE(sameJson(R"({"roomID":"room-1","state":0,"errorCode":0,"extendedData":""})", tail[0].json));
  EXPECT_TRUE(sameJson(R"({"errorCode":0,"extendedData":"","roomID":"room-1","seq":)" + std::to_string(logoutSeq) + "}",
                       tail[2].json));
}

TEST_F(SimBehaviour, AFailedLoginAnsweredByHandDisconnects) {
  Sink sink;
  Recording recording(sink, {"room_state_update", "room_login_result"});
  Control::autoComplete(false);
  const orva_user me = user("me");
  int32_t seq = 0;
  ASSERT_EQ(ENGINE(orva_vantix_login_room_with_callback)("r", &me, nullptr, &seq), 0);
  sink.waitFor(1);
  ASSERT_EQ(Control::complete(seq, R"({"errorCode":1002033})"), 1);
  const auto events = sink.events();
  ASSERT_EQ(events.size(), 3u);
  EXPECT_TRUE(sameJson(R"({"roomID":"r","state":1,"errorCode":0,"extendedData":""})", events[0].json));
  EXPECT_TRUE(sameJson(R"({"roomID":"r","state":0,"errorCode":1002033,"extendedData":""})", events[1].json));
  EXPECT_EQ(parseJson(events[2].json)["errorCode"].GetInt(), 1002033);
}

// ---------------------------------------------------------------------------------------
// Frames

struct FrameLog {
  std::mutex mu;
  struct Frame {
    int32_t width, height, format, stride, flipMode, key;
    uint32_t length;
    std::string streamID;
    std::vector<uint8_t> firstRow, lastRow;  // as stored in memory
    std::thread::id thread;
    std::chrono::steady_clock::time_point at;
  };
  std::vector<Frame> frames;

  void add(const uint8_t** data, const uint32_t* lengths, const orva_video_frame_param* p, int32_t flipMode,
           int32_t key, const char* streamID) {
    Frame f{p->width, p->height, p->format, p->strides[0], flipMode, key, lengths[0], streamID ? streamID : "",
            {}, {}, std::this_thread::get_id(), std::chrono::steady_clock::now()};
    const size_t row = static_cast<size_t>(p->width) * 4;
    f.firstRow.assign(data[0], data[0] + row);
    const uint8_t* last = data[0] + static_cast<size_t>(p->strides[0]) * static_cast<size_t>(p->height - 1);
    f.lastRow.assign(last, last + row);
    std::lock_guard<std::mutex> lock(mu);
    frames.push_back(std::move(f));
  }
  std::vector<Frame> snapshot() {
    std::lock_guard<std::mutex> lock(mu);
    return frames;
  }
};

void ORVA_CALL onCaptured(const uint8_t** data, const uint32_t* lengths, const orva_video_frame_param* p, int32_t flipMode,
                          int32_t channel, void* ctx) {
  static_cast<FrameLog*>(ctx)->add(data, lengths, p, flipMode, channel, nullptr);
}
void ORVA_CALL onRemote(const uint8_t** data, const uint32_t* lengths, const orva_video_frame_param* p, int32_t flipMode,
                        const char* streamID, void* ctx) {
  static_cast<FrameLog*>(ctx)->add(data, lengths, p, flipMode, -1, streamID);
}

// The colour at x of a stored row, as R,G,B whatever the byte order.
std::array<int, 3> rgbAt(const std::vector<uint8_t>& row, int x, bool bgra) {
  const uint8_t* px = row.data() + x * 4;
  return bgra ? std::array<int, 3>{px[2], px[1], px[0]} : std::array<int, 3>{px[0], px[1], px[2]};
}

TEST_F(SimBehaviour, PreviewDeliversBottomUpBgraFramesAtTheConfiguredSizeAndRate) {
  FrameLog log;
  registration("custom_video_render_captured_frame_data")(reinterpret_cast<AnyFn>(&onCaptured), &log);
  orva_video_config vc{160, 90, 160, 90, 20, 300, 0};
  ASSERT_EQ(ENGINE(orva_vantix_set_video_config)(&vc, 1), 0);
  ASSERT_EQ(ENGINE(orva_vantix_start_preview)(nullptr, 1), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(1000));
  ASSERT_EQ(ENGINE(orva_vantix_stop_preview)(1), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(150));
  const size_t afterStop = log.snapshot().size();
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  registration("custom_video_render_captured_frame_data")(nullptr, nullptr);

  const auto frames = log.snapshot();
  EXPECT_EQ(frames.size(), afterStop) << "frames after stop_preview";
  // About 20 in a second; the bound is loose for loaded and instrumented runs.
  EXPECT_GE(frames.size(), kSanitized ? 8u : 15u);
  EXPECT_LE(frames.size(), 24u);
  for (const auto& f : frames) {
    ASSERT_EQ(f.key, 1);
    ASSERT_EQ(f.width, 160);
    ASSERT_EQ(f.height, 90);
    ASSERT_EQ(f.format, ORVA_VIDEO_FRAME_FORMAT_BGRA32);
    ASSERT_EQ(f.stride, 640);  // 160 * 4 is already 64-byte aligned
    ASSERT_EQ(f.length, 640u * 90u);
    ASSERT_NE(f.thread, std::this_thread::get_id());
  }
  // Bottom-up: the last stored row is the picture's top, the colour bars (white first,
  // black last); the first stored row is the frame counter strip (black or white only).
  const auto& top = frames.front().lastRow;
  EXPECT_EQ(rgbAt(top, 0, true), (std::array<int, 3>{235, 235, 235}));
  EXPECT_EQ(rgbAt(top, 159, true), (std::array<int, 3>{16, 16, 16}));
  EXPECT_EQ(rgbAt(top, 5 * 20 + 5, true), (std::array<int, 3>{235, 16, 16}));  // the red bar
  for (int x = 0; x < 160; x += 10) {
    const int v = rgbAt(frames.front().firstRow, x, true)[0];
    EXPECT_TRUE(v == 0 || v == 255) << x;
  }
}

TEST_F(SimBehaviour, PlayingAnOwnStreamDeliversPackedRgbaRemoteFrames) {
  FrameLog log;
  Sink sink;
  Recording recording(sink, {"player_state_update", "player_video_size_changed"});
  registration("custom_video_render_remote_frame_data")(reinterpret_cast<AnyFn>(&onRemote), &log);
  orva_video_config vc{320, 180, 96, 54, 25, 300, 0};
  ASSERT_EQ(ENGINE(orva_vantix_set_video_config)(&vc, 2), 0);
  ASSERT_EQ(ENGINE(orva_vantix_start_publishing_stream_with_config)("mine", nullptr, 2), 0);
  ASSERT_EQ(ENGINE(orva_vantix_start_playing_stream_with_config)("mine", nullptr, nullptr), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(500));
  ASSERT_EQ(ENGINE(orva_vantix_stop_playing_stream)("mine"), 0);
  sink.waitFor(4);
  registration("custom_video_render_remote_frame_data")(nullptr, nullptr);

  EXPECT_TRUE(sameJson(R"({"streamID":"mine","state":1,"errorCode":0,"extendedData":""})", sink.named("player_state_update")[0].json));
  EXPECT_TRUE(sameJson(R"({"streamID":"mine","state":2,"errorCode":0,"extendedData":""})", sink.named("player_state_update")[1].json));
  EXPECT_TRUE(sameJson(R"({"streamID":"mine","width":96,"height":54})", sink.named("player_video_size_changed")[0].json));
  const auto frames = log.snapshot();
  ASSERT_GE(frames.size(), 3u);
  for (const auto& f : frames) {
    ASSERT_EQ(f.streamID, "mine");
    ASSERT_EQ(f.format, ORVA_VIDEO_FRAME_FORMAT_RGBA32);
    ASSERT_EQ(f.width, 96);
    ASSERT_EQ(f.height, 54);
    ASSERT_EQ(f.stride, 96 * 4);
    ASSERT_EQ(f.length, 96u * 54u * 4u);
  }
  EXPECT_EQ(rgbAt(frames.front().lastRow, 0, false), (std::array<int, 3>{235, 235, 235}));
  EXPECT_EQ(rgbAt(frames.front().lastRow, 95, false), (std::array<int, 3>{16, 16, 16}));
}

TEST_F(SimBehaviour, FrameOnRequestCarriesTheGivenPlaneOrAPattern) {
  FrameLog log;
  registration("custom_video_render_remote_frame_data")(reinterpret_cast<AnyFn>(&onRemote), &log);
  std::vector<uint8_t> plane(8 * 2 * 4);
  for (size_t i = 0; i < plane.size(); ++i) plane[i] = static_cast<uint8_t>(i);
  char* err = nullptr;
  ASSERT_EQ(ENGINE(orva_sim_frame)(R"({"streamID":"s"})", R"({"width":8,"height":2,"format":5,"flipMode":1})",
                                   plane.data(), static_cast<uint32_t>(plane.size()), &err),
            1);
  ASSERT_EQ(ENGINE(orva_sim_frame)(R"({"streamID":"s"})", R"({"width":4,"height":3,"format":4,"stride":20})", nullptr,
                                   0, &err),
            1);
  EXPECT_EQ(ENGINE(orva_sim_frame)(R"({"nothing":1})", R"({"width":4,"height":3})", nullptr, 0, &err), -1);
  EXPECT_NE(Control::text(err).find("target"), std::string::npos);
  registration("custom_video_render_remote_frame_data")(nullptr, nullptr);
  EXPECT_EQ(ENGINE(orva_sim_frame)(R"({"streamID":"s"})", R"({"width":4,"height":3})", nullptr, 0, nullptr), 0);

  const auto frames = log.snapshot();
  ASSERT_EQ(frames.size(), 2u);
  EXPECT_EQ(frames[0].flipMode, 1);
  EXPECT_EQ(frames[0].length, 64u);
  EXPECT_EQ(frames[0].firstRow, std::vector<uint8_t>(plane.begin(), plane.begin() + 32));
  EXPECT_EQ(frames[1].stride, 20);
  EXPECT_EQ(frames[1].length, 60u);  // stride * height
  EXPECT_NE(frames[0].thread, std::this_thread::get_id());
}

// ---------------------------------------------------------------------------------------

TEST_F(SimBehaviour, SnapshotsCarryTheQuadrantPictureAtTheSnapshottedSize) {
  Sink sink;
  Recording recording(sink, {"publisher_take_snapshot_result", "media_player_take_snapshot_result"});
  orva_video_config vc{200, 100, 200, 100, 15, 300, 0};
  ASSERT_EQ(ENGINE(orva_vantix_set_video_config)(&vc, 3), 0);
  int32_t seq = 0, mpSeq = 0;
  ASSERT_EQ(ENGINE(orva_vantix_take_publish_stream_snapshot)(3, &seq), 0);
  const int32_t player = ENGINE(orva_vantix_create_media_player)();
  ASSERT_EQ(ENGINE(orva_vantix_media_player_take_snapshot)(&mpSeq, player), 0);
  const auto events = sink.waitFor(2);
  ASSERT_EQ(events.size(), 2u);
  const std::string colors = R"("colors":["#ff0000","#00ff00","#0000ff","#ffffff"],"alpha":255})";
  EXPECT_TRUE(sameJson(R"({"errorCode":0,"channel":3,"seq":)" + std::to_string(seq) +
                           R"(,"image":{"width":200,"height":100,)" + colors + "}",
                       events[0].json));
  EXPECT_TRUE(sameJson(R"({"errorCode":0,"index":)" + std::to_string(player) + R"(,"seq":)" + std::to_string(mpSeq) +
                           R"(,"image":{"width":320,"height":180,)" + colors + "}",
                       events[1].json));
}

TEST_F(SimBehaviour, MediaPlayersTakeTheLowestFreeIndexAndLoadPlayAndReportProgress) {
  Sink sink;
  Recording recording(sink, {"media_player_load_resource", "media_player_state_update", "media_player_playing_progress",
                             "media_player_video_size_changed"});
  for (int32_t expected : {0, 1, 2, 3, -1}) EXPECT_EQ(ENGINE(orva_vantix_create_media_player)(), expected);
  ASSERT_EQ(ENGINE(orva_vantix_destroy_media_player)(1), 0);
  EXPECT_EQ(ENGINE(orva_vantix_create_media_player)(), 1);
  EXPECT_EQ(ENGINE(orva_vantix_media_player_start)(7), -1);

  int32_t seq = 0;
  ASSERT_EQ(ENGINE(orva_vantix_media_player_load_resource)("clip.mp4", &seq, 2), 0);
  sink.waitFor(1);
  EXPECT_TRUE(sameJson(R"({"seq":)" + std::to_string(seq) + R"(,"errorCode":0,"index":2})", sink.events()[0].json));
  EXPECT_EQ(ENGINE(orva_vantix_media_player_get_total_duration)(2), 60000u);
  ASSERT_EQ(ENGINE(orva_vantix_media_player_set_progress_interval)(50, 2), 0);
  ASSERT_EQ(ENGINE(orva_vantix_media_player_start)(2), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(300));
  EXPECT_EQ(ENGINE(orva_vantix_media_player_get_current_state)(2), ORVA_MEDIA_PLAYER_STATE_PLAYING);
  EXPECT_GT(ENGINE(orva_vantix_media_player_get_current_progress)(2), 100u);
  ASSERT_EQ(ENGINE(orva_vantix_media_player_stop)(2), 0);
  ASSERT_EQ(sink.waitForNamed("media_player_state_update", 2).size(), 2u);

  EXPECT_TRUE(sameJson(R"({"state":1,"errorCode":0,"index":2})", sink.named("media_player_state_update").front().json));
  EXPECT_TRUE(sameJson(R"({"state":0,"errorCode":0,"index":2})", sink.named("media_player_state_update").back().json));
  EXPECT_TRUE(sameJson(R"({"width":320,"height":180,"index":2})", sink.named("media_player_video_size_changed")[0].json));
  EXPECT_GE(sink.named("media_player_playing_progress").size(), 3u);
}

TEST_F(SimBehaviour, PreviewStartsTheEngineAndUninitStopsEverythingOnAnEngineThread) {
  Sink sink;
  Recording recording(sink, {"engine_state_update", "engine_uninit", "custom_video_render_captured_frame_data"});
  orva_engine_profile profile{};
  ASSERT_EQ(ENGINE(orva_vantix_engine_init_with_profile)(&profile), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(50));
  EXPECT_TRUE(sink.named("engine_state_update").empty()) << "nothing runs yet";
  ASSERT_EQ(ENGINE(orva_vantix_start_preview)(nullptr, 0), 0);
  sink.waitFor(2);
  ASSERT_EQ(ENGINE(orva_vantix_engine_uninit_async)(), 0);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (sink.named("engine_uninit").empty() && std::chrono::steady_clock::now() < deadline)
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  const size_t frames = sink.named("custom_video_render_captured_frame_data").size();
  std::this_thread::sleep_for(std::chrono::milliseconds(200));

  const auto states = sink.named("engine_state_update");
  ASSERT_EQ(states.size(), 2u);
  EXPECT_TRUE(sameJson(R"({"state":0})", states[0].json));  // START
  EXPECT_TRUE(sameJson(R"({"state":1})", states[1].json));  // STOP
  const auto uninit = sink.named("engine_uninit");
  ASSERT_EQ(uninit.size(), 1u);
  EXPECT_NE(uninit[0].thread, std::this_thread::get_id());
  EXPECT_EQ(sink.named("custom_video_render_captured_frame_data").size(), frames) << "frames after uninit";
}

TEST_F(SimBehaviour, MessagesAreAnsweredAndEchoedToTheRoom) {
  Sink sink;
  Recording recording(sink, {"im_send_broadcast_message_result", "im_recv_broadcast_message",
                             "im_send_barrage_message_result"});
  const orva_user me = user("me");
  int32_t seq = 0, s1 = 0, s2 = 0;
  ENGINE(orva_vantix_login_room_with_callback)("r", &me, nullptr, &seq);
  ENGINE(orva_vantix_send_broadcast_message)("r", "hello", &s1);
  ENGINE(orva_vantix_send_barrage_message)("r", "wow", &s2);
  const auto events = sink.waitFor(3);
  ASSERT_EQ(names(events), (std::vector<std::string>{"im_send_broadcast_message_result", "im_recv_broadcast_message",
                                                    "im_send_barrage_message_result"}));
  EXPECT_TRUE(sameJson(R"({"roomID":"r","messageID":1,"errorCode":0,"seq":)" + std::to_string(s1) + "}", events[0].json));
  const auto echo = parseJson(events[1].json);
  EXPECT_STREQ(echo["messageList"][0]["message"].GetString(), "hello");
  EXPECT_EQ(echo["messageList"][0]["messageID"].GetUint64(), 1u);
  EXPECT_STREQ(echo["messageList"][0]["fromUser"]["userID"].GetString(), "me");
  EXPECT_STREQ(parseJson(events[2].json)["messageID"].GetString(), "sim-barrage-1");
}

TEST_F(SimBehaviour, DevicesHaveStableFakesAndRememberChoices) {
  uint32_t count = 0;
  orva_device_info* mics = ENGINE(orva_vantix_get_audio_device_list)(ORVA_AUDIO_DEVICE_TYPE_INPUT, &count);
  ASSERT_EQ(count, 3u);
  EXPECT_STREQ(mics[1].deviceID, "sim-mic-2");
  EXPECT_STREQ(mics[2].deviceName, "\xE9\xBA\xA6\xE5\x85\x8B\xE9\xA3\x8E (USB)");  // UTF-8 as handed out
  ENGINE(orva_vantix_free_audio_device_list)(mics);
  EXPECT_EQ(ENGINE(orva_vantix_use_audio_device)(ORVA_AUDIO_DEVICE_TYPE_INPUT, "sim-mic-2"), 0);
  EXPECT_STREQ(ENGINE(orva_vantix_get_current_audio_device)(ORVA_AUDIO_DEVICE_TYPE_INPUT).deviceName, "Sim Microphone 2");
  EXPECT_EQ(ENGINE(orva_vantix_use_audio_device)(ORVA_AUDIO_DEVICE_TYPE_INPUT, "no-such-mic"), -1);
  char id[64];
  ENGINE(orva_vantix_get_default_video_device_id)(id, sizeof id);
  EXPECT_STREQ(id, "sim-camera-1");
  EXPECT_EQ(ENGINE(orva_vantix_set_audio_device_volume)(ORVA_AUDIO_DEVICE_TYPE_OUTPUT, "sim-speaker-2", 33), 0);
  EXPECT_EQ(ENGINE(orva_vantix_get_audio_device_volume)(ORVA_AUDIO_DEVICE_TYPE_OUTPUT, "sim-speaker-2"), 33);
  EXPECT_FALSE(ENGINE(orva_vantix_is_microphone_muted)());
  ENGINE(orva_vantix_mute_microphone)(true);
  EXPECT_TRUE(ENGINE(orva_vantix_is_microphone_muted)());

  orva_screen_capture_source_info* sources = ENGINE(orva_vantix_get_screen_capture_sources)(16, 9, 4, 4, &count);
  ASSERT_EQ(count, 3u);
  EXPECT_EQ(sources[0].thumbnailImage.bufferLength, 16u * 9u * 4u);
  EXPECT_EQ(sources[2].iconImage.width, 4);
  ENGINE(orva_vantix_free_screen_capture_source_list)(sources);

  char* answer = ENGINE(orva_vantix_call_experimental_api)(R"({"method":"x.y","params":{}})");
  EXPECT_STREQ(answer, R"({"error_code":0,"method":"x.y"})");
  ENGINE(orva_vantix_free_call_experimental_api_result)(answer);
}

TEST_F(SimBehaviour, MonitorsReportCapturedAndPlayedStreamsAtTheirInterval) {
  Sink sink;
  Recording recording(sink, {"captured_sound_level_update", "captured_sound_level_info_update",
                             "remote_sound_level_update", "remote_sound_level_info_update",
                             "captured_audio_spectrum_update", "remote_audio_spectrum_update", "player_state_update"});
  ASSERT_EQ(ENGINE(orva_vantix_start_playing_stream_with_config)("sim-peer-stream", nullptr, nullptr), 0);
  sink.waitFor(2);  // REQUESTING, PLAYING
  const orva_sound_level_config config{40, true};
  ASSERT_EQ(ENGINE(orva_vantix_start_sound_level_monitor_with_config)(&config), 0);
  ASSERT_EQ(ENGINE(orva_vantix_start_audio_spectrum_monitor)(40), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  ASSERT_EQ(ENGINE(orva_vantix_stop_sound_level_monitor)(), 0);
  ASSERT_EQ(ENGINE(orva_vantix_stop_audio_spectrum_monitor)(), 0);
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  const size_t total = sink.events().size();
  std::this_thread::sleep_for(std::chrono::milliseconds(120));
  EXPECT_EQ(sink.events().size(), total) << "reports after the monitors stopped";

  for (const char* name : {"captured_sound_level_update", "captured_sound_level_info_update", "remote_sound_level_update",
                           "remote_sound_level_info_update", "captured_audio_spectrum_update",
                           "remote_audio_spectrum_update"}) {
    SCOPED_TRACE(name);
    const auto events = sink.named(name);
    EXPECT_GE(events.size(), kSanitized ? 3u : 6u);  // every 40 ms for 400 ms
    EXPECT_LE(events.size(), 11u);
  }
  const auto level = parseJson(sink.named("captured_sound_level_update")[0].json);
  EXPECT_GE(level["soundLevel"].GetDouble(), 0.0);
  EXPECT_LE(level["soundLevel"].GetDouble(), 100.0);
  const auto remote = parseJson(sink.named("remote_sound_level_update")[0].json);
  ASSERT_TRUE(remote.HasMember("sim-peer-stream"));
  const auto info = parseJson(sink.named("remote_sound_level_info_update")[0].json);
  EXPECT_TRUE(info["sim-peer-stream"].HasMember("vad"));
  EXPECT_EQ(parseJson(sink.named("captured_audio_spectrum_update")[0].json).Size(), 64u);
  EXPECT_EQ(parseJson(sink.named("remote_audio_spectrum_update")[0].json)["sim-peer-stream"].Size(), 64u);
}

TEST_F(SimBehaviour, AMediaPlayerReachesTheEndUnlessItRepeats) {
  Sink sink;
  Recording recording(sink, {"media_player_state_update", "media_player_seek_to"});
  const int32_t index = ENGINE(orva_vantix_create_media_player)();
  int32_t seq = 0;
  ENGINE(orva_vantix_media_player_load_resource)("clip", &seq, index);
  ENGINE(orva_vantix_media_player_seek_to)(59950, &seq, index);
  sink.waitFor(1);
  ASSERT_EQ(ENGINE(orva_vantix_media_player_set_progress_interval)(20, index), 0);
  ASSERT_EQ(ENGINE(orva_vantix_media_player_start)(index), 0);
  const auto events = sink.waitFor(3);
  ASSERT_EQ(events.size(), 3u);
  EXPECT_TRUE(sameJson(R"({"state":1,"errorCode":0,"index":0})", events[1].json));
  EXPECT_TRUE(sameJson(R"({"state":3,"errorCode":0,"index":0})", events[2].json));  // PLAY_ENDED
  EXPECT_EQ(ENGINE(orva_vantix_media_player_get_current_progress)(index), 60000u);

  ENGINE(orva_vantix_media_player_enable_repeat)(true, index);
  ENGINE(orva_vantix_media_player_seek_to)(59950, &seq, index);
  ENGINE(orva_vantix_media_player_start)(index);
  std::this_thread::sleep_for(std::chrono::milliseconds(200));
  EXPECT_EQ(ENGINE(orva_vantix_media_player_get_current_state)(index), ORVA_MEDIA_PLAYER_STATE_PLAYING);
  EXPECT_LT(ENGINE(orva_vantix_media_player_get_current_progress)(index), 1000u);  // wrapped around
  ENGINE(orva_vantix_media_player_pause)(index);
  const uint64_t paused = ENGINE(orva_vantix_media_player_get_current_progress)(index);
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
  EXPECT_EQ(ENGINE(orva_vantix_media_player_get_current_progress)(index), paused);
}

TEST_F(SimBehaviour, EffectPlayersAndCaptureSourcesTakeTheLowestFreeIndex) {
  struct Case {
    const char* what;
    int32_t (*create)();
    int32_t (*destroy)(int32_t);
    int32_t slots;
  } cases[] = {
      {"audio effect players", [] { return ENGINE(orva_vantix_create_audio_effect_player)(); },
       [](int32_t i) { return ENGINE(orva_vantix_destroy_audio_effect_player)(i); }, 4},
      {"screen capture sources", [] { return ENGINE(orva_vantix_create_screen_capture_source)(1001, 2); },
       [](int32_t i) { return ENGINE(orva_vantix_destroy_screen_capture_source)(i); }, 8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    for (int32_t i = 0; i < c.slots; ++i) EXPECT_EQ(c.create(), i);
    EXPECT_EQ(c.create(), -1);
    EXPECT_EQ(c.destroy(2), 0);
    EXPECT_EQ(c.destroy(2), -1);
    EXPECT_EQ(c.create(), 2);
  }
  const orva_rect r = ENGINE(orva_vantix_screen_capture_get_capture_source_rect)(0);
  EXPECT_EQ(r.width, 1920);
  EXPECT_EQ(ENGINE(orva_vantix_screen_capture_get_capture_source_rect)(42).width, 0);

  Sink sink;
  Recording recording(sink, {"audio_effect_play_state_update"});
  ENGINE(orva_vantix_audio_effect_player_start)(7, "fx.wav", nullptr, 1);
  ENGINE(orva_vantix_audio_effect_player_pause)(7, 1);
  ENGINE(orva_vantix_audio_effect_player_resume)(7, 1);
  ENGINE(orva_vantix_audio_effect_player_stop)(7, 1);
  const auto events = sink.waitFor(4);
  ASSERT_EQ(events.size(), 4u);
  const int states[] = {1, 2, 1, 0};
  for (size_t i = 0; i < 4; ++i) {
    EXPECT_TRUE(sameJson(R"({"audioEffectID":7,"state":)" + std::to_string(states[i]) + R"(,"errorCode":0,"index":1})",
                         events[i].json));
  }
}

}  // namespace
}  // namespace orva::sim::test
