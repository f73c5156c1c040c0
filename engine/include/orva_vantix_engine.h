/*
 * OrvaVantixEngine C interface.
 *
 * Every entry point returns or reports plain values; nothing throws. Result codes are
 * int32_t, 0 meaning success. Callbacks arrive on engine threads, never on the thread that
 * made a call, and the data they point to is valid only for the duration of the callback.
 * The style rules that keep this header machine-readable are in README.md beside it.
 */
#ifndef ORVA_VANTIX_ENGINE_H
#define ORVA_VANTIX_ENGINE_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define ORVA_CALL __cdecl
#if defined(ORVA_BUILDING_ENGINE)
#define ORVA_API __declspec(dllexport)
#else
#define ORVA_API __declspec(dllimport)
#endif
#else
#define ORVA_CALL
#if defined(ORVA_BUILDING_ENGINE)
#define ORVA_API __attribute__((visibility("default")))
#else
#define ORVA_API
#endif
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------------------------------
 * Sizes of fixed text fields (bytes, terminator included)
 * ------------------------------------------------------------------------------------- */
#define ORVA_MAX_ID_LEN 128
#define ORVA_MAX_USERNAME_LEN 256
#define ORVA_MAX_APPSIGN_LEN 128
#define ORVA_MAX_TOKEN_LEN 2048
#define ORVA_MAX_LOG_PATH_LEN 512
#define ORVA_MAX_EXTRA_INFO_LEN 1024
#define ORVA_MAX_URL_LEN 1024
#define ORVA_MAX_DEVICE_ID_LEN 256
#define ORVA_MAX_DEVICE_NAME_LEN 256
#define ORVA_MAX_FILE_PATH_LEN 512
#define ORVA_MAX_SOURCE_NAME_LEN 256
#define ORVA_MAX_VERSION_LEN 128
#define ORVA_REVERB_ECHO_DELAYS 7
#define ORVA_VIDEO_FRAME_PLANES 4

/* ---------------------------------------------------------------------------------------
 * Enumerations (32-bit signed values)
 * ------------------------------------------------------------------------------------- */
typedef enum orva_publish_channel {
    ORVA_PUBLISH_CHANNEL_MAIN = 0,
    ORVA_PUBLISH_CHANNEL_AUX = 1,
    ORVA_PUBLISH_CHANNEL_THIRD = 2,
    ORVA_PUBLISH_CHANNEL_FOURTH = 3
} orva_publish_channel;

typedef enum orva_room_state {
    ORVA_ROOM_STATE_DISCONNECTED = 0,
    ORVA_ROOM_STATE_CONNECTING = 1,
    ORVA_ROOM_STATE_CONNECTED = 2
} orva_room_state;

typedef enum orva_room_state_changed_reason {
    ORVA_ROOM_STATE_CHANGED_REASON_LOGINING = 0,
    ORVA_ROOM_STATE_CHANGED_REASON_LOGINED = 1,
    ORVA_ROOM_STATE_CHANGED_REASON_LOGIN_FAILED = 2,
    ORVA_ROOM_STATE_CHANGED_REASON_RECONNECTING = 3,
    ORVA_ROOM_STATE_CHANGED_REASON_RECONNECTED = 4,
    ORVA_ROOM_STATE_CHANGED_REASON_RECONNECT_FAILED = 5,
    ORVA_ROOM_STATE_CHANGED_REASON_KICK_OUT = 6,
    ORVA_ROOM_STATE_CHANGED_REASON_LOGOUT = 7,
    ORVA_ROOM_STATE_CHANGED_REASON_LOGOUT_FAILED = 8
} orva_room_state_changed_reason;

typedef enum orva_update_type {
    ORVA_UPDATE_TYPE_ADD = 0,
    ORVA_UPDATE_TYPE_DELETE = 1
} orva_update_type;

typedef enum orva_publisher_state {
    ORVA_PUBLISHER_STATE_NO_PUBLISH = 0,
    ORVA_PUBLISHER_STATE_PUBLISH_REQUESTING = 1,
    ORVA_PUBLISHER_STATE_PUBLISHING = 2
} orva_publisher_state;

typedef enum orva_player_state {
    ORVA_PLAYER_STATE_NO_PLAY = 0,
    ORVA_PLAYER_STATE_PLAY_REQUESTING = 1,
    ORVA_PLAYER_STATE_PLAYING = 2
} orva_player_state;

typedef enum orva_engine_state {
    ORVA_ENGINE_STATE_START = 0,
    ORVA_ENGINE_STATE_STOP = 1
} orva_engine_state;

/* Raw video frame pixel formats. The addon configures the engine for RGBA output. */
typedef enum orva_video_frame_format {
    ORVA_VIDEO_FRAME_FORMAT_UNKNOWN = 0,
    ORVA_VIDEO_FRAME_FORMAT_I420 = 1,
    ORVA_VIDEO_FRAME_FORMAT_NV12 = 2,
    ORVA_VIDEO_FRAME_FORMAT_NV21 = 3,
    /* 4 bytes a pixel B,G,R,A; rows bottom-up (the last row first in memory). */
    ORVA_VIDEO_FRAME_FORMAT_BGRA32 = 4,
    /* 4 bytes a pixel R,G,B,A; rows bottom-up, packed at width * 4. */
    ORVA_VIDEO_FRAME_FORMAT_RGBA32 = 5,
    ORVA_VIDEO_FRAME_FORMAT_ARGB32 = 6,
    ORVA_VIDEO_FRAME_FORMAT_ABGR32 = 7,
    ORVA_VIDEO_FRAME_FORMAT_I422 = 8
} orva_video_frame_format;

typedef enum orva_video_frame_format_series {
    ORVA_VIDEO_FRAME_FORMAT_SERIES_RGB = 0,
    ORVA_VIDEO_FRAME_FORMAT_SERIES_RGBA = 1
} orva_video_frame_format_series;

typedef enum orva_video_buffer_type {
    ORVA_VIDEO_BUFFER_TYPE_UNKNOWN = 0,
    ORVA_VIDEO_BUFFER_TYPE_RAW_DATA = 1,
    ORVA_VIDEO_BUFFER_TYPE_ENCODED_DATA = 2
} orva_video_buffer_type;

typedef enum orva_audio_device_type {
    ORVA_AUDIO_DEVICE_TYPE_INPUT = 0,
    ORVA_AUDIO_DEVICE_TYPE_OUTPUT = 1
} orva_audio_device_type;

typedef enum orva_media_player_state {
    ORVA_MEDIA_PLAYER_STATE_NO_PLAY = 0,
    ORVA_MEDIA_PLAYER_STATE_PLAYING = 1,
    ORVA_MEDIA_PLAYER_STATE_PAUSING = 2,
    ORVA_MEDIA_PLAYER_STATE_PLAY_ENDED = 3
} orva_media_player_state;

typedef enum orva_audio_effect_play_state {
    ORVA_AUDIO_EFFECT_PLAY_STATE_NO_PLAY = 0,
    ORVA_AUDIO_EFFECT_PLAY_STATE_PLAYING = 1,
    ORVA_AUDIO_EFFECT_PLAY_STATE_PAUSING = 2,
    ORVA_AUDIO_EFFECT_PLAY_STATE_PLAY_ENDED = 3
} orva_audio_effect_play_state;

typedef enum orva_platform_language {
    ORVA_PLATFORM_LANGUAGE_CPP = 0,
    ORVA_PLATFORM_LANGUAGE_JS = 5
} orva_platform_language;

/* Windows message that carries a task to the engine's UI thread (see recv_windows_message). */
#define ORVA_TASK_WINDOW_MESSAGE 42854

/* ---------------------------------------------------------------------------------------
 * Handles
 * ------------------------------------------------------------------------------------- */
/* A snapshot image. On Windows an HBITMAP owned by the engine; elsewhere a
 * `const orva_pixel_image*`. Valid during the result callback only. */
typedef void* orva_image_handle;

/* A native window handle (HWND on Windows), or NULL for no view. */
typedef void* orva_view_handle;

/* ---------------------------------------------------------------------------------------
 * Structures
 * ------------------------------------------------------------------------------------- */
/* A snapshot picture where orva_image_handle is not an HBITMAP: 4 bytes a pixel in the
 * order B,G,R,A (`format` ORVA_VIDEO_FRAME_FORMAT_BGRA32), rows TOP-DOWN (the first row
 * first in memory), `stride` bytes apart with stride >= width * 4; dataLength is
 * stride * height. */
typedef struct orva_pixel_image {
    const uint8_t* data;
    uint32_t dataLength;
    int32_t width;
    int32_t height;
    int32_t stride;
    int32_t format;
} orva_pixel_image;

typedef struct orva_log_config {
    char logPath[ORVA_MAX_LOG_PATH_LEN];
    uint64_t logSize;
    uint32_t logCount;
} orva_log_config;

typedef struct orva_engine_config {
    orva_log_config logConfig;
    /* "key=value;key=value" */
    const char* advancedConfig;
} orva_engine_config;

typedef struct orva_engine_profile {
    uint32_t appID;
    char appSign[ORVA_MAX_APPSIGN_LEN];
    int32_t scenario;
} orva_engine_profile;

typedef struct orva_user {
    char userID[ORVA_MAX_ID_LEN];
    char userName[ORVA_MAX_USERNAME_LEN];
} orva_user;

typedef struct orva_room_config {
    uint32_t maxMemberCount;
    bool isUserStatusNotify;
    char token[ORVA_MAX_TOKEN_LEN];
    uint32_t capabilityNegotiationTypes;
} orva_room_config;

typedef struct orva_stream {
    orva_user user;
    char streamID[ORVA_MAX_ID_LEN];
    char extraInfo[ORVA_MAX_EXTRA_INFO_LEN];
} orva_stream;

typedef struct orva_room_extra_info {
    char key[ORVA_MAX_ID_LEN];
    char value[ORVA_MAX_EXTRA_INFO_LEN];
    orva_user updateUser;
    uint64_t updateTime;
} orva_room_extra_info;

typedef struct orva_rect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
} orva_rect;

typedef struct orva_canvas {
    orva_view_handle view;
    int32_t viewMode;
    uint32_t backgroundColor;
} orva_canvas;

typedef struct orva_publisher_config {
    char roomID[ORVA_MAX_ID_LEN];
    int32_t forceSynchronousNetworkTime;
    int32_t streamCensorshipMode;
} orva_publisher_config;

