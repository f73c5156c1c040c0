// Records <-> C structures: the conversions the call side and the trampolines rely on.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "engine_convert.h"

namespace orva::sdk {
namespace {

using detail::CArena;
using detail::fromC;
using detail::toC;

// Identifiers go into fixed 128-byte fields, terminator included: longer texts are cut,
// and every byte after the text stays zero.
TEST(SdkConvert, FixedTextFieldsTruncateAndStayZeroFilled) {
  struct Case {
    std::size_t length;
    std::size_t expected;
  };
  const Case cases[] = {{0, 0}, {1, 1}, {126, 126}, {127, 127}, {128, 127}, {400, 127}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.length);
    PublisherConfig record;
    record.roomID = std::string(c.length, 'r');
    record.streamCensorshipMode = 3;
    orva_publisher_config out{};
    std::memset(&out, 0, sizeof out);
    CArena arena;
    toC(record, out, arena);
    EXPECT_EQ(std::strlen(out.roomID), c.expected);
    for (std::size_t i = c.expected; i < sizeof out.roomID; ++i) ASSERT_EQ(out.roomID[i], '\0') << i;
    EXPECT_EQ(out.streamCensorshipMode, 3);
    EXPECT_EQ(fromC(out).roomID, std::string(c.expected, 'r'));
  }
}

TEST(SdkConvert, UnterminatedFixedFieldReadsToItsSize) {
  orva_user user{};
  std::memset(user.userID, 'u', sizeof user.userID);  // no terminator
  EXPECT_EQ(fromC(user).userID, std::string(sizeof user.userID, 'u'));
}

// A mixer task exercises every pointer kind: lists of structures with nested nullable
// pointers, optional structures, byte blocks and borrowed texts.
TEST(SdkConvert, MixerTaskRoundTrip) {
  MixerTask task;
  task.taskID = "task-1";
  MixerInput plain;
  plain.streamID = "s1";
  plain.layout = Rect{1, 2, 3, 4};
  MixerInput labelled;
  labelled.streamID = "s2";
  labelled.label = LabelInfo{"hello", 5, 6, Font{1, 24, 0xFFFFFF, 0, true, 0x10}};
  task.inputList = {plain, labelled};
  task.outputList = {MixerOutput{"rtmp://x", MixerOutputVideoConfig{1, 800, 2, 3}}};
  task.whiteboard = MixerWhiteboard{};
  task.whiteboard->whiteboardID = 99;
  task.backgroundImageURL = "bg.png";
  task.userData = {1, 2, 3};
  task.advancedConfig = "a=b";

  orva_mixer_task c{};
  CArena arena;
  toC(task, c, arena);
  ASSERT_EQ(c.inputListCount, 2u);
  EXPECT_STREQ(c.inputList[0].streamID, "s1");
  EXPECT_EQ(c.inputList[0].label, nullptr);
  ASSERT_NE(c.inputList[1].label, nullptr);
  EXPECT_STREQ(c.inputList[1].label->text, "hello");
  EXPECT_EQ(c.inputList[1].label->font.size, 24);
  EXPECT_EQ(c.watermark, nullptr);
  ASSERT_NE(c.whiteboard, nullptr);
  EXPECT_EQ(c.whiteboard->whiteboardID, 99u);
  ASSERT_EQ(c.userDataLength, 3u);
  EXPECT_EQ(c.userData[2], 3);
  EXPECT_STREQ(c.advancedConfig, "a=b");

  MixerTask back = fromC(c);
  EXPECT_EQ(back.taskID, "task-1");
  ASSERT_EQ(back.inputList.size(), 2u);
  EXPECT_EQ(back.inputList[0].layout.height, 4);
  EXPECT_FALSE(back.inputList[0].label.has_value());
  ASSERT_TRUE(back.inputList[1].label.has_value());
  EXPECT_EQ(back.inputList[1].label->text, "hello");
  EXPECT_TRUE(back.inputList[1].label->font.border);
  EXPECT_EQ(back.outputList.at(0).videoConfig.bitrate, 800);
  EXPECT_FALSE(back.watermark.has_value());
  EXPECT_EQ(back.userData, (std::vector<uint8_t>{1, 2, 3}));
  EXPECT_EQ(back.backgroundImageURL, "bg.png");
}

// What the engine lends in callbacks: NULL texts and lists read as empty values.
TEST(SdkConvert, NullPointersFromTheEngineReadAsEmpty) {
  orva_broadcast_message_info message{};
  message.message = nullptr;
  message.messageID = 1ull << 60;
  EXPECT_EQ(fromC(message).message, "");
  EXPECT_EQ(fromC(message).messageID, 1ull << 60);

  orva_stream_audio_spectrum spectrum{};
  spectrum.spectrumListCount = 5;  // a count with no list
  EXPECT_TRUE(fromC(spectrum).spectrumList.empty());

  const float values[] = {1.5f, 2.5f};
  spectrum.spectrumList = values;
  spectrum.spectrumListCount = 2;
  EXPECT_EQ(fromC(spectrum).spectrumList, (std::vector<float>{1.5f, 2.5f}));
}

TEST(SdkConvert, ListsKeepTheEngineOrder) {
  orva_room_extra_info items[3]{};
  for (int i = 0; i < 3; ++i) {
    std::snprintf(items[i].key, sizeof items[i].key, "k%d", i);
    items[i].updateTime = 100u + static_cast<uint64_t>(i);
  }
  auto list = detail::listFromC<RoomExtraInfo>(items, 3);
  ASSERT_EQ(list.size(), 3u);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(list[static_cast<std::size_t>(i)].key, "k" + std::to_string(i));
    EXPECT_EQ(list[static_cast<std::size_t>(i)].updateTime, 100u + static_cast<uint64_t>(i));
  }
  EXPECT_TRUE(detail::listFromC<RoomExtraInfo>(static_cast<const orva_room_extra_info*>(nullptr), 3).empty());
}

TEST(SdkConvert, FixedNumericArraysAndFloats) {
  ReverbEchoParam record;
  record.numDelays = 7;
  for (int i = 0; i < 7; ++i) {
    record.delay[static_cast<std::size_t>(i)] = i * 10;
    record.decay[static_cast<std::size_t>(i)] = 0.5f * static_cast<float>(i);
  }
  orva_reverb_echo_param c{};
  CArena arena;
  toC(record, c, arena);
  EXPECT_EQ(c.delay[6], 60);
  EXPECT_FLOAT_EQ(c.decay[3], 1.5f);
  EXPECT_EQ(fromC(c).delay, record.delay);
}

}  // namespace
}  // namespace orva::sdk
