// Rooms: log in and out, switch, renew the token, set the scenario and the room's extra
// information. Login, logout and switch outcomes reach script as room events, not through
// these calls; only setRoomExtraInfo answers through a promise.
#include "wrappers/OrvaVantixEngineWrapper.h"
#include "wrappers/OrvaVantixEngineWrapper_shape.h"

namespace orva {

using namespace wrapper;  // NOLINT: the shape's helpers are this class's vocabulary

namespace {

// Checks the room configuration under `key` ("config"); loginRoom and switchRoom share it.
bool checkRoomConfig(MethodCall& call) {
  return call.check("config", {{"maxMemberCount", T::Number}, {"isUserStatusNotify", T::Boolean},
                               {"token", T::String}});
}

sdk::RoomConfig readRoomConfig(const ArgObject& config) {
  sdk::RoomConfig room;
  room.maxMemberCount = truncatedUint32(config, "maxMemberCount");
  room.isUserStatusNotify = config.boolean("isUserStatusNotify");
  room.token = config.string("token");
  room.capabilityNegotiationTypes = 0;  // not settable from script
  return room;
}

}  // namespace

Napi::Value OrvaVantixEngineWrapper::loginRoom(const Napi::CallbackInfo& info) {
  MethodCall call(info, "loginRoom", errors_);
  if (!call.check({{"roomID", T::String}, {"user", T::Object}, {"config", T::Object}}) ||
      !call.check("user", {{"userID", T::String}, {"userName", T::String}}) ||
      !checkRoomConfig(call)) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  const ArgObject user = a.object("user");
  return callEngine(call, &sdk::Engine::loginRoomWithCallback, a.string("roomID"),
                    sdk::User{user.string("userID"), user.string("userName")},
                    readRoomConfig(a.object("config")), kNoCompletion);
}

Napi::Value OrvaVantixEngineWrapper::logoutRoom(const Napi::CallbackInfo& info) {
  MethodCall call(info, "logoutRoom", errors_);
  const ArgObject& a = call.args();
  // No roomID, or roomID: undefined, means every room.
  if (!a.has("roomID") || a.get("roomID").IsUndefined()) {
    return callEngine(call, &sdk::Engine::logoutAllRoomWithCallback, kNoCompletion);
  }
  if (!call.check({{"roomID", T::String}})) return call.undefined();
  return callEngine(call, &sdk::Engine::logoutRoomWithCallback, a.string("roomID"), kNoCompletion);
}

Napi::Value OrvaVantixEngineWrapper::switchRoom(const Napi::CallbackInfo& info) {
  MethodCall call(info, "switchRoom", errors_);
  // config is required here, although the engine would switch without one.
  if (!call.check({{"fromRoomID", T::String}, {"toRoomID", T::String}, {"config", T::Object}}) ||
      !checkRoomConfig(call)) {
    return call.undefined();
  }
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::switchRoom, a.string("fromRoomID"), a.string("toRoomID"),
                    readRoomConfig(a.object("config")));
}

Napi::Value OrvaVantixEngineWrapper::setRoomExtraInfo(const Napi::CallbackInfo& info) {
  PromiseCall call(info, "setRoomExtraInfo", errors_);
  if (!call.begin({{"roomID", T::String}, {"key", T::String}, {"value", T::String}})) {
    return call.promise();
  }
  const ArgObject& a = call.args();
  return call.settle<ErrorCodeResult>(call.engine().setRoomExtraInfo(
      a.string("roomID"), a.string("key"), a.string("value"),
      call.completion<ErrorCodeResult, sdk::RoomSetRoomExtraInfoResultEvent>()));
}

Napi::Value OrvaVantixEngineWrapper::renewToken(const Napi::CallbackInfo& info) {
  MethodCall call(info, "renewToken", errors_);
  if (!call.check({{"roomID", T::String}, {"token", T::String}})) return call.undefined();
  const ArgObject& a = call.args();
  return callEngine(call, &sdk::Engine::renewToken, a.string("roomID"), a.string("token"));
}

Napi::Value OrvaVantixEngineWrapper::setRoomScenario(const Napi::CallbackInfo& info) {
  MethodCall call(info, "setRoomScenario", errors_);
  if (!call.check({{"scenario", T::Number}})) return call.undefined();
  return callEngine(call, &sdk::Engine::setRoomScenario, call.args().truncatedInt32("scenario"));
}

}  // namespace orva
