'use strict';
// A tour of OrvaVantixNodeNative on the simulated engine, the first thing to run:
//   npm start            (builds the addon first)
//   node demo/index.js   (ORVA_BUILD picks the build, default release)
//
//  1. create the engine; every engine event reaches script through one callback
//  2. list the microphones, speakers and cameras
//  3. log into a room and watch the room events
//  4. start the camera preview and save a captured frame as a PNG picture
//  5. publish the camera as a stream
//  6. play that stream back and save a received frame as a PNG picture
//  7. take a snapshot of the published stream and save the JPEG
//  8. set room extra information through a promise
//  9. list the screens and windows to capture, saving one thumbnail as a PNG picture
// 10. send a broadcast message to the room through a promise
// 11. make a deliberate mistake and read the "onDebugError" alert script receives
// 12. stop everything, log out and destroy the engine
// The pictures land in demo/output/.

const path = require('path');
const addon = require('..');
const { version } = require('../package.json');
const { EventLog } = require('./events');
const { OUTPUT, saveFrameAsPng, saveBase64File } = require('./pictures');

const ROOM = 'demo-room';
const STREAM = 'demo-stream';
const USER = { userID: 'demo-user', userName: 'Demo User' };
const MAIN_CHANNEL = 0;
const CONNECTED = 2;      // room state
const DISCONNECTED = 0;
const PUBLISHING = 2;     // publisher state
const PLAYING = 2;        // player state
const VIDEO_360P = 2;     // video configuration preset
const AUDIO_INPUT = 0;    // audio device types
const AUDIO_OUTPUT = 1;

const step = (text) => console.log(`\n== ${text}`);
const shown = (file) => path.relative(process.cwd(), file) || file;

// Room, publisher and player states are worth reading; quality reports and the like are not.
const PRINTED = /^on(RoomStateUpdate|RoomStateChanged|RoomUserUpdate|RoomStreamUpdate|PublisherStateUpdate|PlayerStateUpdate)$/;
// Events of the engine (CreateEngine's callback).
const engineEvents = new EventLog({ print: (name) => PRINTED.test(name) });
// Frame events, sent to the function registered under the name "tsfn": many a second.
const frameEvents = new EventLog();

// A frame in a registered Buffer: the addon writes alpha 255, the Buffer starts zeroed.
const filled = (buffer) => buffer[3] === 255;

// The addon keeps only the address of a registered Buffer: script keeps the Buffer itself
// alive for as long as it may be written, here until the engine is destroyed.
const registered = [];
const frameBuffer = (bytes) => {
  const buffer = Buffer.alloc(bytes);
  registered.push(buffer);
  return buffer;
};

