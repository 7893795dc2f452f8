#pragma once

#include <windows.h>

#include "base/unique_handle.hpp"

namespace platform {

struct LibraryTraits : base::NullIsNone<HMODULE> {
  static void Close(HMODULE library) { FreeLibrary(library); }
};
using unique_library = base::UniqueHandle<LibraryTraits>;

// A library of the system folder, taken from there whatever lies beside the program; null when there is none.
unique_library LoadSystemLibrary(const wchar_t* name);

// A function that a library (null: none) may lack; null when it does.
template <class Function>
Function* FunctionOf(HMODULE library, const char* name) {
  if (!library) return nullptr;
  return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}

}  // namespace platform
