// Publishing: preview and publishing on a publish channel, the video and audio encoder
// configuration, mirroring, muting, traffic control, CDN relay, watermark, SEI, hardware
// encoding, stream encryption, capture sources and the publish snapshot.
#include <optional>
#include <string>

#include "wrappers/EncoderPresets.h"
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

// The channel of the few channel-less publishing methods.
constexpr int32_t kMainChannel = 0;

Napi::Value videoConfigObject(Napi::Env env, const sdk::VideoConfig& c) {
  Payload p(env);
  p.set("captureWidth", c.captureWidth).set("captureHeight", c.captureHeight)
      .set("encodeWidth", c.encodeWidth).set("encodeHeight", c.encodeHeight)
      .set("fps", c.fps).set("bitrate", c.bitrate).set("codecID", c.codecID);
  return Napi::Value(env, p.object());
}

Napi::Value audioConfigObject(Napi::Env env, const sdk::AudioConfig& c) {
  Payload p(env);
  p.set("bitrate", c.bitrate).set("channel", c.channel).set("codecID", c.codecID);
  return Napi::Value(env, p.object());
}

}  // namespace

Napi::Value OrvaVantixEngineWrapper::startPublishingStream(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startPublishingStream", errors_);
  if (!call.check({{"streamID", T::String}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  sdk::PublisherConfig config;  // empty room ID, 0, 0 unless given
  // A config that is present but not an object is ignored.
  if (a.is("config", T::Object)) {
    OptionalKeys keys(call, a.object("config"));
    keys.text("roomID", config.roomID, "param roomID type error!")
        .int32("forceSynchronousNetworkTime", config.forceSynchronousNetworkTime,
               "param forceSynchronousNetworkTime type error!")
        .int32("streamCensorshipMode", config.streamCensorshipMode,
               "param streamCensorshipMode type error!");
    if (!keys.ok()) return call.undefined();
  }
  return callEngine(call, &sdk::Engine::startPublishingStreamWithConfig, a.string("streamID"),
                    config, a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::stopPublishingStream(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopPublishingStream", errors_);
  if (!call.check({{"channel", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::stopPublishingStream, call.args().truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setStreamExtraInfo(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "setStreamExtraInfo", errors_);
  if (!call.begin({{"extraInfo", T::String}, {"channel", T::Number}})) return call.promise();
  const ArgObject& a = call.args();
  return call.settle<ErrorCodeResult>(call.engine().setStreamExtraInfo(
      a.string("extraInfo"), a.truncatedInt32("channel"),
      call.completion<ErrorCodeResult, sdk::PublisherUpdateStreamExtraInfoResultEvent>()));
}

Napi::Value OrvaVantixEngineWrapper::startPreview(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startPreview", errors_);
  if (!call.check({{"channel", T::Number}, {"viewMode", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  // No native view: captured frames reach script through the frame buffers only.
  sdk::Canvas canvas;
  canvas.view = nullptr;
  canvas.viewMode = a.truncatedInt32("viewMode");
  return callEngine(call, &sdk::Engine::startPreview, canvas, a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::stopPreview(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopPreview", errors_);
  if (!call.check({{"channel", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::stopPreview, call.args().truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setVideoConfig(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setVideoConfig", errors_);
  const ArgObject& a = call.args();
  if (!a.has("config")) {
    call.fail("param config is missing");
    return call.undefined();
  }
  sdk::VideoConfig config;
  if (a.is("config", T::Number)) {
    if (!call.check({{"channel", T::Number}})) return call.undefined();
    config = videoConfigPreset(a.truncatedInt32("config"));
  } else if (a.is("config", T::Object)) {
    if (!call.check("config", {{"captureWidth", T::Number}, {"captureHeight", T::Number},
                               {"encodeWidth", T::Number}, {"encodeHeight", T::Number},
                               {"fps", T::Number}, {"bitrate", T::Number}, {"codecID", T::Number}})) {
      return call.undefined();
    }
    const ArgObject c = a.object("config");
    config.captureWidth = c.truncatedInt32("captureWidth");
    config.captureHeight = c.truncatedInt32("captureHeight");
    config.encodeWidth = c.truncatedInt32("encodeWidth");
    config.encodeHeight = c.truncatedInt32("encodeHeight");
    config.fps = c.truncatedInt32("fps");
    config.bitrate = c.truncatedInt32("bitrate");
    config.codecID = c.truncatedInt32("codecID");
    if (!call.check({{"channel", T::Number}})) return call.undefined();
    // Seam for the native plugins' custom video capture manager: when an engine exists and
    // 1 <= fps <= 120, the manager takes fps as its frame rate here, before the engine call,
    // and gives every registered capture plugin fps and a frame interval of 1000 / fps ms.
  } else {
    return throwTypeError(call.env(),
                          ("config should be a [Number | Object] for calling:" + call.apiName()).c_str());
  }
  return callEngine(call, &sdk::Engine::setVideoConfig, config, a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::getVideoConfig(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getVideoConfig", errors_);
  if (!call.check({{"channel", T::Number}})) return call.undefined();
  return askEngine(call, videoConfigObject, &sdk::Engine::getVideoConfig,
                   call.args().truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setVideoMirrorMode(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setVideoMirrorMode", errors_);
  if (!call.check({{"mirrorMode", T::Number}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setVideoMirrorMode, a.truncatedInt32("mirrorMode"),
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setAudioConfig(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setAudioConfig", errors_);
  const ArgObject& a = call.args();
  if (!a.has("config")) {
    call.fail("param config is missing");
    return call.undefined();
  }
  sdk::AudioConfig config;
  if (a.is("config", T::Number)) {
    config = audioConfigPreset(a.truncatedInt32("config"));
  } else if (a.is("config", T::Object)) {
    // Here `channel` inside config is the audio channel count.
    if (!call.check("config", {{"bitrate", T::Number}, {"channel", T::Number}, {"codecID", T::Number}})) {
      return call.undefined();
    }
    const ArgObject c = a.object("config");
    config.bitrate = c.truncatedInt32("bitrate");
    config.channel = c.truncatedInt32("channel");
    config.codecID = c.truncatedInt32("codecID");
  } else {
    // The blank before "]" tells this text from setVideoConfig's; scripts match on both.
    return throwTypeError(call.env(),
                          ("config should be a [Number | Object ] for calling:" + call.apiName()).c_str());
  }
  if (!a.is("channel", T::Number)) {
    call.fail("channel should be a Number for calling: setAudioConfigWithChannel");
    return call.undefined();
  }
  return callEngine(call, &sdk::Engine::setAudioConfigByChannel, config, a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::getAudioConfig(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getAudioConfig", errors_);
  const ArgObject& a = call.args();
  // No keys are required: a numeric channel picks the publish channel, else the main one.
  const int32_t channel = a.is("channel", T::Number) ? a.truncatedInt32("channel") : kMainChannel;
  return askEngine(call, audioConfigObject, &sdk::Engine::getAudioConfigByChannel, channel);
}

Napi::Value OrvaVantixEngineWrapper::mutePublishStreamAudio(const Napi::CallbackInfo& info) {
  MethodCall call(info, "mutePublishStreamAudio", errors_);
  if (!call.check({{"mute", T::Boolean}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::mutePublishStreamAudio, a.boolean("mute"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::mutePublishStreamVideo(const Napi::CallbackInfo& info) {
  MethodCall call(info, "mutePublishStreamVideo", errors_);
  if (!call.check({{"mute", T::Boolean}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::mutePublishStreamVideo, a.boolean("mute"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::enableTrafficControl(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableTrafficControl", errors_);
  if (!call.check({{"enable", T::Boolean}, {"property", T::Number}, {"channel", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::enableTrafficControlByChannel, a.boolean("enable"),
                    a.truncatedInt32("property"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setMinVideoBitrateForTrafficControl(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setMinVideoBitrateForTrafficControl", errors_);
  if (!call.check({{"bitrate", T::Number}, {"mode", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  // This method has no channel key: it sets the main channel.
  return callEngine(call, &sdk::Engine::setMinVideoBitrateForTrafficControlByChannel,
                    a.truncatedInt32("bitrate"), a.truncatedInt32("mode"), kMainChannel);
}

Napi::Value OrvaVantixEngineWrapper::setMinVideoFpsForTrafficControl(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setMinVideoFpsForTrafficControl", errors_);
  if (!call.check({{"fps", T::Number}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setMinVideoFpsForTrafficControlByChannel, a.truncatedInt32("fps"),
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setMinVideoResolutionForTrafficControl(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setMinVideoResolutionForTrafficControl", errors_);
  if (!call.check({{"width", T::Number}, {"height", T::Number}, {"channel", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setMinVideoResolutionForTrafficControlByChannel,
                    a.truncatedInt32("width"), a.truncatedInt32("height"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setTrafficControlFocusOn(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setTrafficControlFocusOn", errors_);
  if (!call.check({{"mode", T::Number}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setTrafficControlFocusOnByChannel, a.truncatedInt32("mode"),
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::addPublishCdnUrl(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "addPublishCdnUrl", errors_);
  if (!call.begin({{"streamID", T::String}, {"targetURL", T::String}})) return call.promise();
  const ArgObject& a = call.args();
  return call.settle<ErrorCodeResult>(call.engine().addPublishCdnUrl(
      a.string("streamID"), a.string("targetURL"),
      call.completion<ErrorCodeResult, sdk::PublisherUpdateCdnUrlResultEvent>()));
}

Napi::Value OrvaVantixEngineWrapper::removePublishCdnUrl(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "removePublishCdnUrl", errors_);
  if (!call.begin({{"streamID", T::String}, {"targetURL", T::String}})) return call.promise();
  const ArgObject& a = call.args();
  return call.settle<ErrorCodeResult>(call.engine().removePublishCdnUrl(
      a.string("streamID"), a.string("targetURL"),
      call.completion<ErrorCodeResult, sdk::PublisherUpdateCdnUrlResultEvent>()));
}

Napi::Value OrvaVantixEngineWrapper::enablePublishDirectToCDN(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enablePublishDirectToCDN", errors_);
  if (!call.check({{"enable", T::Boolean}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  std::optional<sdk::CdnConfig> cdn;  // none unless config is an object
  if (a.is("config", T::Object)) {
    if (!call.check("config", {{"url", T::String}, {"authParam", T::String}})) return call.undefined();
    const ArgObject c = a.object("config");
    cdn = sdk::CdnConfig{c.string("url"), c.string("authParam")};
  }
  return callEngine(call, &sdk::Engine::enablePublishDirectToCdn, a.boolean("enable"), cdn,
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setPublishWatermark(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setPublishWatermark", errors_);
  if (!call.check({{"isPreviewVisible", T::Boolean}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  std::optional<sdk::Watermark> watermark;  // none unless watermark is an object
  if (a.is("watermark", T::Object)) {
    const ArgObject w = a.object("watermark");
    if (!call.check(w, "watermark", {{"imageURL", T::String}, {"layout", T::Object}}) ||
        !call.check(w.object("layout"), "layout",
                    {{"x", T::Number}, {"y", T::Number}, {"width", T::Number}, {"height", T::Number}})) {
      return call.undefined();
    }
    const ArgObject layout = w.object("layout");
    watermark = sdk::Watermark{w.string("imageURL"),
                               sdk::Rect{layout.truncatedInt32("x"), layout.truncatedInt32("y"),
                                         layout.truncatedInt32("width"), layout.truncatedInt32("height")}};
  }
  return callEngine(call, &sdk::Engine::setPublishWatermark, a.boolean("isPreviewVisible"), watermark,
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::sendSEI(const Napi::CallbackInfo& info) {
  MethodCall call(info, "sendSEI", errors_);
  if (!call.check({{"data", T::ArrayBuffer}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::sendSei, arrayBufferBytes(a, "data"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setSEIConfig(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setSEIConfig", errors_);
  if (!call.check({{"config", T::Object}}) || !call.check("config", {{"type", T::Number}})) {
    return call.undefined();
  }
  return callEngine(call, &sdk::Engine::setSeiConfig,
                    sdk::SeiConfig{call.args().object("config").truncatedInt32("type")});
}

Napi::Value OrvaVantixEngineWrapper::enableHardwareEncoder(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableHardwareEncoder", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableHardwareEncoder, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::enableH265EncodeFallback(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableH265EncodeFallback", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableH265EncodeFallback, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::isVideoEncoderSupported(const Napi::CallbackInfo& info) {
  MethodCall call(info, "isVideoEncoderSupported", errors_);
  if (!call.check({{"codecID", T::Number}, {"codecBackend", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  // The engine's support value as it is (it has more than two answers).
  return askEngine(call, numberValue, &sdk::Engine::isVideoEncoderSupported, a.truncatedInt32("codecID"),
                   a.truncatedInt32("codecBackend"));
}

Napi::Value OrvaVantixEngineWrapper::setCapturePipelineScaleMode(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setCapturePipelineScaleMode", errors_);
  if (!call.check({{"mode", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setCapturePipelineScaleMode, call.args().truncatedInt32("mode"));
}

Napi::Value OrvaVantixEngineWrapper::setStreamAlignmentProperty(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setStreamAlignmentProperty", errors_);
  if (!call.check({{"alignment", T::Number}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setStreamAlignmentProperty, a.truncatedInt32("alignment"),
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setPublishStreamEncryptionKey(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setPublishStreamEncryptionKey", errors_);
  if (!call.check({{"key", T::String}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setPublishStreamEncryptionKey, a.string("key"),
                    a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::takePublishStreamSnapshot(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "takePublishStreamSnapshot", errors_);
  if (!call.begin({{"channel", T::Number}})) return call.promise();
  return call.settle<SnapshotResult>(call.engine().takePublishStreamSnapshot(
      call.args().truncatedInt32("channel"),
      call.completion<SnapshotResult, sdk::PublisherTakeSnapshotResultEvent>()));
}

Napi::Value OrvaVantixEngineWrapper::setVideoSource(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setVideoSource", errors_);
  if (!call.check({{"source", T::Number}, {"instanceID", T::Number}, {"channel", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return askEngine(call, numberValue, &sdk::Engine::setVideoSource, a.truncatedInt32("source"),
                   truncatedUint32(a, "instanceID"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setAudioSource(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setAudioSource", errors_);
  if (!call.check({{"source", T::Number}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return askEngine(call, numberValue, &sdk::Engine::setAudioSource, a.truncatedInt32("source"),
                   a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::setAudioSourceWithConfig(const Napi::CallbackInfo& info) {
  // Reported as "setAudioSource", in traces and alerts alike; scripts match on that name.
  MethodCall call(info, "setAudioSource", errors_);
  if (!call.check({{"source", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  if (!a.is("config", T::Object)) {
    call.fail("param.config type error. it should be a object!");
    return call.undefined();
  }
  sdk::AudioSourceMixConfig mix;
  OptionalKeys keys(call, a.object("config"));
  keys.int32List("mediaPlayerIndexList", mix.mediaPlayerIndexList,
                 "config.mediaPlayerIndexList type error. it should be a array!")
      .int32List("audioEffectPlayerIndexList", mix.audioEffectPlayerIndexList,
                 "config.audioEffectPlayerIndexList type error. it should be a array!")
      .boolean("enableMixSystemPlayout", mix.enableMixSystemPlayout,
               "config.enableMixSystemPlayout type error. it should be a boolean!")
      .boolean("enableMixEnginePlayout", mix.enableMixEnginePlayout,
               "config.enableMixEnginePlayout type error. it should be a boolean!");
  if (!keys.ok()) return call.undefined();
  return askEngine(call, numberValue, &sdk::Engine::setAudioSourceWithConfig, a.truncatedInt32("source"), mix);
}

}  // namespace orva
