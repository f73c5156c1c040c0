// The control interface (orva_sim_control.h): how tests and the control module drive the
// simulated engine. Nothing here is journaled.
#include "orva_sim_control.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "sim_engine.h"
#include "sim_special_args.h"

namespace orva::sim {
namespace {

constexpr auto kCallbackTimeout = std::chrono::milliseconds(60000);
constexpr uint32_t kMaxBurstThreads = 256;

// Texts handed to the caller, released by orva_sim_free.
char* dupText(const std::string& s) {
  char* p = static_cast<char*>(std::malloc(s.size() + 1));
  if (p) std::memcpy(p, s.c_str(), s.size() + 1);
  return p;
}

int32_t failWith(char** error, const std::string& message) {
  if (error) *error = dupText(message);
  return -1;
}

// Full precision keeps every double exactly as written, so emitted reals round-trip.
bool parse(const char* text, rapidjson::Document& doc, const char* what, std::string& err) {
  if (!text) {
    doc.SetNull();
    return true;
  }
  doc.Parse<rapidjson::kParseFullPrecisionFlag>(text);
  if (doc.HasParseError()) {
    err = std::string(what) + ": not valid JSON (at offset " + std::to_string(doc.GetErrorOffset()) + ")";
    return false;
  }
  return true;
}

bool isFrameCallback(int id) {
  return id == gen::cb::custom_video_render_captured_frame_data || id == gen::cb::custom_video_render_remote_frame_data ||
         id == gen::cb::media_player_video_frame;
}

// Runs the callback with `args` on `loop` and waits for it: 1 called, 0 not registered.
int32_t deliver(TaskLoop& loop, int id, std::shared_ptr<CallbackArgs> args, char** error) {
  if (!core().registry.get(id).callback) return 0;
  auto called = std::make_shared<std::atomic<int32_t>>(0);
  const bool done = loop.runAndWait([id, args, called] {
    Registry::Hold hold(core().registry, id);  // may have been cleared meanwhile
    if (!hold) return;
    args->invoke(hold.reg().callback, hold.reg().context);
    called->store(1);
  }, kCallbackTimeout);
  if (!done) return failWith(error, "the callback did not return within 60 s");
  return called->load();
}

}  // namespace
}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: the control interface

ORVA_API void ORVA_CALL orva_sim_reset(void) {
  guardedVoid([] { core().reset(); });
}

ORVA_API char* ORVA_CALL orva_sim_calls(const char* fn) {
  return guarded<char*>(nullptr, [&] { return dupText(core().journal.toJson(fn)); });
}

ORVA_API char* ORVA_CALL orva_sim_registered(void) {
  return guarded<char*>(nullptr, [] {
    std::string out = "[";
    for (int id : core().registry.order()) {
      if (out.size() > 1) out += ',';
      out += '"';
      out += gen::kCallbackNames[id];
      out += '"';
    }
    out += ']';
    return dupText(out);
  });
}

ORVA_API int32_t ORVA_CALL orva_sim_emit(const char* name, const char* payload, char** error) {
  return guarded<int32_t>(-1, [&]() -> int32_t {
    const int id = gen::callbackId(name ? name : "");
    if (id < 0) return failWith(error, std::string("unknown callback name: ") + (name ? name : "(null)"));
    rapidjson::Document doc;
    std::string err;
    if (!parse(payload, doc, "payload", err)) return failWith(error, err);
    if (doc.IsNull()) doc.SetObject();
    std::shared_ptr<CallbackArgs> args = gen::makeArgs(id, doc, err);
    if (!args) return failWith(error, std::string(name) + ": " + err);
    // Raw frames travel on the frames thread, in order with the frames the engine makes.
    return deliver(isFrameCallback(id) ? core().frames : core().events, id, std::move(args), error);
  });
}

