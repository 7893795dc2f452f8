#pragma once

#include <windows.h>

#include "base/unique_handle.hpp"

namespace platform {
namespace handle_traits {

struct File {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { CloseHandle(handle); }
};

struct Kernel : base::NullIsNone<HANDLE> {  // events, mutexes, processes, threads
  static void Close(Type handle) { CloseHandle(handle); }
};

struct Find {
  using Type = HANDLE;
  static Type Invalid() { return INVALID_HANDLE_VALUE; }
  static void Close(Type handle) { FindClose(handle); }
};

struct RegistryKey : base::NullIsNone<HKEY> {
  static void Close(Type key) { RegCloseKey(key); }
};

struct Window : base::NullIsNone<HWND> {
  static void Close(Type window) { DestroyWindow(window); }
};

struct Icon : base::NullIsNone<HICON> {
  static void Close(Type icon) { DestroyIcon(icon); }
};

}  // namespace handle_traits

using unique_file = base::UniqueHandle<handle_traits::File>;
using unique_snapshot = base::UniqueHandle<handle_traits::File>;  // Toolhelp has the invalid value of files
using unique_event = base::UniqueHandle<handle_traits::Kernel>;
using unique_mutex = base::UniqueHandle<handle_traits::Kernel>;
using unique_process = base::UniqueHandle<handle_traits::Kernel>;
using unique_thread = base::UniqueHandle<handle_traits::Kernel>;
using unique_find = base::UniqueHandle<handle_traits::Find>;
using unique_registry_key = base::UniqueHandle<handle_traits::RegistryKey>;
using unique_window = base::UniqueHandle<handle_traits::Window>;
using unique_icon = base::UniqueHandle<handle_traits::Icon>;

}  // namespace platform
