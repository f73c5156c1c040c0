#include "sim_args.h"

#include <algorithm>

namespace orva::sim {

const char* Storage::text(std::string_view s) {
  char* p = array<char>(s.size() + 1);
  if (!s.empty()) std::memcpy(p, s.data(), s.size());
  p[s.size()] = '\0';
  return p;
}

uint8_t* Storage::bytes(size_t n) { return array<uint8_t>(n); }

std::string Path::str() const {
  std::vector<const Path*> chain;
  for (const Path* p = this; p; p = p->parent) chain.push_back(p);
  std::string out;
  for (auto it = chain.rbegin(); it != chain.rend(); ++it) {
    const Path* p = *it;
    if (p->key) {
      if (!out.empty()) out += '.';
      out += p->key;
    } else if (p->index >= 0) {
      out += '[' + std::to_string(p->index) + ']';
    }
  }
  return out.empty() ? std::string("payload") : out;
}

const char* jsonKind(const rapidjson::Value& v) {
  switch (v.GetType()) {
    case rapidjson::kNullType: return "null";
    case rapidjson::kFalseType:
    case rapidjson::kTrueType: return "a boolean";
    case rapidjson::kObjectType: return "an object";
    case rapidjson::kArrayType: return "an array";
    case rapidjson::kStringType: return "a string";
    case rapidjson::kNumberType: return v.IsDouble() ? "a non-integral or out-of-range number" : "an integer";
  }
  return "something else";
}

bool fail(std::string& err, const Path& path, const char* what, const rapidjson::Value& v) {
  err = path.str() + ": expected " + what + ", got " + jsonKind(v);
  if (v.IsNumber()) {
    // Spell the number out: range errors are easier to see that way.
    if (v.IsInt64()) err += " " + std::to_string(v.GetInt64());
    else if (v.IsUint64()) err += " " + std::to_string(v.GetUint64());
    else err += " " + std::to_string(v.GetDouble());
  }
  return false;
}

bool failText(std::string& err, const Path& path, const std::string& message) {
  err = path.str() + ": " + message;
  return false;
}

bool readText(const rapidjson::Value& v, const char*& out, Storage& st, const Path& path, std::string& err) {
  if (v.IsNull()) { out = nullptr; return true; }
  if (!v.IsString()) return fail(err, path, "a string", v);
  out = st.text(std::string_view(v.GetString(), v.GetStringLength()));
  return true;
}

bool readFixedText(const rapidjson::Value& v, char* out, size_t capacity, const Path& path, std::string& err) {
  if (!v.IsString()) return fail(err, path, "a string", v);
  const size_t n = std::min<size_t>(v.GetStringLength(), capacity - 1);
  std::memcpy(out, v.GetString(), n);
  out[n] = '\0';
  return true;
}

bool readBytes(const rapidjson::Value& v, uint8_t*& out, uint32_t& length, Storage& st, const Path& path,
               std::string& err) {
  if (v.IsNull()) { out = nullptr; length = 0; return true; }
  if (v.IsObject()) {
    const rapidjson::Value* b64 = member(v, "$bytes");
    if (!b64 || !b64->IsString()) return fail(err, path, "an array of bytes or {\"$bytes\": base64}", v);
    std::vector<uint8_t> raw;
    if (!decodeBase64(std::string_view(b64->GetString(), b64->GetStringLength()), raw))
      return failText(err, path, "invalid base64 in $bytes");
    out = st.bytes(raw.size());
    if (!raw.empty()) std::memcpy(out, raw.data(), raw.size());
    length = static_cast<uint32_t>(raw.size());
    return true;
  }
  if (!v.IsArray()) return fail(err, path, "an array of bytes or {\"$bytes\": base64}", v);
  out = st.bytes(v.Size());
  for (rapidjson::SizeType i = 0; i < v.Size(); ++i) {
    uint8_t b = 0;
    if (!readNumber(v[i], b, path.at(static_cast<long>(i)), err)) return false;
    out[i] = b;
  }
  length = v.Size();
  return true;
}

bool readHandle(const rapidjson::Value& v, void*& out, const Path& path, std::string& err) {
  uint64_t value = 0;
  if (!readNumber(v, value, path, err)) return false;
  out = reinterpret_cast<void*>(static_cast<uintptr_t>(value));
  return true;
}

bool decodeBase64(std::string_view in, std::vector<uint8_t>& out) {
  auto sextet = [](char c) -> int {
    if (c >= 'A' && c <= 'Z') return c - 'A';
    if (c >= 'a' && c <= 'z') return c - 'a' + 26;
    if (c >= '0' && c <= '9') return c - '0' + 52;
    if (c == '+' || c == '-') return 62;  // '-' and '_': the URL-safe alphabet too
    if (c == '/' || c == '_') return 63;
    return -1;
  };
  while (!in.empty() && in.back() == '=') in.remove_suffix(1);
  out.clear();
  out.reserve(in.size() * 3 / 4);
  uint32_t acc = 0;
  int bits = 0;
  for (char c : in) {
    const int s = sextet(c);
    if (s < 0) return false;
    acc = (acc << 6) | static_cast<uint32_t>(s);
    bits += 6;
    if (bits >= 8) {
      bits -= 8;
      out.push_back(static_cast<uint8_t>((acc >> bits) & 0xFF));
    }
  }
  return bits < 6;  // a lone trailing sextet cannot encode a byte
}

}  // namespace orva::sim