ORVA_API int32_t ORVA_CALL orva_sim_burst(const char* name, const char* payload, uint32_t count, uint32_t threads,
                                         const char* counterKey, const char* threadKey, uint64_t* calls,
                                         double* seconds, char** error) {
  if (calls) *calls = 0;
  if (seconds) *seconds = 0;
  return guarded<int32_t>(-1, [&]() -> int32_t {
    const int id = gen::callbackId(name ? name : "");
    if (id < 0) return failWith(error, std::string("unknown callback name: ") + (name ? name : "(null)"));
    if (threads == 0 || threads > kMaxBurstThreads)
      return failWith(error, "threads must be between 1 and " + std::to_string(kMaxBurstThreads));
    rapidjson::Document doc;
    std::string err;
    if (!parse(payload, doc, "payload", err)) return failWith(error, err);
    if (doc.IsNull()) doc.SetObject();

    // One holder per thread: each thread changes its own counter and thread key only.
    std::vector<std::unique_ptr<CallbackArgs>> holders;
    for (uint32_t t = 0; t < threads; ++t) {
      auto h = gen::makeArgs(id, doc, err);
      if (!h) return failWith(error, std::string(name) + ": " + err);
      holders.push_back(std::move(h));
    }
    const int counterSlot = counterKey ? holders[0]->numberSlot(counterKey) : -1;
    if (counterKey && counterSlot < 0)
      return failWith(error, std::string("counterKey ") + counterKey + " is not a numeric argument of " + name);
    const int threadSlot = threadKey ? holders[0]->textSlot(threadKey) : -1;
    if (threadKey && threadSlot < 0)
      return failWith(error, std::string("threadKey ") + threadKey + " is not a text argument of " + name);
    if (threadSlot >= 0) {
      for (uint32_t t = 0; t < threads; ++t) holders[t]->setText(threadSlot, std::to_string(t));
    }

    Registry& registry = core().registry;
    const uint32_t version = registry.version(id);
    const Registration reg = registry.get(id);
    if (!reg.callback) return 0;

    std::atomic<uint32_t> ready{0};
    std::atomic<bool> go{false};
    std::atomic<uint64_t> made{0};
    std::vector<std::thread> workers;
    workers.reserve(threads);
    for (uint32_t t = 0; t < threads; ++t) {
      workers.emplace_back([&, t] {
        CallbackArgs& args = *holders[t];
        Registration cur = reg;
        uint32_t seen = version;
        uint64_t n = 0;
        ready.fetch_add(1);
        while (!go.load(std::memory_order_acquire)) std::this_thread::yield();
        Registry::enterCallback();
        for (uint32_t i = 0; i < count; ++i) {
          // Counted as in flight before the version is read, so a clear either waits for
          // this call or is seen here: a changed registration is followed, a cleared one
          // ends the burst.
          registry.enter(id);
          if (registry.version(id) != seen) {
            seen = registry.version(id);
            cur = registry.get(id);
            if (!cur.callback) {
              registry.leave(id);
              break;
            }
          }
          if (counterSlot >= 0) args.setNumber(counterSlot, i);
          args.invoke(cur.callback, cur.context);
          registry.leave(id);
          ++n;
        }
        Registry::leaveCallback();
        made.fetch_add(n);
      });
    }
    while (ready.load() < threads) std::this_thread::yield();
    const auto start = std::chrono::steady_clock::now();
    go.store(true, std::memory_order_release);
    for (std::thread& w : workers) w.join();
    const auto end = std::chrono::steady_clock::now();
    if (calls) *calls = made.load();
    if (seconds) *seconds = std::chrono::duration<double>(end - start).count();
    return 1;
  });
}

