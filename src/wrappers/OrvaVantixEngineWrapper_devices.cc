// Devices and audio processing: audio and video device lists, defaults and the current
// device, device volumes and mutes, the volume, sound level, spectrum and voice activity
// monitors, the camera switch, and the engine's audio processing (echo cancellation, gain
// control, noise suppression, voice changer, reverb, virtual stereo, equalizer, mixing of
// system and engine playout).
#include <string>
#include <vector>

#if defined(_WIN32)
#include <objbase.h>
#endif

#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

// Elements of the reverb echo's delay and decay arrays.
constexpr uint32_t kEchoDelays = 7;

Napi::Object deviceObject(Napi::Env env, const sdk::DeviceInfo& device) {
  Payload p(env);
  p.set("deviceID", device.deviceID).set("deviceName", device.deviceName);
  return Napi::Object(env, p.object());
}

Napi::Value deviceValue(Napi::Env env, const sdk::DeviceInfo& device) { return deviceObject(env, device); }

// The call side has already copied the engine's list and released it with its free function.
Napi::Value deviceListValue(Napi::Env env, const std::vector<sdk::DeviceInfo>& devices) {
  Napi::Array list = Napi::Array::New(env, devices.size());
  for (uint32_t i = 0; i < devices.size(); ++i) list.Set(i, deviceObject(env, devices[i]));
  return list;
}

}  // namespace

