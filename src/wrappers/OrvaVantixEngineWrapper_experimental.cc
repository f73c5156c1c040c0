// The experimental API: a JSON request {"method": "vantix.<name>", "params": {...}} that the
// wrapper validates itself, carries out for two methods of its own, and otherwise passes to
// the engine's experimental entry point unchanged, answering with the engine's JSON text.
//
// Every malformed request, and any request while no engine exists, is answered with
// {"error_code":1001091} and raises the debug alert with the step's message; script never
// gets an exception for bad JSON. The check of the argument object itself ({params: String})
// follows the common method shape: its failure is reported and the answer is undefined.
//
// The two methods of the wrapper's own:
//   set_microphone_in_designated_channel {channel}: turns on custom audio input on that
//     publish channel and custom audio capture processing, and installs the handler that
//     feeds every captured microphone frame into the channel (sdk::MicrophoneChannelFeeder);
//     the main channel keeps its microphone.
//   set_aux_audio_source {enable, source}: two requests to the engine's experimental entry
//     point, first the audio source of the auxiliary path (`source`, the engine's audio
//     source type), then the switch:
//       {"method":"vantix.set_aux_audio_source_type","params":{"source":<source>}}
//       {"method":"vantix.enable_aux_audio_source","params":{"enable":<enable>}}
//     An answer whose "error_code" is not 0 ends the request and is the method's answer;
//     otherwise the second answer is.
// Both answer {"error_code":<code>} where they do not answer with the engine's text: 0, or the
// first engine result that was not 0.
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "OrvaVantixSDKWrapper/MicrophoneChannelFeeder.h"
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

// The code of every answer to a request the wrapper refuses.
constexpr int kRefusedRequest = 1001091;

// The engine's audio source type for PCM that the application sends in itself.
constexpr int32_t kCustomAudioSource = 1;

// {"error_code":<code>}
std::string codeAnswer(int code) {
  rapidjson::StringBuffer text;
  rapidjson::Writer<rapidjson::StringBuffer> writer(text);
  writer.StartObject();
  writer.Key("error_code");
  writer.Int(code);
  writer.EndObject();
  return std::string(text.GetString(), text.GetSize());
}

// A text of one request to the engine: {"method":<method>,"params":{<key>:<value>}}.
template <class Value>
std::string engineRequest(const char* method, const char* key, Value value) {
  rapidjson::StringBuffer text;
  rapidjson::Writer<rapidjson::StringBuffer> writer(text);
  writer.StartObject();
  writer.Key("method");
  writer.String(method);
  writer.Key("params");
  writer.StartObject();
  writer.Key(key);
  if constexpr (std::is_same_v<Value, bool>) {
    writer.Bool(value);
  } else {
    writer.Int(value);
  }
  writer.EndObject();
  writer.EndObject();
  return std::string(text.GetString(), text.GetSize());
}

// Whether an engine answer reports a failure: an object whose "error_code" is a number other
// than 0.
bool reportsFailure(const std::string& answer) {
  rapidjson::Document document;
  if (document.Parse(answer.c_str()).HasParseError() || !document.IsObject()) return false;
  const auto code = document.FindMember("error_code");
  return code != document.MemberEnd() && code->value.IsNumber() && code->value.GetDouble() != 0;
}

// A member of `object`, or null.
const rapidjson::Value* member(const rapidjson::Value& object, const char* key) {
  const auto found = object.FindMember(key);
  return found != object.MemberEnd() ? &found->value : nullptr;
}

// A validated request: the method's name after "vantix." and its params object. `failure`
// holds the message of the first step that failed, if any.
struct Request {
  rapidjson::Document document;
  std::string name;
  const rapidjson::Value* params = nullptr;
  const char* failure = nullptr;
};

std::unique_ptr<Request> parseRequest(const std::string& text) {
  auto request = std::make_unique<Request>();
  rapidjson::Document& document = request->document;
  auto failed = [&](const char* message) {
    request->failure = message;
    return std::move(request);
  };
  if (document.Parse(text.c_str()).HasParseError()) return failed("param parse error");
  const rapidjson::Value* method = document.IsObject() ? member(document, "method") : nullptr;
  if (method == nullptr) return failed("param .method missing");
  if (!method->IsString()) return failed("param .method type error");
  const std::string_view full(method->GetString(), method->GetStringLength());
  const size_t point = full.find('.');
  if (point == std::string_view::npos || full.find('.', point + 1) != std::string_view::npos ||
      full.substr(0, point) != "vantix") {
    return failed("param .method format error");
  }
  request->params = member(document, "params");
  if (request->params == nullptr) return failed("param .params missing");
  if (!request->params->IsObject()) return failed("param .params format error");
  request->name = std::string(full.substr(point + 1));
  return request;
}

}  // namespace

Napi::Value OrvaVantixEngineWrapper::callExperimentalAPI(const Napi::CallbackInfo& info) {
  MethodCall call(info, "callExperimentalAPI", errors_);
  if (!call.check({{"params", T::String}})) return call.undefined();
  const std::string text = call.args().string("params");
  const auto refuse = [&](const char* message) {
    call.fail(message);
    return Napi::String::New(call.env(), codeAnswer(kRefusedRequest));
  };
  const auto answer = [&](const std::string& json) { return Napi::String::New(call.env(), json); };

  const std::unique_ptr<Request> request = parseRequest(text);
  if (request->failure != nullptr) return refuse(request->failure);
  const rapidjson::Value& params = *request->params;

  if (request->name == "set_microphone_in_designated_channel") {
    const rapidjson::Value* channel = member(params, "channel");
    if (channel == nullptr) return refuse("param params.channel missing");
    if (!channel->IsInt()) return refuse("param params.channel type error");
    std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance();
    if (!engine) return refuse("Engine is not exist!");
    int32_t code = engine->enableCustomAudioIo(true, sdk::CustomAudioConfig{kCustomAudioSource}, channel->GetInt());
    if (code == 0) code = engine->enableCustomAudioCaptureProcessing(true, std::nullopt);
    if (code == 0) sdk::installMicrophoneChannelFeeder(engine, channel->GetInt());
    return answer(codeAnswer(code));
  }

  if (request->name == "set_aux_audio_source") {
    const rapidjson::Value* enable = member(params, "enable");
    if (enable == nullptr) return refuse("param params.enable missing");
    if (!enable->IsBool()) return refuse("param params.enable type error");
    const rapidjson::Value* source = member(params, "source");
    // The text names the wrong key; scripts match on it as it is.
    if (source == nullptr) return refuse("param source.enable missing");
    if (!source->IsInt()) return refuse("param params.source type error");
    std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance();
    if (!engine) return refuse("Engine is not exist!");
    const std::string first =
        engine->callExperimentalApi(engineRequest("vantix.set_aux_audio_source_type", "source", source->GetInt()));
    if (reportsFailure(first)) return answer(first);
    return answer(
        engine->callExperimentalApi(engineRequest("vantix.enable_aux_audio_source", "enable", enable->GetBool())));
  }

  std::shared_ptr<sdk::Engine> engine = sdk::Engine::instance();
  if (!engine) return refuse("Engine is not exist!");
  // The request exactly as script wrote it, not as parsed.
  return answer(engine->callExperimentalApi(text));
}

}  // namespace orva
