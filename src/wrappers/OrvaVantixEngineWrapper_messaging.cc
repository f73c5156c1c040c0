// Messaging and utilities: room messages and custom commands, recording of captured data,
// the network speed test and network time, video object segmentation, the alpha-channel
// encoder, the camera-off image, the custom capture and processing switches, and the list
// of capturable screens and windows with their thumbnails.
#include <algorithm>
#include <optional>
#include <vector>

#include "OrvaVantixSDKWrapper/ScreenCaptureSources.h"
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

// The engine's raw-data buffer type: custom-captured and custom-processed frames travel as
// plain pixel buffers, the only kind the module hands over.
constexpr int32_t kRawDataBuffer = 1;

Napi::Value networkTimeObject(Napi::Env env, const sdk::NetworkTimeInfo& info) {
  Payload p(env);
  p.set("timestamp", info.timestamp).set("maxDeviation", info.maxDeviation);
  return Napi::Value(env, p.object());
}

void fillImage(Payload& p, const image::ThumbnailImage& image) {
  p.set("buffer", image.buffer).set("width", image.width).set("height", image.height);
}

// The sources in the engine's order, as script receives them.
napi_value screenCaptureSourceList(Napi::Env env, const std::vector<sdk::EncodedScreenCaptureSource>& sources) {
  Napi::Array list = Napi::Array::New(env, sources.size());
  for (uint32_t i = 0; i < sources.size(); ++i) {
    const sdk::EncodedScreenCaptureSource& s = sources[i];
    Payload p(env);
    p.set("sourceType", s.sourceType).set("sourceID", s.sourceID).set("sourceName", s.sourceName)
        .setObject("thumbnailImage", [&](Payload& image) { fillImage(image, s.thumbnailImage); })
        .setObject("iconImage", [&](Payload& image) { fillImage(image, s.iconImage); });
    list.Set(i, p.object());
  }
  return list;
}

// The optional `config` of the two custom audio capture processing switches: absent, the
// engine's defaults. False when it or one of its keys has the wrong type (already reported).
bool readAudioProcessingConfig(MethodCall& call, std::optional<sdk::CustomAudioProcessingConfig>& config) {
  OptionalKeys keys(call, call.args());
  keys.nested("config", "param config should be a object!", [&](OptionalKeys& c) {
    config.emplace();
    c.uint32("sampleRate", config->sampleRate, "param sampleRate should be a number!")
        .uint32("channel", config->channel, "param channel should be a number!")
        .uint32("samples", config->samples, "param samples should be a number!");
  });
  return keys.ok();
}

}  // namespace

// ---- room messages ----------------------------------------------------------------------

Napi::Value OrvaVantixEngineWrapper::sendBroadcastMessage(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "sendBroadcastMessage", errors_);
  if (!call.begin({{"roomID", T::String}, {"message", T::String}})) return call.promise();
  const ArgObject& a = call.args();
  using Result = MessageResult<uint64_t>;
  return call.settle<Result>(call.engine().sendBroadcastMessage(
      a.string("roomID"), a.string("message"), call.completion<Result, sdk::ImSendBroadcastMessageResultEvent>()));
}

Napi::Value OrvaVantixEngineWrapper::sendBarrageMessage(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "sendBarrageMessage", errors_);
  if (!call.begin({{"roomID", T::String}, {"message", T::String}})) return call.promise();
  const ArgObject& a = call.args();
  using Result = MessageResult<std::string>;
  return call.settle<Result>(call.engine().sendBarrageMessage(
      a.string("roomID"), a.string("message"), call.completion<Result, sdk::ImSendBarrageMessageResultEvent>()));
}

Napi::Value OrvaVantixEngineWrapper::sendCustomCommand(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "sendCustomCommand", errors_);
  if (!call.begin({{"roomID", T::String}, {"command", T::String}, {"toUserList", T::Array}}) ||
      !call.checkElements("toUserList", {{"userID", T::String}, {"userName", T::String}})) {
    return call.promise();
  }
  const ArgObject& a = call.args();
  std::vector<sdk::User> users = a.list("toUserList", [](const Napi::Value& element) {
    const ArgObject user(element.Env(), element);
    return sdk::User{user.string("userID"), user.string("userName")};
  });
  return call.settle<ErrorCodeResult>(call.engine().sendCustomCommand(
      a.string("roomID"), a.string("command"), users,
      call.completion<ErrorCodeResult, sdk::ImSendCustomCommandResultEvent>()));
}

