#pragma once

#include <windows.h>

namespace ui::win32 {

// A function of one of the system's own libraries; null where this Windows has no such library or function.
// The library is loaded from the system's folder only, and stays.
template <class Function>
Function SystemFunction(const wchar_t* library, const char* name) {
  HMODULE module = GetModuleHandleW(library);
  if (!module) module = LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  if (!module) return nullptr;
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

}  // namespace ui::win32
