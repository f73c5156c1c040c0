'use strict';
// The engine events that reach script, as one table: [script event, engine callback,
// payload]. The payload is what the simulated engine is asked to emit (keys of the script
// event, in the order script must see them) and, converted by toScript(), exactly what
// script must receive. An event may have several rows (edge cases of the same event).
// Shared by the round-trip and trace tests.

const BIG = 2n ** 60n + 12345n;  // a 64-bit counter above 2^53: arrives as a rounded number
const INT_MIN = -(2 ** 31);
const INT_MAX = 2 ** 31 - 1;
const UINT_MAX = 2 ** 32 - 1;
const U = 'ünïcødé ☃ 𝄞 名前';  // 1- to 4-byte UTF-8 sequences

const list = (n, make) => Array.from({ length: n }, (_, i) => make(i));
const user = (i) => ({ userID: `user-${i}-ü`, userName: i % 2 ? `${U} ${i}` : '' });
const stream = (i) => ({ streamID: `stream-${i}-☃`, extraInfo: i % 3 ? `{"i":${i}}` : '', user: user(i) });
const relay = (i) => ({ url: `rtmp://cdn-${i}.example/ü`, state: i - 1, updateReason: INT_MAX - i, stateTime: BIG + BigInt(i) });
const device = { deviceID: '{0.0.1.00000000}.{ü-1}', deviceName: `Mikrofon ${U}` };
const recordConfig = { filePath: `/tmp/録画 ${U}.mp4`, recordType: 2 };
const bytes = (n) => Buffer.from(list(n, (i) => (i * 37 + 11) & 0xff));
const floats = (n) => list(n, (i) => (i % 2 ? -1 : 1) * (i * 0.25 + 0.5));  // float32-exact

const publishQuality = {
  videoCaptureFPS: 29.5, videoEncodeFPS: 29.25, videoSendFPS: 28.75, videoKBPS: 1234.5,
  audioCaptureFPS: 50, audioSendFPS: 49.5, rtt: 35, audioKBPS: 48.25, packetLostRate: 0.015625,
  level: -1, isHardwareEncode: true, videoCodecID: 3, totalSendBytes: BIG,
  audioSendBytes: 2n ** 53n + 1n, videoSendBytes: 0,
};

const playQuality = {
  videoRecvFPS: 30, videoDejitterFPS: 29.5, videoDecodeFPS: 29.25, videoRenderFPS: 29,
  videoKBPS: 2048.5, videoBreakRate: 0.5, audioRecvFPS: 50, audioDecodeFPS: 49.75,
  audioRenderFPS: 49.5, audioKBPS: 64.25, audioDejitterFPS: 49, audioBreakRate: 0.125, rtt: 80,
  packetLostRate: 0.03125, peerToPeerDelay: 120.5, peerToPeerPacketLostRate: 0.0625, level: 4,
  delay: 250.75, avTimestampDiff: -12.5, isHardwareDecode: false, videoCodecID: INT_MAX,
  totalRecvBytes: BIG, audioRecvBytes: 123456789, videoRecvBytes: 2n ** 63n,
  audioCumulativeBreakCount: UINT_MAX, audioCumulativeBreakTime: BIG,
  audioCumulativeBreakRate: 0.75, audioCumulativeDecodeTime: 99, videoCumulativeBreakCount: 0,
  videoCumulativeBreakTime: 1, videoCumulativeBreakRate: 1.5, videoCumulativeDecodeTime: BIG,
};