typedef struct orva_video_config {
    int32_t captureWidth;
    int32_t captureHeight;
    int32_t encodeWidth;
    int32_t encodeHeight;
    int32_t fps;
    int32_t bitrate;
    int32_t codecID;
} orva_video_config;

typedef struct orva_audio_config {
    int32_t bitrate;
    int32_t channel;
    int32_t codecID;
} orva_audio_config;

typedef struct orva_cdn_config {
    char url[ORVA_MAX_URL_LEN];
    char authParam[ORVA_MAX_EXTRA_INFO_LEN];
} orva_cdn_config;

typedef struct orva_watermark {
    char imageURL[ORVA_MAX_URL_LEN];
    orva_rect layout;
} orva_watermark;

typedef struct orva_sei_config {
    int32_t type;
} orva_sei_config;

typedef struct orva_player_config {
    int32_t resourceMode;
    int32_t videoCodecID;
    int32_t sourceResourceType;
    char roomID[ORVA_MAX_ID_LEN];
    int32_t codecTemplateID;
    int32_t resourceSwitchMode;
    /* NULL when no CDN configuration is given. */
    const orva_cdn_config* cdnConfig;
} orva_player_config;

typedef struct orva_publish_stream_quality {
    double videoCaptureFPS;
    double videoEncodeFPS;
    double videoSendFPS;
    double videoKBPS;
    double audioCaptureFPS;
    double audioSendFPS;
    double rtt;
    double audioKBPS;
    double packetLostRate;
    int32_t level;
    bool isHardwareEncode;
    int32_t videoCodecID;
    uint64_t totalSendBytes;
    uint64_t audioSendBytes;
    uint64_t videoSendBytes;
} orva_publish_stream_quality;

typedef struct orva_play_stream_quality {
    double videoRecvFPS;
    double videoDejitterFPS;
    double videoDecodeFPS;
    double videoRenderFPS;
    double videoKBPS;
    double videoBreakRate;
    double audioRecvFPS;
    double audioDecodeFPS;
    double audioRenderFPS;
    double audioKBPS;
    double audioDejitterFPS;
    double audioBreakRate;
    double rtt;
    double packetLostRate;
    double peerToPeerDelay;
    double peerToPeerPacketLostRate;
    int32_t level;
    double delay;
    double avTimestampDiff;
    bool isHardwareDecode;
    int32_t videoCodecID;
    uint64_t totalRecvBytes;
    uint64_t audioRecvBytes;
    uint64_t videoRecvBytes;
    uint32_t audioCumulativeBreakCount;
    uint64_t audioCumulativeBreakTime;
    double audioCumulativeBreakRate;
    uint64_t audioCumulativeDecodeTime;
    uint32_t videoCumulativeBreakCount;
    uint64_t videoCumulativeBreakTime;
    double videoCumulativeBreakRate;
    uint64_t videoCumulativeDecodeTime;
} orva_play_stream_quality;

typedef struct orva_stream_relay_cdn_info {
    char url[ORVA_MAX_URL_LEN];
    int32_t state;
    int32_t updateReason;
    uint64_t stateTime;
} orva_stream_relay_cdn_info;

typedef struct orva_device_info {
    char deviceID[ORVA_MAX_DEVICE_ID_LEN];
    char deviceName[ORVA_MAX_DEVICE_NAME_LEN];
} orva_device_info;

typedef struct orva_stream_sound_level {
    char streamID[ORVA_MAX_ID_LEN];
    float soundLevel;
} orva_stream_sound_level;

typedef struct orva_stream_sound_level_info {
    char streamID[ORVA_MAX_ID_LEN];
    float soundLevel;
    int32_t vad;
} orva_stream_sound_level_info;

typedef struct orva_stream_audio_spectrum {
    char streamID[ORVA_MAX_ID_LEN];
    const float* spectrumList;
    uint32_t spectrumListCount;
} orva_stream_audio_spectrum;

typedef struct orva_mixer_sound_level {
    uint32_t soundLevelID;
    float soundLevel;
} orva_mixer_sound_level;

typedef struct orva_broadcast_message_info {
    const char* message;
    uint64_t messageID;
    uint64_t sendTime;
    orva_user fromUser;
} orva_broadcast_message_info;

typedef struct orva_barrage_message_info {
    const char* message;
    char messageID[ORVA_MAX_ID_LEN];
    uint64_t sendTime;
    orva_user fromUser;
} orva_barrage_message_info;

typedef struct orva_room_recv_transparent_message {
    orva_user sendUser;
    const uint8_t* content;
    uint32_t contentLength;
} orva_room_recv_transparent_message;

typedef struct orva_room_send_transparent_message {
    int32_t sendMode;
    int32_t sendType;
    const orva_user* recvUserList;
    uint32_t recvUserListCount;
    const uint8_t* content;
    uint32_t contentLength;
    int32_t timeOut;
} orva_room_send_transparent_message;

typedef struct orva_data_record_config {
    char filePath[ORVA_MAX_FILE_PATH_LEN];
    int32_t recordType;
} orva_data_record_config;

typedef struct orva_data_record_progress {
    uint64_t duration;
    uint64_t currentFileSize;
} orva_data_record_progress;

typedef struct orva_network_speed_test_config {
    bool testUplink;
    uint32_t expectedUplinkBitrate;
    bool testDownlink;
    uint32_t expectedDownlinkBitrate;
} orva_network_speed_test_config;

typedef struct orva_network_speed_test_quality {
    uint32_t connectCost;
    uint32_t rtt;
    double packetLostRate;
} orva_network_speed_test_quality;

typedef struct orva_network_time_info {
    uint64_t timestamp;
    int32_t maxDeviation;
} orva_network_time_info;

typedef struct orva_test_network_connectivity_result {
    uint32_t connectCost;
} orva_test_network_connectivity_result;

typedef struct orva_network_probe_result {
    int32_t httpErrorCode;
    uint32_t httpRequestCostTime;
    int32_t tcpErrorCode;
    uint32_t tcpRtt;
    int32_t udpErrorCode;
    uint32_t udpRtt;
    char traceroute[ORVA_MAX_EXTRA_INFO_LEN];
} orva_network_probe_result;

typedef struct orva_performance_status {
    double cpuUsageApp;
    double cpuUsageSystem;
    double memoryUsageApp;
    double memoryUsageSystem;
    double memoryUsedApp;
} orva_performance_status;

typedef struct orva_sound_level_config {
    uint32_t millisecond;
    bool enableVAD;
} orva_sound_level_config;

typedef struct orva_voice_changer_param {
    float pitch;
} orva_voice_changer_param;

typedef struct orva_reverb_echo_param {
    float inGain;
    float outGain;
    int32_t numDelays;
    int32_t delay[ORVA_REVERB_ECHO_DELAYS];
    float decay[ORVA_REVERB_ECHO_DELAYS];
} orva_reverb_echo_param;

typedef struct orva_reverb_advanced_param {
    float roomSize;
    float reverberance;
    float damping;
    bool wetOnly;
    float wetGain;
    float dryGain;
    float toneLow;
    float toneHigh;
    float preDelay;
    float stereoWidth;
} orva_reverb_advanced_param;

/* The engine's description of one raw video frame. */
typedef struct orva_video_frame_param {
    int32_t format;
    int32_t strides[ORVA_VIDEO_FRAME_PLANES];
    int32_t width;
    int32_t height;
    int32_t rotation;
} orva_video_frame_param;

typedef struct orva_video_encoded_frame_param {
    int32_t format;
    bool isKeyFrame;
    int32_t rotation;
    int32_t width;
    int32_t height;
    const uint8_t* sei;
    uint32_t seiLength;
} orva_video_encoded_frame_param;

typedef struct orva_custom_video_render_config {
    int32_t bufferType;
    int32_t frameFormatSeries;
    bool enableEngineRender;
} orva_custom_video_render_config;

typedef struct orva_custom_video_capture_config {
    int32_t bufferType;
} orva_custom_video_capture_config;

typedef struct orva_custom_video_process_config {
    int32_t bufferType;
} orva_custom_video_process_config;

typedef struct orva_traffic_control_info {
    int32_t fps;
    int32_t bitrate;
    int32_t width;
    int32_t height;
} orva_traffic_control_info;

typedef struct orva_roi_rect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
    int32_t strength;
} orva_roi_rect;

typedef struct orva_audio_frame_param {
    int32_t sampleRate;
    int32_t channel;
} orva_audio_frame_param;

typedef struct orva_audio_mixing_data {
    uint8_t* audioData;
    uint32_t audioDataLength;
    orva_audio_frame_param param;
    uint8_t* sei;
    uint32_t seiLength;
} orva_audio_mixing_data;

typedef struct orva_custom_audio_processing_config {
    uint32_t sampleRate;
    uint32_t channel;
    uint32_t samples;
} orva_custom_audio_processing_config;

typedef struct orva_custom_audio_config {
    int32_t sourceType;
} orva_custom_audio_config;

typedef struct orva_audio_source_mix_config {
    const int32_t* mediaPlayerIndexList;
    uint32_t mediaPlayerIndexListCount;
    const int32_t* audioEffectPlayerIndexList;
    uint32_t audioEffectPlayerIndexListCount;
    bool enableMixSystemPlayout;
    bool enableMixEnginePlayout;
} orva_audio_source_mix_config;

typedef struct orva_background_config {
    int32_t processType;
    uint32_t color;
    char imageURL[ORVA_MAX_URL_LEN];
    int32_t blurLevel;
} orva_background_config;

typedef struct orva_object_segmentation_config {
    int32_t objectSegmentationType;
    orva_background_config backgroundConfig;
} orva_object_segmentation_config;

typedef struct orva_font {
    int32_t type;
    int32_t size;
    uint32_t color;
    int32_t transparency;
    bool border;
    uint32_t borderColor;
} orva_font;

typedef struct orva_label_info {
    const char* text;
    int32_t left;
    int32_t top;
    orva_font font;
} orva_label_info;

typedef struct orva_mixer_image_info {
    char url[ORVA_MAX_URL_LEN];
    int32_t displayMode;
} orva_mixer_image_info;

