#include "events/OrvaVantixAddonCustomVideoRenderer.h"

#include <utility>

#include "OrvaVantixSDKWrapper/NoDestroy.h"
#include "bridge/EventTask.h"
#include "bridge/OrvaVantixAddonDataCenter.h"

namespace orva {
namespace {

// The name under which script registers the function that receives frame events.
constexpr const char* kFrameEventFunction = "tsfn";

// Both size events report a refused call with the captured frame's line; kept as it is.
constexpr const char* kCapturedFailure =
    "OrvaVantixAddonCustomVideoRenderer::onCapturedVideoFrameRawData blocking call failed \n";
constexpr const char* kRemoteFailure =
    "OrvaVantixAddonCustomVideoRenderer::onRemoteVideoFrameRawData blocking call failed \n";

// The closures hold only sizes and the target: the pixels are already in script's buffer.
void sendFrameEvent(const char* name, const char* failure, int32_t channel, int32_t width,
                    int32_t height, int32_t flipMode) {
  OrvaVantixAddonDataCenter::instance().sendByName(
      kFrameEventFunction,
      makeEvent(name,
                [channel, width, height, flipMode](Payload& p) {
                  p.set("channel", channel).setObject("videoFrameParam", [&](Payload& v) {
                    v.set("width", width).set("height", height).set("flipMode", flipMode);
                  });
                }),
      failure);
}

void sendFrameEvent(const char* name, const char* failure, std::string streamID, int32_t width,
                    int32_t height, int32_t flipMode) {
  OrvaVantixAddonDataCenter::instance().sendByName(
      kFrameEventFunction,
      makeEvent(name,
                [streamID = std::move(streamID), width, height, flipMode](Payload& p) {
                  p.set("streamID", streamID).setObject("videoFrameParam", [&](Payload& v) {
                    v.set("width", width).set("height", height).set("flipMode", flipMode);
                  });
                }),
      failure);
}

}  // namespace

const std::shared_ptr<OrvaVantixAddonCustomVideoRenderer>& OrvaVantixAddonCustomVideoRenderer::instance() {
  // Never destroyed: engine threads may deliver a frame while the process exits.
  static sdk::NoDestroy<std::shared_ptr<OrvaVantixAddonCustomVideoRenderer>> renderer(
      std::shared_ptr<OrvaVantixAddonCustomVideoRenderer>(new OrvaVantixAddonCustomVideoRenderer()));
  return *renderer;
}

void OrvaVantixAddonCustomVideoRenderer::registerCaptureBuffer(int32_t channel,
    const FrameBufferRegistration& registration) {
  store_.registerCapture(channel, registration);
}

void OrvaVantixAddonCustomVideoRenderer::registerPlayBuffer(const std::string& streamID,
    const FrameBufferRegistration& registration) {
  store_.registerPlay(streamID, registration);
}

void OrvaVantixAddonCustomVideoRenderer::registerMediaPlayerBuffer(int32_t index,
    const FrameBufferRegistration& registration) {
  store_.registerMediaPlayer(index, registration);
}

void OrvaVantixAddonCustomVideoRenderer::removePlayBuffer(const std::string& streamID) {
  store_.removePlay(streamID);
}

LockedFrameSlot OrvaVantixAddonCustomVideoRenderer::lockMediaPlayerBuffer(int32_t index) {
  return store_.lockMediaPlayer(index);
}

void OrvaVantixAddonCustomVideoRenderer::reset() { store_.clear(); }

void OrvaVantixAddonCustomVideoRenderer::forgetOwner(const void* owner) { store_.clearOwner(owner); }

FrameSource OrvaVantixAddonCustomVideoRenderer::frameSource(const uint8_t* const* data,
                                                            const uint32_t* dataLength,
                                                            const sdk::VideoFrameParam& param) {
  FrameSource f;
  f.plane = data != nullptr ? data[0] : nullptr;
  f.planeLength = dataLength != nullptr ? dataLength[0] : 0;
  f.width = param.width;
  f.height = param.height;
  f.stride = param.strides[0];
  f.format = param.format;
  return f;
}

void OrvaVantixAddonCustomVideoRenderer::onCapturedVideoFrameRawData(
    const uint8_t* const* data, const uint32_t* dataLength, const sdk::VideoFrameParam& param,
    int32_t flipMode, int32_t channel) {
  // Seam for the native video plugins (src/plugins/): the channel's capture plugin, when one
  // is registered, is offered the frame here, before it is rendered.

  // The slot's lock is released before any event is sent: sending is a call out.
  const FrameOutcome outcome = store_.renderCaptured(channel, frameSource(data, dataLength, param));
  if (outcome == FrameOutcome::kSilent) return;
  if (outcome == FrameOutcome::kResized) {
    OrvaVantixAddonDataCenter::instance().sendByName(
        kFrameEventFunction,
        makeEvent("onCaptureVideoSizeChanged",
                  [width = param.width, height = param.height, channel](Payload& p) {
                    p.set("width", width).set("height", height).set("channel", channel);
                  }),
        kCapturedFailure);
  }
  sendFrameEvent("onCapturedVideoFrameRawData", kCapturedFailure, channel, param.width,
                 param.height, flipMode);
}

void OrvaVantixAddonCustomVideoRenderer::onRemoteVideoFrameRawData(
    const uint8_t* const* data, const uint32_t* dataLength, const sdk::VideoFrameParam& param,
    int32_t flipMode, const std::string& streamID) {
  const FrameOutcome outcome = store_.renderRemote(streamID, frameSource(data, dataLength, param));
  if (outcome == FrameOutcome::kSilent) return;
  if (outcome == FrameOutcome::kResized) {
    OrvaVantixAddonDataCenter::instance().sendByName(
        kFrameEventFunction,
        makeEvent("onPlayVideoSizeChanged",
                  [width = param.width, height = param.height, streamID](Payload& p) {
                    p.set("width", width).set("height", height).set("streamID", streamID);
                  }),
        kCapturedFailure);
  }
  sendFrameEvent("onRemoteVideoFrameRawData", kRemoteFailure, streamID, param.width, param.height,
                 flipMode);
}

}  // namespace orva
