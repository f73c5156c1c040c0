// Frame buffers that script registers for rendering: the engine wrapper only passes the
// script Buffer's address and the stated size over to the video frame renderer, which copies
// frames into it on engine threads. Like every method, these do nothing while no engine
// exists: engine teardown forgets all buffers, and a registration made in between would
// otherwise outlive it and receive the next engine's frames after script let it go.
#include "events/OrvaVantixAddonCustomVideoRenderer.h"
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

// What every registration passes: the script Buffer's own bytes, which script keeps alive
// while registered, and the stated sides; the renderer trusts width * height * 4 of these.
struct BufferRegistration {
  uint8_t* data;
  uint32_t width;
  uint32_t height;

  explicit BufferRegistration(const ArgObject& a)
      : data(a.get("render_buffer").As<Napi::Buffer<uint8_t>>().Data()),
        width(truncatedUint32(a, "width")),
        height(truncatedUint32(a, "height")) {}
};

OrvaVantixAddonCustomVideoRenderer& renderer() { return *OrvaVantixAddonCustomVideoRenderer::instance(); }

}  // namespace

Napi::Value OrvaVantixEngineWrapper::initVideoCaptureBuffer(const Napi::CallbackInfo& info) {
  MethodCall call(info, "initVideoCaptureBuffer", errors_);
  if (!call.check({{"render_buffer", T::Buffer}, {"width", T::Number}, {"height", T::Number},
                   {"channel", T::Number}})) {
    return call.undefined();
  }
  const BufferRegistration r(call.args());
  const int32_t channel = call.args().truncatedInt32("channel");
  return withEngine(call, [&](sdk::Engine&) {
    renderer().registerCaptureBuffer(channel, r.data, r.width, r.height);
  });
}

Napi::Value OrvaVantixEngineWrapper::initVideoPlayBuffer(const Napi::CallbackInfo& info) {
  MethodCall call(info, "initVideoPlayBuffer", errors_);
  if (!call.check({{"render_buffer", T::Buffer}, {"width", T::Number}, {"height", T::Number},
                   {"streamID", T::String}})) {
    return call.undefined();
  }
  const BufferRegistration r(call.args());
  const std::string streamID = call.args().string("streamID");
  return withEngine(call, [&](sdk::Engine&) {
    renderer().registerPlayBuffer(streamID, r.data, r.width, r.height);
  });
}

Napi::Value OrvaVantixEngineWrapper::initMediaPlayerBuffer(const Napi::CallbackInfo& info) {
  MethodCall call(info, "initMediaPlayerBuffer", errors_);
  if (!call.check({{"render_buffer", T::Buffer}, {"width", T::Number}, {"height", T::Number},
                   {"index", T::Number}})) {
    return call.undefined();
  }
  const BufferRegistration r(call.args());
  const int32_t index = call.args().truncatedInt32("index");
  return withEngine(call, [&](sdk::Engine&) {
    renderer().registerMediaPlayerBuffer(index, r.data, r.width, r.height);
  });
}

}  // namespace orva
