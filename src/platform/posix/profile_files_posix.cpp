#include <sys/stat.h>

#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/posix/ini_text.hpp"
#include "util/runtime_error.hpp"

namespace platform {
namespace {

constexpr std::size_t kLongestValue = 2999;               // bytes, the classic buffer less its final zero
constexpr std::uint64_t kLargestFile = 16 * 1024 * 1024;  // more is no settings file

// Windows has the read-only attribute instead; here a rename would go past it.
bool IsReadOnly(const std::string& file) {
  struct stat status;
  return stat(file.c_str(), &status) == 0 && (status.st_mode & 0222) == 0;
}

class PosixProfileFiles : public ProfileFiles {
 public:
  std::string GetVar(const std::string& file, const std::string& section, const std::string& key) override {
    return FromAnsi(Read(file, section, key).value_or("").substr(0, kLongestValue));
  }

  bool Has(const std::string& file, const std::string& section, const std::string& key) override {
    return Read(file, section, key).has_value();
  }

  void WriteVars(const std::string& file, const std::string& section,
                 std::span<const Entry> entries) override {
    try {
      if (IsReadOnly(file)) return;
      const std::string old = IsFile(file) ? ReadWhole(file, kLargestFile) : std::string{};
      std::string text = old;
      for (const auto& [key, value] : entries) SetIniValue(text, ToAnsi(section), ToAnsi(key), ToAnsi(value));
      if (text != old) WriteWhole(file, text);
    } catch (const util::RuntimeError&) {  // the file stays as it was
    }
  }

 private:
  static std::optional<std::string> Read(const std::string& file, const std::string& section,
                                         const std::string& key) {
    try {
      return IniValue(ReadWhole(file, kLargestFile), ToAnsi(section), ToAnsi(key));
    } catch (const util::RuntimeError&) {
      return std::nullopt;
    }
  }
};

}  // namespace

std::unique_ptr<ProfileFiles> MakeProfileFiles() { return std::make_unique<PosixProfileFiles>(); }

}  // namespace platform
