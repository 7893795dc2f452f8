#include "base/unique_handle.hpp"
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

std::string LocalDataFolder() {
  const std::string data = KnownFolder(FOLDERID_LocalAppData);
  return data.empty() ? data : data + "\\Kelvarin";
}

}  // namespace platform
