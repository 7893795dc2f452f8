#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/machine.hpp"
#include "support/temp_folder.hpp"

namespace platform {
namespace {

TEST(NativeProfileFiles, LeaveReadOnlyAndUnchangedFilesAlone) {
  const support::TempFolder folder;
  const auto profiles = MakeProfileFiles();
  folder.Put("a.ini", "[INIT]\r\nKey=1\r\n");
  struct stat before, after;
  stat((folder / "a.ini").c_str(), &before);
  profiles->WriteVar(folder / "a.ini", "INIT", "Key", "1");
  stat((folder / "a.ini").c_str(), &after);
  EXPECT_EQ(before.st_ino, after.st_ino);
  chmod((folder / "a.ini").c_str(), 0444);
  profiles->WriteVar(folder / "a.ini", "INIT", "Key", "2");
  EXPECT_EQ(folder.Get("a.ini"), "[INIT]\r\nKey=1\r\n");
}

}  // namespace
}  // namespace platform
