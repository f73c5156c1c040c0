// The engine wrapper's frame: the method table and class definition, the constructor, and the
// methods that belong to no feature family (uploadLog, enableDebugAssistant,
// registerEventHandler). Shared helpers of the common method shape live here too.
#include "wrappers/OrvaVantixEngineWrapper.h"

#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "OrvaVantixSDKWrapper/NoDestroy.h"
#include "bridge/DebugLog.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

using W = OrvaVantixEngineWrapper;

// The method table in its published order (the script class lists its methods in this
// order). Each feature family joins by inserting its rows in their places; the families not
// yet here (native plugins) are marked where their rows go.
const W::MethodRow W::kMethodTable[] = {
    {"uploadLog", &W::uploadLog},
    {"enableDebugAssistant", &W::enableDebugAssistant},
    {"loginRoom", &W::loginRoom},
    {"logoutRoom", &W::logoutRoom},
    {"switchRoom", &W::switchRoom},
    {"setRoomExtraInfo", &W::setRoomExtraInfo},
    {"startPublishingStream", &W::startPublishingStream},
    {"stopPublishingStream", &W::stopPublishingStream},
    {"setStreamExtraInfo", &W::setStreamExtraInfo},
    {"startPreview", &W::startPreview},
    {"stopPreview", &W::stopPreview},
    {"setVideoConfig", &W::setVideoConfig},
    {"getVideoConfig", &W::getVideoConfig},
    {"setVideoMirrorMode", &W::setVideoMirrorMode},
    {"setAudioConfig", &W::setAudioConfig},
    {"getAudioConfig", &W::getAudioConfig},
    {"mutePublishStreamAudio", &W::mutePublishStreamAudio},
    {"mutePublishStreamVideo", &W::mutePublishStreamVideo},
    {"enableMixEnginePlayout", &W::enableMixEnginePlayout},
    {"enableTrafficControl", &W::enableTrafficControl},
    {"setMinVideoBitrateForTrafficControl", &W::setMinVideoBitrateForTrafficControl},
    {"setMinVideoFpsForTrafficControl", &W::setMinVideoFpsForTrafficControl},
    {"setMinVideoResolutionForTrafficControl", &W::setMinVideoResolutionForTrafficControl},
    {"setCaptureVolume", &W::setCaptureVolume},
    {"setAudioCaptureStereoMode", &W::setAudioCaptureStereoMode},
    {"addPublishCdnUrl", &W::addPublishCdnUrl},
    {"removePublishCdnUrl", &W::removePublishCdnUrl},
    {"enablePublishDirectToCDN", &W::enablePublishDirectToCDN},
    {"setPublishWatermark", &W::setPublishWatermark},
    {"sendSEI", &W::sendSEI},
    {"enableHardwareEncoder", &W::enableHardwareEncoder},
    {"enableH265EncodeFallback", &W::enableH265EncodeFallback},
    {"isVideoEncoderSupported", &W::isVideoEncoderSupported},
    {"isVideoDecoderSupported", &W::isVideoDecoderSupported},
    {"setCapturePipelineScaleMode", &W::setCapturePipelineScaleMode},
    {"startPlayingStream", &W::startPlayingStream},
    {"stopPlayingStream", &W::stopPlayingStream},
    {"setPlayVolume", &W::setPlayVolume},
    {"setAllPlayStreamVolume", &W::setAllPlayStreamVolume},
    {"mutePlayStreamAudio", &W::mutePlayStreamAudio},
    {"mutePlayStreamVideo", &W::mutePlayStreamVideo},
    {"muteAllPlayStreamVideo", &W::muteAllPlayStreamVideo},
    {"muteAllPlayStreamAudio", &W::muteAllPlayStreamAudio},
    {"enableHardwareDecoder", &W::enableHardwareDecoder},
    {"enableCheckPoc", &W::enableCheckPoc},
    {"startMixerTask", &W::startMixerTask},
    {"stopMixerTask", &W::stopMixerTask},
    {"setStreamAlignmentProperty", &W::setStreamAlignmentProperty},
    {"setPublishStreamEncryptionKey", &W::setPublishStreamEncryptionKey},
    {"setPlayStreamDecryptionKey", &W::setPlayStreamDecryptionKey},
    {"setPlayStreamFocusOn", &W::setPlayStreamFocusOn},
    {"getNetworkTimeInfo", &W::getNetworkTimeInfo},
    {"muteMicrophone", &W::muteMicrophone},
    {"isMicrophoneMuted", &W::isMicrophoneMuted},
    {"muteSpeaker", &W::muteSpeaker},
    {"isSpeakerMuted", &W::isSpeakerMuted},
    {"useAudioDevice", &W::useAudioDevice},
    {"getAudioDeviceList", &W::getAudioDeviceList},
    {"getAudioDeviceVolume", &W::getAudioDeviceVolume},
    {"setAudioDeviceVolume", &W::setAudioDeviceVolume},
    {"muteAudioDevice", &W::muteAudioDevice},
    {"setSpeakerVolumeInAPP", &W::setSpeakerVolumeInAPP},
    {"getSpeakerVolumeInAPP", &W::getSpeakerVolumeInAPP},
    {"startAudioDeviceVolumeMonitor", &W::startAudioDeviceVolumeMonitor},
    {"stopAudioDeviceVolumeMonitor", &W::stopAudioDeviceVolumeMonitor},
    {"enableAudioCaptureDevice", &W::enableAudioCaptureDevice},
    {"startAudioVADStableStateMonitor", &W::startAudioVADStableStateMonitor},
    {"stopAudioVADStableStateMonitor", &W::stopAudioVADStableStateMonitor},
    {"enableCamera", &W::enableCamera},
    {"setLowlightEnhancement", &W::setLowlightEnhancement},
    {"useVideoDevice", &W::useVideoDevice},
    {"getVideoDeviceList", &W::getVideoDeviceList},
    {"startSoundLevelMonitor", &W::startSoundLevelMonitor},
    {"stopSoundLevelMonitor", &W::stopSoundLevelMonitor},
    {"startAudioSpectrumMonitor", &W::startAudioSpectrumMonitor},
    {"stopAudioSpectrumMonitor", &W::stopAudioSpectrumMonitor},
    {"enableHeadphoneMonitor", &W::enableHeadphoneMonitor},
    {"setHeadphoneMonitorVolume", &W::setHeadphoneMonitorVolume},
    {"enableMixSystemPlayout", &W::enableMixSystemPlayout},
    {"getCurrentAudioDevice", &W::getCurrentAudioDevice},
    {"setMixSystemPlayoutVolume", &W::setMixSystemPlayoutVolume},
    {"enableAEC", &W::enableAEC},
    {"setAECMode", &W::setAECMode},
    {"enableAGC", &W::enableAGC},
    {"enableANS", &W::enableANS},
    {"setANSMode", &W::setANSMode},
    {"setVoiceChangerParam", &W::setVoiceChangerParam},
    {"enableVirtualStereo", &W::enableVirtualStereo},
    {"setAudioEqualizerGain", &W::setAudioEqualizerGain},
    {"sendBroadcastMessage", &W::sendBroadcastMessage},
    {"sendBarrageMessage", &W::sendBarrageMessage},
    {"sendCustomCommand", &W::sendCustomCommand},
    {"startRecordingCapturedData", &W::startRecordingCapturedData},
    {"stopRecordingCapturedData", &W::stopRecordingCapturedData},
    {"getDefaultAudioDeviceID", &W::getDefaultAudioDeviceID},
    {"getDefaultVideoDeviceID", &W::getDefaultVideoDeviceID},
    {"enableTransientANS", &W::enableTransientANS},
    {"enableVideoObjectSegmentation", &W::enableVideoObjectSegmentation},
    {"enableAlphaChannelVideoEncoder", &W::enableAlphaChannelVideoEncoder},
    {"enableCustomVideoCapture", &W::enableCustomVideoCapture},
    // 101 registerCustomVideoCapturePlugin, 102 unregisterCustomVideoCapturePlugin (native plugins)
    {"enableCustomVideoProcessing", &W::enableCustomVideoProcessing},
    // 104 registerCustomVideoProcessPlugin, 105 setCustomVideoProcessCutRegion (native plugins)
    {"setTrafficControlFocusOn", &W::setTrafficControlFocusOn},
    {"setPlayStreamVideoType", &W::setPlayStreamVideoType},
    {"setDummyCaptureImagePath", &W::setDummyCaptureImagePath},
    // 109 enableCameraVideoDataCapturePlugin, 110 getCameraVideoDataCapturePlugin (native plugins)
    {"setCustomVideoCaptureFillMode", &W::setCustomVideoCaptureFillMode},
    {"setReverbPreset", &W::setReverbPreset},
    {"setVoiceChangerPreset", &W::setVoiceChangerPreset},
    {"setReverbEchoParam", &W::setReverbEchoParam},
    {"setSEIConfig", &W::setSEIConfig},
    {"setReverbAdvancedParam", &W::setReverbAdvancedParam},
    {"startNetworkSpeedTest", &W::startNetworkSpeedTest},
    {"stopNetworkSpeedTest", &W::stopNetworkSpeedTest},
    {"takePublishStreamSnapshot", &W::takePublishStreamSnapshot},
    {"takePlayStreamSnapshot", &W::takePlayStreamSnapshot},
    {"callExperimentalAPI", &W::callExperimentalAPI},
    {"startSoundLevelMonitorWithConfig", &W::startSoundLevelMonitorWithConfig},
    {"enableCustomAudioCaptureProcessing", &W::enableCustomAudioCaptureProcessing},
    {"enableCustomAudioCaptureProcessingAfterHeadphoneMonitor",
     &W::enableCustomAudioCaptureProcessingAfterHeadphoneMonitor},
    {"renewToken", &W::renewToken},
    // 126 registerCustomAudioProcessPlugin, 127 unregisterCustomAudioProcessPlugin (native plugins)
    {"setPlayStreamBufferIntervalRange", &W::setPlayStreamBufferIntervalRange},
    {"setCustomVideoCaptureRegionOfInterest", &W::setCustomVideoCaptureRegionOfInterest},
    {"enableCustomAudioIO", &W::enableCustomAudioIO},
    // 131 registerCustomAudioCapturePlugin, 132 unregisterCustomAudioCapturePlugin (native plugins)
    {"setVideoSource", &W::setVideoSource},
    {"setAudioSource", &W::setAudioSource},
    {"setAudioSourceWithConfig", &W::setAudioSourceWithConfig},
    {"getScreenCaptureSources", &W::getScreenCaptureSources},
    {"setRoomScenario", &W::setRoomScenario},
    {"registerEventHandler", &W::registerEventHandler},
    {"initVideoCaptureBuffer", &W::initVideoCaptureBuffer},
    {"initVideoPlayBuffer", &W::initVideoPlayBuffer},
    {"initMediaPlayerBuffer", &W::initMediaPlayerBuffer},
};

