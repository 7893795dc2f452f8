#include "platform/win32/system_library.hpp"

#include "platform/files.hpp"
#include "platform/win32/wide.hpp"

namespace platform {

unique_library LoadSystemLibrary(const wchar_t* name) {
  unique_library library(LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32));
  if (library || GetLastError() != ERROR_INVALID_PARAMETER) return library;
  // Windows 7 without its update of 2011 knows no such flag.
  const std::wstring path = Wide(SystemFolder() + kSeparator) + name;
  return unique_library(LoadLibraryExW(path.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
}

}  // namespace platform