typedef struct orva_mixer_input {
    char streamID[ORVA_MAX_ID_LEN];
    int32_t contentType;
    orva_rect layout;
    uint32_t soundLevelID;
    int32_t cornerRadius;
    orva_mixer_image_info imageInfo;
    int32_t renderMode;
    int32_t volume;
    bool isAudioFocus;
    int32_t audioDirection;
    /* NULL when the input has no label. */
    const orva_label_info* label;
} orva_mixer_input;

typedef struct orva_mixer_output_video_config {
    int32_t videoCodecID;
    int32_t bitrate;
    int32_t encodeProfile;
    int32_t encodeLatency;
} orva_mixer_output_video_config;

typedef struct orva_mixer_output {
    char target[ORVA_MAX_URL_LEN];
    orva_mixer_output_video_config videoConfig;
} orva_mixer_output;

typedef struct orva_mixer_video_config {
    int32_t width;
    int32_t height;
    int32_t fps;
    int32_t bitrate;
    int32_t quality;
    int32_t rateControlMode;
} orva_mixer_video_config;

typedef struct orva_mixer_audio_config {
    int32_t bitrate;
    int32_t channel;
    int32_t codecID;
} orva_mixer_audio_config;

typedef struct orva_mixer_whiteboard {
    uint64_t whiteboardID;
    int32_t horizontalRatio;
    int32_t verticalRatio;
    bool isPPTAnimation;
    orva_rect layout;
    int32_t zOrder;
    uint32_t backgroundColor;
} orva_mixer_whiteboard;

typedef struct orva_mixer_task {
    char taskID[ORVA_MAX_ID_LEN];
    const orva_mixer_input* inputList;
    uint32_t inputListCount;
    const orva_mixer_output* outputList;
    uint32_t outputListCount;
    orva_mixer_video_config videoConfig;
    orva_mixer_audio_config audioConfig;
    /* NULL when absent. */
    const orva_watermark* watermark;
    /* NULL when absent. */
    const orva_mixer_whiteboard* whiteboard;
    const char* backgroundImageURL;
    bool enableSoundLevel;
    int32_t streamAlignmentMode;
    const uint8_t* userData;
    uint32_t userDataLength;
    int32_t minPlayStreamBufferLength;
    /* "key=value;key=value", or NULL. */
    const char* advancedConfig;
} orva_mixer_task;

typedef struct orva_media_player_media_info {
    int32_t width;
    int32_t height;
    int32_t frameRate;
} orva_media_player_media_info;

typedef struct orva_audio_effect_play_config {
    uint32_t playCount;
    bool isPublishOut;
} orva_audio_effect_play_config;

typedef struct orva_image_buffer {
    /* 4 bytes a pixel B,G,R,A, rows packed at width * 4. */
    const uint8_t* buffer;
    uint32_t bufferLength;
    int32_t width;
    int32_t height;
} orva_image_buffer;

typedef struct orva_screen_capture_source_info {
    int32_t sourceType;
    int64_t sourceID;
    char sourceName[ORVA_MAX_SOURCE_NAME_LEN];
    orva_image_buffer thumbnailImage;
    orva_image_buffer iconImage;
} orva_screen_capture_source_info;

typedef struct orva_copyrighted_music_config {
    orva_user user;
} orva_copyrighted_music_config;

typedef struct orva_copyrighted_music_request_config {
    char songID[ORVA_MAX_ID_LEN];
    int32_t mode;
    int32_t vendorID;
    char roomID[ORVA_MAX_ID_LEN];
    char masterID[ORVA_MAX_ID_LEN];
    int32_t sceneID;
} orva_copyrighted_music_request_config;

typedef struct orva_position {
    float x;
    float y;
    float z;
} orva_position;

typedef struct orva_scene_config {
    uint32_t channelCount;
} orva_scene_config;

typedef struct orva_ai_voice_changer_speaker_info {
    int32_t id;
    char name[ORVA_MAX_ID_LEN];
} orva_ai_voice_changer_speaker_info;

/* ---------------------------------------------------------------------------------------
 * Callback types, in registration order
 * ------------------------------------------------------------------------------------- */
/* A Windows message for the engine's UI thread: `message` is the message identifier,
 * `param` its pointer-sized parameter. */
