// Fake audio and video devices: three microphones, three speakers, three cameras with stable
// IDs (the third of each with a name outside ASCII), mutes and volumes, the current devices,
// and the device volume and voice activity monitors, which report while they run.
#include <algorithm>
#include <memory>
#include <utility>

#if defined(_WIN32)
#include <objbase.h>
#endif

#include "sim_engine.h"

namespace orva::sim {
namespace {

struct FakeDevice {
  const char* id;
  const char* name;
};
// Names in UTF-8, spelled as escapes so that every compiler reads the same bytes:
// "麦克风 (USB)", "Kopfhörer", "Caméra intégrée".
constexpr FakeDevice kMics[] = {{"sim-mic-1", "Sim Microphone 1"},
                                {"sim-mic-2", "Sim Microphone 2"},
                                {"sim-mic-3", "\xE9\xBA\xA6\xE5\x85\x8B\xE9\xA3\x8E (USB)"}};
constexpr FakeDevice kSpeakers[] = {{"sim-speaker-1", "Sim Speaker 1"},
                                    {"sim-speaker-2", "Sim Speaker 2"},
                                    {"sim-speaker-3", "Kopfh\xC3\xB6rer"}};
constexpr FakeDevice kCameras[] = {{"sim-camera-1", "Sim Camera 1"},
                                   {"sim-camera-2", "Sim Camera 2"},
                                   {"sim-camera-3", "Cam\xC3\xA9ra int\xC3\xA9gr\xC3\xA9" "e"}};

constexpr int32_t kDefaultDeviceVolume = 80;
constexpr int32_t kDefaultInAppVolume = 100;
// How often a device volume monitor reports.
constexpr uint32_t kVolumeMonitorMs = 100;
// The voice activity monitor's shortest interval, like the sound level monitor's.
constexpr int32_t kMinVadIntervalMs = 10;
// Voice activity states: the stable state alternates every few reports while the microphone
// is open (someone speaks, then pauses) and stays silent while it is muted.
constexpr int32_t kVadNoise = 0;
constexpr int32_t kVadSpeech = 1;
constexpr uint64_t kVadReportsPerState = 5;

// A view of one of the static device tables, so found devices stay valid.
struct DeviceSet {
  const FakeDevice* items = nullptr;
  size_t count = 0;
  const FakeDevice* begin() const { return items; }
  const FakeDevice* end() const { return items + count; }
  bool empty() const { return count == 0; }
};
constexpr DeviceSet kCameraSet{kCameras, sizeof kCameras / sizeof kCameras[0]};

DeviceSet audioDevices(int32_t deviceType) {
  if (deviceType == ORVA_AUDIO_DEVICE_TYPE_INPUT) return {kMics, sizeof kMics / sizeof kMics[0]};
  if (deviceType == ORVA_AUDIO_DEVICE_TYPE_OUTPUT) return {kSpeakers, sizeof kSpeakers / sizeof kSpeakers[0]};
  return {};
}

const FakeDevice* find(const DeviceSet& set, const char* id) {
  if (!id) return nullptr;
  for (const FakeDevice& d : set) {
    if (std::string(d.id) == id) return &d;
  }
  return nullptr;
}

orva_device_info info(const FakeDevice& d) {
  orva_device_info out{};
  setFixed(out.deviceID, sizeof out.deviceID, d.id);
  setFixed(out.deviceName, sizeof out.deviceName, d.name);
  return out;
}

#if defined(_WIN32)
// Audio devices are enumerated through COM on Windows: a thread that has not initialised COM
// finds none, as with a real engine.
bool comReady() {
  APTTYPE type;
  APTTYPEQUALIFIER qualifier;
  return CoGetApartmentType(&type, &qualifier) == S_OK;
}
#else
bool comReady() { return true; }
#endif

orva_device_info* handOut(const DeviceSet& set, uint32_t* count) {
  auto st = std::make_unique<Storage>();
  orva_device_info* out = st->array<orva_device_info>(set.count);
  for (size_t i = 0; i < set.count; ++i) out[i] = info(set.items[i]);
  if (count) *count = static_cast<uint32_t>(set.count);
  core().handedOut.adopt(out, std::move(st));
  return out;
}

std::string& currentAudioLocked(int32_t deviceType) {
  DeviceState& d = engine().st.devices;
  return deviceType == ORVA_AUDIO_DEVICE_TYPE_INPUT ? d.mic : d.speaker;
}

template <class T>
T valueOr(const std::map<std::string, T>& m, const std::string& key, T fallback) {
  auto it = m.find(key);
  return it == m.end() ? fallback : it->second;
}

}  // namespace
}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

ORVA_API int32_t ORVA_CALL orva_vantix_mute_microphone(bool mute) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_mute_microphone(mute);
    if (auto code = refusal("orva_vantix_mute_microphone")) return *code;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.micMuted = mute;
    return 0;
  });
}

