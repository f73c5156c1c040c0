#include "sim_core.h"

#include <algorithm>
#include <cstring>
#include <thread>

#include "sim_engine.h"

namespace orva::sim {

// ---------------------------------------------------------------------------------------
Registry::Registry()
    : slots_(gen::kCallbackCount),
      versions_(std::make_unique<std::atomic<uint32_t>[]>(gen::kCallbackCount)),
      inFlight_(std::make_unique<std::atomic<int32_t>[]>(gen::kCallbackCount)) {}

namespace {
thread_local int tCallbackDepth = 0;
}  // namespace

void Registry::enterCallback() { ++tCallbackDepth; }
void Registry::leaveCallback() { --tCallbackDepth; }

void Registry::set(int id, AnyFn callback, void* context) {
  bool replaced = false;
  {
    std::lock_guard<std::mutex> lock(mu_);
    Registration& slot = slots_[static_cast<size_t>(id)];
    const bool was = slot.callback != nullptr;
    replaced = was && (slot.callback != callback || slot.context != context);
    slot = callback ? Registration{callback, context} : Registration{};
    if (was && !callback) {
      order_.erase(std::remove(order_.begin(), order_.end(), id), order_.end());
    } else if (!was && callback) {
      order_.push_back(id);  // a registration after a clear goes to the end
    }
    versions_[id].fetch_add(1);
  }
  if (!replaced || tCallbackDepth > 0) return;
  // Callers that entered before the change may still be in the old callback. (Sequentially
  // consistent counters: a caller either is counted here or sees the new version.)
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (inFlight_[id].load() != 0 && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(std::chrono::microseconds(100));
  }
}

Registration Registry::get(int id) const {
  std::lock_guard<std::mutex> lock(mu_);
  return slots_[static_cast<size_t>(id)];
}

Registry::Hold::Hold(Registry& registry, int id) : registry_(registry), id_(id) {
  registry_.enter(id_);
  reg_ = registry_.get(id_);
  if (reg_.callback) enterCallback();
  else registry_.leave(id_);
}

Registry::Hold::~Hold() {
  if (!reg_.callback) return;
  leaveCallback();
  registry_.leave(id_);
}

std::vector<int> Registry::order() const {
  std::lock_guard<std::mutex> lock(mu_);
  return order_;
}

// ---------------------------------------------------------------------------------------
void Journal::append(const char* fn, std::string entry) {
  std::lock_guard<std::mutex> lock(mu_);
  entries_.push_back(Entry{fn, std::move(entry)});
}

std::string Journal::toJson(const char* fnFilter) const {
  std::lock_guard<std::mutex> lock(mu_);
  std::string out = "[";
  bool first = true;
  for (const Entry& e : entries_) {
    if (fnFilter && e.fn != fnFilter) continue;
    if (!first) out += ',';
    first = false;
    out += e.json;
  }
  out += ']';
  return out;
}

void Journal::clear() {
  std::lock_guard<std::mutex> lock(mu_);
  entries_.clear();
}

JournalEntry::JournalEntry(const char* fn) : fn_(fn), writer_(buffer_) {
  writer_.StartObject();
  writer_.Key("fn");
  writer_.String(fn);
  writer_.Key("args");
  writer_.StartObject();
}

void JournalEntry::commit() {
  writer_.EndObject();
  writer_.EndObject();
  core().journal.append(fn_, std::string(buffer_.GetString(), buffer_.GetSize()));
}

// ---------------------------------------------------------------------------------------
void Scripted::set(std::string fn, std::shared_ptr<const rapidjson::Document> value) {
  std::lock_guard<std::mutex> lock(mu_);
  values_[std::move(fn)] = std::move(value);
  any_.store(true, std::memory_order_release);
}

std::shared_ptr<const rapidjson::Document> Scripted::get(std::string_view fn) const {
  if (!any_.load(std::memory_order_acquire)) return nullptr;
  std::lock_guard<std::mutex> lock(mu_);
  auto it = values_.find(fn);
  return it == values_.end() ? nullptr : it->second;
}

void Scripted::clear() {
  std::lock_guard<std::mutex> lock(mu_);
  values_.clear();
  any_.store(false, std::memory_order_release);
}

// ---------------------------------------------------------------------------------------
void HandedOut::adopt(const void* p, std::unique_ptr<Storage> storage) {
  std::lock_guard<std::mutex> lock(mu_);
  blocks_[p] = std::move(storage);
}

bool HandedOut::release(const void* p) {
  std::unique_ptr<Storage> gone;  // freed outside the lock
  std::lock_guard<std::mutex> lock(mu_);
  auto it = blocks_.find(p);
  if (it == blocks_.end()) return false;
  gone = std::move(it->second);
  blocks_.erase(it);
  return true;
}

// ---------------------------------------------------------------------------------------
Core::Core() = default;

void Core::postEvent(std::function<void()> task, std::chrono::milliseconds delay) {
  const uint64_t at = epoch();
  events.postAfter(delay, [this, at, task = std::move(task)] {
    if (epoch() == at) task();
  });
}

int32_t Core::nextSeq() {
  int32_t cur = seq_.load();
  int32_t next;
  do {
    next = cur == INT32_MAX ? 1 : cur + 1;
  } while (!seq_.compare_exchange_weak(cur, next));
  return next;
}

void Core::finishAsync(int resultCallback, const Finisher& finish, const rapidjson::Document& payload) {
  if (finish) finish(payload);
  else fireJson(resultCallback, payload);
}

int32_t Core::startAsync(int32_t* seq, AsyncCall call) {
  const int32_t s = nextSeq();
  if (seq) *seq = s;
  // A scripted non-zero result code is a refusal: no completion follows.
  if (auto code = scriptedNumber<int32_t>(call.fn); code && *code != 0) return *code;

  auto base = std::make_shared<rapidjson::Document>(std::move(call.base));
  if (!base->IsObject()) base->SetObject();
  auto& a = base->GetAllocator();
  base->RemoveMember("seq");
  base->AddMember("seq", s, a);
  if (!base->HasMember("errorCode")) base->AddMember("errorCode", 0, a);

  if (autoComplete_.load()) {
    postEvent([this, cb = call.resultCallback, finish = std::move(call.finish), base] {
      finishAsync(cb, finish, *base);
    }, call.autoDelay);
  } else {
    std::lock_guard<std::mutex> lock(pendingMu_);
    pending_.push_back(Pending{s, call.fn, call.resultCallback, std::move(base), std::move(call.finish)});
  }
  return 0;
}

std::string Core::pendingJson() const {
  rapidjson::StringBuffer sb;
  json::Writer w(sb);
  w.StartArray();
  {
    std::lock_guard<std::mutex> lock(pendingMu_);
    for (const Pending& p : pending_) {
      w.StartObject();
      w.Key("fn");
      w.String(p.fn);
      w.Key("seq");
      w.Int(p.seq);
      w.EndObject();
    }
  }
  w.EndArray();
  return std::string(sb.GetString(), sb.GetSize());
}

int32_t Core::complete(int32_t seq, const rapidjson::Value& result, std::string& err) {
  if (!result.IsObject() && !result.IsNull()) {
    err = "result: expected an object, got " + std::string(jsonKind(result));
    return -1;
  }
  auto findPending = [&] {
    return std::find_if(pending_.begin(), pending_.end(), [&](const Pending& p) { return p.seq == seq; });
  };
  auto merged = std::make_shared<rapidjson::Document>();
  int resultCallback = -1;
  {
    std::lock_guard<std::mutex> lock(pendingMu_);
    auto it = findPending();
    if (it == pending_.end()) return 0;
    merged->CopyFrom(*it->base, merged->GetAllocator());
    resultCallback = it->resultCallback;
  }
  auto& a = merged->GetAllocator();
  if (result.IsObject()) {
    for (auto m = result.MemberBegin(); m != result.MemberEnd(); ++m) {
      if (std::strcmp(m->name.GetString(), "seq") == 0) continue;  // the call's seq stays
      merged->RemoveMember(m->name);
      rapidjson::Value name(m->name, a);
      rapidjson::Value value(m->value, a);
      merged->AddMember(name, value, a);
    }
  }
  // A result the callback cannot take is refused while the call is still pending. The
  // conversion runs without the pending lock: it may consult the engine's state.
  if (!gen::makeArgs(resultCallback, *merged, err)) return -1;
  Pending entry{};
  {
    std::lock_guard<std::mutex> lock(pendingMu_);
    auto it = findPending();
    if (it == pending_.end()) return 0;  // answered or dropped meanwhile
    entry = std::move(*it);
    pending_.erase(it);
  }
  events.runAndWait([this, entry = std::move(entry), merged] {
    finishAsync(entry.resultCallback, entry.finish, *merged);
  }, std::chrono::milliseconds(60000));
  return 1;
}

void Core::dropPending() {
  std::vector<Pending> gone;
  std::lock_guard<std::mutex> lock(pendingMu_);
  gone.swap(pending_);
}

void Core::reset() {
  bumpEpoch();
  journal.clear();
  scripted.clear();
  dropPending();
  autoComplete_.store(true);
  engine().resetState();
  // Tasks already running finish before reset returns, so nothing of the old state is
  // reported afterwards (unless reset runs on that very thread, inside a callback).
  if (!events.onLoopThread()) events.barrier();
  if (!frames.onLoopThread()) frames.barrier();
}

void Core::shutdownForExit() {
  bumpEpoch();
  events.shutdown(std::chrono::milliseconds(250));
  frames.shutdown(std::chrono::milliseconds(250));
}

namespace {
std::atomic<bool> gCoreBuilt{false};

// At exit (or unload) the engine's threads stop taking tasks before the process's other
// static objects go away; callbacks into them would crash a clean exit.
struct ExitGuard {
  ~ExitGuard() {
    if (gCoreBuilt.load()) core().shutdownForExit();
  }
} gExitGuard;
}  // namespace

Core& core() {
  static NoDestructor<Core> instance;
  static const bool built = (gCoreBuilt.store(true), true);
  (void)built;
  return instance.get();
}

// ---------------------------------------------------------------------------------------
bool fireJson(int id, const rapidjson::Value& payload) {
  std::string err;
  auto args = gen::makeArgs(id, payload, err);
  if (!args) return false;
  Registry::Hold hold(core().registry, id);
  if (!hold) return false;
  args->invoke(hold.reg().callback, hold.reg().context);
  return true;
}

void registerCallback(int id, const char* fn, AnyFn callback, void* userContext) {
  JournalEntry entry(fn);
  entry.w().Key("callback");
  entry.w().Uint64(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(callback)));
  entry.w().Key("user_context");
  entry.w().Uint64(static_cast<uint64_t>(reinterpret_cast<uintptr_t>(userContext)));
  entry.commit();
  core().registry.set(id, callback, userContext);
}

