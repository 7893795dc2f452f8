#pragma once

#include <string>

// A crash leaves a text "crash-<time>.txt" (what happened, and the last lines of the log) and, where the
// system can make one, a memory dump "crash-<time>.dmp" beside it.
namespace platform {

inline constexpr int kMostCrashReports = 3;

// Where this user's reports lie; empty when the system names no folder for them.
std::string CrashFolder();

// From now on a crash of this process leaves its report in `folder`, together with the end of the text file
// `log`, which may be missing. Reports beyond the newest ones are removed. On Linux, whose systems keep core
// dumps themselves, only that.
void ReportCrashesTo(const std::string& folder, const std::string& log);

// The text of the newest report if nobody was told of it yet, which counts as done then; empty: none.
std::string TakeCrashReport(const std::string& folder);

// Removes all but the newest `count` reports; a folder that is missing or cannot be read is fine.
void KeepCrashReports(const std::string& folder, int count);

}  // namespace platform
