#pragma once

#include <windows.h>

#include <type_traits>

#include "platform/win32/system_library.hpp"

namespace ui::win32 {

// A function of one of the system's own libraries; null where this Windows has no such library or function.
// The library is loaded from the system's folder only, and stays.
template <class Function>
Function SystemFunction(const wchar_t* library, const char* name) {
  HMODULE module = GetModuleHandleW(library);
  if (!module) module = platform::LoadSystemLibrary(library).release();
  return platform::FunctionOf<std::remove_pointer_t<Function>>(module, name);
}

}  // namespace ui::win32