ORVA_API bool ORVA_CALL orva_vantix_is_microphone_muted(void) {
  return guarded<bool>(false, [&] {
    gen::journal_is_microphone_muted();
    if (auto v = scriptedNumber<bool>("orva_vantix_is_microphone_muted")) return *v;
    std::lock_guard<std::mutex> lock(engine().mu);
    return engine().st.micMuted;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_mute_speaker(bool mute) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_mute_speaker(mute);
    if (auto code = refusal("orva_vantix_mute_speaker")) return *code;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.speakerMuted = mute;
    return 0;
  });
}

ORVA_API bool ORVA_CALL orva_vantix_is_speaker_muted(void) {
  return guarded<bool>(false, [&] {
    gen::journal_is_speaker_muted();
    if (auto v = scriptedNumber<bool>("orva_vantix_is_speaker_muted")) return *v;
    std::lock_guard<std::mutex> lock(engine().mu);
    return engine().st.speakerMuted;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_use_audio_device(int32_t deviceType, const char* deviceID) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_use_audio_device(deviceType, deviceID);
    if (auto code = refusal("orva_vantix_use_audio_device")) return *code;
    const FakeDevice* d = find(audioDevices(deviceType), deviceID);
    if (!d) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    currentAudioLocked(deviceType) = d->id;
    return 0;
  });
}