ORVA_API int32_t ORVA_CALL orva_sim_frame(const char* target, const char* frame, const uint8_t* data,
                                         uint32_t dataLength, char** error) {
  return guarded<int32_t>(-1, [&]() -> int32_t {
    rapidjson::Document t, f;
    std::string err;
    if (!parse(target, t, "target", err) || !parse(frame, f, "frame", err)) return failWith(error, err);
    if (!t.IsObject()) return failWith(error, "target: expected {channel} | {streamID} | {mediaPlayerIndex}");
    if (!f.IsObject()) return failWith(error, "frame: expected {width, height, format, flipMode?, stride?}");
    FrameRequest s;
    const Path root{nullptr, "target", -1};
    if (const rapidjson::Value* v = member(t, "channel")) {
      s.target = FrameTarget::Captured;
      if (!readNumber(*v, s.key, root.child("channel"), err)) return failWith(error, err);
    } else if (const rapidjson::Value* v2 = member(t, "streamID")) {
      s.target = FrameTarget::Remote;
      if (!v2->IsString()) return failWith(error, "target.streamID: expected a string");
      s.streamID.assign(v2->GetString(), v2->GetStringLength());
    } else if (const rapidjson::Value* v3 = member(t, "mediaPlayerIndex")) {
      s.target = FrameTarget::MediaPlayer;
      if (!readNumber(*v3, s.key, root.child("mediaPlayerIndex"), err)) return failWith(error, err);
    } else {
      return failWith(error, "target: expected {channel} | {streamID} | {mediaPlayerIndex}");
    }
    const Path fp{nullptr, "frame", -1};
    struct Field {
      const char* key;
      int32_t* out;
      bool required;
    } fields[] = {{"width", &s.width, true}, {"height", &s.height, true}, {"format", &s.format, false},
                  {"flipMode", &s.flipMode, false}, {"stride", &s.stride, false}};
    for (const Field& fd : fields) {
      const rapidjson::Value* v = member(f, fd.key);
      if (!v) {
        if (fd.required) return failWith(error, std::string("frame.") + fd.key + " is required");
        continue;
      }
      if (!readNumber(*v, *fd.out, fp.child(fd.key), err)) return failWith(error, err);
    }
    s.data = data;
    s.dataLength = data ? dataLength : 0;
    std::shared_ptr<CallbackArgs> args = makeFrameArgs(s, err);
    if (!args) return failWith(error, err);
    return deliver(core().frames, frameCallbackId(s.target), std::move(args), error);
  });
}

ORVA_API int32_t ORVA_CALL orva_sim_set_return(const char* fn, const char* value, char** error) {
  return guarded<int32_t>(-1, [&]() -> int32_t {
    const gen::FunctionInfo* info = gen::findFunction(fn ? fn : "");
    if (!info) return failWith(error, std::string("unknown entry point: ") + (fn ? fn : "(null)"));
    auto doc = std::make_shared<rapidjson::Document>();
    std::string err;
    if (!parse(value, *doc, "value", err)) return failWith(error, err);
    if (!info->validate(*doc, err)) return failWith(error, std::string(fn) + ": " + err);
    core().scripted.set(fn, std::move(doc));
    return 0;
  });
}

ORVA_API void ORVA_CALL orva_sim_auto_complete(bool on) {
  guardedVoid([&] { core().setAutoComplete(on); });
}

ORVA_API char* ORVA_CALL orva_sim_pending(void) {
  return guarded<char*>(nullptr, [] { return dupText(core().pendingJson()); });
}

ORVA_API int32_t ORVA_CALL orva_sim_complete(int32_t seq, const char* result, char** error) {
  return guarded<int32_t>(-1, [&]() -> int32_t {
    rapidjson::Document doc;
    std::string err;
    if (!parse(result, doc, "result", err)) return failWith(error, err);
    const int32_t r = core().complete(seq, doc, err);
    if (r < 0) return failWith(error, err);
    return r;
  });
}

ORVA_API char* ORVA_CALL orva_sim_version(void) {
  return guarded<char*>(nullptr, [] { return dupText(scriptedText("orva_vantix_get_version").value_or(kVersion)); });
}

ORVA_API void ORVA_CALL orva_sim_free(char* text) { std::free(text); }