const EVENTS = [
  ['onEngineStateUpdate', 'engine_state_update', { state: 1 }],
  ['onRoomStateUpdate', 'room_state_update', { roomID: U, state: INT_MIN, errorCode: INT_MAX, extendedData: '' }],
  ['onRoomStateChanged', 'room_state_changed', { roomID: '', reason: 7, errorCode: -1, extendedData: '{"k":"ü"}' }],
  ['onRoomUserUpdate', 'room_user_update', { roomID: 'room-1', updateType: 0, userList: list(300, user) }],
  ['onRoomUserUpdate', 'room_user_update', { roomID: 'room-1', updateType: 1, userList: [] }],
  ['onRoomOnlineUserCountUpdate', 'room_online_user_count_update', { roomID: U, count: 123456 }],
  ['onRoomStreamUpdate', 'room_stream_update', { roomID: 'r', updateType: 0, streamList: [], extendedData: '' }],
  ['onRoomStreamUpdate', 'room_stream_update', { roomID: U, updateType: 1, streamList: list(200, stream), extendedData: '{"a":1}' }],
  ['onRoomStreamExtraInfoUpdate', 'room_stream_extra_info_update', { roomID: 'r', streamList: list(3, stream) }],
  ['onRoomExtraInfoUpdate', 'room_extra_info_update', {
    roomID: 'r', roomExtraInfoList: list(2, (i) => ({ key: `k${i}-ü`, value: i ? U : '', updateTime: BIG, updateUser: user(i) })),
  }],
  ['onRoomTokenWillExpire', 'room_token_will_expire', { roomID: 'r', remainTimeInSecond: 30 }],
  ['onPublisherStateUpdate', 'publisher_state_update', { streamID: U, state: 2, errorCode: 1000002, extendedData: '' }],
  ['onPublisherQualityUpdate', 'publisher_quality_update', { streamID: 's', quality: publishQuality }],
  ['onPublisherCapturedAudioFirstFrame', 'publisher_captured_audio_first_frame', {}],
  ['onPublisherSendAudioFirstFrame', 'publisher_send_audio_first_frame', { channel: 3 }],
  ['onPublisherCapturedVideoFirstFrame', 'publisher_captured_video_first_frame', { channel: 1 }],
  ['onPublisherSendVideoFirstFrame', 'publisher_send_video_first_frame', { channel: INT_MAX }],
  ['onPublisherVideoSizeChanged', 'publisher_video_size_changed', { width: 1920, height: 1080, channel: 2 }],
  ['onPublisherRelayCDNStateUpdate', 'publisher_relay_cdn_state_update', { streamID: 's', infoList: list(4, relay) }],
  ['onPlayerStateUpdate', 'player_state_update', { streamID: 's', state: 0, errorCode: INT_MIN, extendedData: U }],
  ['onPlayerQualityUpdate', 'player_quality_update', { streamID: U, quality: playQuality }],
  ['onPlayerMediaEvent', 'player_media_event', { streamID: 's', event: 5 }],
  ['onPlayerRecvAudioFirstFrame', 'player_recv_audio_first_frame', { streamID: U }],
  ['onPlayerRecvVideoFirstFrame', 'player_recv_video_first_frame', { streamID: '' }],
  ['onPlayerRenderVideoFirstFrame', 'player_render_video_first_frame', { streamID: 's-1' }],
  ['onPlayerVideoSizeChanged', 'player_video_size_changed', { streamID: 's', width: 641, height: -1 }],
  ['onPlayerRecvSEI', 'player_recv_media_side_info', { streamID: 's', data: bytes(1000) }],
  ['onPlayerRecvSEI', 'player_recv_media_side_info', { streamID: 's', data: Buffer.alloc(0) }],
  ['onPlayerSyncRecvSEI', 'player_recv_audio_side_info', { streamID: U, data: bytes(7) }],
  ['onMixerRelayCDNStateUpdate', 'mixer_relay_cdn_state_update', { taskID: `task-${U}`, infoList: list(2, relay) }],
  ['onMixerSoundLevelUpdate', 'mixer_sound_level_update', { 0: 0.5, 17: -1.25, 4294967294: 100 }],
  ['onMixerSoundLevelUpdate', 'mixer_sound_level_update', {}],
  ['onAudioDeviceStateChanged', 'audio_device_state_changed', { updateType: 1, deviceType: 0, deviceInfo: device }],
  ['onAudioDeviceVolumeChanged', 'audio_device_volume_changed', { deviceType: 1, deviceID: device.deviceID, volume: 100 }],
  ['onVideoDeviceStateChanged', 'video_device_state_changed', { updateType: 0, deviceInfo: { deviceID: '', deviceName: '' } }],
  ['onLocalDeviceExceptionOccurred', 'local_device_exception_occurred', { exceptionType: 9, deviceType: 20, deviceID: U }],
  ['onAudioVADStateUpdate', 'audio_vad_state_update', { type: 1, state: 1 }],
  ['onCapturedSoundLevelUpdate', 'captured_sound_level_update', { soundLevel: 42.5 }],
  ['onCapturedSoundLevelInfoUpdate', 'captured_sound_level_info_update', { soundLevel: 0.125, vad: 1 }],
  ['onRemoteSoundLevelUpdate', 'remote_sound_level_update', { 'stream-a': 10.5, [U]: 0, 'stream-b': 99.75 }],
  ['onRemoteSoundLevelUpdate', 'remote_sound_level_update', {}],
  ['onRemoteSoundLevelInfoUpdate', 'remote_sound_level_info_update', {
    [U]: { soundLevel: 3.5, vad: 0 }, 'stream-b': { soundLevel: 0, vad: 1 },
  }],
  ['onCapturedAudioSpectrumUpdate', 'captured_audio_spectrum_update', floats(512)],
  ['onCapturedAudioSpectrumUpdate', 'captured_audio_spectrum_update', []],
  ['onRemoteAudioSpectrumUpdate', 'remote_audio_spectrum_update', { 'stream-a': floats(64), [U]: [] }],
  ['onRemoteCameraStateUpdate', 'remote_camera_state_update', { streamID: 's', state: 10 }],
  ['onRemoteMicStateUpdate', 'remote_mic_state_update', { streamID: U, state: 0 }],
  ['onRemoteSpeakerStateUpdate', 'remote_speaker_state_update', { streamID: '', state: 1 }],
  ['onIMRecvBroadcastMessage', 'im_recv_broadcast_message', {
    roomID: 'r', messageList: list(3, (i) => ({ message: i ? `${U} `.repeat(500) : '', messageID: BIG + BigInt(i), sendTime: BIG, fromUser: user(i) })),
  }],
  ['onIMRecvBarrageMessage', 'im_recv_barrage_message', {
    roomID: U, messageList: list(2, (i) => ({ message: `barrage ${i}`, messageID: `b-${i}-ü`, sendTime: 1700000000000 + i, fromUser: user(i) })),
  }],
  ['onIMRecvCustomCommand', 'im_recv_custom_command', { roomID: 'r', command: `{"cmd":"${U}"}`, fromUser: user(1) }],
  ['onCapturedDataRecordStateUpdate', 'captured_data_record_state_update', { state: 1, errorCode: -3, channel: 0, config: recordConfig }],
  ['onCapturedDataRecordProgressUpdate', 'captured_data_record_progress_update', {
    channel: 1, progress: { duration: BIG, currentFileSize: 4096 }, config: recordConfig,
  }],
  ['onNetworkModeChanged', 'network_mode_changed', { mode: 3 }],
  ['onNetworkSpeedTestError', 'network_speed_test_error', { errorCode: 1104001, type: 1 }],
  ['onNetworkSpeedTestQualityUpdate', 'network_speed_test_quality_update', {
    type: 0, quality: { connectCost: UINT_MAX, rtt: 12, packetLostRate: 0.25 },
  }],
  ['onNetworkQuality', 'network_quality', { userID: U, upstreamQuality: 1, downstreamQuality: 5 }],
  ['onRecvExperimentalAPI', 'recv_experimental_api', { content: `{"method":"x","params":{"ü":[1,2.5,null]},"text":"${U}"}` }],
  ['onVideoObjectSegmentationStateChanged', 'video_object_segmentation_state_changed', { state: 1, channel: 3, errorCode: -7 }],
];

