# Node-API headers come from the npm packages node-api-headers and node-addon-api (never
# from a downloaded Node tarball), located the way Node itself resolves them.

find_program(ORVA_NODE_EXECUTABLE NAMES node nodejs REQUIRED)
# NODE_OPTIONS from the caller's shell must not change how the build-time scripts run.
set(ORVA_NODE_COMMAND "${CMAKE_COMMAND}" -E env --unset=NODE_OPTIONS "${ORVA_NODE_EXECUTABLE}")

function(_orva_node_resolve out expr what)
  execute_process(
    COMMAND ${ORVA_NODE_COMMAND} -p "${expr}"
    WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}"
    RESULT_VARIABLE rc
    OUTPUT_VARIABLE value
    ERROR_VARIABLE err
    OUTPUT_STRIP_TRAILING_WHITESPACE)
  if(NOT rc EQUAL 0 OR NOT EXISTS "${value}")
    message(FATAL_ERROR
      "Cannot locate ${what} (${err}). Run scripts/setup.sh (or npm ci) in ${PROJECT_SOURCE_DIR} first.")
  endif()
  set(${out} "${value}" PARENT_SCOPE)
endfunction()

_orva_node_resolve(ORVA_NODE_API_HEADERS_INCLUDE_DIR
  "require('node-api-headers').include_dir" "the npm package node-api-headers")
_orva_node_resolve(ORVA_NODE_API_DEF
  "require('node-api-headers').def_paths.node_api_def" "node-api-headers' node_api.def")
# node-addon-api's own include_dir is relative to the current directory; resolve the
# package root instead.
_orva_node_resolve(ORVA_NODE_ADDON_API_INCLUDE_DIR
  "require('path').dirname(require.resolve('node-addon-api/package.json'))"
  "the npm package node-addon-api")
message(STATUS "Node-API headers: ${ORVA_NODE_API_HEADERS_INCLUDE_DIR}")
message(STATUS "node-addon-api: ${ORVA_NODE_ADDON_API_INCLUDE_DIR}")

add_library(orva_node_api INTERFACE)
add_library(orva::node_api ALIAS orva_node_api)
# SYSTEM: their warnings are not ours to fix.
target_include_directories(orva_node_api SYSTEM INTERFACE
  "${ORVA_NODE_ADDON_API_INCLUDE_DIR}" "${ORVA_NODE_API_HEADERS_INCLUDE_DIR}")

if(WIN32)
  # Windows modules import N-API from the host executable. A delay-load import library
  # bound to "node.exe" plus our delay-load hook (src/platform) lets the same binary load
  # into Electron, whose executable has another name.
  find_program(ORVA_DLLTOOL NAMES x86_64-w64-mingw32-dlltool dlltool REQUIRED)
  set(ORVA_NODE_DELAY_LIB "${CMAKE_BINARY_DIR}/libnode_delay.a")
  add_custom_command(
    OUTPUT "${ORVA_NODE_DELAY_LIB}"
    COMMAND "${ORVA_DLLTOOL}" -d "${ORVA_NODE_API_DEF}" -y "${ORVA_NODE_DELAY_LIB}" -D node.exe
    DEPENDS "${ORVA_NODE_API_DEF}"
    COMMENT "Building the delay-load import library for node.exe"
    VERBATIM)
  add_custom_target(orva_node_delay_lib DEPENDS "${ORVA_NODE_DELAY_LIB}")
  add_library(orva_node_delay_import INTERFACE)
  add_library(orva::node_delay_import ALIAS orva_node_delay_import)
  target_link_libraries(orva_node_delay_import INTERFACE "${ORVA_NODE_DELAY_LIB}")
  add_dependencies(orva_node_delay_import orva_node_delay_lib)
endif()
