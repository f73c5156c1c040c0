#include "events/AddonEventHandler.h"

#include <type_traits>
#include <utility>

#include "bridge/DebugLog.h"
#include "bridge/EventTask.h"
#include "bridge/OrvaVantixAddonDataCenter.h"

namespace orva {

// The fixed texts of one event: the script event name (the method's own name), the trace
// line (null for the four events that print none) and the failure line. All literals: the
// bridge keeps the failure line's pointer until the event is delivered.
struct AddonEventHandler::Texts {
  const char* name;
  const char* trace;
  const char* failure;
};

// The texts of `method`, spelled once.
#define ORVA_EVENT(method) \
  Texts{#method, "AddonEventHandler::" #method, "AddonEventHandler::" #method " blocking call failed \n"}
// For the four events that write no trace line but still their failure line (intended).
#define ORVA_UNTRACED_EVENT(method) \
  Texts{#method, nullptr, "AddonEventHandler::" #method " blocking call failed \n"}

namespace {

// Nested records, each filled in the key order script sees.
template <class Record, class Fill>
Payload& setRecord(Payload& p, const char* key, const Record& record, Fill fill) {
  return p.setObject(key, [&](Payload& o) { fill(o, record); });
}

void fillUser(Payload& p, const sdk::User& u) {
  p.set("userID", u.userID).set("userName", u.userName);
}

void fillStream(Payload& p, const sdk::Stream& s) {
  p.set("streamID", s.streamID).set("extraInfo", s.extraInfo);
  setRecord(p, "user", s.user, fillUser);
}

void fillRoomExtraInfo(Payload& p, const sdk::RoomExtraInfo& i) {
  p.set("key", i.key).set("value", i.value).set("updateTime", i.updateTime);
  setRecord(p, "updateUser", i.updateUser, fillUser);
}

void fillRelayCdnInfo(Payload& p, const sdk::StreamRelayCdnInfo& i) {
  p.set("url", i.url).set("state", i.state).set("updateReason", i.updateReason).set("stateTime", i.stateTime);
}

void fillDeviceInfo(Payload& p, const sdk::DeviceInfo& d) {
  p.set("deviceID", d.deviceID).set("deviceName", d.deviceName);
}

void fillRecordConfig(Payload& p, const sdk::DataRecordConfig& c) {
  p.set("filePath", c.filePath).set("recordType", c.recordType);
}

// Broadcast and barrage messages differ only in the type of messageID.
template <class Message>
void fillMessage(Payload& p, const Message& m) {
  p.set("message", m.message).set("messageID", m.messageID).set("sendTime", m.sendTime);
  setRecord(p, "fromUser", m.fromUser, fillUser);
}

void fillPublishQuality(Payload& p, const sdk::PublishStreamQuality& q) {
  p.set("videoCaptureFPS", q.videoCaptureFPS).set("videoEncodeFPS", q.videoEncodeFPS)
      .set("videoSendFPS", q.videoSendFPS).set("videoKBPS", q.videoKBPS)
      .set("audioCaptureFPS", q.audioCaptureFPS).set("audioSendFPS", q.audioSendFPS)
      .set("rtt", q.rtt).set("audioKBPS", q.audioKBPS).set("packetLostRate", q.packetLostRate)
      .set("level", q.level).set("isHardwareEncode", q.isHardwareEncode)
      .set("videoCodecID", q.videoCodecID).set("totalSendBytes", q.totalSendBytes)
      .set("audioSendBytes", q.audioSendBytes).set("videoSendBytes", q.videoSendBytes);
}

void fillPlayQuality(Payload& p, const sdk::PlayStreamQuality& q) {
  p.set("videoRecvFPS", q.videoRecvFPS).set("videoDejitterFPS", q.videoDejitterFPS)
      .set("videoDecodeFPS", q.videoDecodeFPS).set("videoRenderFPS", q.videoRenderFPS)
      .set("videoKBPS", q.videoKBPS).set("videoBreakRate", q.videoBreakRate)
      .set("audioRecvFPS", q.audioRecvFPS).set("audioDecodeFPS", q.audioDecodeFPS)
      .set("audioRenderFPS", q.audioRenderFPS).set("audioKBPS", q.audioKBPS)
      .set("audioDejitterFPS", q.audioDejitterFPS).set("audioBreakRate", q.audioBreakRate)
      .set("rtt", q.rtt).set("packetLostRate", q.packetLostRate)
      .set("peerToPeerDelay", q.peerToPeerDelay).set("peerToPeerPacketLostRate", q.peerToPeerPacketLostRate)
      .set("level", q.level).set("delay", q.delay).set("avTimestampDiff", q.avTimestampDiff)
      .set("isHardwareDecode", q.isHardwareDecode).set("videoCodecID", q.videoCodecID)
      .set("totalRecvBytes", q.totalRecvBytes).set("audioRecvBytes", q.audioRecvBytes)
      .set("videoRecvBytes", q.videoRecvBytes)
      .set("audioCumulativeBreakCount", q.audioCumulativeBreakCount)
      .set("audioCumulativeBreakTime", q.audioCumulativeBreakTime)
      .set("audioCumulativeBreakRate", q.audioCumulativeBreakRate)
      .set("audioCumulativeDecodeTime", q.audioCumulativeDecodeTime)
      .set("videoCumulativeBreakCount", q.videoCumulativeBreakCount)
      .set("videoCumulativeBreakTime", q.videoCumulativeBreakTime)
      .set("videoCumulativeBreakRate", q.videoCumulativeBreakRate)
      .set("videoCumulativeDecodeTime", q.videoCumulativeDecodeTime);
}

// Shared by the first-frame and state events that carry only a stream and one number.
template <class Event>
void fillStreamState(Payload& p, const Event& e) {
  p.set("streamID", e.streamID).set("state", e.state);
}

template <class Event>
void fillStreamID(Payload& p, const Event& e) {
  p.set("streamID", e.streamID);
}

}  // namespace

AddonEventHandler::AddonEventHandler() : bridge_(OrvaVantixAddonDataCenter::instance()) {}

template <class Event, class Fill>
void AddonEventHandler::forward(const Texts& texts, Event event, Fill fill) {
  if (texts.trace != nullptr) logToConsole("%s", texts.trace);
  // The closure owns the event record: strings, lists and bytes were copied out of engine
  // memory by the SDK layer and are moved, not copied again.
  std::unique_ptr<EventTask> task;
  if constexpr (std::is_invocable_v<Fill&, Payload&, const Event&>) {
    task = makeEvent(texts.name, [event = std::move(event), fill](Payload& p) { fill(p, event); });
  } else {
    task = makeEvent(texts.name, [event = std::move(event), fill](Napi::Env env) { return fill(env, event); });
  }
  bridge_.sendToEngine(std::move(task), texts.failure);
}

// ---- engine and room -------------------------------------------------------------------

void AddonEventHandler::onEngineStateUpdate(sdk::EngineStateUpdateEvent e) {
  forward(ORVA_EVENT(onEngineStateUpdate), std::move(e),
          [](Payload& p, const auto& e) { p.set("state", e.state); });
}

void AddonEventHandler::onRoomStateUpdate(sdk::RoomStateUpdateEvent e) {
  forward(ORVA_EVENT(onRoomStateUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).set("state", e.state).set("errorCode", e.errorCode).set("extendedData", e.extendedData);
  });
}

void AddonEventHandler::onRoomStateChanged(sdk::RoomStateChangedEvent e) {
  forward(ORVA_EVENT(onRoomStateChanged), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).set("reason", e.reason).set("errorCode", e.errorCode).set("extendedData", e.extendedData);
  });
}

