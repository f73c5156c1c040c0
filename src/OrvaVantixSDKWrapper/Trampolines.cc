// The trampolines that are not generated: the window message task, the uninit report and the
// audio mixing source (whose structure is filled in place by the callee).
#include "OrvaVantixSDKWrapper/Trampolines.h"

#include <cstdio>
#include <functional>
#include <memory>

#include "OrvaVantixSDKWrapper/Engine.h"
#include "OrvaVantixSDKWrapper/EngineContext.h"
#include "engine_convert.h"

namespace orva::sdk::detail {

void reportTrampolineException(const char* callback, const char* what) noexcept {
  std::fprintf(stderr, "OrvaVantixNodeNative: engine callback %s failed: %s\n", callback, what);
}

void ORVA_CALL onRecvWindowsMessage(uint32_t message, uintptr_t param, void*) {
  guard("recv_windows_message", [&] {
    if (message != ORVA_TASK_WINDOW_MESSAGE || param == 0) return;
    // The poster gave up ownership with the message: the task is freed here, run or thrown.
    std::unique_ptr<WindowTask> task(reinterpret_cast<WindowTask*>(param));
    (*task)();
  });
}

void ORVA_CALL onEngineUninit(void*) {
  guard("engine_uninit", [&] {
    // Taken under the uninit lock and so reset to empty: a second report calls nothing.
    auto callback = EngineContext::instance().takeUninitCallback();
    if (callback) callback();
  });
}

void ORVA_CALL onCopyAudioMixingData(orva_audio_mixing_data* data, void*) {
  guard("copy_audio_mixing_data", [&] {
    if (data == nullptr) return;
    auto handler = EngineContext::instance().audioDataHandler.get();
    if (!handler) return;
    AudioMixingDataView view;
    view.audioData = data->audioData;
    view.audioDataLength = data->audioDataLength;
    view.param = fromC(data->param);
    view.sei = data->sei;
    view.seiLength = data->seiLength;
    handler->onCopyAudioMixingData(view);
    data->audioData = view.audioData;
    data->audioDataLength = view.audioDataLength;
    CArena arena;
    toC(view.param, data->param, arena);
    data->sei = view.sei;
    data->seiLength = view.seiLength;
  });
}

}  // namespace orva::sdk::detail