typedef void (ORVA_CALL *orva_on_recv_windows_message)(uint32_t message, uintptr_t param, void* user_context);
/* The engine finished an orva_vantix_engine_uninit_async. */
typedef void (ORVA_CALL *orva_on_engine_uninit)(void* user_context);
typedef void (ORVA_CALL *orva_on_fatal_error)(int32_t errorCode, void* user_context);
typedef void (ORVA_CALL *orva_on_debug_error)(int32_t errorCode, const char* funcName, const char* info, void* user_context);
typedef void (ORVA_CALL *orva_on_engine_state_update)(int32_t state, void* user_context);
typedef void (ORVA_CALL *orva_on_upload_log_result)(int32_t seq, int32_t errorCode, void* user_context);
typedef void (ORVA_CALL *orva_on_room_stream_update)(const char* roomID, int32_t updateType, const orva_stream* streamList, uint32_t streamListCount, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_room_stream_extra_info_update)(const char* roomID, const orva_stream* streamList, uint32_t streamListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_room_state_update)(const char* roomID, int32_t state, int32_t errorCode, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_room_user_update)(const char* roomID, int32_t updateType, const orva_user* userList, uint32_t userListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_room_online_user_count_update)(const char* roomID, int32_t count, void* user_context);
typedef void (ORVA_CALL *orva_on_room_extra_info_update)(const char* roomID, const orva_room_extra_info* roomExtraInfoList, uint32_t roomExtraInfoListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_room_set_room_extra_info_result)(int32_t errorCode, const char* roomID, const char* key, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_room_token_will_expire)(const char* roomID, int32_t remainTimeInSecond, void* user_context);
typedef void (ORVA_CALL *orva_on_room_login_result)(int32_t errorCode, const char* extendedData, const char* roomID, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_room_logout_result)(int32_t errorCode, const char* extendedData, const char* roomID, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_room_state_changed)(const char* roomID, int32_t reason, int32_t errorCode, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_state_update)(const char* streamID, int32_t state, int32_t errorCode, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_quality_update)(const char* streamID, const orva_publish_stream_quality* quality, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_captured_audio_first_frame)(void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_stream_event)(int32_t eventID, const char* streamID, const char* extraInfo, void* user_context);
typedef void (ORVA_CALL *orva_on_player_stream_event)(int32_t eventID, const char* streamID, const char* extraInfo, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_captured_video_first_frame)(int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_send_audio_first_frame)(int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_send_video_first_frame)(int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_render_video_first_frame)(int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_video_size_changed)(int32_t width, int32_t height, int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_update_cdn_url_result)(const char* streamID, int32_t errorCode, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_relay_cdn_state_update)(const char* streamID, const orva_stream_relay_cdn_info* infoList, uint32_t infoListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_video_encoder_changed)(int32_t fromCodecID, int32_t toCodecID, int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_update_stream_extra_info_result)(int32_t errorCode, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_take_snapshot_result)(int32_t errorCode, int32_t channel, orva_image_handle image, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_low_fps_warning)(int32_t codecID, int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_publisher_dummy_capture_image_path_error)(int32_t errorCode, const char* path, int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_player_state_update)(const char* streamID, int32_t state, int32_t errorCode, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_player_switched)(const char* streamID, int32_t errorCode, void* user_context);
typedef void (ORVA_CALL *orva_on_player_quality_update)(const char* streamID, const orva_play_stream_quality* quality, void* user_context);
typedef void (ORVA_CALL *orva_on_player_media_event)(const char* streamID, int32_t event, void* user_context);
typedef void (ORVA_CALL *orva_on_player_recv_audio_first_frame)(const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_player_recv_video_first_frame)(const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_player_render_video_first_frame)(const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_player_render_camera_video_first_frame)(const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_player_video_size_changed)(const char* streamID, int32_t width, int32_t height, void* user_context);
/* SEI carried in the video stream. */
typedef void (ORVA_CALL *orva_on_player_recv_media_side_info)(const char* streamID, const uint8_t* data, uint32_t dataLength, void* user_context);
/* SEI carried in the audio stream, delivered in sync with playback. */
typedef void (ORVA_CALL *orva_on_player_recv_audio_side_info)(const char* streamID, const uint8_t* data, uint32_t dataLength, void* user_context);
typedef void (ORVA_CALL *orva_on_player_take_snapshot_result)(int32_t errorCode, const char* streamID, orva_image_handle image, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_player_low_fps_warning)(int32_t codecID, const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_local_device_exception_occurred)(int32_t exceptionType, int32_t deviceType, const char* deviceID, void* user_context);
typedef void (ORVA_CALL *orva_on_audio_device_state_changed)(int32_t updateType, int32_t deviceType, const orva_device_info* deviceInfo, void* user_context);
typedef void (ORVA_CALL *orva_on_audio_device_volume_changed)(int32_t deviceType, const char* deviceID, int32_t volume, void* user_context);
typedef void (ORVA_CALL *orva_on_video_device_state_changed)(int32_t updateType, const orva_device_info* deviceInfo, void* user_context);
typedef void (ORVA_CALL *orva_on_remote_camera_state_update)(const char* streamID, int32_t state, void* user_context);
typedef void (ORVA_CALL *orva_on_remote_mic_state_update)(const char* streamID, int32_t state, void* user_context);
typedef void (ORVA_CALL *orva_on_remote_speaker_state_update)(const char* streamID, int32_t state, void* user_context);
typedef void (ORVA_CALL *orva_on_captured_sound_level_update)(float soundLevel, void* user_context);
typedef void (ORVA_CALL *orva_on_remote_sound_level_update)(const orva_stream_sound_level* soundLevels, uint32_t soundLevelsCount, void* user_context);
typedef void (ORVA_CALL *orva_on_captured_sound_level_info_update)(float soundLevel, int32_t vad, void* user_context);
typedef void (ORVA_CALL *orva_on_remote_sound_level_info_update)(const orva_stream_sound_level_info* soundLevelInfos, uint32_t soundLevelInfosCount, void* user_context);
typedef void (ORVA_CALL *orva_on_captured_audio_spectrum_update)(const float* spectrumList, uint32_t spectrumListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_remote_audio_spectrum_update)(const orva_stream_audio_spectrum* spectra, uint32_t spectraCount, void* user_context);
typedef void (ORVA_CALL *orva_on_audio_vad_state_update)(int32_t type, int32_t state, void* user_context);
typedef void (ORVA_CALL *orva_on_real_time_sequential_data_sent)(int32_t errorCode, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_receive_real_time_sequential_data)(const uint8_t* data, uint32_t dataLength, const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_im_send_broadcast_message_result)(const char* roomID, uint64_t messageID, int32_t errorCode, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_im_recv_broadcast_message)(const char* roomID, const orva_broadcast_message_info* messageList, uint32_t messageListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_im_send_barrage_message_result)(const char* roomID, const char* messageID, int32_t errorCode, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_im_recv_barrage_message)(const char* roomID, const orva_barrage_message_info* messageList, uint32_t messageListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_im_send_custom_command_result)(const char* roomID, int32_t errorCode, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_im_recv_custom_command)(const char* roomID, const orva_user* fromUser, const char* command, void* user_context);
typedef void (ORVA_CALL *orva_on_send_transparent_message_result)(const char* roomID, int32_t errorCode, int32_t seq, void* user_context);
typedef void (ORVA_CALL *orva_on_recv_room_transparent_message)(const char* roomID, const orva_room_recv_transparent_message* message, void* user_context);
typedef void (ORVA_CALL *orva_on_mixer_start_result)(int32_t errorCode, int32_t seq, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_auto_mixer_start_result)(int32_t errorCode, int32_t seq, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_mixer_stop_result)(int32_t errorCode, int32_t seq, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_auto_mixer_stop_result)(int32_t errorCode, int32_t seq, const char* extendedData, void* user_context);
typedef void (ORVA_CALL *orva_on_mixer_sound_level_update)(const orva_mixer_sound_level* soundLevels, uint32_t soundLevelsCount, void* user_context);
typedef void (ORVA_CALL *orva_on_auto_mixer_sound_level_update)(const orva_stream_sound_level* soundLevels, uint32_t soundLevelsCount, void* user_context);
typedef void (ORVA_CALL *orva_on_mixer_relay_cdn_state_update)(const char* taskID, const orva_stream_relay_cdn_info* infoList, uint32_t infoListCount, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_state_update)(int32_t state, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_network_event)(int32_t networkEvent, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_playing_progress)(uint64_t millisecond, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_rendering_progress)(uint64_t millisecond, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_video_size_changed)(int32_t width, int32_t height, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_recv_sei)(const uint8_t* data, uint32_t dataLength, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_sound_level_update)(float soundLevel, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_frequency_spectrum_update)(const float* spectrumList, uint32_t spectrumListCount, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_seek_to)(int32_t seq, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_load_resource)(int32_t seq, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_audio_frame)(const uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_first_frame_event)(int32_t event, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_local_cache)(int32_t errorCode, const char* resource, const char* cachedFile, int32_t index, void* user_context);
/* A decoded media player frame: `data[i]` / `dataLength[i]` are the planes. */
typedef void (ORVA_CALL *orva_on_media_player_video_frame)(const uint8_t** data, const uint32_t* dataLength, const orva_video_frame_param* param, int32_t flipMode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_take_snapshot_result)(int32_t errorCode, orva_image_handle image, int32_t seq, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_block_begin)(const char* path, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_player_block_data)(uint8_t* buffer, uint32_t bufferLength, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_audio_effect_play_state_update)(uint32_t audioEffectID, int32_t state, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_audio_effect_player_load_resource)(int32_t seq, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_audio_effect_player_seek_to)(int32_t seq, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_audio_microphone_state_update)(int32_t state, int32_t errorCode, int32_t index, void* user_context);
/* A locally captured frame of a publish channel: `data[i]` / `dataLength[i]` are the planes. */
typedef void (ORVA_CALL *orva_on_custom_video_render_captured_frame_data)(const uint8_t** data, const uint32_t* dataLength, const orva_video_frame_param* param, int32_t flipMode, int32_t channel, void* user_context);
/* A decoded frame of a played stream. */
typedef void (ORVA_CALL *orva_on_custom_video_render_remote_frame_data)(const uint8_t** data, const uint32_t* dataLength, const orva_video_frame_param* param, int32_t flipMode, const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_custom_video_render_remote_frame_encoded_data)(const uint8_t* data, uint32_t dataLength, const orva_video_encoded_frame_param* param, uint64_t referenceTimeMillisecond, const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_custom_video_capture_start)(int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_custom_video_capture_stop)(int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_custom_video_capture_encoded_data_traffic_control)(const orva_traffic_control_info* trafficControlInfo, int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_custom_video_process_captured_unprocessed_raw_data)(const uint8_t** data, const uint32_t* dataLength, const orva_video_frame_param* param, uint64_t referenceTimeMillisecond, int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_custom_video_process_captured_unprocessed_cvpixelbuffer)(void* buffer, uint64_t referenceTimeMillisecond, int32_t channel, void* user_context);
/* The engine asks for audio to mix in: the callee fills `data`. */
typedef void (ORVA_CALL *orva_on_copy_audio_mixing_data)(orva_audio_mixing_data* data, void* user_context);
typedef void (ORVA_CALL *orva_on_captured_audio_data)(const uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, void* user_context);
typedef void (ORVA_CALL *orva_on_playback_audio_data)(const uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, void* user_context);
typedef void (ORVA_CALL *orva_on_mixed_audio_data)(const uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, void* user_context);
typedef void (ORVA_CALL *orva_on_player_audio_data)(const uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, const char* streamID, void* user_context);
typedef void (ORVA_CALL *orva_on_captured_data_record_state_update)(int32_t state, int32_t errorCode, const orva_data_record_config* config, int32_t channel, void* user_context);
typedef void (ORVA_CALL *orva_on_captured_data_record_progress_update)(const orva_data_record_progress* progress, const orva_data_record_config* config, int32_t channel, void* user_context);
/* Audio processing hooks: the callee may change `data` in place. */
typedef void (ORVA_CALL *orva_on_process_captured_audio_data)(uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, double timestamp, void* user_context);
typedef void (ORVA_CALL *orva_on_process_captured_audio_data_after_used_headphone_monitor)(uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, double timestamp, void* user_context);
typedef void (ORVA_CALL *orva_on_before_audio_prep_audio_data)(uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, void* user_context);
typedef void (ORVA_CALL *orva_on_process_remote_audio_data)(uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, const char* streamID, double timestamp, void* user_context);
typedef void (ORVA_CALL *orva_on_process_playback_audio_data)(uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, double timestamp, void* user_context);
typedef void (ORVA_CALL *orva_on_performance_status_update)(const orva_performance_status* status, void* user_context);
typedef void (ORVA_CALL *orva_on_network_mode_changed)(int32_t mode, void* user_context);
typedef void (ORVA_CALL *orva_on_test_network_connectivity)(int32_t seq, int32_t errorCode, const orva_test_network_connectivity_result* result, void* user_context);
typedef void (ORVA_CALL *orva_on_network_speed_test_quality_update)(const orva_network_speed_test_quality* quality, int32_t type, void* user_context);
typedef void (ORVA_CALL *orva_on_network_speed_test_error)(int32_t errorCode, int32_t type, void* user_context);
typedef void (ORVA_CALL *orva_on_network_probe_result)(int32_t seq, int32_t errorCode, const orva_network_probe_result* result, void* user_context);
typedef void (ORVA_CALL *orva_on_request_dump_data)(void* user_context);
typedef void (ORVA_CALL *orva_on_request_upload_dump_data)(const char* dumpDir, bool takePhoto, void* user_context);
typedef void (ORVA_CALL *orva_on_start_dump_data)(int32_t errorCode, void* user_context);
typedef void (ORVA_CALL *orva_on_stop_dump_data)(int32_t errorCode, const char* dumpDir, void* user_context);
typedef void (ORVA_CALL *orva_on_upload_dump_data)(int32_t errorCode, void* user_context);
typedef void (ORVA_CALL *orva_on_recv_experimental_api)(const char* content, void* user_context);
typedef void (ORVA_CALL *orva_on_network_quality)(const char* userID, int32_t upstreamQuality, int32_t downstreamQuality, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_download_progress_update)(const char* resourceID, float progressRate, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_current_pitch_value_update)(const char* resourceID, int32_t currentDuration, int32_t pitchValue, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_init)(int32_t seq, int32_t errorCode, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_send_extended_request)(int32_t seq, int32_t errorCode, const char* command, const char* result, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_get_lrc_lyric)(int32_t seq, int32_t errorCode, const char* lyrics, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_get_krc_lyric_by_token)(int32_t seq, int32_t errorCode, const char* lyrics, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_request_song)(int32_t seq, int32_t errorCode, const char* resource, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_request_accompaniment)(int32_t seq, int32_t errorCode, const char* resource, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_request_accompaniment_clip)(int32_t seq, int32_t errorCode, const char* resource, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_get_music_by_token)(int32_t seq, int32_t errorCode, const char* resource, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_request_resource)(int32_t seq, int32_t errorCode, const char* resource, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_get_shared_resource)(int32_t seq, int32_t errorCode, const char* resource, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_get_standard_pitch)(int32_t seq, int32_t errorCode, const char* pitch, void* user_context);
typedef void (ORVA_CALL *orva_on_copyrighted_music_download)(int32_t seq, int32_t errorCode, void* user_context);
/* A BGRA frame of a screen capture source (before encoding). */
typedef void (ORVA_CALL *orva_on_screen_capture_source_available_frame)(const uint8_t* data, uint32_t dataLength, const orva_video_frame_param* param, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_screen_capture_source_exception_occurred)(int32_t exceptionType, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_screen_capture_window_state_changed)(int32_t windowState, const orva_rect* windowRect, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_screen_capture_rect_changed)(const orva_rect* windowRect, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_network_time_synchronized)(void* user_context);
typedef void (ORVA_CALL *orva_on_media_data_publisher_file_close)(int32_t errorCode, const char* path, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_data_publisher_file_open)(const char* path, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_data_publisher_file_data_begin)(const char* path, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_media_data_publisher_file_data_end)(const char* path, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_scene_state_update)(int32_t state, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_enter_view)(const char* userID, const orva_position* position, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_leave_view)(const char* userID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_user_status_update)(const char* userID, const orva_position* position, uint32_t channel, const uint8_t* status, uint32_t statusLength, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_user_command_update)(const char* userID, const orva_position* position, uint32_t channel, const uint8_t* command, uint32_t commandLength, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_custom_command_update)(const uint8_t* command, uint32_t commandLength, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_token_will_expire)(int32_t remainTimeInSecond, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_login_scene)(int32_t seq, int32_t errorCode, const orva_scene_config* config, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_logout_scene)(int32_t seq, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_get_user_count)(int32_t seq, int32_t errorCode, uint32_t count, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_get_user_list_in_view)(int32_t seq, int32_t errorCode, const orva_user* userList, uint32_t userListCount, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_send_custom_command)(int32_t seq, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_stream_user_stream_state_update)(const char* userID, const char* streamID, int32_t state, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_stream_user_mic_update)(const char* userID, int32_t state, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_stream_user_camera_update)(const char* userID, int32_t state, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_stream_user_speaker_update)(const char* userID, int32_t state, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_team_team_state_update)(uint32_t teamID, int32_t state, int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_team_team_member_update)(uint32_t teamID, int32_t updateType, const orva_user* userList, uint32_t userListCount, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_team_join_team)(int32_t seq, int32_t errorCode, uint32_t teamID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_team_leave_team)(int32_t seq, int32_t errorCode, uint32_t teamID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_item_enter_view)(int64_t itemID, uint32_t capacity, const orva_position* position, const orva_user* userList, uint32_t userListCount, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_item_leave_view)(int64_t itemID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_item_bind_update)(int64_t itemID, const char* userID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_item_unbind_update)(int64_t itemID, const orva_user* userList, uint32_t userListCount, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_item_status_update)(int64_t itemID, const orva_position* position, uint32_t channel, const uint8_t* status, uint32_t statusLength, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_item_command_update)(int64_t itemID, const orva_position* position, uint32_t channel, const uint8_t* command, uint32_t commandLength, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_create_item)(int32_t seq, int32_t errorCode, int64_t itemID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_destroy_item)(int32_t seq, int32_t errorCode, int64_t itemID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_bind_item)(int32_t seq, int32_t errorCode, int64_t itemID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_unbind_item)(int32_t seq, int32_t errorCode, int64_t itemID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_update_item_status)(int32_t seq, int32_t errorCode, int64_t itemID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_range_scene_item_update_item_command)(int32_t seq, int32_t errorCode, int64_t itemID, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_video_object_segmentation_state_changed)(int32_t state, int32_t channel, int32_t errorCode, void* user_context);
typedef void (ORVA_CALL *orva_on_ai_voice_changer_init)(int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_ai_voice_changer_update_progress)(double percent, int32_t fileIndex, int32_t fileCount, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_ai_voice_changer_update)(int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_ai_voice_changer_get_speaker_list)(int32_t errorCode, const orva_ai_voice_changer_speaker_info* speakerList, uint32_t speakerListCount, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_ai_voice_changer_event)(int32_t event, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_ai_voice_changer_set_speaker)(int32_t errorCode, int32_t index, void* user_context);
typedef void (ORVA_CALL *orva_on_audio_route_change)(int32_t audioRoute, void* user_context);
typedef void (ORVA_CALL *orva_on_player_video_super_resolution_update)(const char* streamID, int32_t state, int32_t errorCode, void* user_context);
/* Every API call's outcome, for diagnostics. */
typedef void (ORVA_CALL *orva_on_api_called_result)(int32_t errorCode, const char* funcName, const char* info, void* user_context);