std::optional<std::string> scriptedText(std::string_view fn) {
  auto v = core().scripted.get(fn);
  if (!v || !v->IsString()) return std::nullopt;
  return std::string(v->GetString(), v->GetStringLength());
}

void copyOut(const std::string& text, char* out, uint32_t capacity) {
  if (!out || capacity == 0) return;
  const size_t n = std::min<size_t>(text.size(), capacity - 1);
  std::memcpy(out, text.data(), n);
  out[n] = '\0';
}

PayloadBuilder& PayloadBuilder::setText(const char* key, const char* text) {
  auto& a = doc_.GetAllocator();
  doc_.RemoveMember(key);
  doc_.AddMember(rapidjson::Value(key, a), rapidjson::Value(text ? text : "", a), a);
  return *this;
}

PayloadBuilder& PayloadBuilder::setInt(const char* key, int64_t number) {
  auto& a = doc_.GetAllocator();
  doc_.RemoveMember(key);
  doc_.AddMember(rapidjson::Value(key, a), rapidjson::Value(number), a);
  return *this;
}

PayloadBuilder& PayloadBuilder::setUint(const char* key, uint64_t number) {
  auto& a = doc_.GetAllocator();
  doc_.RemoveMember(key);
  doc_.AddMember(rapidjson::Value(key, a), rapidjson::Value(number), a);
  return *this;
}

PayloadBuilder& PayloadBuilder::setReal(const char* key, double number) {
  auto& a = doc_.GetAllocator();
  doc_.RemoveMember(key);
  doc_.AddMember(rapidjson::Value(key, a), rapidjson::Value(number), a);
  return *this;
}

}  // namespace orva::sim
