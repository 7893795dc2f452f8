#include <sys/fsuid.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/files.hpp"
#include "support/read_only.hpp"

namespace support {
namespace {

constexpr uid_t kNobody = 65534;

void Permit(const std::filesystem::path& folder, std::filesystem::perms rights,
            std::filesystem::perm_options how) {
  std::error_code ignored;
  std::filesystem::permissions(folder, rights, how, ignored);
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder, ignored)) {
    if (entry.is_directory()) std::filesystem::permissions(entry.path(), rights, how, ignored);
  }
}

}  // namespace

// Root may write everywhere, so its file accesses become another user's for the time, on this thread and on
// those that it starts.
ReadOnly::ReadOnly(const std::string& folder) : folder_(folder) {
  using std::filesystem::perm_options;
  using std::filesystem::perms;
  for (const char* own : {"XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
    const std::string path = std::getenv(own);
    platform::MakeFolders(path);
    Permit(path, perms::all, perm_options::add);
  }
  Permit(folder, perms::group_read | perms::others_read | perms::group_exec | perms::others_exec,
         perm_options::add);
  Permit(folder, perms::owner_write | perms::group_write | perms::others_write, perm_options::remove);
  if (geteuid() == 0) setfsuid(kNobody);
}

ReadOnly::~ReadOnly() {
  if (geteuid() == 0) setfsuid(0);
  Permit(folder_, std::filesystem::perms::owner_write, std::filesystem::perm_options::add);
}

bool ReadOnly::Holds() const { return !platform::CanWriteTo(folder_); }

}  // namespace support