void AddonEventHandler::onRoomUserUpdate(sdk::RoomUserUpdateEvent e) {
  forward(ORVA_EVENT(onRoomUserUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).set("updateType", e.updateType).setList("userList", e.userList, fillUser);
  });
}

void AddonEventHandler::onRoomOnlineUserCountUpdate(sdk::RoomOnlineUserCountUpdateEvent e) {
  forward(ORVA_EVENT(onRoomOnlineUserCountUpdate), std::move(e),
          [](Payload& p, const auto& e) { p.set("roomID", e.roomID).set("count", e.count); });
}

void AddonEventHandler::onRoomStreamUpdate(sdk::RoomStreamUpdateEvent e) {
  forward(ORVA_EVENT(onRoomStreamUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).set("updateType", e.updateType).setList("streamList", e.streamList, fillStream)
        .set("extendedData", e.extendedData);
  });
}

void AddonEventHandler::onRoomStreamExtraInfoUpdate(sdk::RoomStreamExtraInfoUpdateEvent e) {
  forward(ORVA_EVENT(onRoomStreamExtraInfoUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).setList("streamList", e.streamList, fillStream);
  });
}

void AddonEventHandler::onRoomExtraInfoUpdate(sdk::RoomExtraInfoUpdateEvent e) {
  forward(ORVA_EVENT(onRoomExtraInfoUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).setList("roomExtraInfoList", e.roomExtraInfoList, fillRoomExtraInfo);
  });
}

