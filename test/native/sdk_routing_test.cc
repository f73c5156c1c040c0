// The generated trampolines, called exactly as the engine calls them: conversion of the C
// arguments, routing to the main handler, sub-objects, completions and frame handlers, and
// what is dropped. No engine library is needed.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "OrvaVantixSDKWrapper/SubObjects.h"
#include "OrvaVantixSDKWrapper/Trampolines.h"

namespace orva::sdk {
namespace {

// The registered trampoline of `name`, typed as the engine's callback type.
template <class CallbackType>
CallbackType trampoline(const char* name) {
  const void* p = detail::trampolineOf(name);
  EXPECT_NE(p, nullptr) << name;
  return reinterpret_cast<CallbackType>(const_cast<void*>(p));
}

class Recorder : public IEngineEventHandler {
 public:
  void onRoomStateUpdate(RoomStateUpdateEvent e) override { roomStates.push_back(std::move(e)); }
  void onRoomStreamUpdate(RoomStreamUpdateEvent e) override { streamUpdates.push_back(std::move(e)); }
  void onPlayerRecvSEI(PlayerRecvMediaSideInfoEvent e) override { sei.push_back(std::move(e)); }
  void onRemoteSoundLevelUpdate(RemoteSoundLevelUpdateEvent e) override { levels.push_back(std::move(e)); }
  void onPublisherQualityUpdate(PublisherQualityUpdateEvent e) override { qualities.push_back(std::move(e)); }
  std::vector<RoomStateUpdateEvent> roomStates;
  std::vector<RoomStreamUpdateEvent> streamUpdates;
  std::vector<PlayerRecvMediaSideInfoEvent> sei;
  std::vector<RemoteSoundLevelUpdateEvent> levels;
  std::vector<PublisherQualityUpdateEvent> qualities;
};

// Each test starts and ends with an empty context.
class SdkRouting : public ::testing::Test {
 protected:
  void SetUp() override { reset(); }
  void TearDown() override { reset(); }
  static void reset() {
    auto& context = EngineContext::instance();
    context.empty();
    context.videoFrameHandler.set(nullptr);
  }
  std::shared_ptr<Recorder> install() {
    auto recorder = std::make_shared<Recorder>();
    EXPECT_EQ(EngineContext::instance().setEventHandler(recorder), 0);
    return recorder;
  }
};

TEST_F(SdkRouting, MainEventArrivesAsOwnedValues) {
  auto recorder = install();
  std::string roomID = "room-1";
  trampoline<orva_on_room_state_update>("room_state_update")(roomID.c_str(), 2, 7, "", nullptr);
  roomID.assign("changed");  // the engine's text is only lent
  trampoline<orva_on_room_state_update>("room_state_update")(nullptr, 0, 0, nullptr, nullptr);
  ASSERT_EQ(recorder->roomStates.size(), 2u);
  EXPECT_EQ(recorder->roomStates[0].roomID, "room-1");
  EXPECT_EQ(recorder->roomStates[0].state, 2);
  EXPECT_EQ(recorder->roomStates[0].errorCode, 7);
  EXPECT_EQ(recorder->roomStates[0].extendedData, "");
  EXPECT_EQ(recorder->roomStates[1].roomID, "");
}

TEST_F(SdkRouting, ListsAndStructuresKeepEngineOrderAndFields) {
  auto recorder = install();
  orva_stream streams[2]{};
  std::strcpy(streams[0].streamID, "a");
  std::strcpy(streams[0].user.userID, "u-a");
  std::strcpy(streams[1].streamID, "b");
  std::strcpy(streams[1].extraInfo, "x");
  auto roomStream = trampoline<orva_on_room_stream_update>("room_stream_update");
  roomStream("r", 0, streams, 2, "{}", nullptr);
  roomStream("r", 1, nullptr, 0, "", nullptr);  // an empty list is still an event

  orva_stream_sound_level levels[3]{{"s1", 1.5f}, {"s2", 2.5f}, {"s1", 3.5f}};
  trampoline<orva_on_remote_sound_level_update>("remote_sound_level_update")(levels, 3, nullptr);

  orva_publish_stream_quality quality{};
  quality.isHardwareEncode = true;
  quality.totalSendBytes = (1ull << 53) + 1;
  trampoline<orva_on_publisher_quality_update>("publisher_quality_update")("p", &quality, nullptr);

  ASSERT_EQ(recorder->streamUpdates.size(), 2u);
  const auto& list = recorder->streamUpdates[0].streamList;
  ASSERT_EQ(list.size(), 2u);
  EXPECT_EQ(list[0].streamID, "a");
  EXPECT_EQ(list[0].user.userID, "u-a");
  EXPECT_EQ(list[1].extraInfo, "x");
  EXPECT_EQ(recorder->streamUpdates[0].extendedData, "{}");
  EXPECT_TRUE(recorder->streamUpdates[1].streamList.empty());
  EXPECT_EQ(recorder->streamUpdates[1].updateType, 1);

  // Map-shaped events stay lists here, duplicates and order included.
  ASSERT_EQ(recorder->levels.size(), 1u);
  ASSERT_EQ(recorder->levels[0].soundLevels.size(), 3u);
  EXPECT_EQ(recorder->levels[0].soundLevels[2].streamID, "s1");
  EXPECT_FLOAT_EQ(recorder->levels[0].soundLevels[2].soundLevel, 3.5f);

  ASSERT_EQ(recorder->qualities.size(), 1u);
  EXPECT_TRUE(recorder->qualities[0].quality.isHardwareEncode);
  EXPECT_EQ(recorder->qualities[0].quality.totalSendBytes, (1ull << 53) + 1);
}

TEST_F(SdkRouting, SideInformationBytesAreCopied) {
  auto recorder = install();
  std::vector<uint8_t> bytes{1, 2, 3, 0, 5};
  trampoline<orva_on_player_recv_media_side_info>("player_recv_media_side_info")("s", bytes.data(), 5, nullptr);
  bytes.assign(5, 9);
  ASSERT_EQ(recorder->sei.size(), 1u);
  EXPECT_EQ(recorder->sei[0].data, (std::vector<uint8_t>{1, 2, 3, 0, 5}));
}

TEST_F(SdkRouting, EventsWithoutHandlerAreDropped) {
  trampoline<orva_on_room_state_update>("room_state_update")("r", 1, 0, "", nullptr);
  auto recorder = install();
  EXPECT_EQ(EngineContext::instance().setEventHandler(nullptr), 0);
  trampoline<orva_on_room_state_update>("room_state_update")("r", 1, 0, "", nullptr);
  EXPECT_TRUE(recorder->roomStates.empty());
}

class PlayerRecorder : public IMediaPlayerEventHandler, public IMediaPlayerVideoHandler {
 public:
  void onMediaPlayerStateUpdate(MediaPlayer& player, MediaPlayerStateUpdateEvent e) override {
    players.push_back(&player);
    states.push_back(e.state);
  }
  void onVideoFrame(MediaPlayer& player, const uint8_t* const* data, const uint32_t* lengths, const VideoFrameParam& param,
                    int32_t flipMode) override {
    players.push_back(&player);
    planes = data;
    planeLengths = lengths;
    width = param.width;
    flip = flipMode;
  }
  std::vector<MediaPlayer*> players;
  std::vector<int32_t> states;
  const uint8_t* const* planes = nullptr;
  const uint32_t* planeLengths = nullptr;
  int32_t width = 0;
  int32_t flip = 0;
};

TEST_F(SdkRouting, SubObjectEventsFindTheirObjectByIndex) {
  auto& context = EngineContext::instance();
  auto player = std::make_shared<MediaPlayer>(2);
  auto handler = std::make_shared<PlayerRecorder>();
  player->setEventHandler(handler);
  player->setVideoHandler(handler);
  context.mediaPlayers.add(2, player);
  auto state = trampoline<orva_on_media_player_state_update>("media_player_state_update");

  state(1, 0, 2, nullptr);
  state(3, 0, 1, nullptr);  // no player at index 1: dropped

  uint8_t pixels[16] = {};
  const uint8_t* planes[4] = {pixels, nullptr, nullptr, nullptr};
  const uint32_t lengths[4] = {16, 0, 0, 0};
  orva_video_frame_param param{};
  param.width = 2;
  trampoline<orva_on_media_player_video_frame>("media_player_video_frame")(planes, lengths, &param, 1, 2, nullptr);

  ASSERT_EQ(handler->states, (std::vector<int32_t>{1}));
  ASSERT_EQ(handler->players.size(), 2u);
  EXPECT_EQ(handler->players[0], player.get());
  EXPECT_EQ(handler->planes, planes);  // passed through, not copied
  EXPECT_EQ(handler->planeLengths, lengths);
  EXPECT_EQ(handler->width, 2);
  EXPECT_EQ(handler->flip, 1);

  context.mediaPlayers.remove(2);
  state(1, 0, 2, nullptr);
  EXPECT_EQ(handler->states.size(), 1u);
}

class FrameRecorder : public IVideoFrameHandler {
 public:
  void onRemoteVideoFrameRawData(const uint8_t* const* data, const uint32_t*, const VideoFrameParam& param, int32_t,
                                 const std::string& streamID) override {
    planes = data;
    format = param.format;
    strides = param.strides;
    stream = streamID;
  }
  const uint8_t* const* planes = nullptr;
  int32_t format = 0;
  std::array<int32_t, 4> strides{};
  std::string stream;
};

TEST_F(SdkRouting, RawFramesReachTheFrameHandlerOrAreDropped) {
  uint8_t pixels[8] = {};
  const uint8_t* planes[4] = {pixels, nullptr, nullptr, nullptr};
  const uint32_t lengths[4] = {8, 0, 0, 0};
  orva_video_frame_param param{};
  param.format = ORVA_VIDEO_FRAME_FORMAT_RGBA32;
  param.strides[0] = 8;
  auto remote = trampoline<orva_on_custom_video_render_remote_frame_data>("custom_video_render_remote_frame_data");
  remote(planes, lengths, &param, 0, "s", nullptr);  // no handler: dropped

  auto handler = std::make_shared<FrameRecorder>();
  EngineContext::instance().videoFrameHandler.set(handler);
  remote(planes, lengths, &param, 0, "s", nullptr);
  EXPECT_EQ(handler->planes, planes);
  EXPECT_EQ(handler->format, ORVA_VIDEO_FRAME_FORMAT_RGBA32);
  EXPECT_EQ(handler->strides[0], 8);
  EXPECT_EQ(handler->stream, "s");
}

TEST_F(SdkRouting, CompletionRunsOnceAndUnknownNumbersAreDropped) {
  auto& table = EngineContext::instance().completions.roomLoginResult;
  std::vector<RoomLoginResultEvent> results;
  table.beginCall().store(41, [&](RoomLoginResultEvent e) { results.push_back(std::move(e)); });
  auto login = trampoline<orva_on_room_login_result>("room_login_result");
  login(0, "{}", "room", 40, nullptr);  // nobody waits for 40
  login(5, "ext", "room", 41, nullptr);
  login(6, "ext", "room", 41, nullptr);  // answered already
  ASSERT_EQ(results.size(), 1u);
  EXPECT_EQ(results[0].errorCode, 5);
  EXPECT_EQ(results[0].extendedData, "ext");
  EXPECT_EQ(results[0].roomID, "room");
  EXPECT_EQ(results[0].seq, 41);
}

// The automatic mixer shares the manual mixer's trampolines, and so its completions.
TEST_F(SdkRouting, AutoMixerResultsShareTheMixerTrampolines) {
  EXPECT_EQ(detail::trampolineOf("auto_mixer_start_result"), detail::trampolineOf("mixer_start_result"));
  EXPECT_EQ(detail::trampolineOf("auto_mixer_stop_result"), detail::trampolineOf("mixer_stop_result"));
  EXPECT_NE(detail::trampolineOf("mixer_start_result"), detail::trampolineOf("mixer_stop_result"));
  int32_t got = 0;
  EngineContext::instance().completions.mixerStartResult.beginCall().store(8, [&](MixerStartResultEvent e) {
    got = e.errorCode;
  });
  trampoline<orva_on_auto_mixer_start_result>("auto_mixer_start_result")(3, 8, "", nullptr);
  EXPECT_EQ(got, 3);
}

class ThrowingHandler : public IEngineEventHandler {
 public:
  void onEngineStateUpdate(EngineStateUpdateEvent) override { throw std::runtime_error("handler bug"); }
};

TEST_F(SdkRouting, HandlerExceptionsStayOnThisSide) {
  EngineContext::instance().setEventHandler(std::make_shared<ThrowingHandler>());
  testing::internal::CaptureStderr();
  trampoline<orva_on_engine_state_update>("engine_state_update")(1, nullptr);
  EXPECT_NE(testing::internal::GetCapturedStderr().find("engine_state_update failed: handler bug"), std::string::npos);
}

class CountingHandler : public IEngineEventHandler {
 public:
  explicit CountingHandler(std::atomic<int>* alive) : alive_(alive) { alive_->fetch_add(1); }
  ~CountingHandler() override { alive_->fetch_sub(1); }
  void onRoomStateUpdate(RoomStateUpdateEvent e) override {
    // A handler being called is alive: its destructor has not run.
    EXPECT_GT(alive_->load(), 0);
    calls.fetch_add(1);
    sink += e.roomID.size();
  }
  std::atomic<int> calls{0};
  std::atomic<std::size_t> sink{0};

 private:
  std::atomic<int>* alive_;
};

// Engine threads deliver events while the script thread clears and installs handlers: each
// event either reaches a live handler or is dropped. Meant to run under TSan and ASan.
TEST_F(SdkRouting, HandlerSwappedWhileEventsFly) {
  std::atomic<int> alive{0};
  std::atomic<bool> stop{false};
  auto deliver = trampoline<orva_on_room_state_update>("room_state_update");
  std::vector<std::thread> engineThreads;
  for (int t = 0; t < 3; ++t) {
    engineThreads.emplace_back([&] {
      while (!stop.load()) deliver("room", 2, 0, "", nullptr);
    });
  }
  auto& context = EngineContext::instance();
  for (int i = 0; i < 300; ++i) {
    EXPECT_EQ(context.setEventHandler(std::make_shared<CountingHandler>(&alive)), 0);
    std::this_thread::yield();
    if (i % 3 == 0) {
      context.empty();  // destruction's path: no handler mutex
    } else {
      EXPECT_EQ(context.setEventHandler(nullptr), 0);
    }
  }
  stop.store(true);
  for (auto& t : engineThreads) t.join();
  EXPECT_EQ(alive.load(), 0);
}

}  // namespace
}  // namespace orva::sdk
