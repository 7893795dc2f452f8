#include <gtest/gtest.h>

#include "platform/crash_reports.hpp"
#include "platform/files.hpp"
#include "platform/user_folders.hpp"
#include "support/temp_folder.hpp"

namespace platform {
namespace {

using support::TempFolder;

TEST(CrashReports, TheNewestIsToldOnceAndThreeAreKept) {
  const TempFolder folder;
  const std::string reports = folder / "Fallos";
  EXPECT_EQ(TakeCrashReport(reports), "");
  KeepCrashReports(reports, 1);
  for (int day = 1; day <= 5; ++day) {
    const std::string name = "Fallos/crash-2026110" + std::to_string(day) + "-120000-000";
    folder.Put(name + ".txt", "x");
    if (day != 4) folder.Put(name + ".dmp", "x");  // as where the system could make none
    if (day == 2) {
      EXPECT_EQ(TakeCrashReport(reports), folder / (name + ".txt"));
    }
  }
  folder.Put("Fallos/otra cosa.txt", "x");
  const std::string newest = folder / "Fallos/crash-20261105-120000-000.txt";
  EXPECT_EQ(TakeCrashReport(reports), newest);
  EXPECT_EQ(TakeCrashReport(reports), "") << "told already";
  KeepCrashReports(reports, kMostCrashReports);
  EXPECT_EQ(TakeCrashReport(reports), "");
  std::string kept;
  for (const FoundFile& file : ListTree(reports)) kept += file.path + " ";
  EXPECT_EQ(kept,
            "crash-20261103-120000-000.dmp crash-20261103-120000-000.txt crash-20261104-120000-000.txt "
            "crash-20261105-120000-000.dmp crash-20261105-120000-000.txt otra cosa.txt told ");
}

}  // namespace
}  // namespace platform
