#include "platform/win32/moved_aside.hpp"

#include <windows.h>

#include "platform/files.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr const char* kAsideMark = ".old-";

// Opening a running program for writing is a sharing violation, be everything shared.
bool IsInUse(const std::wstring& name) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const unique_file file(
      CreateFileW(name.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  return !file && GetLastError() == ERROR_SHARING_VIOLATION;
}

// The name that the program has now; empty when it could not be moved.
std::wstring MoveAside(const std::string& path) {
  const std::wstring name = SystemPath(path);
  for (int number = 0; number < 100; ++number) {
    const std::wstring aside = SystemPath(path + kAsideMark + std::to_string(number));
    if (MoveFileExW(name.c_str(), aside.c_str(), MOVEFILE_WRITE_THROUGH)) return aside;
    if (GetLastError() != ERROR_ALREADY_EXISTS) break;
  }
  return {};
}

}  // namespace

bool MoveOver(const std::wstring& from, const std::string& to) {
  const std::wstring target = SystemPath(to);
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  if (MoveFileExW(from.c_str(), target.c_str(), kFlags)) return true;
  DWORD code = GetLastError();
  const bool denied = code == ERROR_ACCESS_DENIED || code == ERROR_SHARING_VIOLATION;
  const std::wstring aside = denied && IsInUse(target) ? MoveAside(to) : std::wstring{};
  if (!aside.empty()) {
    if (MoveFileExW(from.c_str(), target.c_str(), kFlags)) {
      RemoveMovedAside(to);
      return true;
    }
    code = GetLastError();
    MoveFileExW(aside.c_str(), target.c_str(), MOVEFILE_WRITE_THROUGH);
  }
  SetLastError(code);
  return false;
}

void RemoveMovedAside(const std::string& path) {
  WIN32_FIND_DATAW entry;
  const unique_find search(FindFirstFileW(SystemPath(path + kAsideMark + "*").c_str(), &entry));
  if (!search) return;
  do {
    DeleteFileW(SystemPath(FolderOf(path) + kSeparator + Narrow(entry.cFileName)).c_str());
  } while (FindNextFileW(search.get(), &entry));
}

}  // namespace platform
