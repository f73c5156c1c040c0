// Rooms: login and logout sequences, the room's stream list, and messages that echo back.
#include <cstring>

#include "sim_engine.h"

namespace orva::sim {
namespace {

orva_stream makeStream(const orva_user& user, const std::string& streamID) {
  orva_stream s{};
  s.user = user;
  setFixed(s.streamID, sizeof s.streamID, streamID);
  return s;
}

orva_user peerUser() {
  orva_user u{};
  setFixed(u.userID, sizeof u.userID, kPeerUserID);
  setFixed(u.userName, sizeof u.userName, kPeerUserName);
  return u;
}

// The streams a member of `roomID` sees: the peer's and those this engine publishes there.
// Call with the engine lock held.
std::vector<orva_stream> roomStreamsLocked(const std::string& roomID) {
  const EngineState& st = engine().st;
  std::vector<orva_stream> streams{makeStream(peerUser(), kPeerStreamID)};
  const orva_user self = engine().roomUserLocked(roomID);
  for (const ChannelState& c : st.channels) {
    if (c.publishToken && c.roomID == roomID) streams.push_back(makeStream(self, c.streamID));
  }
  return streams;
}

std::string textOf(const rapidjson::Value& payload, const char* key) {
  const rapidjson::Value* v = member(payload, key);
  return v && v->IsString() ? std::string(v->GetString(), v->GetStringLength()) : std::string();
}

int32_t intOf(const rapidjson::Value& payload, const char* key) {
  const rapidjson::Value* v = member(payload, key);
  int32_t out = 0;
  std::string err;
  if (v) readNumber(*v, out, Path{}, err);
  return out;
}

// Runs on the events loop when the login is answered (automatically or by complete()).
void finishLogin(const std::string& roomID, uint64_t token, const rapidjson::Document& payload) {
  const int32_t errorCode = intOf(payload, "errorCode");
  bool current = false;
  std::vector<orva_stream> streams;
  {
    std::lock_guard<std::mutex> lock(engine().mu);
    auto it = engine().st.rooms.find(roomID);
    current = it != engine().st.rooms.end() && it->second.token == token;
    if (current && errorCode == 0) {
      it->second.state = ORVA_ROOM_STATE_CONNECTED;
      streams = roomStreamsLocked(roomID);
    } else if (current) {
      engine().st.rooms.erase(it);
    }
  }
  if (current && errorCode == 0) {
    gen::fire_room_state_update(roomID.c_str(), ORVA_ROOM_STATE_CONNECTED, 0, "");
    gen::fire_room_state_changed(roomID.c_str(), ORVA_ROOM_STATE_CHANGED_REASON_LOGINED, 0, "");
  } else if (current) {
    gen::fire_room_state_update(roomID.c_str(), ORVA_ROOM_STATE_DISCONNECTED, errorCode, "");
    gen::fire_room_state_changed(roomID.c_str(), ORVA_ROOM_STATE_CHANGED_REASON_LOGIN_FAILED, errorCode, "");
  }
  fireJson(gen::cb::room_login_result, payload);
  if (current && errorCode == 0) {
    const orva_user peer = peerUser();
    gen::fire_room_user_update(roomID.c_str(), ORVA_UPDATE_TYPE_ADD, &peer, 1);
    gen::fire_room_stream_update(roomID.c_str(), ORVA_UPDATE_TYPE_ADD, streams.data(),
                                 static_cast<uint32_t>(streams.size()), "");
  }
}

// Leaves the rooms in `roomIDs` (state events); the result callback is the caller's.
void leaveRooms(const std::vector<std::string>& roomIDs) {
  for (const std::string& roomID : roomIDs) {
    core().postEvent([roomID] {
      gen::fire_room_state_update(roomID.c_str(), ORVA_ROOM_STATE_DISCONNECTED, 0, "");
      gen::fire_room_state_changed(roomID.c_str(), ORVA_ROOM_STATE_CHANGED_REASON_LOGOUT, 0, "");
    });
  }
}

}  // namespace

// Room stream announcements for a stream this engine starts or stops publishing, to the
// room it publishes in when that room is logged in. Called with the engine lock held.
void announceOwnStreamLocked(int32_t channel, int32_t updateType) {
  const ChannelState& c = engine().st.channels[static_cast<size_t>(channel)];
  auto room = engine().st.rooms.find(c.roomID);
  if (room == engine().st.rooms.end() || room->second.state != ORVA_ROOM_STATE_CONNECTED) return;
  const orva_stream s = makeStream(room->second.user, c.streamID);
  const std::string roomID = c.roomID;
  core().postEvent([roomID, s, updateType] { gen::fire_room_stream_update(roomID.c_str(), updateType, &s, 1, ""); });
}

}  // namespace orva::sim

