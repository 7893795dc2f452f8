#include "support/host_path.hpp"

#include <windows.h>

#include "platform/win32/wide.hpp"

namespace support {

std::string HostPath(const std::string& path) {
  using UnixName = char*(CDECL*)(const WCHAR*);
  const FARPROC found = GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name");
  const auto unixName = reinterpret_cast<UnixName>(reinterpret_cast<void*>(found));
  char* const text = unixName ? unixName(platform::Wide(path).c_str()) : nullptr;
  const std::string copy = text ? text : "";
  HeapFree(GetProcessHeap(), 0, text);
  return copy;
}

std::string HostShell() { return "Z:\\bin\\sh"; }

}  // namespace support
