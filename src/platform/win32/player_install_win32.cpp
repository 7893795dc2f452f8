#include <windows.h>

#include "platform/files.hpp"
#include "platform/player_install.hpp"
#include "platform/win32/wide.hpp"

namespace platform {

bool RemoveProgram(const std::string& path) {
  if (TryRemoveFile(path)) return true;
  wchar_t temporary[MAX_PATH + 1];
  const DWORD length = GetTempPathW(MAX_PATH + 1, temporary);
  if (length == 0 || length > MAX_PATH) return false;
  const std::wstring away = std::wstring(temporary, length) + L"launcher-" +
                            std::to_wstring(GetCurrentProcessId()) + L"-" +
                            std::to_wstring(GetTickCount64()) + L".old";
  return MoveFileExW(SystemPath(path).c_str(), away.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
}

}  // namespace platform