Napi::Function OrvaVantixEngineWrapper::Define(Napi::Env env) {
  logToConsole("init OrvaVantixEngineWrapper");
  // Like the methods of a script class: writable and configurable, not enumerable.
  constexpr auto attributes = static_cast<napi_property_attributes>(napi_writable | napi_configurable);
  std::vector<PropertyDescriptor> methods;
  methods.reserve(std::size(kMethodTable));
  for (const MethodRow& row : kMethodTable) {
    methods.push_back(InstanceMethod(row.name, row.method, attributes));
  }
  return DefineClass(env, "OrvaVantixEngineWrapper", methods);
}

OrvaVantixEngineWrapper::OrvaVantixEngineWrapper(const Napi::CallbackInfo& info)
    : Napi::ObjectWrap<OrvaVantixEngineWrapper>(info) {
  logToConsole("OrvaVantixEngineWrapper::OrvaVantixEngineWrapper");
}

// ---- methods of no family ---------------------------------------------------------------

Napi::Value OrvaVantixEngineWrapper::uploadLog(const Napi::CallbackInfo& info) {
  MethodCall call(info, "uploadLog", errors_);
  // The outcome reaches script as the upload-log result event, not through this call.
  return callEngine(call, &sdk::Engine::uploadLog, kNoCompletion);
}

