/*
 * Native helper of the engine wrapper benchmark (bench/wrapper.bench.js), built by the bench
 * itself and loaded only there; nothing of it is in the addon.
 *
 * The floors a wrapper method call is compared with, each taking one object and returning
 * undefined without looking at it:
 *   empty(arg)                  a plain Node-API function: the bare call from script into C
 *   new Wrapped().method(arg)   the same as an instance method of a wrapped object, which
 *                               first finds its native object (napi_unwrap), as every
 *                               engine wrapper method does
 */
#include <node_api.h>
#include <stdlib.h>

#define CHECK(call)                                           \
  do {                                                        \
    if ((call) != napi_ok) {                                  \
      napi_throw_error(env, NULL, "bench baseline: " #call);  \
      return NULL;                                            \
    }                                                         \
  } while (0)

static napi_value empty(napi_env env, napi_callback_info info) {
  size_t argc = 1;
  napi_value argv[1];
  CHECK(napi_get_cb_info(env, info, &argc, argv, NULL, NULL));
  return NULL;
}

static void freeNative(napi_env env, void* data, void* hint) {
  (void)env;
  (void)hint;
  free(data);
}

static napi_value construct(napi_env env, napi_callback_info info) {
  napi_value self;
  CHECK(napi_get_cb_info(env, info, NULL, NULL, &self, NULL));
  int* native = malloc(sizeof *native);
  if (native == NULL) {
    napi_throw_error(env, NULL, "bench baseline: out of memory");
    return NULL;
  }
  *native = 0;
  if (napi_wrap(env, self, native, freeNative, NULL, NULL) != napi_ok) {
    free(native);
    napi_throw_error(env, NULL, "bench baseline: napi_wrap");
    return NULL;
  }
  return self;
}

static napi_value method(napi_env env, napi_callback_info info) {
  size_t argc = 1;
  napi_value argv[1];
  napi_value self;
  void* native = NULL;
  CHECK(napi_get_cb_info(env, info, &argc, argv, &self, NULL));
  CHECK(napi_unwrap(env, self, &native));
  return NULL;
}

NAPI_MODULE_INIT() {
  napi_value fn;
  napi_value cls;
  napi_property_descriptor methods[] = {
      {"method", NULL, method, NULL, NULL, NULL, napi_default, NULL},
  };
  CHECK(napi_create_function(env, "empty", NAPI_AUTO_LENGTH, empty, NULL, &fn));
  CHECK(napi_set_named_property(env, exports, "empty", fn));
  CHECK(napi_define_class(env, "Wrapped", NAPI_AUTO_LENGTH, construct, NULL, 1, methods, &cls));
  CHECK(napi_set_named_property(env, exports, "Wrapped", cls));
  return exports;
}
