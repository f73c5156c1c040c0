// Stream-mixing tasks: the engine keeps the tasks it runs by task ID and answers start and
// stop with extended data of its own, a JSON text naming the task and its output targets,
// as a mixing service reports where the mix goes.
#include <string>
#include <utility>
#include <vector>

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "sim_engine.h"

namespace orva::sim {
namespace {

std::vector<std::string> targetsOf(const orva_mixer_task& task) {
  std::vector<std::string> targets;
  for (uint32_t i = 0; task.outputList && i < task.outputListCount; ++i) {
    targets.push_back(fixedText(task.outputList[i].target, sizeof task.outputList[i].target));
  }
  return targets;
}

// {"taskID":"…","inputCount":n,"outputs":["…"]}; without inputCount for a stop.
std::string extendedData(const std::string& taskID, const uint32_t* inputCount,
                         const std::vector<std::string>& targets) {
  rapidjson::StringBuffer sb;
  rapidjson::Writer<rapidjson::StringBuffer> w(sb);
  w.StartObject();
  w.Key("taskID");
  w.String(taskID.c_str(), static_cast<rapidjson::SizeType>(taskID.size()));
  if (inputCount) {
    w.Key("inputCount");
    w.Uint(*inputCount);
  }
  w.Key("outputs");
  w.StartArray();
  for (const std::string& t : targets) w.String(t.c_str(), static_cast<rapidjson::SizeType>(t.size()));
  w.EndArray();
  w.EndObject();
  return sb.GetString();
}

enum class MixerAction { Start, Stop };

// Answered like every asynchronous call; an answer with error code 0 starts or stops the task
// before its result callback runs, so a stop that follows the start's answer finds it.
int32_t mixerCall(const char* fn, MixerAction action, const std::string& taskID,
                  std::vector<std::string> targets, std::string data, int32_t* seq) {
  AsyncCall call;
  call.fn = fn;
  call.resultCallback = action == MixerAction::Start ? gen::cb::mixer_start_result : gen::cb::mixer_stop_result;
  call.base = PayloadBuilder().setText("extendedData", data).take();
  call.finish = [action, taskID, targets = std::move(targets), cb = call.resultCallback](const rapidjson::Document& payload) {
    const rapidjson::Value* code = member(payload, "errorCode");
    if (!code || (code->IsNumber() && code->GetDouble() == 0)) {
      std::lock_guard<std::mutex> lock(engine().mu);
      // Starting a running task again updates it, as the mixing service does.
      if (action == MixerAction::Start) engine().st.mixerTasks[taskID] = targets;
      else engine().st.mixerTasks.erase(taskID);
    }
    fireJson(cb, payload);
  };
  return core().startAsync(seq, std::move(call));
}

}  // namespace
}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

ORVA_API int32_t ORVA_CALL orva_vantix_start_mixer_task(const orva_mixer_task* task, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_start_mixer_task(task, seq);
    constexpr const char* fn = "orva_vantix_start_mixer_task";
    if (auto code = refusal(fn)) return *code;
    if (!task) return kErrInvalid;
    const std::string taskID = fixedText(task->taskID, sizeof task->taskID);
    std::vector<std::string> targets = targetsOf(*task);
    const uint32_t inputs = task->inputList ? task->inputListCount : 0;
    std::string data = extendedData(taskID, &inputs, targets);
    return mixerCall(fn, MixerAction::Start, taskID, std::move(targets), std::move(data), seq);
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_stop_mixer_task(const orva_mixer_task* task, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_stop_mixer_task(task, seq);
    constexpr const char* fn = "orva_vantix_stop_mixer_task";
    if (auto code = refusal(fn)) return *code;
    if (!task) return kErrInvalid;
    const std::string taskID = fixedText(task->taskID, sizeof task->taskID);
    // The outputs that stop are the running task's, whatever the stop request lists; a task
    // that does not run has none.
    std::vector<std::string> stopped;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      auto it = engine().st.mixerTasks.find(taskID);
      if (it != engine().st.mixerTasks.end()) stopped = it->second;
    }
    std::string data = extendedData(taskID, nullptr, stopped);
    return mixerCall(fn, MixerAction::Stop, taskID, {}, std::move(data), seq);
  });
}
