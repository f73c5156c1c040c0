// The script class through which script drives the engine once CreateEngine has made it.
//
// The class is split by feature family into several files that share this header:
//   OrvaVantixEngineWrapper.cc          the frame: class definition with the method table,
//                                       constructor, uploadLog, enableDebugAssistant,
//                                       registerEventHandler
//   OrvaVantixEngineWrapper_room.cc     rooms
//   OrvaVantixEngineWrapper_publish.cc  preview, publishing, encoder settings, snapshots
//   OrvaVantixEngineWrapper_play.cc     playing remote streams
//   OrvaVantixEngineWrapper_mixer.cc    stream-mixing tasks
//   OrvaVantixEngineWrapper_devices.cc  devices, monitors and audio processing
//   OrvaVantixEngineWrapper_messaging.cc  room messages, recording, network, custom
//                                       capture and processing switches, screen sources
//   OrvaVantixEngineWrapper_experimental.cc  the experimental API
//   OrvaVantixEngineWrapper_frame.cc    the frame buffers script registers for rendering
// Every method is written in the common shape of OrvaVantixEngineWrapper_shape.h.
//
// Threads and lifetimes: every method runs on the script thread. The wrapper owns no engine
// state: it asks for the engine singleton (sdk::Engine::instance()) at each call and keeps
// only its last argument error (and whether it initialised COM for the script thread). Promise completions run on engine threads and hold the
// promise's deferred, never the wrapper: a completion may outlive its wrapper object.
#pragma once

#include <napi.h>

#include "bridge/ArgumentChecker.h"

namespace orva {

class OrvaVantixEngineWrapper : public Napi::ObjectWrap<OrvaVantixEngineWrapper> {
 public:
  // Defines the script class with its methods in the method table's order; the addon keeps
  // the constructor (one per environment).
  static Napi::Function Define(Napi::Env env);

  explicit OrvaVantixEngineWrapper(const Napi::CallbackInfo& info);

 private:
  using Method = Napi::Value (OrvaVantixEngineWrapper::*)(const Napi::CallbackInfo&);
  // One row of the method table: the script name and the method behind it.
  struct MethodRow {
    const char* name;
    Method method;
  };
  static const MethodRow kMethodTable[];

  // ---- frame (OrvaVantixEngineWrapper.cc)
  Napi::Value uploadLog(const Napi::CallbackInfo& info);
  Napi::Value enableDebugAssistant(const Napi::CallbackInfo& info);
  Napi::Value registerEventHandler(const Napi::CallbackInfo& info);

  // ---- rooms (OrvaVantixEngineWrapper_room.cc)
  Napi::Value loginRoom(const Napi::CallbackInfo& info);
  Napi::Value logoutRoom(const Napi::CallbackInfo& info);
  Napi::Value switchRoom(const Napi::CallbackInfo& info);
  Napi::Value setRoomExtraInfo(const Napi::CallbackInfo& info);
  Napi::Value renewToken(const Napi::CallbackInfo& info);
  Napi::Value setRoomScenario(const Napi::CallbackInfo& info);

  // ---- publishing (OrvaVantixEngineWrapper_publish.cc)
  Napi::Value startPublishingStream(const Napi::CallbackInfo& info);
  Napi::Value stopPublishingStream(const Napi::CallbackInfo& info);
  Napi::Value setStreamExtraInfo(const Napi::CallbackInfo& info);
  Napi::Value startPreview(const Napi::CallbackInfo& info);
  Napi::Value stopPreview(const Napi::CallbackInfo& info);
  Napi::Value setVideoConfig(const Napi::CallbackInfo& info);
  Napi::Value getVideoConfig(const Napi::CallbackInfo& info);
  Napi::Value setVideoMirrorMode(const Napi::CallbackInfo& info);
  Napi::Value setAudioConfig(const Napi::CallbackInfo& info);
  Napi::Value getAudioConfig(const Napi::CallbackInfo& info);
  Napi::Value mutePublishStreamAudio(const Napi::CallbackInfo& info);
  Napi::Value mutePublishStreamVideo(const Napi::CallbackInfo& info);
  Napi::Value enableTrafficControl(const Napi::CallbackInfo& info);
  Napi::Value setMinVideoBitrateForTrafficControl(const Napi::CallbackInfo& info);
  Napi::Value setMinVideoFpsForTrafficControl(const Napi::CallbackInfo& info);
  Napi::Value setMinVideoResolutionForTrafficControl(const Napi::CallbackInfo& info);
  Napi::Value setTrafficControlFocusOn(const Napi::CallbackInfo& info);
  Napi::Value addPublishCdnUrl(const Napi::CallbackInfo& info);
  Napi::Value removePublishCdnUrl(const Napi::CallbackInfo& info);
  Napi::Value enablePublishDirectToCDN(const Napi::CallbackInfo& info);
  Napi::Value setPublishWatermark(const Napi::CallbackInfo& info);
  Napi::Value sendSEI(const Napi::CallbackInfo& info);
  Napi::Value setSEIConfig(const Napi::CallbackInfo& info);
  Napi::Value enableHardwareEncoder(const Napi::CallbackInfo& info);
  Napi::Value enableH265EncodeFallback(const Napi::CallbackInfo& info);
  Napi::Value isVideoEncoderSupported(const Napi::CallbackInfo& info);
  Napi::Value setCapturePipelineScaleMode(const Napi::CallbackInfo& info);
  Napi::Value setStreamAlignmentProperty(const Napi::CallbackInfo& info);
  Napi::Value setPublishStreamEncryptionKey(const Napi::CallbackInfo& info);
  Napi::Value takePublishStreamSnapshot(const Napi::CallbackInfo& info);
  Napi::Value setVideoSource(const Napi::CallbackInfo& info);
  Napi::Value setAudioSource(const Napi::CallbackInfo& info);
  Napi::Value setAudioSourceWithConfig(const Napi::CallbackInfo& info);