void AddonEventHandler::onRoomTokenWillExpire(sdk::RoomTokenWillExpireEvent e) {
  forward(ORVA_EVENT(onRoomTokenWillExpire), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).set("remainTimeInSecond", e.remainTimeInSecond);
  });
}

// ---- publisher ---------------------------------------------------------------------------

void AddonEventHandler::onPublisherStateUpdate(sdk::PublisherStateUpdateEvent e) {
  forward(ORVA_EVENT(onPublisherStateUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("streamID", e.streamID).set("state", e.state).set("errorCode", e.errorCode).set("extendedData", e.extendedData);
  });
}

void AddonEventHandler::onPublisherQualityUpdate(sdk::PublisherQualityUpdateEvent e) {
  forward(ORVA_EVENT(onPublisherQualityUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("streamID", e.streamID);
    setRecord(p, "quality", e.quality, fillPublishQuality);
  });
}

void AddonEventHandler::onPublisherCapturedAudioFirstFrame(sdk::PublisherCapturedAudioFirstFrameEvent e) {
  forward(ORVA_EVENT(onPublisherCapturedAudioFirstFrame), std::move(e), [](Payload&, const auto&) {});
}

void AddonEventHandler::onPublisherSendAudioFirstFrame(sdk::PublisherSendAudioFirstFrameEvent e) {
  forward(ORVA_EVENT(onPublisherSendAudioFirstFrame), std::move(e),
          [](Payload& p, const auto& e) { p.set("channel", e.channel); });
}

void AddonEventHandler::onPublisherCapturedVideoFirstFrame(sdk::PublisherCapturedVideoFirstFrameEvent e) {
  forward(ORVA_EVENT(onPublisherCapturedVideoFirstFrame), std::move(e),
          [](Payload& p, const auto& e) { p.set("channel", e.channel); });
}

void AddonEventHandler::onPublisherSendVideoFirstFrame(sdk::PublisherSendVideoFirstFrameEvent e) {
  forward(ORVA_EVENT(onPublisherSendVideoFirstFrame), std::move(e),
          [](Payload& p, const auto& e) { p.set("channel", e.channel); });
}

void AddonEventHandler::onPublisherVideoSizeChanged(sdk::PublisherVideoSizeChangedEvent e) {
  forward(ORVA_EVENT(onPublisherVideoSizeChanged), std::move(e), [](Payload& p, const auto& e) {
    p.set("width", e.width).set("height", e.height).set("channel", e.channel);
  });
}

void AddonEventHandler::onPublisherRelayCDNStateUpdate(sdk::PublisherRelayCdnStateUpdateEvent e) {
  forward(ORVA_EVENT(onPublisherRelayCDNStateUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("streamID", e.streamID).setList("infoList", e.infoList, fillRelayCdnInfo);
  });
}

// ---- player ------------------------------------------------------------------------------

void AddonEventHandler::onPlayerStateUpdate(sdk::PlayerStateUpdateEvent e) {
  forward(ORVA_EVENT(onPlayerStateUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("streamID", e.streamID).set("state", e.state).set("errorCode", e.errorCode).set("extendedData", e.extendedData);
  });
}

void AddonEventHandler::onPlayerQualityUpdate(sdk::PlayerQualityUpdateEvent e) {
  forward(ORVA_EVENT(onPlayerQualityUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("streamID", e.streamID);
    setRecord(p, "quality", e.quality, fillPlayQuality);
  });
}

