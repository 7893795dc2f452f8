#include "platform/crash_reports.hpp"

#include <algorithm>
#include <vector>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/user_folders.hpp"

namespace platform {
namespace {

constexpr const char* kPrefix = "crash-";
constexpr const char* kText = ".txt";
constexpr const char* kDump = ".dmp";
constexpr const char* kTold = "told";  // holds the name of the last report that somebody was told of
constexpr std::uint64_t kLargestNote = 1024;

// Paths of the reports without their endings, oldest first: their names hold the time.
std::vector<std::string> ReportsIn(const std::string& folder) {
  std::vector<std::string> reports;
  if (!IsFolder(folder)) return reports;
  for (const FoundFile& file : ListTree(folder)) {
    if (!file.path.starts_with(kPrefix)) continue;
    for (const std::string_view ending : {kText, kDump}) {
      if (!file.path.ends_with(ending)) continue;
      const std::string name = file.path.substr(0, file.path.size() - ending.size());
      if (reports.empty() || reports.back() != name) reports.push_back(name);
    }
  }
  return reports;
}

}  // namespace

std::string CrashFolder() {
  const std::string own = LocalDataFolder();
  return own.empty() ? own : own + NativePath("\\Fallos");
}

std::string TakeCrashReport(const std::string& folder) {
  try {
    const std::vector<std::string> reports = ReportsIn(folder);
    const std::string told = folder + kSeparator + kTold;
    if (reports.empty()) return {};
    if (IsFile(told) && ReadWhole(told, kLargestNote) >= reports.back()) return {};
    WriteWhole(told, reports.back());
    return folder + kSeparator + reports.back() + kText;
  } catch (const base::RuntimeError&) {
    return {};  // whoever cannot read the reports has more urgent things to be told
  }
}

void KeepCrashReports(const std::string& folder, int count) {
  try {
    std::vector<std::string> reports = ReportsIn(folder);
    const auto keep = std::min(static_cast<std::size_t>(count), reports.size());
    reports.resize(reports.size() - keep);
    for (const std::string& report : reports) {
      TryRemoveFile(folder + kSeparator + report + kText);
      TryRemoveFile(folder + kSeparator + report + kDump);
    }
  } catch (const base::RuntimeError&) {  // tidied up another time
  }
}

}  // namespace platform