  // ---- playing (OrvaVantixEngineWrapper_play.cc)
  Napi::Value startPlayingStream(const Napi::CallbackInfo& info);
  Napi::Value stopPlayingStream(const Napi::CallbackInfo& info);
  Napi::Value setPlayVolume(const Napi::CallbackInfo& info);
  Napi::Value setAllPlayStreamVolume(const Napi::CallbackInfo& info);
  Napi::Value mutePlayStreamAudio(const Napi::CallbackInfo& info);
  Napi::Value mutePlayStreamVideo(const Napi::CallbackInfo& info);
  Napi::Value muteAllPlayStreamAudio(const Napi::CallbackInfo& info);
  Napi::Value muteAllPlayStreamVideo(const Napi::CallbackInfo& info);
  Napi::Value enableHardwareDecoder(const Napi::CallbackInfo& info);
  Napi::Value enableCheckPoc(const Napi::CallbackInfo& info);
  Napi::Value isVideoDecoderSupported(const Napi::CallbackInfo& info);
  Napi::Value setPlayStreamDecryptionKey(const Napi::CallbackInfo& info);
  Napi::Value setPlayStreamFocusOn(const Napi::CallbackInfo& info);
  Napi::Value setPlayStreamVideoType(const Napi::CallbackInfo& info);
  Napi::Value setPlayStreamBufferIntervalRange(const Napi::CallbackInfo& info);
  Napi::Value takePlayStreamSnapshot(const Napi::CallbackInfo& info);

  // ---- mixer tasks (OrvaVantixEngineWrapper_mixer.cc)
  Napi::Value startMixerTask(const Napi::CallbackInfo& info);
  Napi::Value stopMixerTask(const Napi::CallbackInfo& info);

