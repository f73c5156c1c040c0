// The two Base64 encoders: RFC 4648 vectors, the whole alphabet, agreement with each other
// on random inputs, and the result-argument contract of image/Base64.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

#include "image/Base64.h"
#include "image/SnapshotBase64.h"
#include "image_test_support.h"

namespace {

const uint8_t* bytesOf(const std::string& s) { return reinterpret_cast<const uint8_t*>(s.data()); }

std::string encodeWithBase64(const std::string& input) {
  std::string text;
  orva::image::base64Encode(bytesOf(input), input.size(), &text);
  return text;
}

std::string encodeWithSnapshotBase64(const std::string& input) {
  return orva::image::snapshotBase64(bytesOf(input), input.size());
}

using Encoder = std::string (*)(const std::string&);

class Base64Encoders : public ::testing::TestWithParam<std::pair<const char*, Encoder>> {
 protected:
  std::string encode(const std::string& input) const { return GetParam().second(input); }
};

// RFC 4648 section 10, which also covers 0, 1, 2 and 3 input bytes and both paddings.
TEST_P(Base64Encoders, Rfc4648TestVectors) {
  EXPECT_EQ(encode(""), "");
  EXPECT_EQ(encode("f"), "Zg==");
  EXPECT_EQ(encode("fo"), "Zm8=");
  EXPECT_EQ(encode("foo"), "Zm9v");
  EXPECT_EQ(encode("foob"), "Zm9vYg==");
  EXPECT_EQ(encode("fooba"), "Zm9vYmE=");
  EXPECT_EQ(encode("foobar"), "Zm9vYmFy");
}

// Bytes that give each of the 64 characters once, in order; plus bytes with the high bit set
// (a signed char slip would show there).
TEST_P(Base64Encoders, EveryCharacterOfTheAlphabet) {
  const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  ASSERT_TRUE(orva::test::base64Decode(alphabet, &bytes));
  ASSERT_EQ(bytes.size(), 48u);
  EXPECT_EQ(encode(bytes), alphabet);
  EXPECT_EQ(encode(std::string("\xff\xff\xff\xfe", 4)), "/////g==");
  EXPECT_EQ(encode(std::string("\0\0", 2)), "AAA=");
}

TEST_P(Base64Encoders, RandomInputsRoundTripWithoutLineBreaks) {
  std::mt19937 rng(42);
  for (size_t length = 0; length < 200; ++length) {
    std::string input(length, '\0');
    for (auto& c : input) c = static_cast<char>(rng());
    const std::string text = encode(input);
    ASSERT_EQ(text.size(), 4 * ((length + 2) / 3)) << "length " << length;
    ASSERT_EQ(text.find_first_of("\r\n"), std::string::npos);
    std::string decoded;
    ASSERT_TRUE(orva::test::base64Decode(text, &decoded)) << text;
    ASSERT_EQ(decoded, input) << "length " << length;
  }
}

INSTANTIATE_TEST_SUITE_P(Both, Base64Encoders,
                         ::testing::Values(std::make_pair("Base64", &encodeWithBase64),
                                           std::make_pair("SnapshotBase64",
                                                          &encodeWithSnapshotBase64)),
                         [](const auto& info) { return std::string(info.param.first); });

TEST(Base64, BothEncodersAgreeOnRandomInputsOfManyLengths) {
  std::mt19937 rng(7);
  std::vector<size_t> lengths;
  for (size_t n = 0; n < 64; ++n) lengths.push_back(n);
  for (size_t n : {255, 256, 257, 1000, 4095, 4096, 4097, 65537, 1 << 20}) lengths.push_back(n);
  for (size_t length : lengths) {
    std::string input(length, '\0');
    for (auto& c : input) c = static_cast<char>(rng());
    ASSERT_EQ(encodeWithBase64(input), encodeWithSnapshotBase64(input)) << "length " << length;
  }
}

// The result is replaced, not appended to, even when it held text before.
TEST(Base64, ReplacesThePreviousResult) {
  std::string text = "left over from an earlier image";
  orva::image::base64Encode(bytesOf("fo"), 2, &text);
  EXPECT_EQ(text, "Zm8=");
  orva::image::base64Encode(nullptr, 0, &text);
  EXPECT_EQ(text, "");
  EXPECT_EQ(orva::image::base64Encode(std::string("foobar")), "Zm9vYmFy");
}

TEST(Base64DeathTest, NullResultAbortsWithItsAssertion) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(orva::image::base64Encode(bytesOf("f"), 1, nullptr), "nullptr != result");
}

}  // namespace
