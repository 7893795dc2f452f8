#include "base/unique_handle.hpp"
#include "platform/files.hpp"
#include "platform/user_folders.hpp"
#include "platform/win32/known_folder.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

struct TaskTextTraits : base::NullIsNone<wchar_t*> {
  static void Close(wchar_t* text) { CoTaskMemFree(text); }
};

}  // namespace

std::string KnownFolder(const KNOWNFOLDERID& id) {
  base::UniqueHandle<TaskTextTraits> path;
  SHGetKnownFolderPath(id, KF_FLAG_CREATE, nullptr, path.receive());
  return path ? Narrow(path.get()) : std::string{};
}

// The system tells every process by its environment; to ask the shell, which is not loaded yet when a start
// needs the folder, takes some milliseconds.
std::string LocalDataFolder() {
  std::wstring told(MAX_PATH, L'\0');
  told.resize(GetEnvironmentVariableW(L"LOCALAPPDATA", told.data(), MAX_PATH));
  const bool whole = told.size() < MAX_PATH && told.substr(0, 3).ends_with(L":\\");
  const std::string data =
      whole && IsFolder(Narrow(told)) ? Narrow(told) : KnownFolder(FOLDERID_LocalAppData);
  return data.empty() ? data : data + "\\Kelvarin";
}

}  // namespace platform
