#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/machine.hpp"
#include "platform/posix/ini_text.hpp"
#include "support/temp_folder.hpp"

// What the Linux twin of the Windows calls promises beyond them: no byte moves that was not written.
namespace platform {
namespace {

TEST(IniText, KeepsBlankLinesLineEndsAndIndents) {
  std::string text = "\n[INIT]\n  Old = 1 \nA=1\r\n\r\n\t\n[X]\nB = 2\n\n";
  SetIniValue(text, "INIT", "New", "5");
  SetIniValue(text, "x", "b", "3");
  EXPECT_EQ(text, "\n[INIT]\n  Old = 1 \nA=1\r\nNew=5\r\n\r\n\t\n[X]\nB=3\n\n");
}

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