void AddonEventHandler::onPlayerMediaEvent(sdk::PlayerMediaEventEvent e) {
  forward(ORVA_EVENT(onPlayerMediaEvent), std::move(e),
          [](Payload& p, const auto& e) { p.set("streamID", e.streamID).set("event", e.event); });
}

void AddonEventHandler::onPlayerRecvAudioFirstFrame(sdk::PlayerRecvAudioFirstFrameEvent e) {
  forward(ORVA_EVENT(onPlayerRecvAudioFirstFrame), std::move(e), fillStreamID<sdk::PlayerRecvAudioFirstFrameEvent>);
}

void AddonEventHandler::onPlayerRecvVideoFirstFrame(sdk::PlayerRecvVideoFirstFrameEvent e) {
  forward(ORVA_EVENT(onPlayerRecvVideoFirstFrame), std::move(e), fillStreamID<sdk::PlayerRecvVideoFirstFrameEvent>);
}

void AddonEventHandler::onPlayerRenderVideoFirstFrame(sdk::PlayerRenderVideoFirstFrameEvent e) {
  forward(ORVA_EVENT(onPlayerRenderVideoFirstFrame), std::move(e),
          fillStreamID<sdk::PlayerRenderVideoFirstFrameEvent>);
}

void AddonEventHandler::onPlayerVideoSizeChanged(sdk::PlayerVideoSizeChangedEvent e) {
  forward(ORVA_EVENT(onPlayerVideoSizeChanged), std::move(e), [](Payload& p, const auto& e) {
    p.set("streamID", e.streamID).set("width", e.width).set("height", e.height);
  });
}

void AddonEventHandler::onPlayerRecvSEI(sdk::PlayerRecvMediaSideInfoEvent e) {
  forward(ORVA_EVENT(onPlayerRecvSEI), std::move(e),
          [](Payload& p, const auto& e) { p.set("streamID", e.streamID).setBytes("data", e.data); });
}

void AddonEventHandler::onPlayerSyncRecvSEI(sdk::PlayerRecvAudioSideInfoEvent e) {
  forward(ORVA_EVENT(onPlayerSyncRecvSEI), std::move(e),
          [](Payload& p, const auto& e) { p.set("streamID", e.streamID).setBytes("data", e.data); });
}

// ---- mixer -------------------------------------------------------------------------------

void AddonEventHandler::onMixerRelayCDNStateUpdate(sdk::MixerRelayCdnStateUpdateEvent e) {
  forward(ORVA_EVENT(onMixerRelayCDNStateUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("taskID", e.taskID).setList("infoList", e.infoList, fillRelayCdnInfo);
  });
}

// Sound level identifiers become integer property indexes of the payload object.
void AddonEventHandler::onMixerSoundLevelUpdate(sdk::MixerSoundLevelUpdateEvent e) {
  forward(ORVA_EVENT(onMixerSoundLevelUpdate), std::move(e), [](Payload& p, const auto& e) {
    for (const auto& level : e.soundLevels) {
      p.setElement(p.object(), level.soundLevelID, p.number(level.soundLevel));
    }
  });
}

// ---- devices -----------------------------------------------------------------------------

void AddonEventHandler::onAudioDeviceStateChanged(sdk::AudioDeviceStateChangedEvent e) {
  forward(ORVA_EVENT(onAudioDeviceStateChanged), std::move(e), [](Payload& p, const auto& e) {
    p.set("updateType", e.updateType).set("deviceType", e.deviceType);
    setRecord(p, "deviceInfo", e.deviceInfo, fillDeviceInfo);
  });
}

void AddonEventHandler::onAudioDeviceVolumeChanged(sdk::AudioDeviceVolumeChangedEvent e) {
  forward(ORVA_EVENT(onAudioDeviceVolumeChanged), std::move(e), [](Payload& p, const auto& e) {
    p.set("deviceType", e.deviceType).set("deviceID", e.deviceID).set("volume", e.volume);
  });
}

void AddonEventHandler::onVideoDeviceStateChanged(sdk::VideoDeviceStateChangedEvent e) {
  forward(ORVA_EVENT(onVideoDeviceStateChanged), std::move(e), [](Payload& p, const auto& e) {
    p.set("updateType", e.updateType);
    setRecord(p, "deviceInfo", e.deviceInfo, fillDeviceInfo);
  });
}

