#include "platform/win32/harden.hpp"

#include <windows.h>
// after windows.h, which it builds on
#include <delayimp.h>

#include "base/text.hpp"
#include "platform/win32/system_library.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

// The system itself directs this one to the folder of its version, as the manifest says, before it looks
// anywhere else; by its path the wrong version would come.
constexpr const char* kDirected = "comctl32.dll";

// Libraries that are loaded at the first call of one of their functions come from the system folder.
FARPROC WINAPI OnDelayLoad(unsigned event, DelayLoadInfo* information) {
  if (event != dliNotePreLoadLibrary) return nullptr;
  if (base::EqualIgnoringCase(information->szDll, kDirected)) return nullptr;  // loaded by its name
  return reinterpret_cast<FARPROC>(LoadSystemLibrary(Wide(information->szDll).c_str()).release());
}

}  // namespace

void HardenProcess() {
  HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  // Windows 7 has the call only with an update of 2011; without it at least the current folder is left out.
  auto* const setDirectories = FunctionOf<decltype(SetDefaultDllDirectories)>(
      GetModuleHandleW(L"kernel32.dll"), "SetDefaultDllDirectories");
  if (!setDirectories || !setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32)) SetDllDirectoryW(L"");
}

}  // namespace platform

// What the toolchain's delayed loading calls; its own is only taken where there is none.
extern "C" {
PfnDliHook __pfnDliNotifyHook2 = platform::OnDelayLoad;
}
