#include "OrvaVantixSDKWrapper/MicrophoneChannelFeeder.h"

#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "OrvaVantixSDKWrapper/EngineLibrary.h"
#include "engine_api_table.h"

namespace orva::sdk {

void MicrophoneChannelFeeder::onProcessCapturedAudioData(uint8_t* data, uint32_t dataLength,
                                                         const AudioFrameParam& param, double) {
  if (data == nullptr || dataLength == 0 || engine_.expired()) return;
  // Loaded before any engine existed, and never unloaded.
  const EngineApiTable* api = loadedEngineApi();
  if (api == nullptr) return;
  const orva_audio_frame_param frame{param.sampleRate, param.channel};
  api->orva_vantix_send_custom_audio_capture_pcm_data(data, dataLength, &frame, channel_);
}

void installMicrophoneChannelFeeder(const std::shared_ptr<Engine>& engine, int32_t channel) {
  EngineContext::instance().audioProcessHandler.set(std::make_shared<MicrophoneChannelFeeder>(engine, channel));
}

}  // namespace orva::sdk
