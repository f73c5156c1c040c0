#include "bridge/HeldScriptValues.h"

#include <utility>

namespace orva {

void HeldScriptValues::hold(const std::string& key, Napi::Value value) {
  held_.insert_or_assign(key, Napi::Persistent(value));
}

void HeldScriptValues::release(const std::string& key) { held_.erase(key); }

void HeldScriptValues::releaseAll() { held_.clear(); }

}  // namespace orva
