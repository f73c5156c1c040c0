/*
 * Native helper of the event delivery benchmark (bench/events.bench.js), built by the bench
 * itself and loaded only there; nothing of it is in the addon.
 *
 * ping(count, threads, fn): the floor the addon's event path is compared with. `threads`
 *   native threads each make `count` blocking calls of one thread-safe function, whose
 *   call-into-script hook calls fn(i) with the call's index: the bare Node-API crossing from
 *   a native thread to script, with no allocation, no queue of ours and no payload object.
 *
 * paced(engineLibrary, rate, count, threads, done): `threads` native threads emit
 *   room_state_update through the simulated engine's control interface (orva_sim_emit), on a
 *   fixed schedule that adds up to `rate` events a second, `count` events in all. Each
 *   payload carries the CLOCK_MONOTONIC time (ns) at which it was handed to the engine in
 *   `extendedData`, which script compares with process.hrtime.bigint() (the same clock). The
 *   time orva_sim_emit itself took (JSON conversion, the hop to an engine thread, and the
 *   addon's handler up to its post) is collected too. done({emitNs, seconds}) is called on
 *   the script thread once every event was handed over (emitNs: a Float64Array's buffer).
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <node_api.h>
#include <pthread.h>
#include <stdatomic.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#define CHECK(call)                                           \
  do {                                                        \
    if ((call) != napi_ok) {                                  \
      napi_throw_error(env, NULL, "bench helper: " #call);    \
      return NULL;                                            \
    }                                                         \
  } while (0)

static uint64_t nowNs(void) {
  struct timespec ts;
  clock_gettime(CLOCK_MONOTONIC, &ts);
  return (uint64_t)ts.tv_sec * 1000000000u + (uint64_t)ts.tv_nsec;
}

/* ---- ping --------------------------------------------------------------------------- */

typedef struct {
  napi_threadsafe_function tsfn;
  uint32_t count;
} PingJob;

static void pingIntoScript(napi_env env, napi_value fn, void* context, void* data) {
  (void)context;
  if (env == NULL) return;
  napi_value arg, receiver;
  napi_create_uint32(env, (uint32_t)(uintptr_t)data, &arg);
  napi_get_undefined(env, &receiver);
  napi_call_function(env, receiver, fn, 1, &arg, NULL);
}

static void* pingThread(void* p) {
  PingJob* job = p;
  for (uint32_t i = 0; i < job->count; i++) {
    napi_call_threadsafe_function(job->tsfn, (void*)(uintptr_t)i, napi_tsfn_blocking);
  }
  napi_release_threadsafe_function(job->tsfn, napi_tsfn_release);
  free(job);
  return NULL;
}

static napi_value Ping(napi_env env, napi_callback_info info) {
  size_t argc = 3;
  napi_value argv[3], name;
  uint32_t count, threads;
  napi_threadsafe_function tsfn;
  CHECK(napi_get_cb_info(env, info, &argc, argv, NULL, NULL));
  CHECK(napi_get_value_uint32(env, argv[0], &count));
  CHECK(napi_get_value_uint32(env, argv[1], &threads));
  CHECK(napi_create_string_utf8(env, "bench ping", NAPI_AUTO_LENGTH, &name));
  CHECK(napi_create_threadsafe_function(env, argv[2], NULL, name, 0, threads, NULL, NULL, NULL,
                                        pingIntoScript, &tsfn));
  for (uint32_t t = 0; t < threads; t++) {
    PingJob* job = malloc(sizeof *job);
    pthread_t thread;
    job->tsfn = tsfn;
    job->count = count;
    if (pthread_create(&thread, NULL, pingThread, job) != 0) {
      napi_throw_error(env, NULL, "bench helper: pthread_create");
      return NULL;
    }
    pthread_detach(thread);
  }
  return NULL;
}

/* ---- paced emission ------------------------------------------------------------------ */

typedef int32_t (*SimEmit)(const char* name, const char* payload, char** error);

typedef struct Paced Paced;
typedef struct {
  Paced* run;
  uint32_t index;
  pthread_t thread;
} Pacer;

struct Paced {
  SimEmit emit;
  uint64_t start, periodNs;  /* each thread: one event every periodNs, offset by its index */
  uint32_t perThread, threads;
  uint64_t* emitNs;          /* [threads * perThread] */
  Pacer* pacers;
  atomic_uint running;       /* the last pacer to finish reports */
  napi_threadsafe_function done;
};

static void sleepUntil(uint64_t t) {
  /* Sleep most of the way, spin the rest: the scheduler wakes late by tens of us. */
  for (;;) {
    const uint64_t now = nowNs();
    if (now >= t) return;
    if (t - now > 200000) {
      const uint64_t until = t - 100000;
      struct timespec ts = {(time_t)(until / 1000000000u), (long)(until % 1000000000u)};
      clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &ts, NULL);
    }
  }
}

