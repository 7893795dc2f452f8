#include <windows.h>

#include <algorithm>

#include "platform/files.hpp"
#include "platform/win32/system_error.hpp"
#include "platform/win32/wide.hpp"

namespace platform {

const std::string kSeparator = "\\";
const std::string kLineEnd = "\r\n";

std::string NativePath(std::string_view path) {
  std::string native(path);
  std::replace(native.begin(), native.end(), '/', '\\');
  return native;
}

std::string ExecutablePath() {
  std::wstring path(MAX_PATH, L'\0');
  for (;;) {
    const DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    if (length < path.size()) return Narrow(std::wstring_view(path).substr(0, length));
    path.resize(path.size() * 2);
  }
}

std::string FolderOf(const std::string& path) {
  const std::size_t last = path.find_last_of("\\/");
  if (last == std::string::npos) return ".";
  const std::size_t end = path.find_last_not_of("\\/", last);
  return end == std::string::npos ? std::string{} : path.substr(0, end + 1);
}

std::string FileNameOf(const std::string& path) { return path.substr(path.find_last_of("\\/") + 1); }

std::string BaseNameOf(const std::string& path) {
  const std::string name = FileNameOf(path);
  return name.substr(0, name.rfind('.'));
}

std::string SystemFolder() {
  wchar_t path[MAX_PATH];
  const UINT length = GetSystemDirectoryW(path, MAX_PATH);
  if (length == 0 || length >= MAX_PATH)
    RaiseSystemError(length == 0 ? GetLastError() : ERROR_INSUFFICIENT_BUFFER);
  return Narrow({path, length});
}

}  // namespace platform
