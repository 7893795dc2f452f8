// The finished program installs itself for a player and takes itself away again.
#include <gtest/gtest.h>
#include <windows.h>
// after windows.h, which it builds on
#include <shlobj.h>

#include "platform/files.hpp"
#include "platform/win32/com_apartment.hpp"
#include "platform/win32/known_folder.hpp"
#include "platform/win32/shell_link.hpp"
#include "platform/win32/wide.hpp"
#include "support/temp_folder.hpp"
#include "support/win32/run_program.hpp"

namespace {

using support::RunProgram;

constexpr wchar_t kUninstallKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Kelvarin";

std::string Listed(const wchar_t* name) {
  wchar_t text[1024] = L"";
  DWORD bytes = sizeof text;
  const LSTATUS status =
      RegGetValueW(HKEY_CURRENT_USER, kUninstallKey, name, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return status == ERROR_SUCCESS ? platform::Narrow(text) : "";
}

struct WindowsInstallTest : testing::Test {
  void SetUp() override {
    if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) {
      GTEST_SKIP() << "would install into the account of a real user";
    }
    const std::string built = platform::FolderOf(platform::ExecutablePath()) + "\\launcher.exe";
    unpacked.Put("Deployment.ini", "[MIRRORS]\r\n1=http://127.0.0.1:1/\r\n");
    unpacked.Put("RECURSOS/GRAFICOS/Launcher.jpg", "picture");
    platform::CloneFile(built, program);
    ASSERT_EQ(RunProgram("\"" + program + "\" /INSTALL /QUIET"), 0u);
  }
  std::string Link(const KNOWNFOLDERID& id) const { return platform::KnownFolder(id) + "\\Kelvarin.lnk"; }

  const platform::ComApartment com;
  const support::TempFolder unpacked;
  const std::string program = unpacked / "launcher (2).exe";
  const std::string game = platform::KnownFolder(FOLDERID_LocalAppData) + "\\Programs\\Kelvarin\\Juego";
  const std::string installed = game + "\\launcher.exe";
};

TEST_F(WindowsInstallTest, LeavesWhatAPlayerLooksForAndNothingAfterItsEnd) {
  EXPECT_TRUE(platform::IsFile(installed));
  EXPECT_TRUE(platform::IsFile(game + "\\Deployment.ini"));
  EXPECT_TRUE(platform::IsFile(game + "\\RECURSOS\\GRAFICOS\\Launcher.jpg"));
  for (const KNOWNFOLDERID& id : {FOLDERID_Programs, FOLDERID_Desktop}) {
    EXPECT_EQ(platform::TargetOfShellLink(Link(id)), installed);
  }
  EXPECT_EQ(Listed(L"DisplayName"), "Kelvarin");
  EXPECT_EQ(Listed(L"InstallLocation"), game);
  EXPECT_EQ(Listed(L"UninstallString"), "\"" + installed + "\" /UNINSTALL");
  EXPECT_EQ(RunProgram(Listed(L"QuietUninstallString")), 0u);
  EXPECT_FALSE(platform::IsFolder(platform::FolderOf(game)));
  for (const KNOWNFOLDERID& id : {FOLDERID_Programs, FOLDERID_Desktop}) {
    EXPECT_FALSE(platform::IsFile(Link(id)));
  }
  EXPECT_EQ(Listed(L"DisplayName"), "");
  EXPECT_TRUE(platform::IsFile(program)) << "what was unpacked is the player's";
}

TEST_F(WindowsInstallTest, InstallsOverItselfAndLeavesTheGameAndForeignShortcuts) {
  EXPECT_EQ(RunProgram("\"" + installed + "\" /INSTALL /QUIET"), 0u) << "by the installed one";
  EXPECT_EQ(RunProgram("\"" + program + "\" /INSTALL /QUIET"), 0u) << "by a later release";
  platform::MakeFolders(game + "\\Bin");
  platform::WriteWhole(game + "\\Bin\\KVN-DX8.exe", "the game");
  platform::MakeShellLink(Link(FOLDERID_Desktop), program, "of the player's own making");
  EXPECT_EQ(RunProgram("\"" + installed + "\" /UNINSTALL /QUIET"), 0u);
  EXPECT_EQ(platform::ListTree(game), (std::vector<platform::FoundFile>{{"Bin\\KVN-DX8.exe"}}));
  EXPECT_TRUE(platform::IsFile(Link(FOLDERID_Desktop)));
  EXPECT_FALSE(platform::IsFile(Link(FOLDERID_Programs)));
  EXPECT_EQ(RunProgram("\"" + program + "\" /UNINSTALL /QUIET"), 1u) << "a launcher that was never installed";
  platform::RemoveFile(Link(FOLDERID_Desktop));
  platform::RemoveTree(platform::FolderOf(game));
}

}  // namespace