using namespace orva::sim;  // NOLINT: entry points below are the C interface

ORVA_API int32_t ORVA_CALL orva_vantix_login_room_with_callback(const char* roomID, const orva_user* user,
                                                               const orva_room_config* config, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_login_room_with_callback(roomID, user, config, seq);
    constexpr const char* fn = "orva_vantix_login_room_with_callback";
    if (auto code = refusal(fn)) {
      if (seq) *seq = core().nextSeq();
      return *code;
    }
    if (!roomID || !*roomID || !user) return kErrInvalid;
    const std::string room = roomID;
    const uint64_t token = Engine::newToken();
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      RoomState& r = engine().st.rooms[room];
      r.user = *user;
      r.state = ORVA_ROOM_STATE_CONNECTING;
      r.token = token;
    }
    core().postEvent([room] {
      gen::fire_room_state_changed(room.c_str(), ORVA_ROOM_STATE_CHANGED_REASON_LOGINING, 0, "");
      gen::fire_room_state_update(room.c_str(), ORVA_ROOM_STATE_CONNECTING, 0, "");
    });
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::room_login_result;
    call.base = PayloadBuilder().setText("roomID", room).setText("extendedData", "").take();
    call.finish = [room, token](const rapidjson::Document& payload) { finishLogin(room, token, payload); };
    call.autoDelay = std::chrono::milliseconds(20);
    return core().startAsync(seq, std::move(call));
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_logout_room_with_callback(const char* roomID, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_logout_room_with_callback(roomID, seq);
    constexpr const char* fn = "orva_vantix_logout_room_with_callback";
    if (auto code = refusal(fn)) {
      if (seq) *seq = core().nextSeq();
      return *code;
    }
    const std::string room = roomID ? roomID : "";
    std::vector<std::string> left;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      if (engine().st.rooms.erase(room)) left.push_back(room);
    }
    leaveRooms(left);
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::room_logout_result;
    call.base = PayloadBuilder().setText("roomID", room).setText("extendedData", "").take();
    return core().startAsync(seq, std::move(call));
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_logout_all_room_with_callback(int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_logout_all_room_with_callback(seq);
    constexpr const char* fn = "orva_vantix_logout_all_room_with_callback";
    if (auto code = refusal(fn)) {
      if (seq) *seq = core().nextSeq();
      return *code;
    }
    std::vector<std::string> left;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      for (const auto& [id, room] : engine().st.rooms) left.push_back(id);
      engine().st.rooms.clear();
    }
    leaveRooms(left);
    AsyncCall call;
    call.fn = fn;
    call.resultCallback = gen::cb::room_logout_result;
    call.base = PayloadBuilder().setText("roomID", "").setText("extendedData", "").take();
    return core().startAsync(seq, std::move(call));
  });
}

ORVA_API orva_stream* ORVA_CALL orva_vantix_get_room_stream_list(const char* roomID, int32_t streamListType,
                                                                uint32_t* streamCount) {
  return guarded<orva_stream*>(nullptr, [&]() -> orva_stream* {
    gen::journal_get_room_stream_list(roomID, streamListType, streamCount);
    constexpr const char* fn = "orva_vantix_get_room_stream_list";
    if (core().scripted.get(fn)) return gen::scriptedList<orva_stream>(fn, streamCount);
    std::vector<orva_stream> streams;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      auto it = engine().st.rooms.find(roomID ? roomID : "");
      if (it != engine().st.rooms.end() && it->second.state == ORVA_ROOM_STATE_CONNECTED) {
        streams = roomStreamsLocked(it->first);
      }
    }
    auto st = std::make_unique<Storage>();
    orva_stream* list = st->array<orva_stream>(streams.size());
    std::copy(streams.begin(), streams.end(), list);
    if (streamCount) *streamCount = static_cast<uint32_t>(streams.size());
    core().handedOut.adopt(list, std::move(st));
    return list;
  });
}