void AddonEventHandler::onLocalDeviceExceptionOccurred(sdk::LocalDeviceExceptionOccurredEvent e) {
  forward(ORVA_EVENT(onLocalDeviceExceptionOccurred), std::move(e), [](Payload& p, const auto& e) {
    p.set("exceptionType", e.exceptionType).set("deviceType", e.deviceType).set("deviceID", e.deviceID);
  });
}

void AddonEventHandler::onAudioVADStateUpdate(sdk::AudioVadStateUpdateEvent e) {
  forward(ORVA_EVENT(onAudioVADStateUpdate), std::move(e),
          [](Payload& p, const auto& e) { p.set("type", e.type).set("state", e.state); });
}

// ---- sound levels and spectra --------------------------------------------------------------

void AddonEventHandler::onCapturedSoundLevelUpdate(sdk::CapturedSoundLevelUpdateEvent e) {
  forward(ORVA_EVENT(onCapturedSoundLevelUpdate), std::move(e),
          [](Payload& p, const auto& e) { p.set("soundLevel", e.soundLevel); });
}

void AddonEventHandler::onCapturedSoundLevelInfoUpdate(sdk::CapturedSoundLevelInfoUpdateEvent e) {
  forward(ORVA_UNTRACED_EVENT(onCapturedSoundLevelInfoUpdate), std::move(e),
          [](Payload& p, const auto& e) { p.set("soundLevel", e.soundLevel).set("vad", e.vad); });
}

// Map-shaped: one property per stream, named by its identifier.
void AddonEventHandler::onRemoteSoundLevelUpdate(sdk::RemoteSoundLevelUpdateEvent e) {
  forward(ORVA_EVENT(onRemoteSoundLevelUpdate), std::move(e), [](Payload& p, const auto& e) {
    for (const auto& s : e.soundLevels) p.set(s.streamID.c_str(), s.soundLevel);
  });
}

void AddonEventHandler::onRemoteSoundLevelInfoUpdate(sdk::RemoteSoundLevelInfoUpdateEvent e) {
  forward(ORVA_UNTRACED_EVENT(onRemoteSoundLevelInfoUpdate), std::move(e), [](Payload& p, const auto& e) {
    for (const auto& s : e.soundLevelInfos) {
      p.setObject(s.streamID.c_str(), [&](Payload& i) { i.set("soundLevel", s.soundLevel).set("vad", s.vad); });
    }
  });
}

// The payload is the array of bands itself, not an object.
void AddonEventHandler::onCapturedAudioSpectrumUpdate(sdk::CapturedAudioSpectrumUpdateEvent e) {
  forward(ORVA_EVENT(onCapturedAudioSpectrumUpdate), std::move(e),
          [](napi_env env, const sdk::CapturedAudioSpectrumUpdateEvent& e) {
            return Payload(env, nullptr).numbers(e.spectrumList);
          });
}

void AddonEventHandler::onRemoteAudioSpectrumUpdate(sdk::RemoteAudioSpectrumUpdateEvent e) {
  forward(ORVA_EVENT(onRemoteAudioSpectrumUpdate), std::move(e), [](Payload& p, const auto& e) {
    for (const auto& s : e.spectra) p.setNumbers(s.streamID.c_str(), s.spectrumList);
  });
}

// ---- remote device states ------------------------------------------------------------------

void AddonEventHandler::onRemoteCameraStateUpdate(sdk::RemoteCameraStateUpdateEvent e) {
  forward(ORVA_EVENT(onRemoteCameraStateUpdate), std::move(e), fillStreamState<sdk::RemoteCameraStateUpdateEvent>);
}

void AddonEventHandler::onRemoteMicStateUpdate(sdk::RemoteMicStateUpdateEvent e) {
  forward(ORVA_EVENT(onRemoteMicStateUpdate), std::move(e), fillStreamState<sdk::RemoteMicStateUpdateEvent>);
}

void AddonEventHandler::onRemoteSpeakerStateUpdate(sdk::RemoteSpeakerStateUpdateEvent e) {
  forward(ORVA_EVENT(onRemoteSpeakerStateUpdate), std::move(e), fillStreamState<sdk::RemoteSpeakerStateUpdateEvent>);
}