async function tour() {
  step('CreateEngine');
  const engine = addon.CreateEngine({
    profile: { appID: 1234567, appSign: '', scenario: 0 },
    tsfn: engineEvents.listener,
    SDKVersion: version,
    electronVersion: process.versions.electron || `node-${process.versions.node}`,
  });
  console.log(`engine object: ${engine.constructor.name}, engine library ${addon.GetNativeDllVersion()}`);
  // Frame events go to their own listener.
  engine.registerEventHandler({ name: 'tsfn', func: frameEvents.listener });

  step('devices: the current one of each kind is marked');
  const lists = [
    ['microphones', engine.getAudioDeviceList({ deviceType: AUDIO_INPUT }), engine.getCurrentAudioDevice({ deviceType: AUDIO_INPUT }).deviceID],
    ['speakers', engine.getAudioDeviceList({ deviceType: AUDIO_OUTPUT }), engine.getCurrentAudioDevice({ deviceType: AUDIO_OUTPUT }).deviceID],
    ['cameras', engine.getVideoDeviceList(), engine.getDefaultVideoDeviceID()],
  ];
  for (const [kind, devices, current] of lists) {
    console.log(`${kind}: ${devices.map((d) => `${d.deviceName} (${d.deviceID})${d.deviceID === current ? ' *' : ''}`).join(', ')}`);
  }

  step(`loginRoom "${ROOM}" as ${USER.userID}`);
  const connected = engineEvents.next('onRoomStateUpdate', (p) => p.roomID === ROOM && p.state === CONNECTED);
  engine.loginRoom({ roomID: ROOM, user: USER, config: { maxMemberCount: 0, isUserStatusNotify: true, token: '' } });
  await connected;

  step('startPreview at 360p; captured frames are copied into a script Buffer');
  engine.setVideoConfig({ config: VIDEO_360P, channel: MAIN_CHANNEL });
  // The first frame tells the size; a Buffer of that size is then registered for the channel.
  const sized = frameEvents.next('onCaptureVideoSizeChanged', (p) => p.channel === MAIN_CHANNEL);
  engine.startPreview({ channel: MAIN_CHANNEL, viewMode: 0 });
  const capture = await sized;
  const captureBuffer = frameBuffer(capture.width * capture.height * 4);
  const captured = frameEvents.next('onCapturedVideoFrameRawData', (p) => p.channel === MAIN_CHANNEL && filled(captureBuffer));
  engine.initVideoCaptureBuffer({ render_buffer: captureBuffer, width: capture.width, height: capture.height, channel: MAIN_CHANNEL });
  await captured;
  // The engine keeps copying frames into the registered Buffer. To read one whole frame,
  // register another Buffer first: once that returns, nothing writes into the first one.
  engine.initVideoCaptureBuffer({ render_buffer: frameBuffer(captureBuffer.length), width: capture.width, height: capture.height, channel: MAIN_CHANNEL });
  const capturedFile = saveFrameAsPng('captured-frame.png', captureBuffer, capture.width, capture.height);
  console.log(`captured frame ${capture.width} x ${capture.height} saved: ${shown(capturedFile)}`);

  step(`startPublishingStream "${STREAM}"`);
  const publishing = engineEvents.next('onPublisherStateUpdate', (p) => p.streamID === STREAM && p.state === PUBLISHING);
  engine.startPublishingStream({ streamID: STREAM, channel: MAIN_CHANNEL, config: { roomID: ROOM } });
  await publishing;

  step(`startPlayingStream "${STREAM}" (our own, back from the engine)`);
  // Frames of a stream with no Buffer still announce themselves with their size.
  const firstRemote = frameEvents.next('onRemoteVideoFrameRawData', (p) => p.streamID === STREAM, 10000);
  const playing = engineEvents.next('onPlayerStateUpdate', (p) => p.streamID === STREAM && p.state === PLAYING);
  engine.startPlayingStream({ streamID: STREAM, config: { roomID: ROOM } });
  await playing;
  const remote = (await firstRemote).videoFrameParam;
  const playBuffer = frameBuffer(remote.width * remote.height * 4);
  const received = frameEvents.next('onRemoteVideoFrameRawData', (p) => p.streamID === STREAM && filled(playBuffer));
  engine.initVideoPlayBuffer({ render_buffer: playBuffer, width: remote.width, height: remote.height, streamID: STREAM });
  await received;
  engine.initVideoPlayBuffer({ render_buffer: frameBuffer(playBuffer.length), width: remote.width, height: remote.height, streamID: STREAM });
  const remoteFile = saveFrameAsPng('remote-frame.png', playBuffer, remote.width, remote.height);
  console.log(`remote frame ${remote.width} x ${remote.height} saved: ${shown(remoteFile)}`);

  step('takePublishStreamSnapshot: a promise of { errorCode, image } with a Base64 JPEG');
  const snapshot = await engine.takePublishStreamSnapshot({ channel: MAIN_CHANNEL });
  const snapshotFile = saveBase64File('publish-snapshot.jpg', snapshot.image);
  console.log(`errorCode ${snapshot.errorCode}, ${snapshot.image.length} characters of JPEG saved: ${shown(snapshotFile)}`);

  step('setRoomExtraInfo: a promise settled by the engine\'s answer');
  const extra = await engine.setRoomExtraInfo({ roomID: ROOM, key: 'topic', value: 'a tour of the addon' });
  console.log(`setRoomExtraInfo -> ${JSON.stringify(extra)}`);

  step('getScreenCaptureSources: a promise of the capturable screens and windows, with PNG thumbnails');
  const sources = await engine.getScreenCaptureSources({ thumbnailWidth: 320, thumbnailHeight: 180, iconWidth: 32, iconHeight: 32 });
  for (const s of sources) {
    console.log(`  ${s.sourceType === 2 ? 'screen' : 'window'} ${s.sourceID} "${s.sourceName}": ` +
      `thumbnail ${s.thumbnailImage.width} x ${s.thumbnailImage.height}, icon ${s.iconImage.width} x ${s.iconImage.height}`);
  }
  const thumbnailFile = saveBase64File('source-thumbnail.png', sources[0].thumbnailImage.buffer);
  console.log(`thumbnail of "${sources[0].sourceName}" saved: ${shown(thumbnailFile)}`);

  step('sendBroadcastMessage: a promise of { errorCode, messageID }; the room hears it too');
  const heard = engineEvents.next('onIMRecvBroadcastMessage', (p) => p.roomID === ROOM);
  const sent = await engine.sendBroadcastMessage({ roomID: ROOM, message: 'hello from the tour' });
  console.log(`sendBroadcastMessage -> ${JSON.stringify(sent)}`);
  const { messageList } = await heard;
  console.log(`onIMRecvBroadcastMessage: "${messageList[0].message}" from ${messageList[0].fromUser.userID}`);

  step('a deliberate mistake: setPlayVolume without its "volume"');
  const alert = engineEvents.next('onDebugError');
  engine.setPlayVolume({ streamID: STREAM });
  const { alertTitle, alertBody, ...details } = await alert;
  console.log(alertTitle);
  console.log(alertBody);
  console.log(details);
  // Promise methods reject instead of raising the alert.
  await engine.setRoomExtraInfo({ roomID: ROOM, key: 'topic' }).catch((reason) => {
    console.log(`setRoomExtraInfo without "value" rejects with: ${JSON.stringify(reason)}`);
  });

  step('stop playing, publishing and the preview; logoutRoom; DestroyEngine');
  engine.stopPlayingStream({ streamID: STREAM });
  engine.stopPublishingStream({ channel: MAIN_CHANNEL });
  engine.stopPreview({ channel: MAIN_CHANNEL });
  const left = engineEvents.next('onRoomStateUpdate', (p) => p.roomID === ROOM && p.state === DISCONNECTED);
  engine.logoutRoom({ roomID: ROOM });
  await left;
  console.log(`DestroyEngine() -> ${addon.DestroyEngine()}`);
  registered.length = 0;  // no buffer is registered any more
  // With the engine's event functions released, nothing keeps the process alive.

  step(`pictures in ${shown(OUTPUT)}/`);
  for (const file of [capturedFile, remoteFile, snapshotFile, thumbnailFile]) console.log(`  ${path.basename(file)}`);
}

tour().catch((error) => {
  console.error(`\ndemo failed: ${error.stack || error}`);
  addon.DestroyEngine();
  process.exitCode = 1;
});