static void* pacerThread(void* p) {
  Pacer* pacer = p;
  Paced* run = pacer->run;
  char payload[160];
  for (uint32_t i = 0; i < run->perThread; i++) {
    sleepUntil(run->start + i * run->periodNs + pacer->index * run->periodNs / run->threads);
    const uint64_t t = nowNs();
    snprintf(payload, sizeof payload,
             "{\"roomID\":\"%u\",\"state\":%u,\"errorCode\":0,\"extendedData\":\"%llu\"}",
             pacer->index, i, (unsigned long long)t);
    run->emit("room_state_update", payload, NULL);
    run->emitNs[pacer->index * run->perThread + i] = nowNs() - t;
  }
  if (atomic_fetch_sub(&run->running, 1) == 1) {
    napi_call_threadsafe_function(run->done, NULL, napi_tsfn_blocking);
  }
  napi_release_threadsafe_function(run->done, napi_tsfn_release);
  return NULL;
}

static void pacedDone(napi_env env, napi_value fn, void* context, void* data) {
  (void)data;
  Paced* run = context;
  if (env != NULL) {
    const size_t n = (size_t)run->threads * run->perThread;
    napi_value result, list, seconds, receiver;
    void* bytes = NULL;
    napi_create_object(env, &result);
    napi_create_arraybuffer(env, n * sizeof(double), &bytes, &list);
    for (size_t i = 0; i < n; i++) ((double*)bytes)[i] = (double)run->emitNs[i];
    napi_set_named_property(env, result, "emitNs", list);
    napi_create_double(env, (double)(nowNs() - run->start) / 1e9, &seconds);
    napi_set_named_property(env, result, "seconds", seconds);
    napi_get_undefined(env, &receiver);
    napi_call_function(env, receiver, fn, 1, &result, NULL);
  }
}

/* After every pacer released the function: they are past their last use of `run`. */
static void pacedFinalize(napi_env env, void* data, void* hint) {
  (void)env;
  (void)hint;
  Paced* run = data;
  for (uint32_t t = 0; t < run->threads; t++) pthread_join(run->pacers[t].thread, NULL);
  free(run->pacers);
  free(run->emitNs);
  free(run);
}

static napi_value PacedEmit(napi_env env, napi_callback_info info) {
  size_t argc = 5;
  napi_value argv[5], name;
  char library[4096];
  double rate;
  uint32_t count, threads;
  CHECK(napi_get_cb_info(env, info, &argc, argv, NULL, NULL));
  CHECK(napi_get_value_string_utf8(env, argv[0], library, sizeof library, NULL));
  CHECK(napi_get_value_double(env, argv[1], &rate));
  CHECK(napi_get_value_uint32(env, argv[2], &count));
  CHECK(napi_get_value_uint32(env, argv[3], &threads));
  void* handle = dlopen(library, RTLD_NOW | RTLD_NOLOAD);
  SimEmit emit = handle ? (SimEmit)dlsym(handle, "orva_sim_emit") : NULL;
  if (emit == NULL || threads == 0 || rate <= 0) {
    napi_throw_error(env, NULL, "bench helper: the simulated engine is not loaded");
    return NULL;
  }
  Paced* run = calloc(1, sizeof *run);
  run->emit = emit;
  run->threads = threads;
  run->perThread = count / threads;
  run->periodNs = (uint64_t)(1e9 * threads / rate);
  run->emitNs = calloc((size_t)threads * run->perThread, sizeof(uint64_t));
  run->pacers = calloc(threads, sizeof(Pacer));
  atomic_init(&run->running, threads);
  CHECK(napi_create_string_utf8(env, "bench paced", NAPI_AUTO_LENGTH, &name));
  CHECK(napi_create_threadsafe_function(env, argv[4], NULL, name, 0, threads, run, pacedFinalize,
                                        run, pacedDone, &run->done));
  run->start = nowNs() + 20000000;  /* 20 ms for the threads to start */
  for (uint32_t t = 0; t < threads; t++) {
    run->pacers[t].run = run;
    run->pacers[t].index = t;
    pthread_create(&run->pacers[t].thread, NULL, pacerThread, &run->pacers[t]);
  }
  return NULL;
}

static napi_value Init(napi_env env, napi_value exports) {
  napi_value fn;
  CHECK(napi_create_function(env, "ping", NAPI_AUTO_LENGTH, Ping, NULL, &fn));
  CHECK(napi_set_named_property(env, exports, "ping", fn));
  CHECK(napi_create_function(env, "paced", NAPI_AUTO_LENGTH, PacedEmit, NULL, &fn));
  CHECK(napi_set_named_property(env, exports, "paced", fn));
  return exports;
}

NAPI_MODULE(NODE_GYP_MODULE_NAME, Init)