Napi::Value OrvaVantixEngineWrapper::enableDebugAssistant(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableDebugAssistant", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  const bool enable = call.args().boolean("enable");
  // The module's traces and "onDebugInfo" follow the flag; the engine has its own assistant.
  return withEngine(call, [enable](sdk::Engine& engine) {
    OrvaVantixAddonDataCenter::instance().debugAssistantEnabled.store(enable);
    engine.enableDebugAssistant(enable);
  });
}

Napi::Value OrvaVantixEngineWrapper::registerEventHandler(const Napi::CallbackInfo& info) {
  MethodCall call(info, "registerEventHandler", errors_);
  if (!call.check({{"name", T::String}, {"func", T::Function}})) return call.undefined();
  const ArgObject& a = call.args();
  const std::string name = a.string("name");
  const Napi::Function func = a.get("func").As<Napi::Function>();
  // Without an engine nothing would ever release the function (engine teardown releases the
  // one named "tsfn"), and it would keep the process alive: like every method, do nothing.
  // An earlier function of the same name is overwritten in the table, not released.
  return withEngine(call, [&](sdk::Engine&) {
    OrvaVantixAddonDataCenter::instance().createNamedEventFunction(call.env(), name, func);
  });
}

// ---- shared helpers of the method shape -------------------------------------------------

