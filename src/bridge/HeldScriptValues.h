// Script values that native code keeps using after the call that handed them over has
// returned (frame buffers registered for rendering): each is held by a reference, under a
// key, so the garbage collector cannot free it while native code may still touch it.
//
// One set per environment (the addon object's), used on that environment's script thread
// only: references belong to their environment and die with it. Whoever lets go of a value
// here must first make sure native code no longer uses it (the frame renderer's slots are
// cleared before their buffers are released).
#pragma once

#include <napi.h>

#include <map>
#include <string>

namespace orva {

class HeldScriptValues {
 public:
  // Holds `value` under `key`, releasing the value held there before.
  void hold(const std::string& key, Napi::Value value);
  // Releases the value under `key`, if any.
  void release(const std::string& key);
  void releaseAll();

  std::size_t size() const { return held_.size(); }

 private:
  std::map<std::string, Napi::Reference<Napi::Value>> held_;
};

}  // namespace orva
