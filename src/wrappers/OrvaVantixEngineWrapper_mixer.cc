// Stream-mixing tasks: several input streams laid out on one canvas, with labels, images, a
// watermark and a whiteboard, encoded to one or more outputs.
//
// startMixerTask and stopMixerTask share one reading of the whole task object, so stopping
// needs the complete task, not only its taskID: scripts keep the task they started and pass
// it again. The reading runs in a fixed order (each input with its layout and optional keys,
// the outputs, the video and audio configuration, watermark, whiteboard, the optional task
// keys) and its first failure rejects the promise; the engine test follows the reading.
// The fixed texts ("… shoule be …", the jitterBufferLength text that names another key
// than the one read) are what scripts match on and are kept word for word.
#include <string>

#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

// A layout of an input, the watermark or the whiteboard: all four keys required.
bool readLayout(MethodCall& call, const ArgObject& owner, sdk::Rect& layout) {
  const ArgObject l = owner.object("layout");
  if (!call.check(l, "layout", {{"x", T::Number}, {"y", T::Number}, {"width", T::Number}, {"height", T::Number}})) {
    return false;
  }
  layout = sdk::Rect{l.truncatedInt32("x"), l.truncatedInt32("y"), l.truncatedInt32("width"),
                     l.truncatedInt32("height")};
  return true;
}

bool readFont(MethodCall& call, const ArgObject& f, sdk::Font& font) {
  return OptionalKeys(call, f)
      .int32("type", font.type, "type shoule be a number!")
      .int32("size", font.size, "size shoule be a number!")
      .uint32("color", font.color, "color shoule be a number!")
      .int32("transparency", font.transparency, "transparency shoule be a number!")
      .boolean("border", font.border, "border shoule be a boolean!")
      .uint32("borderColor", font.borderColor, "borderColor shoule be a number!")
      .ok();
}

bool readLabel(MethodCall& call, const ArgObject& l, sdk::LabelInfo& label) {
  if (!call.check(l, "label", {{"text", T::String}})) return false;
  label.text = l.string("text");
  return OptionalKeys(call, l)
      .int32("left", label.left, "left shoule be a number!")
      .int32("top", label.top, "top shoule be a number!")
      .object("font", "font shoule be a object!", [&](const ArgObject& f) { return readFont(call, f, label.font); })
      .ok();
}

bool readInput(MethodCall& call, const ArgObject& in, sdk::MixerInput& input) {
  if (!call.check(in, "inputList", {{"streamID", T::String}, {"layout", T::Object}}) ||
      !readLayout(call, in, input.layout)) {
    return false;
  }
  input.streamID = in.string("streamID");
  return OptionalKeys(call, in)
      .int32("contentType", input.contentType, "contentType shoule be a number!")
      .uint32("soundLevelID", input.soundLevelID, "soundLevelID shoule be a number!")
      .int32("cornerRadius", input.cornerRadius, "cornerRadius shoule be a number!")
      .object("imageInfo", nullptr,
              [&](const ArgObject& image) {
                return OptionalKeys(call, image)
                    .text("url", input.imageInfo.url, "image url shoule be a string!")
                    .int32("displayMode", input.imageInfo.displayMode, "image displayMode shoule be a Number!")
                    .ok();
              })
      .int32("renderMode", input.renderMode, "renderMode shoule be a number!")
      .int32("volume", input.volume, "volume shoule be a number!")
      .boolean("isAudioFocus", input.isAudioFocus, "isAudioFocus shoule be a boolean!")
      .int32("audioDirection", input.audioDirection, "audioDirection shoule be a number!")
      .object("label", "label shoule be a Object!",
              [&](const ArgObject& l) { return readLabel(call, l, input.label.emplace()); })
      .ok();
}

bool readOutput(MethodCall& call, const ArgObject& out, sdk::MixerOutput& output) {
  if (!call.check(out, "outputList", {{"target", T::String}})) return false;
  output.target = out.string("target");
  sdk::MixerOutputVideoConfig& video = output.videoConfig;
  return OptionalKeys(call, out)
      .object("videoConfig", nullptr,
              [&](const ArgObject& v) {
                return OptionalKeys(call, v)
                    .int32("videoCodecID", video.videoCodecID, "videoCodecID shoule be a number!")
                    .int32("bitrate", video.bitrate, "bitrate shoule be a number!")
                    .int32("encodeProfile", video.encodeProfile, "encodeProfile shoule be a number!")
                    .int32("encodeLatency", video.encodeLatency, "encodeLatency shoule be a number!")
                    .ok();
              })
      .ok();
}

bool readVideoConfig(MethodCall& call, const ArgObject& v, sdk::MixerVideoConfig& video) {
  if (!call.check(v, "videoConfig", {{"width", T::Number}, {"height", T::Number}, {"fps", T::Number},
                                     {"bitrate", T::Number}})) {
    return false;
  }
  video.width = v.truncatedInt32("width");
  video.height = v.truncatedInt32("height");
  video.fps = v.truncatedInt32("fps");
  video.bitrate = v.truncatedInt32("bitrate");
  return OptionalKeys(call, v)
      .int32("quality", video.quality, "quality shoule be a number!")
      .int32("rateControlMode", video.rateControlMode, "rateControlMode shoule be a number!")
      .ok();
}

