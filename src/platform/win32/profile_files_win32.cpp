#include <windows.h>

#include <atomic>

#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/win32/wide.hpp"
#include "util/runtime_error.hpp"

namespace platform {
namespace {

constexpr DWORD kBufferSize = 3000;                       // characters, the ending NUL included
constexpr std::uint64_t kLargestFile = 16 * 1024 * 1024;  // bytes; more is no settings file
constexpr wchar_t kMissing[] = L"\x01";

// The calls look for a file without a folder in the system's own one.
std::wstring FileArgument(const std::string& file) {
  return SystemPath(file.find_first_of("\\/") == std::string::npos ? ".\\" + file : file);
}

std::wstring Read(const std::string& file, const std::string& section, const std::string& key,
                  const wchar_t* missing) {
  wchar_t value[kBufferSize];
  const DWORD length = GetPrivateProfileStringW(Wide(section).c_str(), Wide(key).c_str(), missing, value,
                                                kBufferSize, FileArgument(file).c_str());
  return {value, length};
}

bool MayBeWritten(const std::wstring& name) {
  const DWORD attributes = GetFileAttributesW(name.c_str());
  return attributes == INVALID_FILE_ATTRIBUTES ||
         !(attributes & (FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_DIRECTORY));
}

// A copy of a profile file, in the same folder; deleted unless it has taken the place of the original.
class WorkingCopy {
 public:
  explicit WorkingCopy(const std::string& original) : original_(original) {
    static std::atomic<unsigned> count{0};
    path_ = original + "." + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count) + ".tmp";
    if (IsFile(original)) CloneFile(original, path_);
  }
  ~WorkingCopy() { TryRemoveFile(path_); }
  WorkingCopy(const WorkingCopy&) = delete;

  bool Write(const std::string& section, const ProfileFiles::Entry& entry) {
    return WritePrivateProfileStringW(Wide(section).c_str(), Wide(entry.first).c_str(),
                                      Wide(entry.second).c_str(), FileArgument(path_).c_str()) != 0;
  }

  // Does nothing when no byte has changed.
  void TakePlace() {
    // All arguments missing: what the system still holds of the file in memory is written.
    WritePrivateProfileStringW(nullptr, nullptr, nullptr, FileArgument(path_).c_str());
    if (IsFile(original_) && ReadWhole(original_, kLargestFile) == ReadWhole(path_, kLargestFile)) return;
    FlushFile(path_);
    ReplaceFileWith(path_, original_);
  }

 private:
  std::string original_;
  std::string path_;
};

class SystemProfileFiles : public ProfileFiles {
 public:
  std::string GetVar(const std::string& file, const std::string& section, const std::string& key) override {
    return Narrow(Read(file, section, key, L""));
  }

  bool Has(const std::string& file, const std::string& section, const std::string& key) override {
    return Read(file, section, key, kMissing) != kMissing;
  }

  void WriteVars(const std::string& file, const std::string& section,
                 std::span<const Entry> entries) override {
    if (entries.empty() || !MayBeWritten(SystemPath(file))) return;
    try {
      WorkingCopy copy(file);
      for (const Entry& entry : entries) {
        if (!copy.Write(section, entry)) return;
      }
      copy.TakePlace();
    } catch (const util::RuntimeError&) {  // the original stays as it was, which is all that is promised
    }
  }
};

}  // namespace

std::unique_ptr<ProfileFiles> MakeProfileFiles() { return std::make_unique<SystemProfileFiles>(); }

}  // namespace platform