// ---- messages ----------------------------------------------------------------------------

void AddonEventHandler::onIMRecvBroadcastMessage(sdk::ImRecvBroadcastMessageEvent e) {
  forward(ORVA_EVENT(onIMRecvBroadcastMessage), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).setList("messageList", e.messageList, fillMessage<sdk::BroadcastMessageInfo>);
  });
}

void AddonEventHandler::onIMRecvBarrageMessage(sdk::ImRecvBarrageMessageEvent e) {
  forward(ORVA_EVENT(onIMRecvBarrageMessage), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).setList("messageList", e.messageList, fillMessage<sdk::BarrageMessageInfo>);
  });
}

void AddonEventHandler::onIMRecvCustomCommand(sdk::ImRecvCustomCommandEvent e) {
  forward(ORVA_EVENT(onIMRecvCustomCommand), std::move(e), [](Payload& p, const auto& e) {
    p.set("roomID", e.roomID).set("command", e.command);
    setRecord(p, "fromUser", e.fromUser, fillUser);
  });
}

// ---- recording -----------------------------------------------------------------------------

void AddonEventHandler::onCapturedDataRecordStateUpdate(sdk::CapturedDataRecordStateUpdateEvent e) {
  forward(ORVA_EVENT(onCapturedDataRecordStateUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("state", e.state).set("errorCode", e.errorCode).set("channel", e.channel);
    setRecord(p, "config", e.config, fillRecordConfig);
  });
}

void AddonEventHandler::onCapturedDataRecordProgressUpdate(sdk::CapturedDataRecordProgressUpdateEvent e) {
  forward(ORVA_EVENT(onCapturedDataRecordProgressUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("channel", e.channel).setObject("progress", [&](Payload& g) {
      g.set("duration", e.progress.duration).set("currentFileSize", e.progress.currentFileSize);
    });
    setRecord(p, "config", e.config, fillRecordConfig);
  });
}

// ---- network and experimental --------------------------------------------------------------

void AddonEventHandler::onNetworkModeChanged(sdk::NetworkModeChangedEvent e) {
  forward(ORVA_EVENT(onNetworkModeChanged), std::move(e), [](Payload& p, const auto& e) { p.set("mode", e.mode); });
}

void AddonEventHandler::onNetworkSpeedTestError(sdk::NetworkSpeedTestErrorEvent e) {
  forward(ORVA_EVENT(onNetworkSpeedTestError), std::move(e),
          [](Payload& p, const auto& e) { p.set("errorCode", e.errorCode).set("type", e.type); });
}

void AddonEventHandler::onNetworkSpeedTestQualityUpdate(sdk::NetworkSpeedTestQualityUpdateEvent e) {
  forward(ORVA_EVENT(onNetworkSpeedTestQualityUpdate), std::move(e), [](Payload& p, const auto& e) {
    p.set("type", e.type).setObject("quality", [&](Payload& q) {
      q.set("connectCost", e.quality.connectCost).set("rtt", e.quality.rtt).set("packetLostRate", e.quality.packetLostRate);
    });
  });
}

void AddonEventHandler::onNetworkQuality(sdk::NetworkQualityEvent e) {
  forward(ORVA_UNTRACED_EVENT(onNetworkQuality), std::move(e), [](Payload& p, const auto& e) {
    p.set("userID", e.userID).set("upstreamQuality", e.upstreamQuality).set("downstreamQuality", e.downstreamQuality);
  });
}

// The engine's JSON text, passed on unparsed.
void AddonEventHandler::onRecvExperimentalAPI(sdk::RecvExperimentalApiEvent e) {
  forward(ORVA_EVENT(onRecvExperimentalAPI), std::move(e), [](Payload& p, const auto& e) { p.set("content", e.content); });
}

void AddonEventHandler::onVideoObjectSegmentationStateChanged(sdk::VideoObjectSegmentationStateChangedEvent e) {
  forward(ORVA_UNTRACED_EVENT(onVideoObjectSegmentationStateChanged), std::move(e), [](Payload& p, const auto& e) {
    p.set("state", e.state).set("channel", e.channel).set("errorCode", e.errorCode);
  });
}

#undef ORVA_EVENT
#undef ORVA_UNTRACED_EVENT

}  // namespace orva
