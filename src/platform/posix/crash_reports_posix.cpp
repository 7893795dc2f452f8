#include "platform/crash_reports.hpp"

namespace platform {

void ReportCrashesTo(const std::string& folder, const std::string&) {
  KeepCrashReports(folder, kMostCrashReports);
}

}  // namespace platform
