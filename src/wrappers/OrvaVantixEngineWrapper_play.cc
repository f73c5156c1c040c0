// Playing remote streams: start and stop with the player configuration, volume, muting,
// buffering, decryption, focus, video layer, hardware decoding and the play snapshot.
// Playing never renders into a native view: decoded frames reach script only through the
// buffers registered with initVideoPlayBuffer.
#include <optional>
#include <string>

#include "events/OrvaVantixAddonCustomVideoRenderer.h"
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

Napi::Value OrvaVantixEngineWrapper::startPlayingStream(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startPlayingStream", errors_);
  if (!call.check({{"streamID", T::String}, {"config", T::Object}})) return call.undefined();
  const ArgObject& a = call.args();
  const ArgObject c = a.object("config");
  // Absent keys keep the engine's defaults: 0 for every number, empty room ID, no CDN.
  sdk::PlayerConfig config;
  OptionalKeys keys(call, c);
  keys.int32("resourceMode", config.resourceMode, "param resourceMode type error, it should be a number!")
      .int32("videoCodecID", config.videoCodecID, "param videoCodecID type error, it should be a number!")
      .int32("sourceResourceType", config.sourceResourceType,
             "param sourceResourceType type error, it should be a number!")
      .text("roomID", config.roomID, "param roomID type error!")
      .int32("codecTemplateID", config.codecTemplateID,
             "param codecTemplateID type error, it should be a number!")
      .int32("resourceSwitchMode", config.resourceSwitchMode,
             "param resourceSwitchMode type error, it should be a number!");
  if (!keys.ok()) return call.undefined();
  // A cdnConfig that is not an object is ignored; an object must be complete.
  if (c.is("cdnConfig", T::Object)) {
    if (!call.check(c.object("cdnConfig"), "cdnConfig", {{"url", T::String}, {"authParam", T::String}})) {
      return call.undefined();
    }
    const ArgObject cdn = c.object("cdnConfig");
    config.cdnConfig = sdk::CdnConfig{cdn.string("url"), cdn.string("authParam")};
  }
  return callEngine(call, &sdk::Engine::startPlayingStreamWithConfig, a.string("streamID"),
                    std::optional<sdk::Canvas>(), config);
}

Napi::Value OrvaVantixEngineWrapper::stopPlayingStream(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopPlayingStream", errors_);
  if (!call.check({{"streamID", T::String}})) return call.undefined();
  const std::string streamID = call.args().string("streamID");
  callEngine(call, &sdk::Engine::stopPlayingStream, streamID);
  // Engine or not, the stream's buffer is forgotten under the renderer's lock and then the
  // stream's own, so no frame still in flight writes into memory script may now release.
  // Script registers a buffer again before frames of this stream reach it.
  OrvaVantixAddonCustomVideoRenderer::instance()->removePlayBuffer(streamID);
  releaseFrameBuffer(call, playBufferKey(streamID));
  return call.undefined();
}

Napi::Value OrvaVantixEngineWrapper::setPlayVolume(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setPlayVolume", errors_);
  if (!call.check({{"streamID", T::String}, {"volume", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setPlayVolume, a.string("streamID"), a.truncatedInt32("volume"));
}

Napi::Value OrvaVantixEngineWrapper::setAllPlayStreamVolume(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setAllPlayStreamVolume", errors_);
  if (!call.check({{"volume", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setAllPlayStreamVolume, call.args().truncatedInt32("volume"));
}

Napi::Value OrvaVantixEngineWrapper::mutePlayStreamAudio(const Napi::CallbackInfo& info) {
  MethodCall call(info, "mutePlayStreamAudio", errors_);
  if (!call.check({{"streamID", T::String}, {"mute", T::Boolean}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::mutePlayStreamAudio, a.string("streamID"), a.boolean("mute"));
}

Napi::Value OrvaVantixEngineWrapper::mutePlayStreamVideo(const Napi::CallbackInfo& info) {
  MethodCall call(info, "mutePlayStreamVideo", errors_);
  if (!call.check({{"streamID", T::String}, {"mute", T::Boolean}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::mutePlayStreamVideo, a.string("streamID"), a.boolean("mute"));
}

Napi::Value OrvaVantixEngineWrapper::muteAllPlayStreamAudio(const Napi::CallbackInfo& info) {
  MethodCall call(info, "muteAllPlayStreamAudio", errors_);
  if (!call.check({{"mute", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::muteAllPlayStreamAudio, call.args().boolean("mute"));
}

Napi::Value OrvaVantixEngineWrapper::muteAllPlayStreamVideo(const Napi::CallbackInfo& info) {
  MethodCall call(info, "muteAllPlayStreamVideo", errors_);
  if (!call.check({{"mute", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::muteAllPlayStreamVideo, call.args().boolean("mute"));
}

Napi::Value OrvaVantixEngineWrapper::enableHardwareDecoder(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableHardwareDecoder", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableHardwareDecoder, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::enableCheckPoc(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableCheckPoc", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableCheckPoc, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::isVideoDecoderSupported(const Napi::CallbackInfo& info) {
  MethodCall call(info, "isVideoDecoderSupported", errors_);
  if (!call.check({{"codecID", T::Number}, {"codecBackend", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  // The engine's support value as it is (it has more than two answers).
  return askEngine(call, numberValue, &sdk::Engine::isVideoDecoderSupported, a.truncatedInt32("codecID"),
                   a.truncatedInt32("codecBackend"));
}

Napi::Value OrvaVantixEngineWrapper::setPlayStreamDecryptionKey(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setPlayStreamDecryptionKey", errors_);
  if (!call.check({{"streamID", T::String}, {"key", T::String}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setPlayStreamDecryptionKey, a.string("streamID"), a.string("key"));
}

Napi::Value OrvaVantixEngineWrapper::setPlayStreamFocusOn(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setPlayStreamFocusOn", errors_);
  if (!call.check({{"streamID", T::String}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setPlayStreamFocusOn, call.args().string("streamID"));
}

Napi::Value OrvaVantixEngineWrapper::setPlayStreamVideoType(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setPlayStreamVideoType", errors_);
  if (!call.check({{"streamID", T::String}, {"streamType", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setPlayStreamVideoType, a.string("streamID"),
                    a.truncatedInt32("streamType"));
}

Napi::Value OrvaVantixEngineWrapper::setPlayStreamBufferIntervalRange(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setPlayStreamBufferIntervalRange", errors_);
  if (!call.check({{"streamID", T::String}, {"minBufferInterval", T::Number},
                   {"maxBufferInterval", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setPlayStreamBufferIntervalRange, a.string("streamID"),
                    truncatedUint32(a, "minBufferInterval"), truncatedUint32(a, "maxBufferInterval"));
}

Napi::Value OrvaVantixEngineWrapper::takePlayStreamSnapshot(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "takePlayStreamSnapshot", errors_);
  if (!call.begin({{"streamID", T::String}})) return call.promise();
  return call.settle<SnapshotResult>(call.engine().takePlayStreamSnapshot(
      call.args().string("streamID"), call.completion<SnapshotResult, sdk::PlayerTakeSnapshotResultEvent>()));
}

}  // namespace orva
