#include <sys/stat.h>

#include "base/runtime_error.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "platform/ini_text.hpp"
#include "platform/machine.hpp"

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
    return Find(file, section, {&key, 1}).front().value_or("");
  }

  std::vector<std::optional<std::string>> Find(const std::string& file, const std::string& section,
                                               std::span<const std::string> keys) override {
    const std::string text = Text(file);
    const std::string name = ToAnsi(section);
    std::vector<std::optional<std::string>> values;
    for (const std::string& key : keys) {
      auto value = IniValue(text, name, ToAnsi(key));
      if (value) value = FromAnsi(value->substr(0, kLongestValue));
      values.push_back(std::move(value));
    }
    return values;
  }

  void WriteVars(const std::string& file, const std::string& section,
                 std::span<const Entry> entries) override {
    try {
      if (IsReadOnly(file)) return;
      const std::string old = IsFile(file) ? ReadWhole(file, kLargestFile) : std::string{};
      std::string text = old;
      for (const auto& [key, value] : entries) SetIniValue(text, ToAnsi(section), ToAnsi(key), ToAnsi(value));
      if (text != old) WriteWhole(file, text);
    } catch (const base::RuntimeError&) {  // the file stays as it was
    }
  }

 private:
  // Empty when there is no file that can be read.
  static std::string Text(const std::string& file) {
    try {
      return ReadWhole(file, kLargestFile);
    } catch (const base::RuntimeError&) {
      return {};
    }
  }
};

}  // namespace

std::unique_ptr<ProfileFiles> MakeProfileFiles() { return std::make_unique<PosixProfileFiles>(); }

}  // namespace platform
