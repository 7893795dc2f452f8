#pragma once

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace platform {

// Profile (INI) files in the system's ANSI code page (Windows-1252 on Linux). Texts given and returned are
// UTF-8. Sections and keys are found without regard to case. Everything that is not written stays byte for
// byte: unknown keys, sections, comments, blank lines, line ends.
class ProfileFiles {
 public:
  virtual ~ProfileFiles() = default;

  // The value cut to 2999 characters, without surrounding blanks and one pair of matching quotes; empty text
  // when the file, section or key is missing.
  virtual std::string GetVar(const std::string& file, const std::string& section, const std::string& key) = 0;

  // As GetVar for each of the keys, in their order, and none for one that is not there at all; the file is
  // read once.
  virtual std::vector<std::optional<std::string>> Find(const std::string& file, const std::string& section,
                                                       std::span<const std::string> keys) = 0;

  std::vector<std::string> GetVars(const std::string& file, const std::string& section,
                                   std::span<const std::string> keys) {
    std::vector<std::string> values;
    for (const auto& value : Find(file, section, keys)) values.push_back(value.value_or(""));
    return values;
  }

  using Entry = std::pair<std::string, std::string>;

  // Writes the keys in the order given and replaces the file once; a file that cannot be written is left as
  // it was and nothing is reported.
  virtual void WriteVars(const std::string& file, const std::string& section,
                         std::span<const Entry> entries) = 0;

  void WriteVar(const std::string& file, const std::string& section, const std::string& key,
                const std::string& value) {
    const Entry entry(key, value);
    WriteVars(file, section, std::span(&entry, 1));
  }
};

}  // namespace platform
