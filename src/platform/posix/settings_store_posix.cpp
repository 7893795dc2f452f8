#include <fcntl.h>
#include <sys/file.h>

#include <cstdlib>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/ini_text.hpp"
#include "platform/machine.hpp"
#include "platform/posix/unique_fd.hpp"

namespace platform {
namespace {

constexpr std::uint64_t kLargestFile = 16 * 1024 * 1024;

// $XDG_CONFIG_HOME, by default ~/.config (XDG base directories).
std::string ConfigFolder() {
  const char* folder = std::getenv("XDG_CONFIG_HOME");
  if (folder && *folder == '/') return folder;
  const char* home = std::getenv("HOME");
  return std::string(home ? home : "") + "/.config";
}

bool HoldsLineBreak(const std::string& text) { return text.find_first_of("\r\n") != std::string::npos; }

class PosixSettingsStore : public SettingsStore {
 public:
  std::string Get(const std::string& application, const std::string& section,
                  const std::string& key) override {
    try {
      return IniValue(ReadWhole(FileOf(application), kLargestFile), section, key).value_or("");
    } catch (const base::RuntimeError&) {
      return {};
    }
  }

  void Set(const std::string& application, const std::string& section, const std::string& key,
           const std::string& value) override {
    try {
      Write(FileOf(application), section, key, value);
    } catch (const base::RuntimeError&) {
      throw base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
    }
  }

 private:
  static std::string FileOf(const std::string& application) {
    return ConfigFolder() + "/" + application + ".ini";
  }

  static void Write(const std::string& file, const std::string& section, const std::string& key,
                    const std::string& value) {
    if (HoldsLineBreak(section + key + value)) {
      throw base::RuntimeError(base::ErrorNumber::InvalidProcedureCall);
    }
    MakeFolders(FolderOf(file));
    // Two launchers may write at once, and neither may lose the other's value.
    const UniqueFd folder(open(FolderOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder) flock(folder.get(), LOCK_EX);
    std::string text = IsFile(file) ? ReadWhole(file, kLargestFile) : std::string{};
    SetIniValue(text, section, key, value);
    // Quotes keep those blanks and quotes that are the value's own.
    if (IniValue(text, section, key) != value) SetIniValue(text, section, key, "\"" + value + "\"");
    WriteWhole(file, text);
  }
};

}  // namespace

std::unique_ptr<SettingsStore> MakeSettingsStore() { return std::make_unique<PosixSettingsStore>(); }

}  // namespace platform