// ---------------------------------------------------------------------------------------
// Messages: answered like any asynchronous call, then echoed to the same room as if the
// server delivered them, sent by the room's own user.

ORVA_API int32_t ORVA_CALL orva_vantix_send_broadcast_message(const char* roomID, const char* message, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_send_broadcast_message(roomID, message, seq);
    const std::string room = roomID ? roomID : "";
    const std::string text = message ? message : "";
    uint64_t id = 0;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      id = ++engine().st.broadcastMessageID;
    }
    AsyncCall call;
    call.fn = "orva_vantix_send_broadcast_message";
    call.resultCallback = gen::cb::im_send_broadcast_message_result;
    call.base = PayloadBuilder().setText("roomID", room).setUint("messageID", id).take();
    call.finish = [room, text](const rapidjson::Document& payload) {
      fireJson(gen::cb::im_send_broadcast_message_result, payload);
      if (intOf(payload, "errorCode") != 0) return;
      orva_broadcast_message_info info{};
      info.message = text.c_str();
      uint64_t messageID = 0;
      std::string err;
      if (const rapidjson::Value* v = member(payload, "messageID")) readNumber(*v, messageID, Path{}, err);
      info.messageID = messageID;
      info.sendTime = nowUnixMs();
      {
        std::lock_guard<std::mutex> lock(engine().mu);
        info.fromUser = engine().roomUserLocked(room);
      }
      gen::fire_im_recv_broadcast_message(room.c_str(), &info, 1);
    };
    return core().startAsync(seq, std::move(call));
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_send_barrage_message(const char* roomID, const char* message, int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_send_barrage_message(roomID, message, seq);
    const std::string room = roomID ? roomID : "";
    const std::string text = message ? message : "";
    uint64_t n = 0;
    {
      std::lock_guard<std::mutex> lock(engine().mu);
      n = ++engine().st.barrageMessageID;
    }
    AsyncCall call;
    call.fn = "orva_vantix_send_barrage_message";
    call.resultCallback = gen::cb::im_send_barrage_message_result;
    call.base = PayloadBuilder().setText("roomID", room).setText("messageID", "sim-barrage-" + std::to_string(n)).take();
    call.finish = [room, text](const rapidjson::Document& payload) {
      fireJson(gen::cb::im_send_barrage_message_result, payload);
      if (intOf(payload, "errorCode") != 0) return;
      orva_barrage_message_info info{};
      info.message = text.c_str();
      setFixed(info.messageID, sizeof info.messageID, textOf(payload, "messageID"));
      info.sendTime = nowUnixMs();
      {
        std::lock_guard<std::mutex> lock(engine().mu);
        info.fromUser = engine().roomUserLocked(room);
      }
      gen::fire_im_recv_barrage_message(room.c_str(), &info, 1);
    };
    return core().startAsync(seq, std::move(call));
  });
}

ORVA_API int32_t ORVA_CALL orva_vantix_send_custom_command(const char* roomID, const char* command,
                                                          const orva_user* toUserList, uint32_t toUserListCount,
                                                          int32_t* seq) {
  return guarded<int32_t>(kErrInvalid, [&] {
    gen::journal_send_custom_command(roomID, command, toUserList, toUserListCount, seq);
    const std::string room = roomID ? roomID : "";
    const std::string text = command ? command : "";
    AsyncCall call;
    call.fn = "orva_vantix_send_custom_command";
    call.resultCallback = gen::cb::im_send_custom_command_result;
    call.base = PayloadBuilder().setText("roomID", room).take();
    call.finish = [room, text](const rapidjson::Document& payload) {
      fireJson(gen::cb::im_send_custom_command_result, payload);
      if (intOf(payload, "errorCode") != 0) return;
      orva_user from{};
      {
        std::lock_guard<std::mutex> lock(engine().mu);
        from = engine().roomUserLocked(room);
      }
      gen::fire_im_recv_custom_command(room.c_str(), &from, text.c_str());
    };
    return core().startAsync(seq, std::move(call));
  });
}
