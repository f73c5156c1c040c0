# Third-party dependencies, all from Debian packages (see scripts/setup.sh).

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)

# Header-only libraries live in the host's /usr/include. A cross build must not put that
# directory on its include path (glibc headers would shadow MinGW's), so a cross build sees
# them through a directory of links to just the libraries' own folders.
function(_orva_find_header_only out header hint_package)
  find_path(_dir "${header}" NO_CMAKE_FIND_ROOT_PATH
    PATHS /usr/local/include /usr/include PATH_SUFFIXES ${ARGN})
  if(NOT _dir)
    message(FATAL_ERROR "${header} not found: install ${hint_package} (scripts/setup.sh)")
  endif()
  set(${out} "${_dir}" PARENT_SCOPE)
  unset(_dir CACHE)
endfunction()

_orva_find_header_only(_rapidjson_root "rapidjson/document.h" rapidjson-dev)
_orva_find_header_only(_stb_dir "stb_image_write.h" libstb-dev stb)

add_library(orva_rapidjson INTERFACE)
add_library(orva::rapidjson ALIAS orva_rapidjson)
if(CMAKE_CROSSCOMPILING)
  set(_shim "${CMAKE_BINARY_DIR}/host-headers")
  file(MAKE_DIRECTORY "${_shim}")
  file(CREATE_LINK "${_rapidjson_root}/rapidjson" "${_shim}/rapidjson" SYMBOLIC)
  target_include_directories(orva_rapidjson SYSTEM INTERFACE "${_shim}")
elseif(NOT _rapidjson_root STREQUAL "/usr/include")
  target_include_directories(orva_rapidjson SYSTEM INTERFACE "${_rapidjson_root}")
endif()
# Lets RapidJSON values be built from and compared with std::string directly.
target_compile_definitions(orva_rapidjson INTERFACE RAPIDJSON_HAS_STDSTRING=1)

# stb: #include <stb_image_write.h>; the implementation is defined in one of our files.
add_library(orva_stb INTERFACE)
add_library(orva::stb ALIAS orva_stb)
target_include_directories(orva_stb SYSTEM INTERFACE "${_stb_dir}")

# zlib: the deflate behind PNG thumbnails and icons (stb_image_write's own is several times
# slower). Linked statically on Windows, so the addon needs no zlib1.dll beside it; a cross
# build finds MinGW's copy (Debian: libz-mingw-w64-dev) through the toolchain's root path.
if(WIN32)
  set(ZLIB_USE_STATIC_LIBS ON)
endif()
find_package(ZLIB)
if(NOT ZLIB_FOUND)
  message(FATAL_ERROR "zlib not found: install zlib1g-dev, or libz-mingw-w64-dev for the Windows build (scripts/setup.sh)")
endif()

# JPEG encoding: libjpeg-turbo's TurboJPEG API on Linux, GDI+ on Windows.
add_library(orva_jpeg INTERFACE)
add_library(orva::jpeg ALIAS orva_jpeg)
if(WIN32)
  target_link_libraries(orva_jpeg INTERFACE gdiplus ole32)
else()
  find_path(ORVA_TURBOJPEG_INCLUDE_DIR turbojpeg.h)
  find_library(ORVA_TURBOJPEG_LIBRARY NAMES turbojpeg)
  if(NOT ORVA_TURBOJPEG_INCLUDE_DIR OR NOT ORVA_TURBOJPEG_LIBRARY)
    message(FATAL_ERROR "TurboJPEG not found: install libturbojpeg0-dev (scripts/setup.sh)")
  endif()
  target_include_directories(orva_jpeg SYSTEM INTERFACE "${ORVA_TURBOJPEG_INCLUDE_DIR}")
  target_link_libraries(orva_jpeg INTERFACE "${ORVA_TURBOJPEG_LIBRARY}")
endif()

# libyuv is optional: code may use it under ORVA_HAVE_LIBYUV and must work without it.
option(ORVA_WITH_LIBYUV "Use libyuv for pixel conversion when it is installed" ON)
set(ORVA_HAVE_LIBYUV OFF)
if(ORVA_WITH_LIBYUV AND NOT WIN32)
  find_path(ORVA_LIBYUV_INCLUDE_DIR libyuv.h)
  find_library(ORVA_LIBYUV_LIBRARY NAMES yuv)
  if(ORVA_LIBYUV_INCLUDE_DIR AND ORVA_LIBYUV_LIBRARY)
    set(ORVA_HAVE_LIBYUV ON)
    add_library(orva_yuv INTERFACE)
    add_library(orva::yuv ALIAS orva_yuv)
    target_include_directories(orva_yuv SYSTEM INTERFACE "${ORVA_LIBYUV_INCLUDE_DIR}")
    target_link_libraries(orva_yuv INTERFACE "${ORVA_LIBYUV_LIBRARY}")
    target_compile_definitions(orva_yuv INTERFACE ORVA_HAVE_LIBYUV=1)
  endif()
endif()
message(STATUS "libyuv: ${ORVA_HAVE_LIBYUV}")

# Run-time loading of the engine library (dlopen / LoadLibrary).
add_library(orva_engine_loader INTERFACE)
add_library(orva::engine_loader ALIAS orva_engine_loader)
if(NOT WIN32)
  target_link_libraries(orva_engine_loader INTERFACE ${CMAKE_DL_LIBS})
endif()
