#include <windows.h>

#include <cstring>

#include "base/runtime_error.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "platform/ini_text.hpp"
#include "platform/machine.hpp"
#include "platform/win32/wide.hpp"

namespace platform {
namespace {

constexpr DWORD kBufferSize = 3000;                       // characters, the ending NUL included
constexpr std::uint64_t kLargestFile = 16 * 1024 * 1024;  // bytes; more is no settings file

// The calls look for a file without a folder in the system's own one.
std::wstring FileArgument(const std::string& file) {
  return SystemPath(file.find_first_of("\\/") == std::string::npos ? ".\\" + file : file);
}

// What the calls cannot reach: they take paths of 259 characters at most.
bool IsTooLong(const std::string& file) { return Wide(file).size() >= MAX_PATH; }

std::wstring Read(const std::string& file, const std::string& section, const std::string& key) {
  wchar_t value[kBufferSize];
  const DWORD length = GetPrivateProfileStringW(Wide(section).c_str(), Wide(key).c_str(), L"", value,
                                                kBufferSize, FileArgument(file).c_str());
  return {value, length};
}

bool MayBeWritten(const std::wstring& name) {
  const DWORD attributes = GetFileAttributesW(name.c_str());
  return attributes == INVALID_FILE_ATTRIBUTES ||
         !(attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY));
}

// The calls of the system understand a file in UTF-16, which begins with this mark, as well as one in ANSI.
constexpr std::string_view kWideMark = "\xFF\xFE";

bool IsWide(std::string_view bytes) { return bytes.starts_with(kWideMark); }

std::string FromWideFile(std::string_view bytes) {
  std::wstring text(bytes.size() / sizeof(wchar_t) - 1, L'\0');
  std::memcpy(text.data(), bytes.data() + kWideMark.size(), text.size() * sizeof(wchar_t));
  return Narrow(text);
}

std::string ToWideFile(std::string_view text) {
  const std::wstring wide = Wide(text);
  return std::string(kWideMark) +
         std::string(reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(wchar_t));
}

// The bytes of a profile file with the entries written.
std::string Edited(const std::string& bytes, const std::string& section,
                   std::span<const ProfileFiles::Entry> entries) {
  if (!IsWide(bytes)) {
    std::string text = bytes;
    for (const auto& [key, value] : entries) SetIniValue(text, ToAnsi(section), ToAnsi(key), ToAnsi(value));
    return text;
  }
  std::string text = FromWideFile(bytes);
  for (const auto& [key, value] : entries) SetIniValue(text, section, key, value);
  return ToWideFile(text);
}

// The whole file in UTF-8; empty when it cannot be read.
std::string TextOf(const std::string& file) {
  try {
    const std::string bytes = ReadWhole(file, kLargestFile);
    return IsWide(bytes) ? FromWideFile(bytes) : FromAnsi(bytes);
  } catch (const base::RuntimeError&) {
    return {};
  }
}

// Reads single keys through the system's own calls. Many keys at once are read, and all keys written, in the
// file's text: the writing call opens the file for every key and takes liberties with blank lines and line
// ends.
class SystemProfileFiles : public ProfileFiles {
 public:
  std::string GetVar(const std::string& file, const std::string& section, const std::string& key) override {
    if (IsTooLong(file)) return GetVars(file, section, {&key, 1}).front();
    return Narrow(Read(file, section, key));
  }

  std::vector<std::optional<std::string>> Find(const std::string& file, const std::string& section,
                                               std::span<const std::string> keys) override {
    const std::string text = TextOf(file);
    std::vector<std::optional<std::string>> values;
    for (const std::string& key : keys) {
      auto value = IniValue(text, section, key);
      if (value) value = Narrow(Wide(*value).substr(0, kBufferSize - 1));
      values.push_back(std::move(value));
    }
    return values;
  }

  void WriteVars(const std::string& file, const std::string& section,
                 std::span<const Entry> entries) override {
    if (!MayBeWritten(SystemPath(file))) return;
    try {
      const std::string old = IsFile(file) ? ReadWhole(file, kLargestFile) : std::string{};
      const std::string edited = Edited(old, section, entries);
      if (edited == old) return;
      WriteWhole(file, edited);
      // All arguments missing: what the system holds of the file in memory is read anew.
      if (!IsTooLong(file)) WritePrivateProfileStringW(nullptr, nullptr, nullptr, FileArgument(file).c_str());
    } catch (const base::RuntimeError&) {  // the file stays as it was, which is all that is promised
    }
  }
};

}  // namespace

std::unique_ptr<ProfileFiles> MakeProfileFiles() { return std::make_unique<SystemProfileFiles>(); }

}  // namespace platform
