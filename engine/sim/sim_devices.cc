// Fake audio and video devices: two microphones, two speakers, two cameras with stable IDs,
// plus mutes and volumes.
#include <algorithm>
#include <memory>

#include "sim_engine.h"

namespace orva::sim {
namespace {

struct FakeDevice {
  const char* id;
  const char* name;
};
constexpr FakeDevice kMics[] = {{"sim-mic-1", "Sim Microphone 1"}, {"sim-mic-2", "Sim Microphone 2"}};
constexpr FakeDevice kSpeakers[] = {{"sim-speaker-1", "Sim Speaker 1"}, {"sim-speaker-2", "Sim Speaker 2"}};
constexpr FakeDevice kCameras[] = {{"sim-camera-1", "Sim Camera 1"}, {"sim-camera-2", "Sim Camera 2"}};

constexpr int32_t kDefaultDeviceVolume = 80;
constexpr int32_t kDefaultInAppVolume = 100;

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
    return handOut(audioDevices(deviceType), deviceCount);
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
