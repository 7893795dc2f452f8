#include <windows.h>

#include <algorithm>
#include <functional>
#include <unordered_map>

#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "platform/win32/file_stamp.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/moved_aside.hpp"
#include "platform/win32/system_error.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

struct Look {
  DWORD attributes;
  FileStamp stamp;
};

template <class Data>
Look LookFrom(const Data& data) {
  return {data.dwFileAttributes, StampFrom(data)};
}

// What a path names, links followed.
std::optional<Look> LookAt(const std::string& path) {
  const std::wstring name = SystemPath(path);
  WIN32_FILE_ATTRIBUTE_DATA data;
  if (!GetFileAttributesExW(name.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  if (!(data.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) return LookFrom(data);
  const unique_file target(CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, kShareAll, nullptr, OPEN_EXISTING,
                                       FILE_FLAG_BACKUP_SEMANTICS, nullptr));
  BY_HANDLE_FILE_INFORMATION information;
  if (!target || !GetFileInformationByHandle(target.get(), &information)) return std::nullopt;
  return LookFrom(information);
}

// A reparse point that stands for something elsewhere: a symbolic link or a junction, but not a file that a
// cloud folder or a compressing file system keeps in its own way.
bool IsLink(const WIN32_FIND_DATAW& entry) {
  if (!(entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT)) return false;
  return entry.dwReserved0 == 0 || IsReparseTagNameSurrogate(entry.dwReserved0);
}

bool IsFolderEntry(const WIN32_FIND_DATAW& entry) {
  return (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// Whether the folder is to be read further.
using EntryHandler = std::function<bool(const std::string& name, const WIN32_FIND_DATAW& entry)>;

// Returns the code of the failure that kept the folder from being read.
DWORD ForEachEntry(const std::string& folder, const EntryHandler& handle) {
  WIN32_FIND_DATAW entry;
  const unique_find search(FindFirstFileExW(SystemPath(folder + "\\*").c_str(), FindExInfoBasic, &entry,
                                            FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH));
  if (!search) {
    const DWORD code = GetLastError();
    return code == ERROR_FILE_NOT_FOUND ? DWORD{ERROR_SUCCESS} : code;  // the root of an empty drive
  }
  do {
    const std::wstring_view name = entry.cFileName;
    if (name != L"." && name != L".." && !handle(Narrow(name), entry)) return ERROR_SUCCESS;
  } while (FindNextFileW(search.get(), &entry));
  const DWORD code = GetLastError();
  return code == ERROR_NO_MORE_FILES ? DWORD{ERROR_SUCCESS} : code;
}

// Whether the read-only attribute stood in the way and is gone now.
bool ClearReadOnly(const std::wstring& name) {
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_READONLY)) return false;
  return SetFileAttributesW(name.c_str(), attributes & ~DWORD{FILE_ATTRIBUTE_READONLY}) != 0;
}

// ERROR_SUCCESS or why not. A folder is refused at once.
DWORD DeleteOne(const std::string& path) {
  const std::wstring name = SystemPath(path);
  if (DeleteFileW(name.c_str())) return ERROR_SUCCESS;
  if (GetLastError() == ERROR_ACCESS_DENIED && IsFolder(path)) return ERROR_ACCESS_DENIED;
  ClearReadOnly(name);
  return WithPatience([&] { return DeleteFileW(name.c_str()) != 0; });
}

DWORD DeleteFolder(const std::string& path) {
  const std::wstring name = SystemPath(path);
  if (RemoveDirectoryW(name.c_str())) return ERROR_SUCCESS;
  ClearReadOnly(name);
  return WithPatience([&] { return RemoveDirectoryW(name.c_str()) != 0; });
}

bool Gone(DWORD code) {
  return code == ERROR_SUCCESS || code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND;
}

void RequireGone(DWORD code, const std::string& path) {
  if (!Gone(code)) RaiseSystemError(code, path);
}

// Deletes what a folder holds apart from its sub-folders, which are returned.
std::vector<std::string> RemoveFilesOf(const std::string& folder) {
  std::vector<std::string> folders, files, links;
  const DWORD code = ForEachEntry(folder, [&](const std::string& name, const WIN32_FIND_DATAW& entry) {
    auto& list = !IsFolderEntry(entry) ? files : IsLink(entry) ? links : folders;
    list.push_back(folder + "\\" + name);
    return true;
  });
  RequireGone(code, folder);
  for (const std::string& file : files) RequireGone(DeleteOne(file), file);
  for (const std::string& link : links) RequireGone(DeleteFolder(link), link);
  return folders;
}

}  // namespace

bool IsFile(const std::string& path) {
  const auto look = LookAt(path);
  return look && !(look->attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsFolder(const std::string& path) {
  const auto look = LookAt(path);
  return look && (look->attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool IsThere(const std::string& path) {
  return GetFileAttributesW(SystemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

std::uint64_t FreeSpace(const std::string& folder) {
  ULARGE_INTEGER available;
  if (!GetDiskFreeSpaceExW(SystemPath(folder + kSeparator).c_str(), &available, nullptr, nullptr))
    return UINT64_MAX;
  return available.QuadPart;
}

std::optional<FileStamp> StampOf(const std::string& path) {
  const auto look = LookAt(path);
  if (!look || (look->attributes & FILE_ATTRIBUTE_DIRECTORY)) return std::nullopt;
  return look->stamp;
}

// A listing tells the stamps too. What it does not settle (links, a name in other letters, the far end of a
// large folder) is looked at by itself.
std::vector<std::optional<FileStamp>> StampsOf(const std::string& folder,
                                               std::span<const std::string_view> names) {
  constexpr std::size_t kWorthListing = 8;
  std::vector<std::optional<FileStamp>> stamps(names.size());
  if (names.size() >= kWorthListing) {
    std::unordered_map<std::string, std::size_t> wanted;
    for (std::size_t i = 0; i < names.size(); ++i) wanted.emplace(base::UpperLatin(names[i]), i);
    std::size_t left = kWorthListing * names.size();  // entries worth looking through
    ForEachEntry(folder, [&](const std::string& name, const WIN32_FIND_DATAW& entry) {
      const auto found = wanted.find(base::UpperLatin(name));
      const bool plain =
          !(entry.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_REPARSE_POINT));
      if (found != wanted.end() && plain) stamps[found->second] = StampFrom(entry);
      return --left > 0;
    });
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (!stamps[i]) stamps[i] = StampOf(folder + kSeparator + std::string(names[i]));
  }
  return stamps;
}

void RemoveFile(const std::string& path) {
  const DWORD code = DeleteOne(path);
  if (code != ERROR_SUCCESS) RaiseSystemError(code, path);
}

bool TryRemoveFile(const std::string& path) { return Gone(DeleteOne(path)); }

void RemoveTree(const std::string& folder) {
  const std::wstring name = SystemPath(folder);
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) {
    const DWORD code = GetLastError();
    if (!Gone(code)) RaiseSystemError(code, folder);
    return;
  }
  if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return RequireGone(DeleteOne(folder), folder);
  std::vector<std::string> found{folder};  // parents before their children
  if (!(attributes & FILE_ATTRIBUTE_REPARSE_POINT)) {
    for (std::size_t i = 0; i < found.size(); ++i) {
      const std::vector<std::string> below = RemoveFilesOf(std::string(found[i]));
      found.insert(found.end(), below.begin(), below.end());
    }
  }
  for (auto path = found.rbegin(); path != found.rend(); ++path) RequireGone(DeleteFolder(*path), *path);
}

void RemoveEmptyFolders(const std::string& folder) {
  std::vector<std::string> found{folder};  // parents before their children
  for (std::size_t i = 0; i < found.size(); ++i) {
    const std::string above = found[i];
    ForEachEntry(above, [&](const std::string& name, const WIN32_FIND_DATAW& entry) {
      if (IsFolderEntry(entry) && !IsLink(entry)) found.push_back(above + kSeparator + name);
      return true;
    });
  }
  while (found.size() > 1) {
    RemoveDirectoryW(SystemPath(found.back()).c_str());
    found.pop_back();
  }
}

bool TryRemoveEmptyFolder(const std::string& path) {
  return Gone(RemoveDirectoryW(SystemPath(path).c_str()) ? DWORD{ERROR_SUCCESS} : GetLastError());
}

void MakeFolder(const std::string& path) {
  if (CreateDirectoryW(SystemPath(path).c_str(), nullptr)) return;
  const DWORD code = GetLastError();
  if (IsFolder(path)) return;
  if (code == ERROR_ALREADY_EXISTS) throw base::RuntimeError(base::ErrorNumber::PathFileAccessError);
  RaiseSystemError(code);
}

void MakeFolders(const std::string& path) {
  std::vector<std::string> missing;
  for (std::string level = path; !level.empty() && level != "." && !IsFolder(level);
       level = FolderOf(level)) {
    missing.push_back(level);
  }
  for (auto level = missing.rbegin(); level != missing.rend(); ++level) MakeFolder(*level);
}

void ReplaceFileWith(const std::string& from, const std::string& to) {
  const std::wstring source = SystemPath(from);
  if (MoveOver(source, to)) return;
  if (GetLastError() == ERROR_ACCESS_DENIED && IsFolder(to)) RaiseSystemError(ERROR_ACCESS_DENIED, to);
  ClearReadOnly(SystemPath(to));
  const DWORD code = WithPatience([&] { return MoveOver(source, to); });
  if (code != ERROR_SUCCESS) RaiseSystemError(code, to);
}

void RenameFile(const std::string& from, const std::string& to) {
  const std::wstring source = SystemPath(from), target = SystemPath(to);
  const DWORD code = WithPatience([&] { return MoveFileExW(source.c_str(), target.c_str(), 0) != 0; });
  if (code != ERROR_SUCCESS) RaiseSystemError(code, from);
}

std::vector<FolderEntry> ListFolder(const std::string& folder) {
  std::vector<FolderEntry> found;
  const DWORD code = ForEachEntry(folder, [&](const std::string& name, const WIN32_FIND_DATAW& entry) {
    found.push_back({name, IsFolderEntry(entry) && !IsLink(entry)});
    return true;
  });
  if (code != ERROR_SUCCESS) RaiseSystemError(code);
  return found;
}

std::vector<FoundFile> ListTree(const std::string& folder, std::stop_token stop) {
  std::vector<FoundFile> found;
  std::vector<std::string> folders{""};  // relative, each with its trailing separator
  while (!folders.empty() && !stop.stop_requested()) {
    const std::string relative = std::move(folders.back());
    folders.pop_back();
    const std::string path = relative.empty() ? folder : folder + "\\" + relative;
    const DWORD code = ForEachEntry(path, [&](const std::string& name, const WIN32_FIND_DATAW& entry) {
      if (IsLink(entry)) return true;
      if (IsFolderEntry(entry)) {
        folders.push_back(relative + name + "\\");
      } else {
        found.push_back({relative + name});
      }
      return true;
    });
    if (code != ERROR_SUCCESS) RaiseSystemError(code);
  }
  std::sort(found.begin(), found.end(),
            [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; });
  return found;
}

}  // namespace platform