/* ---------------------------------------------------------------------------------------
 * Callback registration. Passing a NULL callback clears the registration.
 * ------------------------------------------------------------------------------------- */
ORVA_API void ORVA_CALL orva_register_recv_windows_message_callback(orva_on_recv_windows_message callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_engine_uninit_callback(orva_on_engine_uninit callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_fatal_error_callback(orva_on_fatal_error callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_debug_error_callback(orva_on_debug_error callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_engine_state_update_callback(orva_on_engine_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_upload_log_result_callback(orva_on_upload_log_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_stream_update_callback(orva_on_room_stream_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_stream_extra_info_update_callback(orva_on_room_stream_extra_info_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_state_update_callback(orva_on_room_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_user_update_callback(orva_on_room_user_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_online_user_count_update_callback(orva_on_room_online_user_count_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_extra_info_update_callback(orva_on_room_extra_info_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_set_room_extra_info_result_callback(orva_on_room_set_room_extra_info_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_token_will_expire_callback(orva_on_room_token_will_expire callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_login_result_callback(orva_on_room_login_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_logout_result_callback(orva_on_room_logout_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_room_state_changed_callback(orva_on_room_state_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_state_update_callback(orva_on_publisher_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_quality_update_callback(orva_on_publisher_quality_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_captured_audio_first_frame_callback(orva_on_publisher_captured_audio_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_stream_event_callback(orva_on_publisher_stream_event callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_stream_event_callback(orva_on_player_stream_event callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_captured_video_first_frame_callback(orva_on_publisher_captured_video_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_send_audio_first_frame_callback(orva_on_publisher_send_audio_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_send_video_first_frame_callback(orva_on_publisher_send_video_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_render_video_first_frame_callback(orva_on_publisher_render_video_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_video_size_changed_callback(orva_on_publisher_video_size_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_update_cdn_url_result_callback(orva_on_publisher_update_cdn_url_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_relay_cdn_state_update_callback(orva_on_publisher_relay_cdn_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_video_encoder_changed_callback(orva_on_publisher_video_encoder_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_update_stream_extra_info_result_callback(orva_on_publisher_update_stream_extra_info_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_take_snapshot_result_callback(orva_on_publisher_take_snapshot_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_low_fps_warning_callback(orva_on_publisher_low_fps_warning callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_publisher_dummy_capture_image_path_error_callback(orva_on_publisher_dummy_capture_image_path_error callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_state_update_callback(orva_on_player_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_switched_callback(orva_on_player_switched callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_quality_update_callback(orva_on_player_quality_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_media_event_callback(orva_on_player_media_event callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_recv_audio_first_frame_callback(orva_on_player_recv_audio_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_recv_video_first_frame_callback(orva_on_player_recv_video_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_render_video_first_frame_callback(orva_on_player_render_video_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_render_camera_video_first_frame_callback(orva_on_player_render_camera_video_first_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_video_size_changed_callback(orva_on_player_video_size_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_recv_media_side_info_callback(orva_on_player_recv_media_side_info callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_recv_audio_side_info_callback(orva_on_player_recv_audio_side_info callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_take_snapshot_result_callback(orva_on_player_take_snapshot_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_low_fps_warning_callback(orva_on_player_low_fps_warning callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_local_device_exception_occurred_callback(orva_on_local_device_exception_occurred callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_audio_device_state_changed_callback(orva_on_audio_device_state_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_audio_device_volume_changed_callback(orva_on_audio_device_volume_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_video_device_state_changed_callback(orva_on_video_device_state_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_remote_camera_state_update_callback(orva_on_remote_camera_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_remote_mic_state_update_callback(orva_on_remote_mic_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_remote_speaker_state_update_callback(orva_on_remote_speaker_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_captured_sound_level_update_callback(orva_on_captured_sound_level_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_remote_sound_level_update_callback(orva_on_remote_sound_level_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_captured_sound_level_info_update_callback(orva_on_captured_sound_level_info_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_remote_sound_level_info_update_callback(orva_on_remote_sound_level_info_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_captured_audio_spectrum_update_callback(orva_on_captured_audio_spectrum_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_remote_audio_spectrum_update_callback(orva_on_remote_audio_spectrum_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_audio_vad_state_update_callback(orva_on_audio_vad_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_real_time_sequential_data_sent_callback(orva_on_real_time_sequential_data_sent callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_receive_real_time_sequential_data_callback(orva_on_receive_real_time_sequential_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_im_send_broadcast_message_result_callback(orva_on_im_send_broadcast_message_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_im_recv_broadcast_message_callback(orva_on_im_recv_broadcast_message callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_im_send_barrage_message_result_callback(orva_on_im_send_barrage_message_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_im_recv_barrage_message_callback(orva_on_im_recv_barrage_message callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_im_send_custom_command_result_callback(orva_on_im_send_custom_command_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_im_recv_custom_command_callback(orva_on_im_recv_custom_command callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_send_transparent_message_result_callback(orva_on_send_transparent_message_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_recv_room_transparent_message_callback(orva_on_recv_room_transparent_message callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_mixer_start_result_callback(orva_on_mixer_start_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_auto_mixer_start_result_callback(orva_on_auto_mixer_start_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_mixer_stop_result_callback(orva_on_mixer_stop_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_auto_mixer_stop_result_callback(orva_on_auto_mixer_stop_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_mixer_sound_level_update_callback(orva_on_mixer_sound_level_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_auto_mixer_sound_level_update_callback(orva_on_auto_mixer_sound_level_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_mixer_relay_cdn_state_update_callback(orva_on_mixer_relay_cdn_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_state_update_callback(orva_on_media_player_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_network_event_callback(orva_on_media_player_network_event callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_playing_progress_callback(orva_on_media_player_playing_progress callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_rendering_progress_callback(orva_on_media_player_rendering_progress callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_video_size_changed_callback(orva_on_media_player_video_size_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_recv_sei_callback(orva_on_media_player_recv_sei callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_sound_level_update_callback(orva_on_media_player_sound_level_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_frequency_spectrum_update_callback(orva_on_media_player_frequency_spectrum_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_seek_to_callback(orva_on_media_player_seek_to callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_load_resource_callback(orva_on_media_player_load_resource callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_audio_frame_callback(orva_on_media_player_audio_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_first_frame_event_callback(orva_on_media_player_first_frame_event callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_local_cache_callback(orva_on_media_player_local_cache callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_video_frame_callback(orva_on_media_player_video_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_take_snapshot_result_callback(orva_on_media_player_take_snapshot_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_block_begin_callback(orva_on_media_player_block_begin callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_player_block_data_callback(orva_on_media_player_block_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_audio_effect_play_state_update_callback(orva_on_audio_effect_play_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_audio_effect_player_load_resource_callback(orva_on_audio_effect_player_load_resource callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_audio_effect_player_seek_to_callback(orva_on_audio_effect_player_seek_to callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_audio_microphone_state_update_callback(orva_on_range_audio_microphone_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_render_captured_frame_data_callback(orva_on_custom_video_render_captured_frame_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_render_remote_frame_data_callback(orva_on_custom_video_render_remote_frame_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_render_remote_frame_encoded_data_callback(orva_on_custom_video_render_remote_frame_encoded_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_capture_start_callback(orva_on_custom_video_capture_start callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_capture_stop_callback(orva_on_custom_video_capture_stop callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_capture_encoded_data_traffic_control_callback(orva_on_custom_video_capture_encoded_data_traffic_control callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_process_captured_unprocessed_raw_data_callback(orva_on_custom_video_process_captured_unprocessed_raw_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_custom_video_process_captured_unprocessed_cvpixelbuffer_callback(orva_on_custom_video_process_captured_unprocessed_cvpixelbuffer callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copy_audio_mixing_data_callback(orva_on_copy_audio_mixing_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_captured_audio_data_callback(orva_on_captured_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_playback_audio_data_callback(orva_on_playback_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_mixed_audio_data_callback(orva_on_mixed_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_audio_data_callback(orva_on_player_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_captured_data_record_state_update_callback(orva_on_captured_data_record_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_captured_data_record_progress_update_callback(orva_on_captured_data_record_progress_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_process_captured_audio_data_callback(orva_on_process_captured_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_process_captured_audio_data_after_used_headphone_monitor_callback(orva_on_process_captured_audio_data_after_used_headphone_monitor callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_before_audio_prep_audio_data_callback(orva_on_before_audio_prep_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_process_remote_audio_data_callback(orva_on_process_remote_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_process_playback_audio_data_callback(orva_on_process_playback_audio_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_performance_status_update_callback(orva_on_performance_status_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_network_mode_changed_callback(orva_on_network_mode_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_test_network_connectivity_callback(orva_on_test_network_connectivity callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_network_speed_test_quality_update_callback(orva_on_network_speed_test_quality_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_network_speed_test_error_callback(orva_on_network_speed_test_error callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_network_probe_result_callback(orva_on_network_probe_result callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_request_dump_data_callback(orva_on_request_dump_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_request_upload_dump_data_callback(orva_on_request_upload_dump_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_start_dump_data_callback(orva_on_start_dump_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_stop_dump_data_callback(orva_on_stop_dump_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_upload_dump_data_callback(orva_on_upload_dump_data callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_recv_experimental_api_callback(orva_on_recv_experimental_api callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_network_quality_callback(orva_on_network_quality callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_download_progress_update_callback(orva_on_copyrighted_music_download_progress_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_current_pitch_value_update_callback(orva_on_copyrighted_music_current_pitch_value_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_init_callback(orva_on_copyrighted_music_init callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_send_extended_request_callback(orva_on_copyrighted_music_send_extended_request callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_get_lrc_lyric_callback(orva_on_copyrighted_music_get_lrc_lyric callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_get_krc_lyric_by_token_callback(orva_on_copyrighted_music_get_krc_lyric_by_token callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_request_song_callback(orva_on_copyrighted_music_request_song callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_request_accompaniment_callback(orva_on_copyrighted_music_request_accompaniment callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_request_accompaniment_clip_callback(orva_on_copyrighted_music_request_accompaniment_clip callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_get_music_by_token_callback(orva_on_copyrighted_music_get_music_by_token callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_request_resource_callback(orva_on_copyrighted_music_request_resource callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_get_shared_resource_callback(orva_on_copyrighted_music_get_shared_resource callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_get_standard_pitch_callback(orva_on_copyrighted_music_get_standard_pitch callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_copyrighted_music_download_callback(orva_on_copyrighted_music_download callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_screen_capture_source_available_frame_callback(orva_on_screen_capture_source_available_frame callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_screen_capture_source_exception_occurred_callback(orva_on_screen_capture_source_exception_occurred callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_screen_capture_window_state_changed_callback(orva_on_screen_capture_window_state_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_screen_capture_rect_changed_callback(orva_on_screen_capture_rect_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_network_time_synchronized_callback(orva_on_network_time_synchronized callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_data_publisher_file_close_callback(orva_on_media_data_publisher_file_close callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_data_publisher_file_open_callback(orva_on_media_data_publisher_file_open callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_data_publisher_file_data_begin_callback(orva_on_media_data_publisher_file_data_begin callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_media_data_publisher_file_data_end_callback(orva_on_media_data_publisher_file_data_end callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_scene_state_update_callback(orva_on_range_scene_scene_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_enter_view_callback(orva_on_range_scene_enter_view callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_leave_view_callback(orva_on_range_scene_leave_view callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_user_status_update_callback(orva_on_range_scene_user_status_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_user_command_update_callback(orva_on_range_scene_user_command_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_custom_command_update_callback(orva_on_range_scene_custom_command_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_token_will_expire_callback(orva_on_range_scene_token_will_expire callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_login_scene_callback(orva_on_range_scene_login_scene callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_logout_scene_callback(orva_on_range_scene_logout_scene callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_get_user_count_callback(orva_on_range_scene_get_user_count callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_get_user_list_in_view_callback(orva_on_range_scene_get_user_list_in_view callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_send_custom_command_callback(orva_on_range_scene_send_custom_command callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_stream_user_stream_state_update_callback(orva_on_range_scene_stream_user_stream_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_stream_user_mic_update_callback(orva_on_range_scene_stream_user_mic_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_stream_user_camera_update_callback(orva_on_range_scene_stream_user_camera_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_stream_user_speaker_update_callback(orva_on_range_scene_stream_user_speaker_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_team_team_state_update_callback(orva_on_range_scene_team_team_state_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_team_team_member_update_callback(orva_on_range_scene_team_team_member_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_team_join_team_callback(orva_on_range_scene_team_join_team callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_team_leave_team_callback(orva_on_range_scene_team_leave_team callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_item_enter_view_callback(orva_on_range_scene_item_item_enter_view callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_item_leave_view_callback(orva_on_range_scene_item_item_leave_view callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_item_bind_update_callback(orva_on_range_scene_item_item_bind_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_item_unbind_update_callback(orva_on_range_scene_item_item_unbind_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_item_status_update_callback(orva_on_range_scene_item_item_status_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_item_command_update_callback(orva_on_range_scene_item_item_command_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_create_item_callback(orva_on_range_scene_item_create_item callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_destroy_item_callback(orva_on_range_scene_item_destroy_item callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_bind_item_callback(orva_on_range_scene_item_bind_item callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_unbind_item_callback(orva_on_range_scene_item_unbind_item callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_update_item_status_callback(orva_on_range_scene_item_update_item_status callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_range_scene_item_update_item_command_callback(orva_on_range_scene_item_update_item_command callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_video_object_segmentation_state_changed_callback(orva_on_video_object_segmentation_state_changed callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_ai_voice_changer_init_callback(orva_on_ai_voice_changer_init callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_ai_voice_changer_update_progress_callback(orva_on_ai_voice_changer_update_progress callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_ai_voice_changer_update_callback(orva_on_ai_voice_changer_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_ai_voice_changer_get_speaker_list_callback(orva_on_ai_voice_changer_get_speaker_list callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_ai_voice_changer_event_callback(orva_on_ai_voice_changer_event callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_ai_voice_changer_set_speaker_callback(orva_on_ai_voice_changer_set_speaker callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_audio_route_change_callback(orva_on_audio_route_change callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_player_video_super_resolution_update_callback(orva_on_player_video_super_resolution_update callback, void* user_context);
ORVA_API void ORVA_CALL orva_register_api_called_result_callback(orva_on_api_called_result callback, void* user_context);

/* ---------------------------------------------------------------------------------------
 * Engine lifecycle and configuration
 * ------------------------------------------------------------------------------------- */
/* Writes the engine's version text (NUL-terminated, truncated to fit). */
ORVA_API void ORVA_CALL orva_vantix_get_version(char* version, uint32_t versionLength);
ORVA_API int32_t ORVA_CALL orva_vantix_set_engine_config(const orva_engine_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_set_log_config(const orva_log_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_set_room_mode(int32_t mode);
ORVA_API bool ORVA_CALL orva_vantix_is_feature_supported(int32_t featureType);
ORVA_API int32_t ORVA_CALL orva_vantix_set_geo_fence(int32_t type, const int32_t* areaList, uint32_t areaListCount);
ORVA_API int32_t ORVA_CALL orva_vantix_set_platform_language(int32_t language);
ORVA_API int32_t ORVA_CALL orva_vantix_engine_init_with_profile(const orva_engine_profile* profile);
/* Answered by the engine_uninit callback on an engine thread. */
ORVA_API int32_t ORVA_CALL orva_vantix_engine_uninit_async(void);
/* Writes one line into the engine's own log file. */
ORVA_API void ORVA_CALL orva_vantix_custom_log(const char* log, const char* module);
/* Reports an API outcome to the engine's diagnostics; returns `errorCode`. */
ORVA_API int32_t ORVA_CALL orva_vantix_handle_api_call_result(const char* apiName, int32_t errorCode);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_debug_assistant(bool enable);
/** @result upload_log_result */
ORVA_API int32_t ORVA_CALL orva_vantix_upload_log(int32_t* seq);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_custom_video_render(bool enable, const orva_custom_video_render_config* config);

/* ---------------------------------------------------------------------------------------
 * Room
 * ------------------------------------------------------------------------------------- */
/** @result room_login_result */
ORVA_API int32_t ORVA_CALL orva_vantix_login_room_with_callback(const char* roomID, const orva_user* user, const orva_room_config* config, int32_t* seq);
/** @result room_logout_result */
ORVA_API int32_t ORVA_CALL orva_vantix_logout_room_with_callback(const char* roomID, int32_t* seq);
/** @result room_logout_result */
ORVA_API int32_t ORVA_CALL orva_vantix_logout_all_room_with_callback(int32_t* seq);
ORVA_API int32_t ORVA_CALL orva_vantix_switch_room(const char* fromRoomID, const char* toRoomID, const orva_room_config* config);
/** @result room_set_room_extra_info_result */
ORVA_API int32_t ORVA_CALL orva_vantix_set_room_extra_info(const char* roomID, const char* key, const char* value, int32_t* seq);
ORVA_API int32_t ORVA_CALL orva_vantix_renew_token(const char* roomID, const char* token);
ORVA_API int32_t ORVA_CALL orva_vantix_set_room_scenario(int32_t scenario);
/** @free orva_vantix_free_room_stream_list */
ORVA_API orva_stream* ORVA_CALL orva_vantix_get_room_stream_list(const char* roomID, int32_t streamListType, uint32_t* streamCount);
ORVA_API void ORVA_CALL orva_vantix_free_room_stream_list(orva_stream* streamList);

/* ---------------------------------------------------------------------------------------
 * Publishing
 * ------------------------------------------------------------------------------------- */
ORVA_API int32_t ORVA_CALL orva_vantix_start_publishing_stream_with_config(const char* streamID, const orva_publisher_config* config, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_publishing_stream(int32_t channel);
/** @result publisher_update_stream_extra_info_result */
ORVA_API int32_t ORVA_CALL orva_vantix_set_stream_extra_info(const char* extraInfo, int32_t channel, int32_t* seq);
ORVA_API int32_t ORVA_CALL orva_vantix_start_preview(const orva_canvas* canvas, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_preview(int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_video_config(const orva_video_config* config, int32_t channel);
ORVA_API orva_video_config ORVA_CALL orva_vantix_get_video_config(int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_video_mirror_mode(int32_t mirrorMode, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_config_by_channel(const orva_audio_config* config, int32_t channel);
ORVA_API orva_audio_config ORVA_CALL orva_vantix_get_audio_config_by_channel(int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_publish_stream_audio(bool mute, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_publish_stream_video(bool mute, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_traffic_control_by_channel(bool enable, int32_t property, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_min_video_bitrate_for_traffic_control_by_channel(int32_t bitrate, int32_t mode, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_min_video_fps_for_traffic_control_by_channel(int32_t fps, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_min_video_resolution_for_traffic_control_by_channel(int32_t width, int32_t height, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_traffic_control_focus_on_by_channel(int32_t mode, int32_t channel);
/** @result publisher_update_cdn_url_result */
ORVA_API int32_t ORVA_CALL orva_vantix_add_publish_cdn_url(const char* streamID, const char* targetURL, int32_t* seq);
/** @result publisher_update_cdn_url_result */
ORVA_API int32_t ORVA_CALL orva_vantix_remove_publish_cdn_url(const char* streamID, const char* targetURL, int32_t* seq);
/* `config` may be NULL. */
ORVA_API int32_t ORVA_CALL orva_vantix_enable_publish_direct_to_cdn(bool enable, const orva_cdn_config* config, int32_t channel);
/* `watermark` may be NULL (no watermark). */
ORVA_API int32_t ORVA_CALL orva_vantix_set_publish_watermark(bool isPreviewVisible, const orva_watermark* watermark, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_send_sei(const uint8_t* data, uint32_t dataLength, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_sei_config(const orva_sei_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_hardware_encoder(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_h_265_encode_fallback(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_is_video_encoder_supported(int32_t codecID, int32_t codecBackend);
ORVA_API int32_t ORVA_CALL orva_vantix_set_capture_pipeline_scale_mode(int32_t mode);
ORVA_API int32_t ORVA_CALL orva_vantix_set_stream_alignment_property(int32_t alignment, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_publish_stream_encryption_key(const char* key, int32_t channel);
/** @result publisher_take_snapshot_result */
ORVA_API int32_t ORVA_CALL orva_vantix_take_publish_stream_snapshot(int32_t channel, int32_t* seq);
ORVA_API int32_t ORVA_CALL orva_vantix_set_video_source(int32_t source, uint32_t instanceID, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_source(int32_t source, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_source_with_config(int32_t source, const orva_audio_source_mix_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_set_capture_volume(int32_t volume);
ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_capture_stereo_mode(int32_t mode);

/* ---------------------------------------------------------------------------------------
 * Playing
 * ------------------------------------------------------------------------------------- */
/* `canvas` NULL: frames reach the custom video render callbacks only. */
ORVA_API int32_t ORVA_CALL orva_vantix_start_playing_stream_with_config(const char* streamID, const orva_canvas* canvas, const orva_player_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_playing_stream(const char* streamID);
ORVA_API int32_t ORVA_CALL orva_vantix_set_play_volume(const char* streamID, int32_t volume);
ORVA_API int32_t ORVA_CALL orva_vantix_set_all_play_stream_volume(int32_t volume);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_play_stream_audio(const char* streamID, bool mute);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_play_stream_video(const char* streamID, bool mute);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_all_play_stream_audio(bool mute);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_all_play_stream_video(bool mute);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_hardware_decoder(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_check_poc(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_is_video_decoder_supported(int32_t codecID, int32_t codecBackend);
ORVA_API int32_t ORVA_CALL orva_vantix_set_play_stream_decryption_key(const char* streamID, const char* key);
ORVA_API int32_t ORVA_CALL orva_vantix_set_play_stream_focus_on(const char* streamID);
ORVA_API int32_t ORVA_CALL orva_vantix_set_play_stream_video_type(const char* streamID, int32_t streamType);
ORVA_API int32_t ORVA_CALL orva_vantix_set_play_stream_buffer_interval_range(const char* streamID, uint32_t minBufferInterval, uint32_t maxBufferInterval);
/** @result player_take_snapshot_result */
ORVA_API int32_t ORVA_CALL orva_vantix_take_play_stream_snapshot(const char* streamID, int32_t* seq);

/* ---------------------------------------------------------------------------------------
 * Mixer
 * ------------------------------------------------------------------------------------- */
/** @result mixer_start_result */
ORVA_API int32_t ORVA_CALL orva_vantix_start_mixer_task(const orva_mixer_task* task, int32_t* seq);
/** @result mixer_stop_result */
ORVA_API int32_t ORVA_CALL orva_vantix_stop_mixer_task(const orva_mixer_task* task, int32_t* seq);

/* ---------------------------------------------------------------------------------------
 * Devices and audio processing
 * ------------------------------------------------------------------------------------- */
ORVA_API int32_t ORVA_CALL orva_vantix_mute_microphone(bool mute);
ORVA_API bool ORVA_CALL orva_vantix_is_microphone_muted(void);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_speaker(bool mute);
ORVA_API bool ORVA_CALL orva_vantix_is_speaker_muted(void);
ORVA_API int32_t ORVA_CALL orva_vantix_use_audio_device(int32_t deviceType, const char* deviceID);
/** @free orva_vantix_free_audio_device_list */
ORVA_API orva_device_info* ORVA_CALL orva_vantix_get_audio_device_list(int32_t deviceType, uint32_t* deviceCount);
ORVA_API void ORVA_CALL orva_vantix_free_audio_device_list(orva_device_info* deviceList);
ORVA_API int32_t ORVA_CALL orva_vantix_get_audio_device_volume(int32_t deviceType, const char* deviceID);
ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_device_volume(int32_t deviceType, const char* deviceID, int32_t volume);
ORVA_API int32_t ORVA_CALL orva_vantix_mute_audio_device(int32_t deviceType, const char* deviceID, bool mute);
ORVA_API int32_t ORVA_CALL orva_vantix_set_speaker_volume_in_app(const char* deviceID, int32_t volume);
ORVA_API int32_t ORVA_CALL orva_vantix_get_speaker_volume_in_app(const char* deviceID);
ORVA_API int32_t ORVA_CALL orva_vantix_start_audio_device_volume_monitor(int32_t deviceType, const char* deviceID);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_audio_device_volume_monitor(int32_t deviceType, const char* deviceID);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_audio_capture_device(bool enable);
ORVA_API orva_device_info ORVA_CALL orva_vantix_get_current_audio_device(int32_t deviceType);
ORVA_API void ORVA_CALL orva_vantix_get_default_audio_device_id(int32_t deviceType, char* deviceID, uint32_t deviceIDLength);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_camera(bool enable, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_use_video_device(const char* deviceID, int32_t channel);
/** @free orva_vantix_free_video_device_list */
ORVA_API orva_device_info* ORVA_CALL orva_vantix_get_video_device_list(uint32_t* deviceCount);
ORVA_API void ORVA_CALL orva_vantix_free_video_device_list(orva_device_info* deviceList);
ORVA_API void ORVA_CALL orva_vantix_get_default_video_device_id(char* deviceID, uint32_t deviceIDLength);
ORVA_API int32_t ORVA_CALL orva_vantix_set_low_light_enhancement(int32_t mode, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_start_sound_level_monitor_with_config(const orva_sound_level_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_sound_level_monitor(void);
ORVA_API int32_t ORVA_CALL orva_vantix_start_audio_spectrum_monitor(uint32_t millisecond);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_audio_spectrum_monitor(void);
ORVA_API int32_t ORVA_CALL orva_vantix_start_audio_vad_stable_state_monitor(int32_t type, int32_t millisecond);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_audio_vad_stable_state_monitor(int32_t type);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_headphone_monitor(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_set_headphone_monitor_volume(int32_t volume);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_mix_system_playout(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_set_mix_system_playout_volume(int32_t volume);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_mix_engine_playout(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_aec(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_set_aec_mode(int32_t mode);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_agc(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_ans(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_set_ans_mode(int32_t mode);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_transient_ans(bool enable);
ORVA_API int32_t ORVA_CALL orva_vantix_set_voice_changer_preset(int32_t preset);
ORVA_API int32_t ORVA_CALL orva_vantix_set_voice_changer_param(const orva_voice_changer_param* param);
ORVA_API int32_t ORVA_CALL orva_vantix_set_reverb_preset(int32_t preset);
ORVA_API int32_t ORVA_CALL orva_vantix_set_reverb_advanced_param(const orva_reverb_advanced_param* param);
ORVA_API int32_t ORVA_CALL orva_vantix_set_reverb_echo_param(const orva_reverb_echo_param* param);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_virtual_stereo(bool enable, int32_t angle);
ORVA_API int32_t ORVA_CALL orva_vantix_set_audio_equalizer_gain(int32_t bandIndex, float bandGain);

/* ---------------------------------------------------------------------------------------
 * Messaging and utilities
 * ------------------------------------------------------------------------------------- */
/** @result im_send_broadcast_message_result */
ORVA_API int32_t ORVA_CALL orva_vantix_send_broadcast_message(const char* roomID, const char* message, int32_t* seq);
/** @result im_send_barrage_message_result */
ORVA_API int32_t ORVA_CALL orva_vantix_send_barrage_message(const char* roomID, const char* message, int32_t* seq);
/** @result im_send_custom_command_result */
ORVA_API int32_t ORVA_CALL orva_vantix_send_custom_command(const char* roomID, const char* command, const orva_user* toUserList, uint32_t toUserListCount, int32_t* seq);
ORVA_API int32_t ORVA_CALL orva_vantix_start_recording_captured_data(const orva_data_record_config* config, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_recording_captured_data(int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_start_network_speed_test(const orva_network_speed_test_config* config, uint32_t interval);
ORVA_API int32_t ORVA_CALL orva_vantix_stop_network_speed_test(void);
ORVA_API orva_network_time_info ORVA_CALL orva_vantix_get_network_time_info(void);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_video_object_segmentation_with_config(bool enable, const orva_object_segmentation_config* config, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_alpha_channel_video_encoder(bool enable, int32_t alphaLayout, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_dummy_capture_image_path(const char* filePath, int32_t channel);
/** @free orva_vantix_free_screen_capture_source_list */
ORVA_API orva_screen_capture_source_info* ORVA_CALL orva_vantix_get_screen_capture_sources(int32_t thumbnailWidth, int32_t thumbnailHeight, int32_t iconWidth, int32_t iconHeight, uint32_t* sourceCount);
ORVA_API void ORVA_CALL orva_vantix_free_screen_capture_source_list(orva_screen_capture_source_info* sourceList);
/* `config` may be NULL. */
ORVA_API int32_t ORVA_CALL orva_vantix_enable_custom_video_capture(bool enable, const orva_custom_video_capture_config* config, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_custom_video_processing(bool enable, const orva_custom_video_process_config* config, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_custom_video_capture_fill_mode(int32_t mode, int32_t channel);
ORVA_API int32_t ORVA_CALL orva_vantix_set_custom_video_capture_region_of_interest(const orva_roi_rect* rectList, uint32_t rectListCount, int32_t channel);
/* `config` may be NULL (engine defaults). */
ORVA_API int32_t ORVA_CALL orva_vantix_enable_custom_audio_capture_processing(bool enable, const orva_custom_audio_processing_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_custom_audio_capture_processing_after_headphone_monitor(bool enable, const orva_custom_audio_processing_config* config);
ORVA_API int32_t ORVA_CALL orva_vantix_enable_custom_audio_io(bool enable, const orva_custom_audio_config* config, int32_t channel);
/* 16-bit PCM for `channel` while its custom audio input is on (enable_custom_audio_io); the
 * engine copies the data before returning. */
ORVA_API int32_t ORVA_CALL orva_vantix_send_custom_audio_capture_pcm_data(const uint8_t* data, uint32_t dataLength, const orva_audio_frame_param* param, int32_t channel);

/* ---------------------------------------------------------------------------------------
 * Experimental API
 * ------------------------------------------------------------------------------------- */
/** Returns the engine's JSON answer; release it with the free function.
 * @free orva_vantix_free_call_experimental_api_result */
ORVA_API char* ORVA_CALL orva_vantix_call_experimental_api(const char* params);
ORVA_API void ORVA_CALL orva_vantix_free_call_experimental_api_result(char* result);

/* ---------------------------------------------------------------------------------------
 * Media players (engine indexes 0-3)
 * ------------------------------------------------------------------------------------- */
/* Returns the new player's index, or -1 when no player can be created. */
ORVA_API int32_t ORVA_CALL orva_vantix_create_media_player(void);
ORVA_API int32_t ORVA_CALL orva_vantix_destroy_media_player(int32_t index);
/** @result media_player_load_resource */
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_load_resource(const char* path, int32_t* seq, int32_t index);
/** @result media_player_load_resource */
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_load_resource_with_position(const char* path, int64_t startPosition, int32_t* seq, int32_t index);
/** @result media_player_load_resource */
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_load_copyrighted_music_resource_with_position(const char* resourceID, int64_t startPosition, int32_t* seq, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_start(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_stop(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_pause(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_resume(int32_t index);
/** @result media_player_seek_to */
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_seek_to(uint64_t millisecond, int32_t* seq, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_enable_repeat(bool enable, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_enable_aux(bool enable, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_mute_local_audio(bool mute, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_volume(int32_t volume, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_progress_interval(uint64_t millisecond, int32_t index);
ORVA_API uint64_t ORVA_CALL orva_vantix_media_player_get_total_duration(int32_t index);
ORVA_API uint64_t ORVA_CALL orva_vantix_media_player_get_current_progress(int32_t index);
ORVA_API uint64_t ORVA_CALL orva_vantix_media_player_get_current_rendering_progress(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_get_current_state(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_play_volume(int32_t volume, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_publish_volume(int32_t volume, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_get_play_volume(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_get_publish_volume(int32_t index);
ORVA_API uint32_t ORVA_CALL orva_vantix_media_player_get_audio_track_count(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_audio_track_index(uint32_t trackIndex, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_voice_changer_param(int32_t audioChannel, const orva_voice_changer_param* param, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_enable_live_audio_effect(bool enable, uint32_t mode, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_enable_local_cache(bool enable, const char* cacheDir, int32_t index);
ORVA_API orva_media_player_media_info ORVA_CALL orva_vantix_media_player_get_media_info(int32_t index);
/** @result media_player_take_snapshot_result */
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_take_snapshot(int32_t* seq, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_set_player_canvas(const orva_canvas* canvas, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_enable_sound_level_monitor(bool enable, uint32_t millisecond, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_media_player_enable_frequency_spectrum_monitor(bool enable, uint32_t millisecond, int32_t index);

/* ---------------------------------------------------------------------------------------
 * Audio effect players
 * ------------------------------------------------------------------------------------- */
/* Returns the new player's index, or -1 when no player can be created. */
ORVA_API int32_t ORVA_CALL orva_vantix_create_audio_effect_player(void);
ORVA_API int32_t ORVA_CALL orva_vantix_destroy_audio_effect_player(int32_t index);
/* `config` may be NULL (play once, not published). */
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_start(uint32_t audioEffectID, const char* path, const orva_audio_effect_play_config* config, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_stop(uint32_t audioEffectID, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_pause(uint32_t audioEffectID, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_resume(uint32_t audioEffectID, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_stop_all(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_pause_all(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_resume_all(int32_t index);
/** @result audio_effect_player_seek_to */
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_seek_to(uint32_t audioEffectID, uint64_t millisecond, int32_t* seq, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_set_volume(uint32_t audioEffectID, int32_t volume, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_set_volume_all(int32_t volume, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_set_play_speed(uint32_t audioEffectID, double speed, int32_t index);
ORVA_API uint64_t ORVA_CALL orva_vantix_audio_effect_player_get_total_duration(uint32_t audioEffectID, int32_t index);
ORVA_API uint64_t ORVA_CALL orva_vantix_audio_effect_player_get_current_progress(uint32_t audioEffectID, int32_t index);
/** @result audio_effect_player_load_resource */
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_load_resource(uint32_t audioEffectID, const char* path, int32_t* seq, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_audio_effect_player_unload_resource(uint32_t audioEffectID, int32_t index);

/* ---------------------------------------------------------------------------------------
 * Screen capture sources
 * ------------------------------------------------------------------------------------- */
/* Returns the new source's index, or -1. */
ORVA_API int32_t ORVA_CALL orva_vantix_create_screen_capture_source(int64_t sourceId, int32_t sourceType);
ORVA_API int32_t ORVA_CALL orva_vantix_destroy_screen_capture_source(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_start_capture(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_stop_capture(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_update_capture_source(int64_t sourceId, int32_t sourceType, int32_t index);
ORVA_API orva_rect ORVA_CALL orva_vantix_screen_capture_get_capture_source_rect(int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_update_capture_region(const orva_rect* rect, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_update_publish_region(const orva_rect* rect, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_set_exclude_window_list(const int32_t* list, uint32_t listCount, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_enable_window_activate(bool active, int32_t index);
ORVA_API int32_t ORVA_CALL orva_vantix_screen_capture_enable_cursor_visible(bool visible, int32_t index);

/* ---------------------------------------------------------------------------------------
 * Copyrighted music (one module per engine)
 * ------------------------------------------------------------------------------------- */
ORVA_API int32_t ORVA_CALL orva_vantix_create_copyrighted_music(void);
ORVA_API int32_t ORVA_CALL orva_vantix_destroy_copyrighted_music(void);
/** @result copyrighted_music_init */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_init(const orva_copyrighted_music_config* config, int32_t* seq);
/** @result copyrighted_music_send_extended_request */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_send_extended_request(const char* command, const char* params, int32_t* seq);
/** @result copyrighted_music_get_lrc_lyric */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_lrc_lyric(const char* songID, int32_t vendorID, int32_t* seq);
/** @result copyrighted_music_get_krc_lyric_by_token */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_krc_lyric_by_token(const char* krcToken, int32_t* seq);
/** @result copyrighted_music_request_song */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_request_song(const orva_copyrighted_music_request_config* config, int32_t* seq);
/** @result copyrighted_music_request_accompaniment */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_request_accompaniment(const orva_copyrighted_music_request_config* config, int32_t* seq);
/** @result copyrighted_music_request_accompaniment_clip */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_request_accompaniment_clip(const orva_copyrighted_music_request_config* config, int32_t* seq);
/** @result copyrighted_music_get_music_by_token */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_music_by_token(const char* shareToken, int32_t* seq);
/** @result copyrighted_music_request_resource */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_request_resource(const orva_copyrighted_music_request_config* config, int32_t type, int32_t* seq);
/** @result copyrighted_music_get_shared_resource */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_shared_resource(const orva_copyrighted_music_request_config* config, int32_t type, int32_t* seq);
/** @result copyrighted_music_get_standard_pitch */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_standard_pitch(const char* resourceID, int32_t* seq);
/** @result copyrighted_music_download */
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_download(const char* resourceID, int32_t* seq);
ORVA_API bool ORVA_CALL orva_vantix_copyrighted_music_query_cache(const char* songID, int32_t type, int32_t vendorID);
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_start_score(const char* resourceID, int32_t pitchValueInterval);
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_stop_score(const char* resourceID);
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_average_score(const char* resourceID);
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_total_score(const char* resourceID);
ORVA_API int32_t ORVA_CALL orva_vantix_copyrighted_music_get_current_pitch(const char* resourceID);

#ifdef __cplusplus
}
#endif

#endif /* ORVA_VANTIX_ENGINE_H */
/* END OF API */
