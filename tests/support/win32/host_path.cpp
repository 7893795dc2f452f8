#include "support/host_path.hpp"

#include <windows.h>

#include <algorithm>

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

bool StartOnHost(const std::string& program, const std::string& arguments) {
  std::string path = "Z:" + program;
  std::replace(path.begin(), path.end(), '/', '\\');
  std::wstring line = platform::Wide(program + " " + arguments);
  STARTUPINFOW start{};
  start.cb = sizeof start;
  // Of such a program Wine has neither handles nor numbers, and leaves here whatever lay on its stack:
  // whoever closed these would now and then close what another thread waits for.
  PROCESS_INFORMATION nothing;
  return CreateProcessW(platform::Wide(path).c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                        nullptr, &start, &nothing);
}

}  // namespace support
