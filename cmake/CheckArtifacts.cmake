# ctest script: checks the run-time contract between the built artifacts.
#   - the addon, the control module and the engine library sit in one directory, since the
#     addon and the control module load the engine from their own directory;
#   - neither Node module lists the engine as a needed library (it is loaded at run time,
#     so that a user can drop the vendor's library in its place);
#   - the engine library needs nothing from Node.

set(failures "")
foreach(file IN ITEMS "${ADDON}" "${CONTROL}" "${ENGINE}")
  if(NOT EXISTS "${file}")
    string(APPEND failures "missing artifact: ${file}\n")
  endif()
endforeach()

get_filename_component(addon_dir "${ADDON}" DIRECTORY)
get_filename_component(control_dir "${CONTROL}" DIRECTORY)
get_filename_component(engine_dir "${ENGINE}" DIRECTORY)
if(NOT addon_dir STREQUAL engine_dir OR NOT control_dir STREQUAL engine_dir)
  string(APPEND failures "artifacts are not in one directory: ${addon_dir}, ${control_dir}, ${engine_dir}\n")
endif()

get_filename_component(engine_name "${ENGINE}" NAME)
foreach(module IN ITEMS "${ADDON}" "${CONTROL}")
  if(EXISTS "${module}")
    execute_process(COMMAND "${READELF}" --dynamic "${module}" OUTPUT_VARIABLE dyn RESULT_VARIABLE rc)
    if(NOT rc EQUAL 0)
      string(APPEND failures "readelf failed on ${module}\n")
    elseif(dyn MATCHES "NEEDED[^\n]*OrvaVantixEngine")
      string(APPEND failures "${module} links ${engine_name}; it must load it at run time\n")
    endif()
  endif()
endforeach()

if(EXISTS "${ENGINE}")
  execute_process(COMMAND "${READELF}" --dyn-syms --wide "${ENGINE}" OUTPUT_VARIABLE syms RESULT_VARIABLE rc)
  execute_process(COMMAND "${READELF}" --dynamic "${ENGINE}" OUTPUT_VARIABLE dyn)
  if(NOT rc EQUAL 0)
    string(APPEND failures "readelf failed on ${ENGINE}\n")
  else()
    string(REGEX MATCHALL "UND (napi_|node_api_|uv_|_ZN2v8)[A-Za-z0-9_]*" node_refs "${syms}")
    if(node_refs)
      list(REMOVE_DUPLICATES node_refs)
      string(APPEND failures "${engine_name} depends on Node: ${node_refs}\n")
    endif()
    if(dyn MATCHES "NEEDED[^\n]*(libnode|\\.node\\])")
      string(APPEND failures "${engine_name} needs a Node library\n")
    endif()
    # Without these the addon cannot tell the library from the vendor's.
    if(NOT syms MATCHES " orva_")
      string(APPEND failures "${engine_name} exports no orva_* entry point\n")
    endif()
  endif()
endif()

if(failures)
  message(FATAL_ERROR "${failures}")
endif()
message(STATUS "artifacts OK: ${addon_dir}")
