#include <windows.h>

// Leaves "<its own path>.loaded" as soon as any program loads it.
BOOL WINAPI DllMain(HINSTANCE library, DWORD reason, void*) {
  if (reason != DLL_PROCESS_ATTACH) return TRUE;
  wchar_t path[MAX_PATH + 8];
  const DWORD length = GetModuleFileNameW(library, path, MAX_PATH);
  lstrcpyW(path + length, L".loaded");
  CloseHandle(CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
  return TRUE;
}