bool readAudioConfig(MethodCall& call, const ArgObject& a, sdk::MixerAudioConfig& audio) {
  if (!call.check(a, "audioConfig", {{"bitrate", T::Number}, {"channel", T::Number}, {"codecID", T::Number}})) {
    return false;
  }
  audio = sdk::MixerAudioConfig{a.truncatedInt32("bitrate"), a.truncatedInt32("channel"), a.truncatedInt32("codecID")};
  return true;
}

bool readWatermark(MethodCall& call, const ArgObject& w, sdk::Watermark& watermark) {
  if (!call.check(w, "watermark", {{"imageURL", T::String}, {"layout", T::Object}}) ||
      !readLayout(call, w, watermark.layout)) {
    return false;
  }
  watermark.imageURL = w.string("imageURL");
  return true;
}

bool readWhiteboard(MethodCall& call, const ArgObject& w, sdk::MixerWhiteboard& whiteboard) {
  if (!call.check(w, "whiteboard", {{"whiteboardID", T::Number}, {"horizontalRatio", T::Number},
                                    {"verticalRatio", T::Number}, {"isPPTAnimation", T::Boolean},
                                    {"layout", T::Object}, {"zOrder", T::Number}, {"backgroundColor", T::Number}}) ||
      !readLayout(call, w, whiteboard.layout)) {
    return false;
  }
  // The whiteboard ID is the engine's only 64-bit key here: read whole, not cut to 32 bits.
  whiteboard.whiteboardID = static_cast<uint64_t>(w.int64("whiteboardID"));
  whiteboard.horizontalRatio = w.truncatedInt32("horizontalRatio");
  whiteboard.verticalRatio = w.truncatedInt32("verticalRatio");
  whiteboard.isPPTAnimation = w.boolean("isPPTAnimation");
  whiteboard.zOrder = w.truncatedInt32("zOrder");
  whiteboard.backgroundColor = truncatedUint32(w, "backgroundColor");
  return true;
}

// Reads and checks the task under `task` in the documented order. False after the first
// failure, which is already reported (the promise rejected with its message).
bool readTask(MethodCall& call, sdk::MixerTask& task) {
  if (!call.check({{"task", T::Object}})) return false;
  const ArgObject t = call.args().object("task");
  if (!call.check(t, "task", {{"taskID", T::String}, {"inputList", T::Array}, {"outputList", T::Array},
                              {"videoConfig", T::Object}, {"audioConfig", T::Object}})) {
    return false;
  }
  task.taskID = t.string("taskID");
  // Walked by length, fetched by index: a hole reads as undefined and fails its first check.
  // Records grow one element at a time, so a sparse array of huge length fails at its first
  // hole instead of allocating for its length.
  const uint32_t inputs = t.length("inputList");
  for (uint32_t i = 0; i < inputs; ++i) {
    if (!readInput(call, t.objectAt("inputList", i), task.inputList.emplace_back())) return false;
  }
  const uint32_t outputs = t.length("outputList");
  for (uint32_t i = 0; i < outputs; ++i) {
    if (!readOutput(call, t.objectAt("outputList", i), task.outputList.emplace_back())) return false;
  }
  if (!readVideoConfig(call, t.object("videoConfig"), task.videoConfig) ||
      !readAudioConfig(call, t.object("audioConfig"), task.audioConfig)) {
    return false;
  }
  // The engine takes the advanced configuration as "key=value;…" text; anything but an
  // object is left out.
  if (t.is("advancedConfig", T::Object)) task.advancedConfig = keyValueText(t.object("advancedConfig"));
  return OptionalKeys(call, t)
      .object("watermark", nullptr,
              [&](const ArgObject& w) { return readWatermark(call, w, task.watermark.emplace()); })
      .object("whiteboard", nullptr,
              [&](const ArgObject& w) { return readWhiteboard(call, w, task.whiteboard.emplace()); })
      .text("backgroundImageURL", task.backgroundImageURL,
            "param backgroundImageURL type error, it should be a string!")
      .boolean("enableSoundLevel", task.enableSoundLevel, "param enableSoundLevel type error, it should be a boolean!")
      .int32("streamAlignmentMode", task.streamAlignmentMode,
             "param streamAlignmentMode type error, it should be a number!")
      .bytes("userData", task.userData, "param userData type error, it should be a ArrayBuffer!")
      .int32("minPlayStreamBufferLength", task.minPlayStreamBufferLength,
             "param jitterBufferLength type error, it should be a number!")
      .ok();
}

enum class MixerAction { Start, Stop };

Napi::Value mixerTask(const Napi::CallbackInfo& info, const char* apiName, ArgumentErrors& errors,
                      MixerAction action) {
  PromiseCall call(info, apiName, errors);
  if (!call.requireArgument()) return call.promise();
  sdk::MixerTask task;
  if (!readTask(call, task) || !call.requireEngine()) return call.promise();
  if (action == MixerAction::Start) {
    return call.settle<ExtendedDataResult>(call.engine().startMixerTask(
        task, call.completion<ExtendedDataResult, sdk::MixerStartResultEvent>()));
  }
  return call.settle<ExtendedDataResult>(
      call.engine().stopMixerTask(task, call.completion<ExtendedDataResult, sdk::MixerStopResultEvent>()));
}

}  // namespace

Napi::Value OrvaVantixEngineWrapper::startMixerTask(const Napi::CallbackInfo& info) {
  return mixerTask(info, "startMixerTask", errors_, MixerAction::Start);
}

Napi::Value OrvaVantixEngineWrapper::stopMixerTask(const Napi::CallbackInfo& info) {
  return mixerTask(info, "stopMixerTask", errors_, MixerAction::Stop);
}

}  // namespace orva