namespace wrapper {

std::vector<uint8_t> arrayBufferBytes(const ArgObject& object, const char* key) {
  Napi::ArrayBuffer buffer = object.get(key).As<Napi::ArrayBuffer>();
  const auto* bytes = static_cast<const uint8_t*>(buffer.Data());
  return std::vector<uint8_t>(bytes, bytes + buffer.ByteLength());
}

std::string keyValueText(const ArgObject& object) {
  const Napi::Object source = object.value().As<Napi::Object>();
  const Napi::Array keys = source.GetPropertyNames();
  std::string text;
  for (uint32_t i = 0; i < keys.Length(); ++i) {
    const Napi::Value key = keys.Get(i);
    if (!text.empty()) text += ';';
    text += key.ToString().Utf8Value() + '=' + source.Get(key).ToString().Utf8Value();
  }
  return text;
}

bool OptionalKeys::take(const char* key, ArgType type, const char* message) {
  if (!ok_ || !object_.has(key)) return false;
  if (!object_.is(key, type)) {
    ok_ = call_.fail(message);
    return false;
  }
  return true;
}

OptionalKeys& OptionalKeys::text(const char* key, std::string& field, const char* message) {
  if (take(key, ArgType::String, message)) field = object_.string(key);
  return *this;
}

OptionalKeys& OptionalKeys::int32(const char* key, int32_t& field, const char* message) {
  if (take(key, ArgType::Number, message)) field = object_.truncatedInt32(key);
  return *this;
}

OptionalKeys& OptionalKeys::uint32(const char* key, uint32_t& field, const char* message) {
  if (take(key, ArgType::Number, message)) field = truncatedUint32(object_, key);
  return *this;
}

OptionalKeys& OptionalKeys::boolean(const char* key, bool& field, const char* message) {
  if (take(key, ArgType::Boolean, message)) field = object_.boolean(key);
  return *this;
}

OptionalKeys& OptionalKeys::int32List(const char* key, std::vector<int32_t>& field,
                                      const char* message) {
  if (take(key, ArgType::Array, message)) field = object_.int32List(key);
  return *this;
}

OptionalKeys& OptionalKeys::bytes(const char* key, std::vector<uint8_t>& field, const char* message) {
  if (take(key, ArgType::ArrayBuffer, message)) field = arrayBufferBytes(object_, key);
  return *this;
}

bool PromiseCall::begin(std::initializer_list<ArgumentRule> rules) {
  return requireArgument() && requireEngine() && check(rules);
}

bool PromiseCall::requireArgument() {
  if (hasArgument()) return true;
  reject(env().Undefined());
  return false;
}

bool PromiseCall::requireEngine() {
  engine_ = sdk::Engine::instance();
  if (engine_) return true;
  reject(info()[0]);
  return false;
}

const char* resultFailureLine(const std::string& apiName) {
  // Few distinct names (one per promise method); nodes of a std::set never move, so the
  // texts stay where they are. Never destroyed: the dispatch worker may print one at exit.
  struct Lines {
    std::mutex mutex;
    std::set<std::string> texts;
  };
  static sdk::NoDestroy<Lines> lines;
  std::lock_guard<std::mutex> lock(lines->mutex);
  return lines->texts.insert("OrvaVantixEngineWrapper::" + apiName + " blocking call failed \n")
      .first->c_str();
}

}  // namespace wrapper

}  // namespace orva
