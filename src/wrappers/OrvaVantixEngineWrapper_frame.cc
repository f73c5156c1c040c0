// Frame buffers that script registers for rendering: the engine wrapper hands the script
// Buffer's address, its real length and the stated sides over to the video frame renderer,
// which copies frames into it on engine threads. Like every method, these do nothing while no
// engine exists: engine teardown forgets all buffers, and a registration made in between would
// otherwise outlive it and receive the next engine's frames.
//
// Lifetime: the registering environment holds each buffer by a reference (its addon object's
// frameBuffers) from registration until the slot is replaced, removed (stopPlayingStream) or
// torn down, so a buffer script dropped is never written after the collector freed it. The
// slot is always switched to the new buffer before the old one's reference goes.
#include <string>

#include "addon/OrvaVantixAddon.h"
#include "events/OrvaVantixAddonCustomVideoRenderer.h"
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

OrvaVantixAddonCustomVideoRenderer& renderer() { return *OrvaVantixAddonCustomVideoRenderer::instance(); }

OrvaVantixAddon& addonOf(const MethodCall& call) {
  return *call.env().GetInstanceData<OrvaVantixAddon>();
}

// The checked "render_buffer" with the stated "width" and "height".
struct BufferRegistration {
  Napi::Value buffer;
  FrameBufferRegistration slot;

  explicit BufferRegistration(const MethodCall& call) {
    const ArgObject& a = call.args();
    buffer = a.get("render_buffer");
    const ArgObject::Bytes bytes = a.bytes("render_buffer");
    slot.data = bytes.data;
    slot.length = bytes.length;
    slot.width = truncatedUint32(a, "width");
    slot.height = truncatedUint32(a, "height");
    slot.owner = addonOf(call).ownerTag();
  }
};

// Registers the buffer through `assign` (a renderer registration), then holds it under `key`
// in place of the one held there before. A buffer shorter than its stated sides is reported
// and registered as only as long as it is: the first frame of the stated size then finds the
// slot too small, announces the size it needs and copies nothing.
template <class Assign>
Napi::Value registerFrameBuffer(MethodCall& call, const std::string& key, Assign assign) {
  const BufferRegistration r(call);
  return withEngine(call, [&](sdk::Engine&) {
    if (r.slot.length < r.slot.statedBytes()) {
      call.fail("render_buffer holds " + std::to_string(r.slot.length) +
                " bytes, fewer than width * height * 4 = " + std::to_string(r.slot.statedBytes()) +
                "; frames are not copied into it");
    }
    assign(r.slot);
    if (!key.empty()) addonOf(call).frameBuffers().hold(key, r.buffer);
  });
}

}  // namespace

namespace wrapper {

std::string playBufferKey(const std::string& streamID) { return "play/" + streamID; }

void releaseFrameBuffer(const MethodCall& call, const std::string& key) {
  addonOf(call).frameBuffers().release(key);
}

}  // namespace wrapper

Napi::Value OrvaVantixEngineWrapper::initVideoCaptureBuffer(const Napi::CallbackInfo& info) {
  MethodCall call(info, "initVideoCaptureBuffer", errors_);
  if (!call.check({{"render_buffer", T::Buffer}, {"width", T::Number}, {"height", T::Number},
                   {"channel", T::Number}})) {
    return call.undefined();
  }
  const int32_t channel = call.args().truncatedInt32("channel");
  // Channels without a capture slot ignore the registration, so there is nothing to hold.
  const bool hasSlot = channel >= 0 && channel < FrameBufferStore::kCaptureChannels;
  return registerFrameBuffer(call, hasSlot ? "capture/" + std::to_string(channel) : "",
                             [&](const FrameBufferRegistration& r) {
                               renderer().registerCaptureBuffer(channel, r);
                             });
}

Napi::Value OrvaVantixEngineWrapper::initVideoPlayBuffer(const Napi::CallbackInfo& info) {
  MethodCall call(info, "initVideoPlayBuffer", errors_);
  if (!call.check({{"render_buffer", T::Buffer}, {"width", T::Number}, {"height", T::Number},
                   {"streamID", T::String}})) {
    return call.undefined();
  }
  const std::string streamID = call.args().string("streamID");
  return registerFrameBuffer(call, playBufferKey(streamID), [&](const FrameBufferRegistration& r) {
    renderer().registerPlayBuffer(streamID, r);
  });
}

Napi::Value OrvaVantixEngineWrapper::initMediaPlayerBuffer(const Napi::CallbackInfo& info) {
  MethodCall call(info, "initMediaPlayerBuffer", errors_);
  if (!call.check({{"render_buffer", T::Buffer}, {"width", T::Number}, {"height", T::Number},
                   {"index", T::Number}})) {
    return call.undefined();
  }
  const int32_t index = call.args().truncatedInt32("index");
  return registerFrameBuffer(call, "mediaPlayer/" + std::to_string(index),
                             [&](const FrameBufferRegistration& r) {
                               renderer().registerMediaPlayerBuffer(index, r);
                             });
}

}  // namespace orva