// Events that write no trace line (their failure line stays).
const UNTRACED = new Set([
  'onCapturedSoundLevelInfoUpdate', 'onRemoteSoundLevelInfoUpdate', 'onNetworkQuality',
  'onVideoObjectSegmentationStateChanged',
]);

// Engine callbacks that the SDK layer converts but that reach no script event.
const UNFORWARDED = [
  ['publisher_stream_event', { eventID: 1, streamID: 's', extraInfo: 'x' }],
  ['player_stream_event', { eventID: 2, streamID: 's', extraInfo: 'x' }],
  ['publisher_render_video_first_frame', { channel: 0 }],
  ['player_render_camera_video_first_frame', { streamID: 's' }],
  ['player_switched', { streamID: 's', errorCode: 0 }],
  ['publisher_low_fps_warning', { codecID: 1, channel: 0 }],
  ['publisher_video_encoder_changed', { fromCodecID: 0, toCodecID: 1, channel: 0 }],
  ['publisher_dummy_capture_image_path_error', { errorCode: 1, path: '/x', channel: 0 }],
  ['auto_mixer_sound_level_update', { s: 1 }],
  ['recv_room_transparent_message', { roomID: 'r' }],
  ['performance_status_update', {}],
  ['room_login_result', { seq: 987654, errorCode: 0 }],  // no stored completion: dropped
];

// The payload as script must see it: 64-bit integers as (rounded) numbers, byte blocks as
// new ArrayBuffers; key order kept.
function toScript(value) {
  if (typeof value === 'bigint') return Number(value);
  if (Buffer.isBuffer(value)) return new Uint8Array(value).buffer;
  if (Array.isArray(value)) return value.map(toScript);
  if (value && typeof value === 'object') {
    return Object.fromEntries(Object.entries(value).map(([k, v]) => [k, toScript(v)]));
  }
  return value;
}

// Keys in order and value kinds, all the way down: deepStrictEqual ignores key order.
function shape(value) {
  if (value instanceof ArrayBuffer) return 'ArrayBuffer';
  if (Array.isArray(value)) return value.map(shape);
  if (value && typeof value === 'object') return Object.keys(value).map((k) => [k, shape(value[k])]);
  return typeof value;
}

module.exports = { EVENTS, UNTRACED, UNFORWARDED, toScript, shape };
