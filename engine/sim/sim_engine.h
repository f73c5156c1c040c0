// The simulated engine's state and the pieces its behaviour is built from. The entry points
// with behaviour live beside this header, one file per feature family:
//   sim_engine.cc        lifecycle, version, activity (engine_state_update), tickers
//   sim_room.cc          login/logout, room stream list, messages
//   sim_publish.cc       video/audio config, preview and captured frames, publishing
//   sim_play.cc          playing streams and remote frames, sound level / spectrum monitors
//   sim_devices.cc       audio and video devices, mutes and volumes, device monitors
//   sim_mixer.cc         stream-mixing tasks
//   sim_media_player.cc  media players and audio effect players
//   sim_capture.cc       screen capture sources, experimental API
//
// Locking: one mutex guards all state. Entry points change state under it and post the
// resulting callbacks; tickers read what they need under it and call back without it.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "orva_vantix_engine.h"
#include "sim_core.h"

namespace orva::sim {

inline constexpr int kChannels = 4;
inline constexpr int kMediaPlayers = 4;
inline constexpr int kEffectPlayers = 4;
inline constexpr int kCaptureSources = 8;

// Result code for an argument the simulated engine cannot act on (unknown channel, index,
// device, NULL configuration).
inline constexpr int32_t kErrInvalid = -1;

// The simulated remote participant present in every room.
inline constexpr const char* kPeerUserID = "sim-peer";
inline constexpr const char* kPeerUserName = "Sim Peer";
inline constexpr const char* kPeerStreamID = "sim-peer-stream";

inline constexpr const char* kVersion = "1.0.0-sim";

struct VideoSize {
  int32_t width = 0;
  int32_t height = 0;
};

struct ChannelState {
  orva_video_config video{640, 360, 640, 360, 15, 600, 0};
  orva_audio_config audio{48, 1, 0};
  bool audioMuted = false;
  bool videoMuted = false;
  std::string camera = "sim-camera-1";
  uint64_t previewToken = 0;  // 0: no preview
  uint64_t frameNo = 0;
  uint64_t publishToken = 0;  // 0: not publishing
  bool publishing = false;    // PUBLISHING reached
  std::string streamID;
  std::string roomID;
  uint64_t sentBytes = 0;
};

struct RoomState {
  orva_user user{};
  int32_t state = 0;  // orva_room_state
  uint64_t token = 0;
};

struct PlayState {
  uint64_t token = 0;
  int32_t state = 0;  // orva_player_state
  VideoSize size;
  uint64_t frameNo = 0;
  uint64_t recvBytes = 0;
};

struct MediaPlayerState {
  bool exists = false;
  uint64_t token = 0;  // renewed on every start; tickers of older starts stop
  int32_t state = 0;   // orva_media_player_state
  std::string resource;
  uint64_t durationMs = 60000;
  uint64_t progressMs = 0;            // progress at `since`
  std::chrono::steady_clock::time_point since{};
  uint64_t progressIntervalMs = 1000;
  int32_t playVolume = 60;
  int32_t publishVolume = 60;
  bool repeat = false;
  bool sizeAnnounced = false;
  uint64_t frameNo = 0;

  uint64_t progressNow() const;
};

struct EffectPlayerState {
  bool exists = false;
  std::map<uint32_t, int32_t> effects;  // audioEffectID -> orva_audio_effect_play_state
  std::map<uint32_t, uint64_t> progressMs;
};

struct CaptureSourceState {
  bool exists = false;
  int64_t sourceId = 0;
  int32_t sourceType = 0;
  bool capturing = false;
};

struct MonitorState {
  uint64_t token = 0;
  uint32_t millisecond = 100;
  bool enableVAD = false;
  uint64_t tick = 0;
};

struct DeviceState {
  std::string mic = "sim-mic-1";
  std::string speaker = "sim-speaker-1";
  std::map<std::string, int32_t> volume;        // by device ID, default 80
  std::map<std::string, bool> muted;
  std::map<std::string, int32_t> inAppVolume;   // default 100
  // Running monitors by what they watch; each ticker stops when its token is gone.
  std::map<std::pair<int32_t, std::string>, uint64_t> volumeMonitors;  // (deviceType, deviceID)
  std::map<int32_t, uint64_t> vadMonitors;                             // by VAD monitor type
};

struct EngineState {
  bool initialized = false;
  bool active = false;  // last engine_state_update sent: START
  std::array<ChannelState, kChannels> channels;
  std::map<std::string, RoomState> rooms;
  std::map<std::string, PlayState> plays;
  std::array<MediaPlayerState, kMediaPlayers> mediaPlayers;
  std::array<EffectPlayerState, kEffectPlayers> effectPlayers;
  std::array<CaptureSourceState, kCaptureSources> captureSources;
  DeviceState devices;
  bool micMuted = false;
  bool speakerMuted = false;
  MonitorState soundLevel;
  MonitorState spectrum;
  std::map<std::string, std::vector<std::string>> mixerTasks;  // running task ID -> output targets
  uint64_t broadcastMessageID = 0;
  uint64_t barrageMessageID = 0;
};

class Engine {
 public:
  std::mutex mu;
  EngineState st;  // guarded by mu

  // Back to the state of a freshly loaded engine; running activity stops with its tokens.
  void resetState();

  // A token that no earlier activity carried, across resets.
  static uint64_t newToken();

  // Sends engine_state_update when the set of running activities becomes empty or not.
  // Call with mu held, after a change.
  void updateActivityLocked();

  // Sizes for frames and snapshots made from a payload (sim_special_args.cc).
  VideoSize captureSize(int32_t channel);
  VideoSize encodeSize(int32_t channel);
  // The stream's size as its publisher sends it: an own stream's encode size, else 640x360.
  VideoSize streamSize(const std::string& streamID);
  // Finds the channel publishing `streamID`; -1 when none. Call with mu held.
  int channelOfStreamLocked(const std::string& streamID) const;
  // The room's user, or an empty user. Call with mu held.
  orva_user roomUserLocked(const std::string& roomID) const;
};

Engine& engine();

// Repeats `tick` on `loop` until it returns 0 or the epoch changes; its result is the delay
// until the next tick in milliseconds. The first tick runs after `firstDelayMs`.
void startTicker(TaskLoop& loop, uint32_t firstDelayMs, std::function<uint32_t()> tick);

// True when `channel` names a publish channel.
inline bool validChannel(int32_t channel) { return channel >= 0 && channel < kChannels; }

// The scripted result of an action entry point when it is a refusal (non-zero).
inline std::optional<int32_t> refusal(const char* fn) {
  auto code = scriptedNumber<int32_t>(fn);
  if (code && *code != 0) return code;
  return std::nullopt;
}

// Announces a stream this engine starts (ORVA_UPDATE_TYPE_ADD) or stops publishing on
// `channel` to its room, when that room is logged in. Call with the engine lock held.
void announceOwnStreamLocked(int32_t channel, int32_t updateType);

// Milliseconds since the Unix epoch, for message send times.
uint64_t nowUnixMs();

std::string fixedText(const char* s, size_t capacity);
void setFixed(char* dst, size_t capacity, const std::string& s);

}  // namespace orva::sim
