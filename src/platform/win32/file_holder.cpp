#include <windows.h>
// after windows.h, which it builds on
#include <restartmanager.h>

#include <array>
#include <vector>

#include "platform/files.hpp"
#include "platform/win32/system_library.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

// A session of the service that tells who uses which file. Its library is needed so seldom that it is only
// opened then.
class RestartManager {
 public:
  RestartManager() {
    std::array<wchar_t, CCH_RM_SESSION_KEY + 1> key{};
    open_ = start_ && end_ && register_ && list_ && start_(&session_, 0, key.data()) == ERROR_SUCCESS;
  }
  ~RestartManager() {
    if (open_) end_(session_);
  }
  RestartManager(const RestartManager&) = delete;

  std::vector<RM_PROCESS_INFO> HoldersOf(const std::wstring& file) {
    const wchar_t* files[] = {file.c_str()};
    if (!open_ || register_(session_, 1, files, 0, nullptr, 0, nullptr) != ERROR_SUCCESS) return {};
    std::vector<RM_PROCESS_INFO> holders;
    for (int attempt = 0; attempt < 5; ++attempt) {  // their number may grow between two calls
      UINT needed = 0, count = static_cast<UINT>(holders.size());
      DWORD reasons = 0;
      const DWORD code = list_(session_, &needed, &count, holders.data(), &reasons);
      if (code != ERROR_MORE_DATA) {
        holders.resize(code == ERROR_SUCCESS ? count : 0);
        return holders;
      }
      holders.resize(needed);
    }
    return {};
  }

 private:
  unique_library library_ = LoadSystemLibrary(L"rstrtmgr.dll");
  decltype(RmStartSession)* start_ = FunctionOf<decltype(RmStartSession)>(library_.get(), "RmStartSession");
  decltype(RmEndSession)* end_ = FunctionOf<decltype(RmEndSession)>(library_.get(), "RmEndSession");
  decltype(RmRegisterResources)* register_ =
      FunctionOf<decltype(RmRegisterResources)>(library_.get(), "RmRegisterResources");
  decltype(RmGetList)* list_ = FunctionOf<decltype(RmGetList)>(library_.get(), "RmGetList");
  DWORD session_ = 0;
  bool open_ = false;
};

}  // namespace

std::string HolderOf(const std::string& path) {
  std::string names;
  for (const RM_PROCESS_INFO& holder : RestartManager().HoldersOf(SystemPath(path))) {
    names += (names.empty() ? "" : ", ") + Narrow(holder.strAppName);
  }
  return names;
}

}  // namespace platform
