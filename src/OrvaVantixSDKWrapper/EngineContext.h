// The process-wide context of the callback side: everything an engine callback may need to
// reach. Created on first use and never destroyed; engine destruction empties it and a later
// engine creation reuses it.
//
// Threads: trampolines read it on engine threads; the call side and the installers write it
// on the script thread. Every member guards itself (see HandlerSlot, SubObjectTable,
// CompletionTable); a lock is held only to copy or edit one member, never across a call out.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "OrvaVantixSDKWrapper/CompletionTable.h"
#include "OrvaVantixSDKWrapper/HandlerSlot.h"
#include "OrvaVantixSDKWrapper/SubObjectTable.h"
#include "engine_completions.h"
#include "engine_events.h"

namespace orva::sdk {

class MediaPlayer;
class AudioEffectPlayer;
class ScreenCaptureSource;
class CopyrightedMusic;

// The copyrighted-music module is one per engine; its table holds it under this index.
inline constexpr int32_t kCopyrightedMusicIndex = 0;

// Result the engine gives for a second handler installation.
inline constexpr int32_t kHandlerAlreadyInstalled = 1000008;

class EngineContext {
 public:
  static EngineContext& instance();

  // Installs the engine event handler. A second non-empty handler while one is installed is
  // refused: the refusal is reported to the engine as ("setEventHandler", 1000008) and the
  // engine's answer is returned; the installed handler stays. Clearing (empty) always
  // succeeds and returns 0.
  int32_t setEventHandler(std::shared_ptr<IEngineEventHandler> handler);

  // Handler references. eventHandler is written directly only by engine creation (no
  // refusal); everyone else goes through setEventHandler.
  HandlerSlot<IEngineEventHandler> eventHandler;
  HandlerSlot<IVideoFrameHandler> videoFrameHandler;
  HandlerSlot<ICustomVideoCaptureHandler> customVideoCaptureHandler;
  HandlerSlot<ICustomVideoProcessHandler> customVideoProcessHandler;
  HandlerSlot<IAudioDataHandler> audioDataHandler;
  HandlerSlot<IAudioProcessHandler> audioProcessHandler;

  // Sub-objects by engine index.
  SubObjectTable<MediaPlayer> mediaPlayers;
  SubObjectTable<AudioEffectPlayer> audioEffectPlayers;
  SubObjectTable<ScreenCaptureSource> screenCaptureSources;
  SubObjectTable<CopyrightedMusic> copyrightedMusic;

  // Pending completions by sequence number, one table per result callback.
  CompletionTables completions;

  // The engine-uninit callable: stored by engine destruction, taken (and so reset to empty)
  // by the uninit trampoline, which calls it after unlocking.
  void setUninitCallback(std::function<void()> callback);
  std::function<void()> takeUninitCallback();

  // Engine destruction and failed creation: releases the event handler and the video frame
  // handler without their mutexes and empties every table. Other handler slots stay: their
  // owners (plugin managers) clear them.
  void empty();

 private:
  EngineContext() = default;
  template <class T>
  friend class NoDestroy;

  std::mutex uninitMutex_;
  std::function<void()> uninit_;
};

}  // namespace orva::sdk
