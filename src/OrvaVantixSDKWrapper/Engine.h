// The engine of the process as the call side sees it: present from a successful create()
// to destroy(). Callers obtain it at the moment of each call (Engine::instance()) and treat
// null as "no engine".
//
// Call side naming: one method per engine function, the function's name without
// "orva_vantix_" in lower camel case (orva_vantix_set_room_extra_info -> setRoomExtraInfo,
// orva_vantix_media_player_start -> mediaPlayerStart). Arguments: texts as
// const std::string&, structures as their records (engine_records.h; std::optional where the
// engine accepts NULL), lists as vectors. Results: result codes unchanged, structures as
// records, lists as vectors of records (the engine's list is released). An asynchronous
// call takes a Completion<ResultEvent> as its last argument and stores it under the
// returned sequence number when the engine accepted the call (result 0); an empty
// completion stores nothing. With no engine library every call returns its neutral value
// (-1 for signed results, 0 / false / empty otherwise).
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "OrvaVantixSDKWrapper/OrvaVantixSDKWrapper.h"
#include "engine_events.h"

namespace orva::sdk {

class MediaPlayer;
class AudioEffectPlayer;
class ScreenCaptureSource;
class CopyrightedMusic;
struct EncodedScreenCaptureSource;  // ScreenCaptureSources.h

// Callback names in the order engine creation registers them, and the names engine
// destruction clears (those it keeps registered are missing; two never registered are in).
extern const std::array<const char*, 194> kRegistrationOrder;
extern const std::array<const char*, 184> kClearedOnDestruction;

// Platform language the addon announces to the engine.
inline constexpr int32_t kPlatformLanguageScript = 5;

class Engine {
 public:
  // The engine, or null when none exists.
  static std::shared_ptr<Engine> instance();
  static bool exists();

  // Creates the engine: registers every callback trampoline, installs `handler` (no
  // refusal), announces the platform language and initialises the engine with `profile`.
  // Returns 0, or the engine's refusal (registrations cleared, context emptied), or -1 when
  // the library is unavailable or an engine already exists.
  static int32_t create(const EngineProfile& profile, std::shared_ptr<IEngineEventHandler> handler);

  // Destroys the engine if one exists: `onUninit` runs once, on the engine thread that
  // reports the end of the asynchronous uninit. With no engine it is discarded uncalled.
  static void destroy(std::function<void()> onUninit = {});

  // Sub-object factories: null when the engine cannot create one. The object is registered
  // in its context table until destroyed here (or until engine destruction empties it).
  std::shared_ptr<MediaPlayer> createMediaPlayer();
  int32_t destroyMediaPlayer(const std::shared_ptr<MediaPlayer>& player);
  std::shared_ptr<AudioEffectPlayer> createAudioEffectPlayer();
  int32_t destroyAudioEffectPlayer(const std::shared_ptr<AudioEffectPlayer>& player);
  std::shared_ptr<ScreenCaptureSource> createScreenCaptureSource(int64_t sourceId, int32_t sourceType);
  int32_t destroyScreenCaptureSource(const std::shared_ptr<ScreenCaptureSource>& source);
  std::shared_ptr<CopyrightedMusic> createCopyrightedMusic();
  int32_t destroyCopyrightedMusic(const std::shared_ptr<CopyrightedMusic>& music);

  // orva_vantix_get_screen_capture_sources with each thumbnail and icon encoded as PNG
  // (Base64) straight from the engine's pixels, then the list released. Empty when the
  // engine lists nothing or the library is not loaded (ScreenCaptureSources.cc).
  std::vector<EncodedScreenCaptureSource> getEncodedScreenCaptureSources(
      int32_t thumbnailWidth, int32_t thumbnailHeight, int32_t iconWidth, int32_t iconHeight);

#include "engine_calls.inc"

  // The sound level monitor at an interval only: the engine's configured start, without
  // voice activity detection.
  int32_t startSoundLevelMonitor(uint32_t millisecond) {
    return startSoundLevelMonitorWithConfig(SoundLevelConfig{millisecond, false});
  }

 protected:
  Engine() = default;  // made only by create()
};

// A task carried by the engine's window message (ORVA_TASK_WINDOW_MESSAGE): the poster
// allocates it with new and passes its address as the message parameter; the window message
// trampoline runs it once and deletes it.
using WindowTask = std::function<void()>;

}  // namespace orva::sdk
