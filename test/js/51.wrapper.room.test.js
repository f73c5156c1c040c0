'use strict';
// Rooms on the engine wrapper: the generated per-method cases, then the room-specific rules
// (check order across nested objects, logoutRoom's all-rooms rule).

const test = require('node:test');
const assert = require('node:assert');
const { loadAddon, loadSim, createEngine, until } = require('./support/addon-harness');
const { describeFamily, engineCalls } = require('./support/wrapper-cases');

const U32 = 2 ** 32;
// 2^63 tells a 64-bit read cut to 32 bits (-1, or 4294967295 unsigned) from a 32-bit read (0).
const I64 = 2 ** 63;
const USER = { userID: 'u-1', userName: 'Ada' };
// maxMemberCount -1 is read as a 64-bit integer and cut to the unsigned 32-bit field.
const CONFIG = { maxMemberCount: -1, isUserStatusNotify: true, token: 'tok' };
const ENGINE_CONFIG = { maxMemberCount: 4294967295, isUserStatusNotify: true, token: 'tok', capabilityNegotiationTypes: 0 };
const CONFIG_CHECKS = ['config.maxMemberCount:Number', 'config.isUserStatusNotify:Boolean', 'config.token:String'];

const ROWS = [
  {
    method: 'loginRoom', kind: 'U',
    arg: { roomID: 'room-1', user: USER, config: CONFIG },
    checks: ['roomID:String', 'user:Object', 'config:Object', 'user.userID:String', 'user.userName:String', ...CONFIG_CHECKS],
    calls: [['orva_vantix_login_room_with_callback', { roomID: 'room-1', user: USER, config: ENGINE_CONFIG }]],
  },
  {
    method: 'logoutRoom', kind: 'U',
    arg: { roomID: 'room-1' },
    checks: [],  // roomID is optional: its wrong type is an edge case below
    calls: [['orva_vantix_logout_room_with_callback', { roomID: 'room-1' }]],
  },
  {
    method: 'switchRoom', kind: 'U',
    arg: { fromRoomID: 'room-1', toRoomID: 'room-2', config: { ...CONFIG, maxMemberCount: I64 } },
    checks: ['fromRoomID:String', 'toRoomID:String', 'config:Object', ...CONFIG_CHECKS],
    calls: [['orva_vantix_switch_room', { fromRoomID: 'room-1', toRoomID: 'room-2', config: ENGINE_CONFIG }]],
  },
  {
    method: 'setRoomExtraInfo', kind: 'P',
    arg: { roomID: 'room-1', key: 'topic', value: 'cats' },
    checks: ['roomID:String', 'key:String', 'value:String'],
    calls: [['orva_vantix_set_room_extra_info', { roomID: 'room-1', key: 'topic', value: 'cats' }]],
    result: { errorCode: 0 },
  },
  {
    method: 'renewToken', kind: 'U',
    arg: { roomID: 'room-1', token: 'fresh' },
    checks: ['roomID:String', 'token:String'],
    calls: [['orva_vantix_renew_token', { roomID: 'room-1', token: 'fresh' }]],
  },
  {
    method: 'setRoomScenario', kind: 'U',
    arg: { scenario: I64 },
    checks: ['scenario:Number'],
    calls: [['orva_vantix_set_room_scenario', { scenario: -1 }]],
  },
];

describeFamily('rooms', ROWS);

test('rooms: edge cases', async (t) => {
  const addon = loadAddon();
  const sim = loadSim();
  const session = createEngine(addon);
  t.after(() => session.destroy());
  const { engine } = session;

  // Calls engine[method](arg) and gives the errorInfo of the alert it raised.
  async function alertOf(method, arg) {
    const before = session.named('onDebugError').length;
    engine[method](arg);
    await until(() => session.named('onDebugError').length > before, 5000, 'the alert');
    return session.named('onDebugError')[before].payload.errorInfo;
  }

  await t.test('logoutRoom: no roomID and roomID undefined leave every room; a number leaves none', async () => {
    sim.reset();
    engine.logoutRoom({});
    engine.logoutRoom({ roomID: undefined });
    engine.logoutRoom();
    assert.deepStrictEqual(engineCalls(sim).map((c) => c.fn), Array(3).fill('orva_vantix_logout_all_room_with_callback'));
    sim.reset();
    assert.strictEqual(await alertOf('logoutRoom', { roomID: 5 }), 'param .roomID should be type of String');
    assert.deepStrictEqual(engineCalls(sim), []);
  });

  await t.test('loginRoom: the argument keys first, then user, then config; the first failure decides', async () => {
    sim.reset();
    assert.strictEqual(await alertOf('loginRoom', { roomID: 'r', user: USER }), 'param .config missing');
    // user is checked before config is looked at, and its keys in order.
    assert.strictEqual(await alertOf('loginRoom', { roomID: 'r', user: { userID: 'u' }, config: {} }), 'param user.userName missing');
    assert.strictEqual(await alertOf('loginRoom', { roomID: 'r', user: {}, config: 1 }), 'param .config should be type of Object');
    assert.strictEqual(await alertOf('loginRoom', { roomID: 'r', user: USER, config: { isUserStatusNotify: 1 } }),
      'param config.maxMemberCount missing');
    // null is not an object to the checker; a function is.
    assert.strictEqual(await alertOf('loginRoom', { roomID: 'r', user: null, config: CONFIG }), 'param .user should be type of Object');
    assert.deepStrictEqual(engineCalls(sim), []);
    const fnUser = Object.assign(() => {}, USER);
    engine.loginRoom({ roomID: 'r', user: fnUser, config: CONFIG });
    assert.deepStrictEqual(engineCalls(sim).map((c) => c.args.user), [USER]);
  });

  await t.test('setRoomExtraInfo with a number as value rejects with the message and raises no alert', async () => {
    const before = session.named('onDebugError').length;
    await assert.rejects(engine.setRoomExtraInfo({ roomID: 'r', key: 'k', value: 1 }),
      (reason) => reason === 'param .value should be type of String');
    assert.strictEqual(session.named('onDebugError').length, before);
  });
});