  // ---- devices and audio processing (OrvaVantixEngineWrapper_devices.cc)
  Napi::Value muteMicrophone(const Napi::CallbackInfo& info);
  Napi::Value isMicrophoneMuted(const Napi::CallbackInfo& info);
  Napi::Value muteSpeaker(const Napi::CallbackInfo& info);
  Napi::Value isSpeakerMuted(const Napi::CallbackInfo& info);
  Napi::Value useAudioDevice(const Napi::CallbackInfo& info);
  Napi::Value getAudioDeviceList(const Napi::CallbackInfo& info);
  Napi::Value getAudioDeviceVolume(const Napi::CallbackInfo& info);
  Napi::Value setAudioDeviceVolume(const Napi::CallbackInfo& info);
  Napi::Value muteAudioDevice(const Napi::CallbackInfo& info);
  Napi::Value setSpeakerVolumeInAPP(const Napi::CallbackInfo& info);
  Napi::Value getSpeakerVolumeInAPP(const Napi::CallbackInfo& info);
  Napi::Value startAudioDeviceVolumeMonitor(const Napi::CallbackInfo& info);
  Napi::Value stopAudioDeviceVolumeMonitor(const Napi::CallbackInfo& info);
  Napi::Value enableAudioCaptureDevice(const Napi::CallbackInfo& info);
  Napi::Value getCurrentAudioDevice(const Napi::CallbackInfo& info);
  Napi::Value getDefaultAudioDeviceID(const Napi::CallbackInfo& info);
  Napi::Value enableCamera(const Napi::CallbackInfo& info);
  Napi::Value useVideoDevice(const Napi::CallbackInfo& info);
  Napi::Value getVideoDeviceList(const Napi::CallbackInfo& info);
  Napi::Value getDefaultVideoDeviceID(const Napi::CallbackInfo& info);
  Napi::Value setLowlightEnhancement(const Napi::CallbackInfo& info);
  Napi::Value startSoundLevelMonitor(const Napi::CallbackInfo& info);
  Napi::Value startSoundLevelMonitorWithConfig(const Napi::CallbackInfo& info);
  Napi::Value stopSoundLevelMonitor(const Napi::CallbackInfo& info);
  Napi::Value startAudioSpectrumMonitor(const Napi::CallbackInfo& info);
  Napi::Value stopAudioSpectrumMonitor(const Napi::CallbackInfo& info);
  Napi::Value startAudioVADStableStateMonitor(const Napi::CallbackInfo& info);
  Napi::Value stopAudioVADStableStateMonitor(const Napi::CallbackInfo& info);
  Napi::Value enableHeadphoneMonitor(const Napi::CallbackInfo& info);
  Napi::Value setHeadphoneMonitorVolume(const Napi::CallbackInfo& info);
  Napi::Value enableMixSystemPlayout(const Napi::CallbackInfo& info);
  Napi::Value setMixSystemPlayoutVolume(const Napi::CallbackInfo& info);
  Napi::Value enableMixEnginePlayout(const Napi::CallbackInfo& info);
  Napi::Value setCaptureVolume(const Napi::CallbackInfo& info);
  Napi::Value setAudioCaptureStereoMode(const Napi::CallbackInfo& info);
  Napi::Value enableAEC(const Napi::CallbackInfo& info);
  Napi::Value setAECMode(const Napi::CallbackInfo& info);
  Napi::Value enableAGC(const Napi::CallbackInfo& info);
  Napi::Value enableANS(const Napi::CallbackInfo& info);
  Napi::Value setANSMode(const Napi::CallbackInfo& info);
  Napi::Value enableTransientANS(const Napi::CallbackInfo& info);
  Napi::Value setVoiceChangerPreset(const Napi::CallbackInfo& info);
  Napi::Value setVoiceChangerParam(const Napi::CallbackInfo& info);
  Napi::Value setReverbPreset(const Napi::CallbackInfo& info);
  Napi::Value setReverbAdvancedParam(const Napi::CallbackInfo& info);
  Napi::Value setReverbEchoParam(const Napi::CallbackInfo& info);
  Napi::Value enableVirtualStereo(const Napi::CallbackInfo& info);
  Napi::Value setAudioEqualizerGain(const Napi::CallbackInfo& info);
  // ---- messaging and utilities (OrvaVantixEngineWrapper_messaging.cc)
  Napi::Value getNetworkTimeInfo(const Napi::CallbackInfo& info);
  Napi::Value sendBroadcastMessage(const Napi::CallbackInfo& info);
  Napi::Value sendBarrageMessage(const Napi::CallbackInfo& info);
  Napi::Value sendCustomCommand(const Napi::CallbackInfo& info);
  Napi::Value startRecordingCapturedData(const Napi::CallbackInfo& info);
  Napi::Value stopRecordingCapturedData(const Napi::CallbackInfo& info);
  Napi::Value enableVideoObjectSegmentation(const Napi::CallbackInfo& info);
  Napi::Value enableAlphaChannelVideoEncoder(const Napi::CallbackInfo& info);
  Napi::Value enableCustomVideoCapture(const Napi::CallbackInfo& info);
  Napi::Value enableCustomVideoProcessing(const Napi::CallbackInfo& info);
  Napi::Value setDummyCaptureImagePath(const Napi::CallbackInfo& info);
  Napi::Value setCustomVideoCaptureFillMode(const Napi::CallbackInfo& info);
  Napi::Value startNetworkSpeedTest(const Napi::CallbackInfo& info);
  Napi::Value stopNetworkSpeedTest(const Napi::CallbackInfo& info);
  Napi::Value enableCustomAudioCaptureProcessing(const Napi::CallbackInfo& info);
  Napi::Value enableCustomAudioCaptureProcessingAfterHeadphoneMonitor(const Napi::CallbackInfo& info);
  Napi::Value setCustomVideoCaptureRegionOfInterest(const Napi::CallbackInfo& info);
  Napi::Value enableCustomAudioIO(const Napi::CallbackInfo& info);
  Napi::Value getScreenCaptureSources(const Napi::CallbackInfo& info);

  // ---- experimental API (OrvaVantixEngineWrapper_experimental.cc)
  Napi::Value callExperimentalAPI(const Napi::CallbackInfo& info);

  // ---- frame buffers for rendering (OrvaVantixEngineWrapper_frame.cc)
  Napi::Value initVideoCaptureBuffer(const Napi::CallbackInfo& info);
  Napi::Value initVideoPlayBuffer(const Napi::CallbackInfo& info);
  Napi::Value initMediaPlayerBuffer(const Napi::CallbackInfo& info);

  ArgumentErrors errors_;  // written by the argument checker, read by the debug alerts
  // Set by the first getAudioDeviceList on this instance, which initialises COM for the
  // script thread; never cleared (engine teardown uninitialises COM once).
  bool comInitialised_ = false;
};

}  // namespace orva
