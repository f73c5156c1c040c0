/*
 * Control interface of the simulated OrvaVantixEngine. Exported by the simulated library
 * only (the vendor's library has none of it); tests and the control module resolve these
 * names at run time. Calls made through this interface are never journaled.
 *
 * Texts returned as `char*` are allocated by the library: release them with
 * orva_sim_free. JSON texts are UTF-8; 64-bit integers in them are exact.
 * Callbacks requested here run on threads of the simulated engine, never on the caller's.
 */
#ifndef ORVA_SIM_CONTROL_H
#define ORVA_SIM_CONTROL_H

#include "orva_vantix_engine.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Forgets the journal, scripted returns, pending asynchronous calls and simulated state
 * (stops all activity; automatic completion is on again). Registrations stay. */
ORVA_API void ORVA_CALL orva_sim_reset(void);

/* The journal as a JSON array of {"fn", "args"}, oldest first; only calls of `fn` when it
 * is not NULL. */
ORVA_API char* ORVA_CALL orva_sim_calls(const char* fn);

/* JSON array of the callback names registered now, in registration order. */
ORVA_API char* ORVA_CALL orva_sim_registered(void);

/* Converts `payload` (JSON) into the C arguments of callback `name` and calls the
 * registered callback on an engine thread, returning after it returned.
 * 1: called; 0: nothing registered; -1: unknown name or a payload that does not convert
 * (`*error`, when error is not NULL, receives a text to release with orva_sim_free). */
ORVA_API int32_t ORVA_CALL orva_sim_emit(const char* name, const char* payload, char** error);

/* Calls callback `name` `count` times from each of `threads` threads with `payload`
 * converted once per thread; `counterKey` (a numeric top-level argument, or NULL) carries
 * 0..count-1 in call order and `threadKey` (a text argument, or NULL) the thread's index.
 * Blocks until all calls are made. `*calls` receives the number of calls made, `*seconds`
 * the time from the first call to the last return. Returns as orva_sim_emit. */
ORVA_API int32_t ORVA_CALL orva_sim_burst(const char* name, const char* payload, uint32_t count, uint32_t threads,
                                         const char* counterKey, const char* threadKey, uint64_t* calls,
                                         double* seconds, char** error);

/* Delivers one raw video frame through the raw-frame callback of `target` on an engine
 * thread and returns after it returned. target: {"channel": n} | {"streamID": s} |
 * {"mediaPlayerIndex": n}; frame: {"width", "height", "format", "flipMode"?, "stride"?};
 * `data`/`dataLength`: the first plane, or NULL for a generated pattern of
 * stride * height bytes. Returns as orva_sim_emit. */
ORVA_API int32_t ORVA_CALL orva_sim_frame(const char* target, const char* frame, const uint8_t* data,
                                         uint32_t dataLength, char** error);

/* From now on (until reset) entry point `fn` returns `value` (JSON: a number or boolean, an
 * object for a structure, an array for a list, a string for a text). 0, or -1 with
 * `*error` for an unknown entry point or a value of the wrong shape. */
ORVA_API int32_t ORVA_CALL orva_sim_set_return(const char* fn, const char* value, char** error);

/* On (the default): asynchronous calls are answered shortly after on an engine thread with
 * error code 0. Off: they stay pending until orva_sim_complete. */
ORVA_API void ORVA_CALL orva_sim_auto_complete(bool on);

/* JSON array of {"fn", "seq"} of the pending asynchronous calls, oldest first. */
ORVA_API char* ORVA_CALL orva_sim_pending(void);

/* Answers pending call `seq` with `result` (JSON object {errorCode, ...} merged over what
 * the call implies) on an engine thread, returning after the callback returned.
 * 1: answered; 0: no such pending call; -1: a result that does not convert. */
ORVA_API int32_t ORVA_CALL orva_sim_complete(int32_t seq, const char* result, char** error);

/* The text orva_vantix_get_version gives. */
ORVA_API char* ORVA_CALL orva_sim_version(void);

ORVA_API void ORVA_CALL orva_sim_free(char* text);

/* Function pointer types, for callers that resolve the names at run time. */
typedef void (ORVA_CALL *orva_sim_reset_fn)(void);
typedef char* (ORVA_CALL *orva_sim_calls_fn)(const char* fn);
typedef char* (ORVA_CALL *orva_sim_registered_fn)(void);
typedef int32_t (ORVA_CALL *orva_sim_emit_fn)(const char* name, const char* payload, char** error);
typedef int32_t (ORVA_CALL *orva_sim_burst_fn)(const char* name, const char* payload, uint32_t count, uint32_t threads,
                                              const char* counterKey, const char* threadKey, uint64_t* calls,
                                              double* seconds, char** error);
typedef int32_t (ORVA_CALL *orva_sim_frame_fn)(const char* target, const char* frame, const uint8_t* data,
                                              uint32_t dataLength, char** error);
typedef int32_t (ORVA_CALL *orva_sim_set_return_fn)(const char* fn, const char* value, char** error);
typedef void (ORVA_CALL *orva_sim_auto_complete_fn)(bool on);
typedef char* (ORVA_CALL *orva_sim_pending_fn)(void);
typedef int32_t (ORVA_CALL *orva_sim_complete_fn)(int32_t seq, const char* result, char** error);
typedef char* (ORVA_CALL *orva_sim_version_fn)(void);
typedef void (ORVA_CALL *orva_sim_free_fn)(char* text);

#ifdef __cplusplus
}
#endif

#endif /* ORVA_SIM_CONTROL_H */
