'use strict';
// What the storm children share: loading the addon and the simulated engine from the build
// under test, an engine whose events and frames keep flowing, and the floods.

const path = require('path');

const root = path.resolve(__dirname, '..', '..');
const addonModule = root;
const simModule = path.join(root, 'engine', 'sim');

const PROFILE = { appID: 1234567, appSign: 'storm', scenario: 0 };

const CAPTURE = { width: 320, height: 180 };
// The simulated peer's stream plays at 640 x 360.
const PEER = { streamID: 'sim-peer-stream', width: 640, height: 360 };
// A stream that only sim.frame feeds.
const SCRIPTED = { streamID: 'storm-scripted', width: 64, height: 36 };

const FLOOD_PAYLOAD = { roomID: '', state: 0, errorCode: 0, extendedData: 'storm' };

// Sanitized builds run several times slower: the waits grow, the counts stay.
const PATIENCE_MS = process.env.ORVA_SANITIZER ? 60000 : 10000;

const sleep = (ms) => new Promise((resolve) => setTimeout(resolve, ms));

async function until(predicate, what) {
  const deadline = Date.now() + PATIENCE_MS;
  while (!predicate()) {
    if (Date.now() > deadline) throw new Error(`timed out waiting for ${what}`);
    await sleep(1);
  }
}

function createEngine(addon, tsfn) {
  return addon.CreateEngine({ profile: PROFILE, tsfn, SDKVersion: 'storm', electronVersion: '30.0.0' });
}

// Registers script buffers for the preview, the peer's stream and a scripted stream, then
// starts the preview at 60 fps and plays the peer once the login makes it appear: from here
// on the engine's frame thread copies into script memory by itself. `onFrame`, when given,
// is registered as the "tsfn" handler, which receives the frame events. (Registering a name
// a second time overwrites the first function without releasing it, which keeps the
// process alive: a caller that registered its own passes none.)
function startMedia(engine, onFrame) {
  if (onFrame) engine.registerEventHandler({ name: 'tsfn', func: onFrame });
  engine.setVideoConfig({
    config: {
      captureWidth: CAPTURE.width, captureHeight: CAPTURE.height,
      encodeWidth: CAPTURE.width, encodeHeight: CAPTURE.height, fps: 60, bitrate: 600, codecID: 0,
    },
    channel: 0,
  });
  const buffers = {
    capture: Buffer.alloc(CAPTURE.width * CAPTURE.height * 4),
    peer: Buffer.alloc(PEER.width * PEER.height * 4),
    scripted: Buffer.alloc(SCRIPTED.width * SCRIPTED.height * 4),
  };
  engine.initVideoCaptureBuffer({ render_buffer: buffers.capture, ...CAPTURE, channel: 0 });
  engine.initVideoPlayBuffer({ render_buffer: buffers.peer, width: PEER.width, height: PEER.height, streamID: PEER.streamID });
  engine.initVideoPlayBuffer({ render_buffer: buffers.scripted, width: SCRIPTED.width, height: SCRIPTED.height, streamID: SCRIPTED.streamID });
  engine.startPreview({ channel: 0, viewMode: 0 });
  engine.loginRoom({
    roomID: 'storm-room', user: { userID: 'storm', userName: 'Storm' },
    config: { maxMemberCount: 0, isUserStatusNotify: false, token: '' },
  });
  engine.startPlayingStream({ streamID: PEER.streamID, config: {} });
  return buffers;
}

// One frame from script into each registered target (and through the copy path).
function scriptFrames(sim) {
  sim.frame({ channel: 0 }, { ...CAPTURE, format: 4 });
  sim.frame({ streamID: SCRIPTED.streamID }, { width: SCRIPTED.width, height: SCRIPTED.height, format: 5 });
}

// `threads` engine threads each sending `count` room_state_update events; roomID names the
// thread, state counts, and extendedData may carry a tag of the caller's.
function flood(sim, count, threads = 4, extendedData = FLOOD_PAYLOAD.extendedData) {
  return sim.burst('room_state_update', { ...FLOOD_PAYLOAD, extendedData },
    { count, threads, counterKey: 'state', threadKey: 'roomID' });
}

// Captured frames from engine threads as fast as they go, copied into the capture buffer.
function frameFlood(sim, count, threads = 2) {
  return sim.burst('custom_video_render_captured_frame_data',
    { channel: 0, videoFrameParam: { ...CAPTURE, flipMode: 0 } }, { count, threads });
}

module.exports = {
  root, addonModule, simModule, PROFILE, CAPTURE, PEER, SCRIPTED,
  sleep, until, createEngine, startMedia, scriptFrames, flood, frameFlood,
};
