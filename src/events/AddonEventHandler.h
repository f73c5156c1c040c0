// The engine event handler: every engine event that script may see becomes one script event
// on the engine's event function, named as the method ("onRoomStateUpdate") with a payload
// object whose keys are fixed per event.
//
// Each method runs on an engine thread: it writes its trace line (gated, see DebugLog.h),
// moves the event record into the event's closure and posts it to the data center, which
// hands it to the script thread; there the closure builds the payload. No script value is
// made on an engine thread.
//
// Engine events without an override here (publisher and player stream events, render-first
// frame of the publisher, low frame rate warnings, transparent messages, ...) are converted
// by the SDK layer but not forwarded: their default operations do nothing.
//
// Threads: methods run concurrently on engine threads and share only the data center. The
// handler is stateless; CreateEngine installs one per engine.
#pragma once

#include "OrvaVantixSDKWrapper/IEngineEventHandler.h"

namespace orva {

class OrvaVantixAddonDataCenter;

class AddonEventHandler final : public sdk::IEngineEventHandler {
 public:
  AddonEventHandler();

  void onEngineStateUpdate(sdk::EngineStateUpdateEvent e) override;
  void onRoomStateUpdate(sdk::RoomStateUpdateEvent e) override;
  void onRoomStateChanged(sdk::RoomStateChangedEvent e) override;
  void onRoomUserUpdate(sdk::RoomUserUpdateEvent e) override;
  void onRoomOnlineUserCountUpdate(sdk::RoomOnlineUserCountUpdateEvent e) override;
  void onRoomStreamUpdate(sdk::RoomStreamUpdateEvent e) override;
  void onRoomStreamExtraInfoUpdate(sdk::RoomStreamExtraInfoUpdateEvent e) override;
  void onRoomExtraInfoUpdate(sdk::RoomExtraInfoUpdateEvent e) override;
  void onRoomTokenWillExpire(sdk::RoomTokenWillExpireEvent e) override;
  void onPublisherStateUpdate(sdk::PublisherStateUpdateEvent e) override;
  void onPublisherQualityUpdate(sdk::PublisherQualityUpdateEvent e) override;
  void onPublisherCapturedAudioFirstFrame(sdk::PublisherCapturedAudioFirstFrameEvent e) override;
  void onPublisherSendAudioFirstFrame(sdk::PublisherSendAudioFirstFrameEvent e) override;
  void onPublisherCapturedVideoFirstFrame(sdk::PublisherCapturedVideoFirstFrameEvent e) override;
  void onPublisherSendVideoFirstFrame(sdk::PublisherSendVideoFirstFrameEvent e) override;
  void onPublisherVideoSizeChanged(sdk::PublisherVideoSizeChangedEvent e) override;
  void onPublisherRelayCDNStateUpdate(sdk::PublisherRelayCdnStateUpdateEvent e) override;
  void onPlayerStateUpdate(sdk::PlayerStateUpdateEvent e) override;
  void onPlayerQualityUpdate(sdk::PlayerQualityUpdateEvent e) override;
  void onPlayerMediaEvent(sdk::PlayerMediaEventEvent e) override;
  void onPlayerRecvAudioFirstFrame(sdk::PlayerRecvAudioFirstFrameEvent e) override;
  void onPlayerRecvVideoFirstFrame(sdk::PlayerRecvVideoFirstFrameEvent e) override;
  void onPlayerRenderVideoFirstFrame(sdk::PlayerRenderVideoFirstFrameEvent e) override;
  void onPlayerVideoSizeChanged(sdk::PlayerVideoSizeChangedEvent e) override;
  void onPlayerRecvSEI(sdk::PlayerRecvMediaSideInfoEvent e) override;
  void onPlayerSyncRecvSEI(sdk::PlayerRecvAudioSideInfoEvent e) override;
  void onMixerRelayCDNStateUpdate(sdk::MixerRelayCdnStateUpdateEvent e) override;
  void onMixerSoundLevelUpdate(sdk::MixerSoundLevelUpdateEvent e) override;
  void onAudioDeviceStateChanged(sdk::AudioDeviceStateChangedEvent e) override;
  void onAudioDeviceVolumeChanged(sdk::AudioDeviceVolumeChangedEvent e) override;
  void onVideoDeviceStateChanged(sdk::VideoDeviceStateChangedEvent e) override;
  void onLocalDeviceExceptionOccurred(sdk::LocalDeviceExceptionOccurredEvent e) override;
  void onAudioVADStateUpdate(sdk::AudioVadStateUpdateEvent e) override;
  void onCapturedSoundLevelUpdate(sdk::CapturedSoundLevelUpdateEvent e) override;
  void onCapturedSoundLevelInfoUpdate(sdk::CapturedSoundLevelInfoUpdateEvent e) override;
  void onRemoteSoundLevelUpdate(sdk::RemoteSoundLevelUpdateEvent e) override;
  void onRemoteSoundLevelInfoUpdate(sdk::RemoteSoundLevelInfoUpdateEvent e) override;
  void onCapturedAudioSpectrumUpdate(sdk::CapturedAudioSpectrumUpdateEvent e) override;
  void onRemoteAudioSpectrumUpdate(sdk::RemoteAudioSpectrumUpdateEvent e) override;
  void onRemoteCameraStateUpdate(sdk::RemoteCameraStateUpdateEvent e) override;
  void onRemoteMicStateUpdate(sdk::RemoteMicStateUpdateEvent e) override;
  void onRemoteSpeakerStateUpdate(sdk::RemoteSpeakerStateUpdateEvent e) override;
  void onIMRecvBroadcastMessage(sdk::ImRecvBroadcastMessageEvent e) override;
  void onIMRecvBarrageMessage(sdk::ImRecvBarrageMessageEvent e) override;
  void onIMRecvCustomCommand(sdk::ImRecvCustomCommandEvent e) override;
  void onCapturedDataRecordStateUpdate(sdk::CapturedDataRecordStateUpdateEvent e) override;
  void onCapturedDataRecordProgressUpdate(sdk::CapturedDataRecordProgressUpdateEvent e) override;
  void onNetworkModeChanged(sdk::NetworkModeChangedEvent e) override;
  void onNetworkSpeedTestError(sdk::NetworkSpeedTestErrorEvent e) override;
  void onNetworkSpeedTestQualityUpdate(sdk::NetworkSpeedTestQualityUpdateEvent e) override;
  void onNetworkQuality(sdk::NetworkQualityEvent e) override;
  void onRecvExperimentalAPI(sdk::RecvExperimentalApiEvent e) override;
  void onVideoObjectSegmentationStateChanged(sdk::VideoObjectSegmentationStateChangedEvent e) override;

 private:
  struct Texts;

  // Writes the trace line (when the event has one) and posts the event: `fill(payload,
  // event)` builds the payload object on the script thread, or `fill(env, event)` returns a
  // payload that is not an object.
  template <class Event, class Fill>
  void forward(const Texts& texts, Event event, Fill fill);

  OrvaVantixAddonDataCenter& bridge_;
};

}  // namespace orva
