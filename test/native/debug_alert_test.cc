// The "onDebugError" alert texts in both languages. Only the native side can select the
// Chinese variant, so both are pinned here word for word.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "bridge/DebugAlert.h"

namespace orva {
namespace {

const std::string kEnglishTitle = "[ORVA]Tips";
const std::string kChineseTitle = "[ORVA]温馨提示";

std::string englishBody(const std::string& func, const std::string& code, const std::string& info) {
  return "Failed to call function:" + func + "\n\nError Code:" + code + "\nError Info:" + info +
         "\n\nYou can see in the debug console for more details.";
}

std::string chineseBody(const std::string& func, const std::string& code, const std::string& info) {
  return "调用接口失败:" + func + "\n\n错误码:" + code + "\n错误信息:" + info +
         "\n\n可以在调试信息控制台中查看更多信息。";
}

TEST(DebugAlert, LanguageOneIsChineseEveryOtherValueEnglish) {
  struct Row {
    int32_t language;
    bool chinese;
  };
  for (const Row& row : std::vector<Row>{{0, false}, {1, true}, {2, false}, {-1, false}}) {
    const DebugAlert alert = composeDebugAlert(row.language, "setRoomMode", -1, "param .mode missing");
    if (row.chinese) {
      EXPECT_EQ(alert.title, kChineseTitle);
      EXPECT_EQ(alert.body, chineseBody("setRoomMode", "-1", "param .mode missing"));
    } else {
      EXPECT_EQ(alert.title, kEnglishTitle) << "language " << row.language;
      EXPECT_EQ(alert.body, englishBody("setRoomMode", "-1", "param .mode missing"));
    }
  }
}

TEST(DebugAlert, CodeIsDecimalAndPartsAreConcatenatedAsGiven) {
  const DebugAlert big = composeDebugAlert(0, "loginRoom", 1000008, "");
  EXPECT_EQ(big.body, englishBody("loginRoom", "1000008", ""));
  const DebugAlert low = composeDebugAlert(1, "", INT32_MIN, "x\ny");
  EXPECT_EQ(low.body, chineseBody("", "-2147483648", "x\ny"));
}

}  // namespace
}  // namespace orva
