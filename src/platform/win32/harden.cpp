#include "platform/win32/harden.hpp"

#include <windows.h>

namespace platform {

void HardenProcess() {
  HeapSetInformation(nullptr, HeapEnableTerminationOnCorruption, nullptr, 0);
  SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX);
  // Windows 7 has the call only with an update of 2011; without it at least the current folder is left out.
  using SetDirectories = BOOL(WINAPI*)(DWORD);
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "SetDefaultDllDirectories");
  const auto setDirectories = reinterpret_cast<SetDirectories>(reinterpret_cast<void*>(found));
  if (!setDirectories || !setDirectories(LOAD_LIBRARY_SEARCH_SYSTEM32)) SetDllDirectoryW(L"");
}

}  // namespace platform
