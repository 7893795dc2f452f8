#include <gtest/gtest.h>
#include <windows.h>

#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/win32/wide.hpp"
#include "support/temp_folder.hpp"

namespace platform {
namespace {

constexpr const char* kFullWidth = "．．／＼：";  // would climb folders if they were the plain ones

TEST(WindowsNames, NoCodePageTurnsACharacterIntoOneThatLooksAlike) {
  for (const unsigned codePage : {1250u, 1251u, 1252u, 1253u, 874u, 932u, 936u, 949u, 65001u}) {
    SCOPED_TRACE(codePage);
    EXPECT_EQ(ToCodePage(codePage, "plain/text.1"), "plain/text.1");
    const std::string bytes = ToCodePage(codePage, kFullWidth);
    const std::string back = Narrow(FromCodePage(codePage, bytes));
    EXPECT_TRUE(back == kFullWidth || back == "?????") << back;
    EXPECT_EQ(ToCodePage(codePage, "a\xF0\x9F\x8E\xAE"), codePage == CP_UTF8 ? "a\xF0\x9F\x8E\xAE" : "a?");
  }
  EXPECT_EQ(ToCodePage(1251, "ñ"), "?");
  EXPECT_EQ(ToCodePage(1251, "я"), "\xFF");
}

TEST(WindowsNames, AProgramStartsInAFolderWithALongName) {
  const support::TempFolder folder;
  std::string deep = folder.Path();
  for (int i = 0; i < 5; ++i) deep += "\\" + std::string(60, static_cast<char>('a' + i)) + "ж";
  MakeFolders(deep);
  const auto processes = MakeProcesses({});
  processes->Start({"cmd.exe", "cmd.exe /c echo here>out & ren out done", WindowStyle::Hidden, deep});
  for (int i = 0; i < 2000 && !IsFile(deep + "\\done"); ++i) Sleep(10);
  EXPECT_TRUE(IsFile(deep + "\\done"));
}

}  // namespace
}  // namespace platform