Napi::Value OrvaVantixEngineWrapper::muteMicrophone(const Napi::CallbackInfo& info) {
  MethodCall call(info, "muteMicrophone", errors_);
  if (!call.check({{"mute", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::muteMicrophone, call.args().boolean("mute"));
}

Napi::Value OrvaVantixEngineWrapper::isMicrophoneMuted(const Napi::CallbackInfo& info) {
  MethodCall call(info, "isMicrophoneMuted", errors_);
  return askEngine(call, booleanValue, &sdk::Engine::isMicrophoneMuted);
}

Napi::Value OrvaVantixEngineWrapper::muteSpeaker(const Napi::CallbackInfo& info) {
  MethodCall call(info, "muteSpeaker", errors_);
  if (!call.check({{"mute", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::muteSpeaker, call.args().boolean("mute"));
}

Napi::Value OrvaVantixEngineWrapper::isSpeakerMuted(const Napi::CallbackInfo& info) {
  MethodCall call(info, "isSpeakerMuted", errors_);
  return askEngine(call, booleanValue, &sdk::Engine::isSpeakerMuted);
}

Napi::Value OrvaVantixEngineWrapper::useAudioDevice(const Napi::CallbackInfo& info) {
  MethodCall call(info, "useAudioDevice", errors_);
  if (!call.check({{"deviceType", T::Number}, {"deviceID", T::String}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::useAudioDevice, a.truncatedInt32("deviceType"), a.string("deviceID"));
}

Napi::Value OrvaVantixEngineWrapper::getAudioDeviceList(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getAudioDeviceList", errors_);
  if (!call.check({{"deviceType", T::Number}})) return call.undefined();
  const int32_t deviceType = call.args().truncatedInt32("deviceType");
  // Device enumeration on Windows goes through COM on the calling thread. Once per instance,
  // engine or not; its result is not looked at (a host that already chose another apartment
  // for the script thread keeps it).
  if (!comInitialised_) {
    comInitialised_ = true;
#if defined(_WIN32)
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
#endif
  }
  return askEngineOr(call, std::vector<sdk::DeviceInfo>(), deviceListValue, &sdk::Engine::getAudioDeviceList,
                     deviceType);
}

Napi::Value OrvaVantixEngineWrapper::getAudioDeviceVolume(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getAudioDeviceVolume", errors_);
  if (!call.check({{"deviceType", T::Number}, {"deviceID", T::String}})) return call.undefined();
  const ArgObject& a = call.args();
  return askEngine(call, numberValue, &sdk::Engine::getAudioDeviceVolume, a.truncatedInt32("deviceType"),
                   a.string("deviceID"));
}

Napi::Value OrvaVantixEngineWrapper::setAudioDeviceVolume(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setAudioDeviceVolume", errors_);
  if (!call.check({{"deviceType", T::Number}, {"deviceID", T::String}, {"volume", T::Number}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setAudioDeviceVolume, a.truncatedInt32("deviceType"), a.string("deviceID"),
                    a.truncatedInt32("volume"));
}

Napi::Value OrvaVantixEngineWrapper::muteAudioDevice(const Napi::CallbackInfo& info) {
  MethodCall call(info, "muteAudioDevice", errors_);
  if (!call.check({{"deviceType", T::Number}, {"deviceID", T::String}, {"mute", T::Boolean}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::muteAudioDevice, a.truncatedInt32("deviceType"), a.string("deviceID"),
                    a.boolean("mute"));
}

Napi::Value OrvaVantixEngineWrapper::setSpeakerVolumeInAPP(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setSpeakerVolumeInAPP", errors_);
  if (!call.check({{"deviceID", T::String}, {"volume", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setSpeakerVolumeInApp, a.string("deviceID"), a.truncatedInt32("volume"));
}

Napi::Value OrvaVantixEngineWrapper::getSpeakerVolumeInAPP(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getSpeakerVolumeInAPP", errors_);
  if (!call.check({{"deviceID", T::String}})) return call.undefined();
  return askEngine(call, numberValue, &sdk::Engine::getSpeakerVolumeInApp, call.args().string("deviceID"));
}

Napi::Value OrvaVantixEngineWrapper::startAudioDeviceVolumeMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startAudioDeviceVolumeMonitor", errors_);
  if (!call.check({{"deviceType", T::Number}, {"deviceID", T::String}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::startAudioDeviceVolumeMonitor, a.truncatedInt32("deviceType"),
                    a.string("deviceID"));
}

Napi::Value OrvaVantixEngineWrapper::stopAudioDeviceVolumeMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopAudioDeviceVolumeMonitor", errors_);
  if (!call.check({{"deviceType", T::Number}, {"deviceID", T::String}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::stopAudioDeviceVolumeMonitor, a.truncatedInt32("deviceType"),
                    a.string("deviceID"));
}

Napi::Value OrvaVantixEngineWrapper::enableAudioCaptureDevice(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableAudioCaptureDevice", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableAudioCaptureDevice, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::getCurrentAudioDevice(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getCurrentAudioDevice", errors_);
  if (!call.check({{"deviceType", T::Number}})) return call.undefined();
  return askEngine(call, deviceValue, &sdk::Engine::getCurrentAudioDevice, call.args().truncatedInt32("deviceType"));
}

Napi::Value OrvaVantixEngineWrapper::getDefaultAudioDeviceID(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getDefaultAudioDeviceID", errors_);
  if (!call.check({{"deviceType", T::Number}})) return call.undefined();
  return askEngine(call, textValue, &sdk::Engine::getDefaultAudioDeviceId, call.args().truncatedInt32("deviceType"));
}

Napi::Value OrvaVantixEngineWrapper::enableCamera(const Napi::CallbackInfo& info) {
  // Reported as "enableCheckPoc", in traces and alerts alike; scripts match on that name.
  MethodCall call(info, "enableCheckPoc", errors_);
  if (!call.check({{"enable", T::Boolean}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::enableCamera, a.boolean("enable"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::useVideoDevice(const Napi::CallbackInfo& info) {
  MethodCall call(info, "useVideoDevice", errors_);
  if (!call.check({{"deviceID", T::String}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::useVideoDevice, a.string("deviceID"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::getVideoDeviceList(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getVideoDeviceList", errors_);
  return askEngineOr(call, std::vector<sdk::DeviceInfo>(), deviceListValue, &sdk::Engine::getVideoDeviceList);
}

Napi::Value OrvaVantixEngineWrapper::getDefaultVideoDeviceID(const Napi::CallbackInfo& info) {
  MethodCall call(info, "getDefaultVideoDeviceID", errors_);
  return askEngine(call, textValue, &sdk::Engine::getDefaultVideoDeviceId);
}

Napi::Value OrvaVantixEngineWrapper::setLowlightEnhancement(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setLowlightEnhancement", errors_);
  if (!call.check({{"mode", T::Number}, {"channel", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setLowLightEnhancement, a.truncatedInt32("mode"), a.truncatedInt32("channel"));
}

Napi::Value OrvaVantixEngineWrapper::startSoundLevelMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startSoundLevelMonitor", errors_);
  if (!call.check({{"millisecond", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::startSoundLevelMonitor, truncatedUint32(call.args(), "millisecond"));
}

Napi::Value OrvaVantixEngineWrapper::startSoundLevelMonitorWithConfig(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startSoundLevelMonitorWithConfig", errors_);
  if (!call.check({{"config", T::Object}}) ||
      !call.check("config", {{"millisecond", T::Number}, {"enableVAD", T::Boolean}})) {
    return call.undefined();
  }
  const ArgObject c = call.args().object("config");
  return callEngine(call, &sdk::Engine::startSoundLevelMonitorWithConfig,
                    sdk::SoundLevelConfig{truncatedUint32(c, "millisecond"), c.boolean("enableVAD")});
}

Napi::Value OrvaVantixEngineWrapper::stopSoundLevelMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopSoundLevelMonitor", errors_);
  return callEngine(call, &sdk::Engine::stopSoundLevelMonitor);
}

Napi::Value OrvaVantixEngineWrapper::startAudioSpectrumMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startAudioSpectrumMonitor", errors_);
  if (!call.check({{"millisecond", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::startAudioSpectrumMonitor, truncatedUint32(call.args(), "millisecond"));
}

Napi::Value OrvaVantixEngineWrapper::stopAudioSpectrumMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopAudioSpectrumMonitor", errors_);
  return callEngine(call, &sdk::Engine::stopAudioSpectrumMonitor);
}

Napi::Value OrvaVantixEngineWrapper::startAudioVADStableStateMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "startAudioVADStableStateMonitor", errors_);
  if (!call.check({{"type", T::Number}, {"millisecond", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::startAudioVadStableStateMonitor, a.truncatedInt32("type"),
                    a.truncatedInt32("millisecond"));
}

Napi::Value OrvaVantixEngineWrapper::stopAudioVADStableStateMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "stopAudioVADStableStateMonitor", errors_);
  if (!call.check({{"type", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::stopAudioVadStableStateMonitor, call.args().truncatedInt32("type"));
}

Napi::Value OrvaVantixEngineWrapper::enableHeadphoneMonitor(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableHeadphoneMonitor", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableHeadphoneMonitor, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::setHeadphoneMonitorVolume(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setHeadphoneMonitorVolume", errors_);
  if (!call.check({{"volume", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setHeadphoneMonitorVolume, call.args().truncatedInt32("volume"));
}

Napi::Value OrvaVantixEngineWrapper::enableMixSystemPlayout(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableMixSystemPlayout", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableMixSystemPlayout, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::setMixSystemPlayoutVolume(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setMixSystemPlayoutVolume", errors_);
  if (!call.check({{"volume", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setMixSystemPlayoutVolume, call.args().truncatedInt32("volume"));
}

Napi::Value OrvaVantixEngineWrapper::enableMixEnginePlayout(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableMixEnginePlayout", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableMixEnginePlayout, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::setCaptureVolume(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setCaptureVolume", errors_);
  if (!call.check({{"volume", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setCaptureVolume, call.args().truncatedInt32("volume"));
}

Napi::Value OrvaVantixEngineWrapper::setAudioCaptureStereoMode(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setAudioCaptureStereoMode", errors_);
  if (!call.check({{"mode", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setAudioCaptureStereoMode, call.args().truncatedInt32("mode"));
}

Napi::Value OrvaVantixEngineWrapper::enableAEC(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableAEC", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableAec, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::setAECMode(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setAECMode", errors_);
  if (!call.check({{"mode", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setAecMode, call.args().truncatedInt32("mode"));
}

Napi::Value OrvaVantixEngineWrapper::enableAGC(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableAGC", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableAgc, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::enableANS(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableANS", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableAns, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::setANSMode(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setANSMode", errors_);
  if (!call.check({{"mode", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setAnsMode, call.args().truncatedInt32("mode"));
}

Napi::Value OrvaVantixEngineWrapper::enableTransientANS(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableTransientANS", errors_);
  if (!call.check({{"enable", T::Boolean}})) return call.undefined();
  return callEngine(call, &sdk::Engine::enableTransientAns, call.args().boolean("enable"));
}

Napi::Value OrvaVantixEngineWrapper::setVoiceChangerPreset(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setVoiceChangerPreset", errors_);
  if (!call.check({{"preset", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setVoiceChangerPreset, call.args().truncatedInt32("preset"));
}

Napi::Value OrvaVantixEngineWrapper::setVoiceChangerParam(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setVoiceChangerParam", errors_);
  if (!call.check({{"param", T::Object}}) || !call.check("param", {{"pitch", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setVoiceChangerParam,
                    sdk::VoiceChangerParam{call.args().object("param").float32("pitch")});
}

Napi::Value OrvaVantixEngineWrapper::setReverbPreset(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setReverbPreset", errors_);
  if (!call.check({{"preset", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setReverbPreset, call.args().truncatedInt32("preset"));
}

Napi::Value OrvaVantixEngineWrapper::setReverbAdvancedParam(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setReverbAdvancedParam", errors_);
  if (!call.check({{"param", T::Object}}) ||
      !call.check("param", {{"roomSize", T::Number}, {"reverberance", T::Number}, {"damping", T::Number},
                            {"wetOnly", T::Boolean}, {"wetGain", T::Number}, {"dryGain", T::Number},
                            {"toneLow", T::Number}, {"toneHigh", T::Number}, {"preDelay", T::Number},
                            {"stereoWidth", T::Number}})) {
    return call.undefined();
  }
  const ArgObject p = call.args().object("param");
  sdk::ReverbAdvancedParam param;
  param.roomSize = p.float32("roomSize");
  param.reverberance = p.float32("reverberance");
  param.damping = p.float32("damping");
  param.wetOnly = p.boolean("wetOnly");
  param.wetGain = p.float32("wetGain");
  param.dryGain = p.float32("dryGain");
  param.toneLow = p.float32("toneLow");
  param.toneHigh = p.float32("toneHigh");
  param.preDelay = p.float32("preDelay");
  param.stereoWidth = p.float32("stereoWidth");
  return callEngine(call, &sdk::Engine::setReverbAdvancedParam, param);
}

Napi::Value OrvaVantixEngineWrapper::setReverbEchoParam(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setReverbEchoParam", errors_);
  if (!call.check({{"inGain", T::Number}, {"outGain", T::Number}, {"numDelays", T::Number},
                   {"delay", T::Array}, {"decay", T::Array}})) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  sdk::ReverbEchoParam param;
  param.inGain = a.float32("inGain");
  param.outGain = a.float32("outGain");
  param.numDelays = a.truncatedInt32("numDelays");
  if (a.length("delay") != kEchoDelays || a.length("decay") != kEchoDelays) {
    call.fail("delay or decay param error");
    return call.undefined();
  }
  // The index runs up to and including 7, one past the arrays' end: the eighth delay read
  // meets undefined and throws the number-expected error into script before the engine is
  // called. Scripts rely on this exception, so the off-by-one stays; the records' bounds
  // are never written past.
  for (uint32_t i = 0; i <= kEchoDelays; ++i) {
    const int32_t delay = a.int32At("delay", i);
    const float decay = a.float32At("decay", i);
    if (i < kEchoDelays) {
      param.delay[i] = delay;
      param.decay[i] = decay;
    }
  }
  return callEngine(call, &sdk::Engine::setReverbEchoParam, param);
}

Napi::Value OrvaVantixEngineWrapper::enableVirtualStereo(const Napi::CallbackInfo& info) {
  MethodCall call(info, "enableVirtualStereo", errors_);
  if (!call.check({{"enable", T::Boolean}, {"angle", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::enableVirtualStereo, a.boolean("enable"), a.truncatedInt32("angle"));
}

Napi::Value OrvaVantixEngineWrapper::setAudioEqualizerGain(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setAudioEqualizerGain", errors_);
  if (!call.check({{"bandIndex", T::Number}, {"bandGain", T::Number}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::setAudioEqualizerGain, a.truncatedInt32("bandIndex"), a.float32("bandGain"));
}

}  // namespace orva
