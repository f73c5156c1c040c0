// Delay-load hook for Windows builds of our Node modules.
//
// The modules import N-API through a delay-load import library bound to "node.exe"
// (built from node-api-headers' node_api.def). Under Electron, or any host whose
// executable has another name, loading "node.exe" would fail or find the wrong module;
// the hook answers that request with the running executable, which is what exports N-API.
#ifdef _WIN32

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>
// delayimp.h relies on the types above.
#include <delayimp.h>

#include <string.h>

namespace {

FARPROC WINAPI LoadHostForNodeExe(unsigned int event, PDelayLoadInfo info) {
  if (event != dliNotePreLoadLibrary || info == nullptr || info->szDll == nullptr) {
    return nullptr;
  }
  if (_stricmp(info->szDll, "node.exe") != 0) {
    return nullptr;
  }
  return reinterpret_cast<FARPROC>(GetModuleHandleW(nullptr));
}

}  // namespace

// The CRT's delay-load helper consults this pointer before every library load. Defining it
// here replaces the runtime library's default (null) definition.
PfnDliHook __pfnDliNotifyHook2 = LoadHostForNodeExe;

#endif  // _WIN32
