# Native tests (GoogleTest) and artifact checks, registered with CTest.

# Sanitizer settings for native executables. These run fully instrumented, so unlike
# node they keep leak detection on, and they load their sanitizer runtime themselves: a
# runtime preloaded by scripts/run-sanitized.sh is dropped (cmake -P hangs under TSan).
set(ORVA_NATIVE_TEST_ENV "LD_LIBRARY_PATH=${ORVA_OUT_DIR}")
set(ORVA_TEST_ENV_MODIFICATION "LD_PRELOAD=unset:")
if(ORVA_SANITIZE STREQUAL "address")
  list(APPEND ORVA_NATIVE_TEST_ENV
    "ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:strict_string_checks=1:detect_stack_use_after_return=1"
    "UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1")
elseif(ORVA_SANITIZE STREQUAL "thread")
  list(APPEND ORVA_NATIVE_TEST_ENV "TSAN_OPTIONS=second_deadlock_stack=1:history_size=4")
endif()

orva_glob(ORVA_NATIVE_TEST_SOURCES "${PROJECT_SOURCE_DIR}/test/native/*_test.cc")
if(ORVA_NATIVE_TEST_SOURCES)
  find_package(GTest REQUIRED)
  include(GoogleTest)
  add_executable(orva_native_tests ${ORVA_NATIVE_TEST_SOURCES})
  orva_project_target(orva_native_tests)
  target_include_directories(orva_native_tests PRIVATE "${PROJECT_SOURCE_DIR}/test/native")
  target_link_libraries(orva_native_tests PRIVATE orva_core GTest::gtest_main Threads::Threads)
  # Tests that load the simulated engine need it built and beside the executable.
  add_dependencies(orva_native_tests OrvaVantixEngine)
  # Discovery at test time: a build never runs the (possibly instrumented) executable.
  gtest_discover_tests(orva_native_tests
    WORKING_DIRECTORY "${ORVA_OUT_DIR}"
    DISCOVERY_MODE PRE_TEST
    DISCOVERY_TIMEOUT 60
    PROPERTIES
      ENVIRONMENT "${ORVA_NATIVE_TEST_ENV}"
      ENVIRONMENT_MODIFICATION "${ORVA_TEST_ENV_MODIFICATION}"
      TIMEOUT 300)
endif()

# The engine is a run-time dependency only: the addon and the control module must not
# record it as a link dependency, and the engine must not need Node to load.
find_program(ORVA_READELF NAMES readelf)
if(ORVA_READELF AND NOT WIN32)
  add_test(NAME build.artifacts_are_independent
    COMMAND "${CMAKE_COMMAND}"
      "-DREADELF=${ORVA_READELF}"
      "-DADDON=$<TARGET_FILE:OrvaVantixNodeNative>"
      "-DCONTROL=$<TARGET_FILE:orva_sim_control>"
      "-DENGINE=$<TARGET_FILE:OrvaVantixEngine>"
      -P "${PROJECT_SOURCE_DIR}/cmake/CheckArtifacts.cmake")
  set_tests_properties(build.artifacts_are_independent PROPERTIES
    ENVIRONMENT_MODIFICATION "${ORVA_TEST_ENV_MODIFICATION}" TIMEOUT 60)
endif()