ORVA_API orva_device_info* ORVA_CALL orva_vantix_get_audio_device_list(int32_t deviceType, uint32_t* deviceCount) {
  return guarded<orva_device_info*>(nullptr, [&] {
    gen::journal_get_audio_device_list(deviceType, deviceCount);
    constexpr const char* fn = "orva_vantix_get_audio_device_list";
    if (core().scripted.get(fn)) return gen::scriptedList<orva_device_info>(fn, deviceCount);
    return handOut(comReady() ? audioDevices(deviceType) : DeviceSet{}, deviceCount);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_get_audio_device_volume(int32_t deviceType, const char* deviceID) {
  return guarded<int32_t>(0, [&] {
    gen::journal_get_audio_device_volume(deviceType, deviceID);
    if (auto v = scriptedNumber<int32_t>("orva_vantix_get_audio_device_volume")) return *v;
    if (!find(audioDevices(deviceType), deviceID)) return 0;
    std::lock_guard<std::mutex> lock(engine().mu);
    return valueOr(engine().st.devices.volume, deviceID, kDefaultDeviceVolume);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_device_volume(int32_t deviceType, const char* deviceID, int32_t volume) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_set_audio_device_volume(deviceType, deviceID, volume);
    if (auto code = refusal("orva_vantix_set_audio_device_volume")) return *code;
    if (!find(audioDevices(deviceType), deviceID)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.devices.volume[deviceID] = std::clamp(volume, 0, 100);
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_mute_audio_device(int32_t deviceType, const char* deviceID, bool mute) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_mute_audio_device(deviceType, deviceID, mute);
    if (auto code = refusal("orva_vantix_mute_audio_device")) return *code;
    if (!find(audioDevices(deviceType), deviceID)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.devices.muted[deviceID] = mute;
    return 0;
  });
}

ORVA_API orva_device_info ORVA_CALL orva_vantix_get_current_audio_device(int32_t deviceType) {
  return guarded<orva_device_info>(orva_device_info{}, [&] {
    gen::journal_get_current_audio_device(deviceType);
    constexpr const char* fn = "orva_vantix_get_current_audio_device";
    if (core().scripted.get(fn)) return gen::scriptedStruct<orva_device_info>(fn);
    const auto list = audioDevices(deviceType);
    std::string current;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      if (!list.empty()) current = currentAudioLocked(deviceType);
    }
    const FakeDevice* d = find(list, current.c_str());
    return d ? info(*d) : orva_device_info{};
  });
}

ORVA_API void ORVA_CALL orva_vantix_get_default_audio_device_id(int32_t deviceType, char* deviceID,
                                                               uint32_t deviceIDLength) {
  guardedVoid([&] {
    gen::journal_get_default_audio_device_id(deviceType, deviceID, deviceIDLength);
    const auto list = audioDevices(deviceType);
    const std::string fallback = list.empty() ? std::string() : std::string(list.items[0].id);
    copyOut(scriptedText("orva_vantix_get_default_audio_device_id").value_or(fallback), deviceID, deviceIDLength);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_set_speaker_volume_in_app(const char* deviceID, int32_t volume) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_set_speaker_volume_in_app(deviceID, volume);
    if (auto code = refusal("orva_vantix_set_speaker_volume_in_app")) return *code;
    if (!find(audioDevices(ORVA_AUDIO_DEVICE_TYPE_OUTPUT), deviceID)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.devices.inAppVolume[deviceID] = std::clamp(volume, 0, 100);
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_get_speaker_volume_in_app(const char* deviceID) {
  return guarded<int32_t>(0, [&] {
    gen::journal_get_speaker_volume_in_app(deviceID);
    if (auto v = scriptedNumber<int32_t>("orva_vantix_get_speaker_volume_in_app")) return *v;
    if (!find(audioDevices(ORVA_AUDIO_DEVICE_TYPE_OUTPUT), deviceID)) return 0;
    std::lock_guard<std::mutex> lock(engine().mu);
    return valueOr(engine().st.devices.inAppVolume, deviceID, kDefaultInAppVolume);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_use_video_device(const char* deviceID, int32_t channel) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_use_video_device(deviceID, channel);
    if (auto code = refusal("orva_vantix_use_video_device")) return *code;
    const FakeDevice* d = find(kCameraSet, deviceID);
    if (!d || !validChannel(channel)) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.channels[static_cast<size_t>(channel)].camera = d->id;
    return 0;
  });
}

ORVA_API orva_device_info* ORVA_CALL orva_vantix_get_video_device_list(uint32_t* deviceCount) {
  return guarded<orva_device_info*>(nullptr, [&] {
    gen::journal_get_video_device_list(deviceCount);
    constexpr const char* fn = "orva_vantix_get_video_device_list";
    if (core().scripted.get(fn)) return gen::scriptedList<orva_device_info>(fn, deviceCount);
    return handOut(kCameraSet, deviceCount);
  });
}

ORVA_API void ORVA_CALL orva_vantix_get_default_video_device_id(char* deviceID, uint32_t deviceIDLength) {
  guardedVoid([&] {
    gen::journal_get_default_video_device_id(deviceID, deviceIDLength);
    copyOut(scriptedText("orva_vantix_get_default_video_device_id").value_or(kCameras[0].id), deviceID, deviceIDLength);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_start_audio_device_volume_monitor(int32_t deviceType, const char* deviceID) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_audio_device_volume_monitor(deviceType, deviceID);
    if (auto code = refusal("orva_vantix_start_audio_device_volume_monitor")) return *code;
    const FakeDevice* d = find(audioDevices(deviceType), deviceID);
    if (!d) return kErrInvalid;
    const auto key = std::make_pair(deviceType, std::string(d->id));
    const uint64_t token = Engine::newToken();
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      engine().st.devices.volumeMonitors[key] = token;  // a second start restarts it
    }
    // Reports the device's volume (0 while it is muted) until stopped.
    startTicker(core().events, kVolumeMonitorMs, [key, token]() -> uint32_t {
      int32_t volume = 0;
      {
        std::lock_guard<std::mutex> lock(engine().mu);
        const DeviceState& devices = engine().st.devices;
        auto it = devices.volumeMonitors.find(key);
        if (it == devices.volumeMonitors.end() || it->second != token) return 0;
        volume = valueOr(devices.muted, key.second, false) ? 0 : valueOr(devices.volume, key.second, kDefaultDeviceVolume);
      }
      gen::fire_audio_device_volume_changed(key.first, key.second.c_str(), volume);
      return kVolumeMonitorMs;
    });
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_audio_device_volume_monitor(int32_t deviceType, const char* deviceID) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_audio_device_volume_monitor(deviceType, deviceID);
    if (auto code = refusal("orva_vantix_stop_audio_device_volume_monitor")) return *code;
    const FakeDevice* d = find(audioDevices(deviceType), deviceID);
    if (!d) return kErrInvalid;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.devices.volumeMonitors.erase(std::make_pair(deviceType, std::string(d->id)));
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_start_audio_vad_stable_state_monitor(int32_t type, int32_t millisecond) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_audio_vad_stable_state_monitor(type, millisecond);
    if (auto code = refusal("orva_vantix_start_audio_vad_stable_state_monitor")) return *code;
    const uint32_t period = static_cast<uint32_t>(std::max(millisecond, kMinVadIntervalMs));
    const uint64_t token = Engine::newToken();
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      engine().st.devices.vadMonitors[type] = token;
    }
    auto reports = std::make_shared<uint64_t>(0);
    startTicker(core().events, period, [type, token, period, reports]() -> uint32_t {
      bool muted = false;
      {
        std::lock_guard<std::mutex> lock(engine().mu);
        const auto& monitors = engine().st.devices.vadMonitors;
        auto it = monitors.find(type);
        if (it == monitors.end() || it->second != token) return 0;
        muted = engine().st.micMuted;
      }
      const bool speaking = !muted && (*reports)++ / kVadReportsPerState % 2 == 1;
      gen::fire_audio_vad_state_update(type, speaking ? kVadSpeech : kVadNoise);
      return period;
    });
    return 0;
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_audio_vad_stable_state_monitor(int32_t type) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_audio_vad_stable_state_monitor(type);
    if (auto code = refusal("orva_vantix_stop_audio_vad_stable_state_monitor")) return *code;
    std::lock_guard<std::mutex> lock(engine().mu);
    engine().st.devices.vadMonitors.erase(type);
    return 0;
  });
}