// ---- recording, network -----------------------------------------------------------------

Napi::Value OrvaVantixEngineWrapper::startRecordingCapturedData(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startRecordingCapturedData", errors_);
  if (!call.check({{"config", T::Object}, {"channel", T::Number}}) ||
      !call.check("config", {{"filePath", T::String}, {"recordType", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  const ArgObject config = a.object("config");
  return callEngine(call, &sdk::Engine::startRecordingCapturedData,
                    sdk::DataRecordConfig{config.string("filePath"), config.truncatedInt32("recordType")},
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::stopRecordingCapturedData(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopRecordingCapturedData", errors_);
  if (!call.check({{"channel", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::stopRecordingCapturedData, call.args().truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::startNetworkSpeedTest(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startNetworkSpeedTest", errors_);
  if (!call.check({{"config", T::Object}, {"interval", T::Number}}) ||
      !call.check("config", {{"testUplink", T::Boolean}, {"expectedUplinkBitrate", T::Number},
                             {"testDownlink", T::Boolean}, {"expectedDownlinkBitrate", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  const ArgObject c = a.object("config");
  sdk::NetworkSpeedTestConfig config;
  config.testUplink = c.boolean("testUplink");
  config.expectedUplinkBitrate = truncatedUint32(c, "expectedUplinkBitrate");
  config.testDownlink = c.boolean("testDownlink");
  config.expectedDownlinkBitrate = truncatedUint32(c, "expectedDownlinkBitrate");
  return callEngine(call, &sdk::Engine::startNetworkSpeedTest, config, truncatedUint32(a, "interval"));
}

Napi::Value OrvaVantixEngineWrapper::stopNetworkSpeedTest(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopNetworkSpeedTest", errors_);
  return callEngine(call, &sdk::Engine::stopNetworkSpeedTest);
}

Napi::Value OrvaVantixEngineWrapper::getNetworkTimeInfo(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getNetworkTimeInfo", errors_);
  return askEngine(call, networkTimeObject, &sdk::Engine::getNetworkTimeInfo);
}

// ---- video: segmentation, alpha channel, camera-off image, custom capture and processing --

Napi::Value OrvaVantixEngineWrapper::enableVideoObjectSegmentation(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableVideoObjectSegmentation", errors_);
  if (!call.check({{"enable", T::Boolean}, {"config", T::Object}, {"channel", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  // Absent keys stay zero: no segmentation type, no background processing.
  sdk::ObjectSegmentationConfig config;
  sdk::BackgroundConfig& background = config.backgroundConfig;
  OptionalKeys keys(call, a.object("config"));
  keys.int32("objectSegmentationType", config.objectSegmentationType,
             "param objectSegmentationType should be a number!")
      .nested("backgroundConfig", "param backgroundConfig should be a Object!", [&](OptionalKeys& b) {
        b.int32("processType", background.processType, "param processType should be a number!")
            .uint32("color", background.color, "param color should be a number!")
            .text("imageURL", background.imageURL, "param imageURL should be a string!")
            .int32("blurLevel", background.blurLevel, "param blurLevel should be a number!");
      });
  if (!keys.ok()) return call.undefined();
  return callEngine(call, &sdk::Engine::enableVideoObjectSegmentationWithConfig, a.boolean("enable"), config,
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::enableAlphaChannelVideoEncoder(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableAlphaChannelVideoEncoder", errors_);
  if (!call.check({{"enable", T::Boolean}, {"alphaLayout", T::Number}, {"channel", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::enableAlphaChannelVideoEncoder, a.boolean("enable"),
                    a.truncatedInt32("alphaLayout"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setDummyCaptureImagePath(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setDummyCaptureImagePath", errors_);
  if (!call.check({{"filePath", T::String}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setDummyCaptureImagePath, a.string("filePath"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::enableCustomVideoCapture(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableCustomVideoCapture", errors_);
  if (!call.check({{"enable", T::Boolean}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::enableCustomVideoCapture, a.boolean("enable"),
                    sdk::CustomVideoCaptureConfig{kRawDataBuffer}, a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::enableCustomVideoProcessing(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableCustomVideoProcessing", errors_);
  if (!call.check({{"enable", T::Boolean}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::enableCustomVideoProcessing, a.boolean("enable"),
                    sdk::CustomVideoProcessConfig{kRawDataBuffer}, a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setCustomVideoCaptureFillMode(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setCustomVideoCaptureFillMode", errors_);
  if (!call.check({{"mode", T::Number}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setCustomVideoCaptureFillMode, a.truncatedInt32("mode"),
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setCustomVideoCaptureRegionOfInterest(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setCustomVideoCaptureRegionOfInterest", errors_);
  if (!call.check({{"rectList", T::Array}, {"rectCount", T::Number}, {"channel", T::Number}}) ||
      !call.checkElements("rectList", {{"x", T::Number}, {"y", T::Number}, {"width", T::Number},
                                       {"height", T::Number}, {"strength", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  std::vector<sdk::RoiRect> rects = a.list("rectList", [](const Napi::Value& element) {
    const ArgObject r(element.Env(), element);
    return sdk::RoiRect{r.truncatedInt32("x"), r.truncatedInt32("y"), r.truncatedInt32("width"),
                        r.truncatedInt32("height"), r.truncatedInt32("strength")};
  });
  // rectCount says how many of the listed rectangles apply, never more than are listed.
  const int32_t count = a.truncatedInt32("rectCount");
  rects.resize(std::min(rects.size(), static_cast<size_t>(std::max(count, 0))));
  return callEngine(call, &sdk::Engine::setCustomVideoCaptureRegionOfInterest, rects, a.truncatedInt32("channel"));
}

// ---- custom audio -----------------------------------------------------------------------

Napi::Value OrvaVantixEngineWrapper::enableCustomAudioCaptureProcessing(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableCustomAudioCaptureProcessing", errors_);
  std::optional<sdk::CustomAudioProcessingConfig> config;
  if (!call.check({{"enable", T::Boolean}}) || !readAudioProcessingConfig(call, config)) return call.undefined();
  return callEngine(call, &sdk::Engine::enableCustomAudioCaptureProcessing, call.args().boolean("enable"), config);
}

Napi::Value OrvaVantixEngineWrapper::enableCustomAudioCaptureProcessingAfterHeadphoneMonitor(
    const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableCustomAudioCaptureProcessingAfterHeadphoneMonitor", errors_);
  std::optional<sdk::CustomAudioProcessingConfig> config;
  if (!call.check({{"enable", T::Boolean}}) || !readAudioProcessingConfig(call, config)) return call.undefined();
  return callEngine(call, &sdk::Engine::enableCustomAudioCaptureProcessingAfterHeadphoneMonitor,
                    call.args().boolean("enable"), config);
}

Napi::Value OrvaVantixEngineWrapper::enableCustomAudioIO(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableCustomAudioIO", errors_);
  if (!call.check({{"enable", T::Boolean}, {"config", T::Object}, {"channel", T::Number}}) ||
      !call.check("config", {{"sourceType", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::enableCustomAudioIo, a.boolean("enable"),
                    sdk::CustomAudioConfig{a.object("config").truncatedInt32("sourceType")},
                    a.truncatedInt32("channel"));
}

// ---- screen capture sources ---------------------------------------------------------------

Napi::Value OrvaVantixEngineWrapper::getScreenCaptureSources(const Napi::CallbackInfo& info) {
  // The one promise method whose failed check also raises the debug alert.
  PromiseCall call(info, "getScreenCaptureSources", errors_, MethodCall::Mode::ReportAndReject);
  if (!call.begin({{"thumbnailWidth", T::Number}, {"thumbnailHeight", T::Number}, {"iconWidth", T::Number},
                   {"iconHeight", T::Number}})) {
    return call.promise();
  }
  const ArgObject& a = call.args();
  // The engine lists at once, so the promise is resolved before the method returns. The PNG
  // encoding runs here, on the script thread: with zlib behind the writer a list of ten
  // windows takes milliseconds (bench/README.md).
  return call.resolve(screenCaptureSourceList(
      call.env(), call.engine().getEncodedScreenCaptureSources(
                      a.truncatedInt32("thumbnailWidth"), a.truncatedInt32("thumbnailHeight"),
                      a.truncatedInt32("iconWidth"), a.truncatedInt32("iconHeight"))));
}

}  // namespace orva
