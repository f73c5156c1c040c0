// The video frame renderer: raw frames of the publish channels and of played streams are
// copied, on the engine thread, into the script buffers registered for them, and script is
// told through the named event function "tsfn" that a new frame is there. No pixels travel
// through the event.
//
// Script events ("tsfn"):
//   onCapturedVideoFrameRawData  {channel, videoFrameParam: {width, height, flipMode}}
//   onRemoteVideoFrameRawData    {streamID, videoFrameParam: {width, height, flipMode}}
//   onCaptureVideoSizeChanged    {width, height, channel}
//   onPlayVideoSizeChanged       {width, height, streamID}
//
// The two paths differ on purpose: a capture channel whose buffer was dropped stays silent
// until script registers a new one; a stream with no registration still gets frame events.
//
// Used by the engine wrapper (script thread):
//   auto renderer = OrvaVantixAddonCustomVideoRenderer::instance();
//   renderer->registerCaptureBuffer(channel, registration);   // initVideoCaptureBuffer
//   renderer->registerPlayBuffer(streamID, registration);     // initVideoPlayBuffer
//   renderer->registerMediaPlayerBuffer(index, registration); // initMediaPlayerBuffer
//   renderer->removePlayBuffer(streamID);                     // stopPlayingStream
// and by the media player's frame path (engine thread):
//   if (LockedFrameSlot slot = renderer->lockMediaPlayerBuffer(index)) {
//     slot->render(OrvaVantixAddonCustomVideoRenderer::frameSource(data, dataLength, param));
//   }
//
// Threads and lifetimes: one process-wide renderer, made on first use and never destroyed
// (engine threads may still deliver a frame while the process exits). CreateEngine installs
// it as the engine's frame handler; engine teardown uninstalls it and then calls reset(),
// which forgets every registered buffer; an environment that goes away forgets its own with
// forgetOwner (see FrameBufferStore.h for the slots' locking and the buffers' lifetime).
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "OrvaVantixSDKWrapper/IVideoFrameHandler.h"
#include "events/FrameBufferStore.h"

namespace orva {

class OrvaVantixAddonCustomVideoRenderer final : public sdk::IVideoFrameHandler {
 public:
  static const std::shared_ptr<OrvaVantixAddonCustomVideoRenderer>& instance();

  // ---- registration (script thread). The renderer keeps the address of the script
  // buffer's bytes and size = width * height * 4, cut to the buffer's real length; the
  // registering environment (the registration's owner) holds the buffer alive.
  // Capture slot of `channel` (0 to 3; other channels have none and are ignored).
  void registerCaptureBuffer(int32_t channel, const FrameBufferRegistration& registration);
  // Slot of the played stream `streamID` (made if absent).
  void registerPlayBuffer(const std::string& streamID, const FrameBufferRegistration& registration);
  // Slot of media player `index` (made if absent).
  void registerMediaPlayerBuffer(int32_t index, const FrameBufferRegistration& registration);
  // stopPlayingStream: under the renderer lock, then the stream's lock, forgets the stream's
  // buffer. Returns once no frame can write into it any more.
  void removePlayBuffer(const std::string& streamID);

  // The media player's registered slot held under its lock (empty when none): the media
  // player frame path renders into it while the returned object lives.
  LockedFrameSlot lockMediaPlayerBuffer(int32_t index);

  // Engine teardown: forgets every registered buffer, waiting for a copy in progress.
  void reset();
  // An environment going away: forgets the buffers registered with this owner tag.
  void forgetOwner(const void* owner);

  // The first plane and parameters of an engine frame, as the slots read them.
  static FrameSource frameSource(const uint8_t* const* data, const uint32_t* dataLength,
                                 const sdk::VideoFrameParam& param);

  // ---- frames (engine threads)
  void onCapturedVideoFrameRawData(const uint8_t* const* data, const uint32_t* dataLength,
                                   const sdk::VideoFrameParam& param, int32_t flipMode,
                                   int32_t channel) override;
  void onRemoteVideoFrameRawData(const uint8_t* const* data, const uint32_t* dataLength,
                                 const sdk::VideoFrameParam& param, int32_t flipMode,
                                 const std::string& streamID) override;

 private:
  OrvaVantixAddonCustomVideoRenderer() = default;

  FrameBufferStore store_;
};

}  // namespace orva
