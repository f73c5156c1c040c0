# Windows x64 cross build with MinGW-w64 (Debian: g++-mingw-w64-x86-64-posix).
# The posix thread variant is required: the win32 variant has no std::mutex/std::thread,
# which node-addon-api needs.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)

set(ORVA_MINGW_TRIPLE x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${ORVA_MINGW_TRIPLE}-gcc-posix)
set(CMAKE_CXX_COMPILER ${ORVA_MINGW_TRIPLE}-g++-posix)
set(CMAKE_RC_COMPILER ${ORVA_MINGW_TRIPLE}-windres)
set(CMAKE_AR ${ORVA_MINGW_TRIPLE}-ar CACHE FILEPATH "")
set(CMAKE_RANLIB ${ORVA_MINGW_TRIPLE}-ranlib CACHE FILEPATH "")

set(CMAKE_FIND_ROOT_PATH /usr/${ORVA_MINGW_TRIPLE})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# Fully static runtime: -static-libgcc/-static-libstdc++ alone still leave a
# libwinpthread-1.dll dependency that Electron's directory does not have.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "-static")

# Windows 10 APIs (Node 20 refuses older systems anyway).
add_compile_definitions(_WIN32_WINNT=0x0A00 WINVER=0x0A00)

# Debian has no wine64 on PATH; executables built here run through Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR /usr/lib/wine/wine64)
