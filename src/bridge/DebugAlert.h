// The ready-made alert that "onDebugError" carries, in English or Chinese. Node-free so
// that both language variants can be pinned by native tests: nothing in script can switch
// the language.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace orva {

struct DebugAlert {
  std::string title;
  std::string body;
};

// alertLanguage 1 selects Chinese, anything else English. Plain concatenation, the code in
// decimal, no blank after the colons: the script layer shows these texts as they are.
inline DebugAlert composeDebugAlert(int32_t alertLanguage, std::string_view funcName,
                                    int32_t errorCode, std::string_view errorInfo) {
  const std::string code = std::to_string(errorCode);
  DebugAlert alert;
  if (alertLanguage == 1) {
    alert.title = "[ORVA]温馨提示";
    alert.body.append("调用接口失败:").append(funcName)
        .append("\n\n错误码:").append(code)
        .append("\n错误信息:").append(errorInfo)
        .append("\n\n可以在调试信息控制台中查看更多信息。");
  } else {
    alert.title = "[ORVA]Tips";
    alert.body.append("Failed to call function:").append(funcName)
        .append("\n\nError Code:").append(code)
        .append("\nError Info:").append(errorInfo)
        .append("\n\nYou can see in the debug console for more details.");
  }
  return alert;
}

}  // namespace orva
