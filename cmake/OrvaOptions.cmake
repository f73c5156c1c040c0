# Build options shared by every target: sanitizers and warnings.

set(ORVA_SANITIZE "" CACHE STRING "Sanitizer build: empty, 'address' (ASan+UBSan) or 'thread' (TSan)")
set_property(CACHE ORVA_SANITIZE PROPERTY STRINGS "" address thread)
option(ORVA_WERROR "Treat warnings in our own code as errors" OFF)

if(ORVA_SANITIZE STREQUAL "address")
  # UBSan rides along with ASan; undefined behaviour stops the run like a memory error.
  set(ORVA_SANITIZER_FLAGS
    -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
elseif(ORVA_SANITIZE STREQUAL "thread")
  set(ORVA_SANITIZER_FLAGS -fsanitize=thread -fno-omit-frame-pointer)
elseif(NOT ORVA_SANITIZE STREQUAL "")
  message(FATAL_ERROR "ORVA_SANITIZE must be empty, 'address' or 'thread', not '${ORVA_SANITIZE}'")
endif()

if(ORVA_SANITIZER_FLAGS)
  if(CMAKE_CROSSCOMPILING)
    message(FATAL_ERROR "Sanitizer builds are host-only")
  endif()
  # Applied to the whole tree, including the simulated engine, so that races and leaks
  # across the addon/engine boundary are seen from both sides.
  add_compile_options(${ORVA_SANITIZER_FLAGS})
  add_link_options(${ORVA_SANITIZER_FLAGS})
endif()

function(orva_target_warnings target)
  if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
    target_compile_options(${target} PRIVATE -Wall -Wextra)
    if(ORVA_WERROR)
      target_compile_options(${target} PRIVATE -Werror)
    endif()
  endif()
endfunction()
