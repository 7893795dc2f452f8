// Unpacking over files that are held open, run or protected.
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/files.hpp"
#include "platform/win32/handles.hpp"
#include "platform/win32/wide.hpp"
#include "support/archives.hpp"
#include "support/test_services.hpp"
#include "update/patch_journal.hpp"
#include "update/smodUnzip.hpp"

namespace {

using support::MakeZip;
using support::ZipItem;

struct WindowsUnzipTest : testing::Test, support::TestServices {
  WindowsUnzipTest() : TestServices("juego") { platform::MakeFolders(folders.Scratch("")); }

  update::Unpacked Unpack(const std::vector<ZipItem>& items) {
    folder.Put("p.zip", MakeZip(items));
    return update::smodUnzip(services).Unzip(folder / "p.zip", folders.AppPath);
  }
  bool NothingLeftBehind() const {
    platform::TryRemoveEmptyFolder(update::StagingRoot(folders));  // others may be making theirs in it
    return platform::ListFolder(folders.Scratch("")).empty();
  }
};

TEST_F(WindowsUnzipTest, AFileHeldOpenLeavesAllAsItWasAndIsNamed) {
  folder.Put("juego/a", "viejo");
  folder.Put("juego/Bin/ñ.dll", "viejo");
  {
    const platform::unique_file held(CreateFileW(platform::Wide(folder / "juego/Bin/ñ.dll").c_str(),
                                                 GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                                                 nullptr));
    ASSERT_TRUE(held);
    const update::Unpacked unpacked =
        Unpack({{"a", "nuevo"}, {"n/b", "nuevo"}, {"bin/Ñ.DLL", "nuevo"}, {"z", "z"}});
    EXPECT_FALSE(unpacked.done);
    EXPECT_EQ(unpacked.reason, "no se pudo reemplazar bin/Ñ.DLL: está en uso o falta el permiso");
    EXPECT_TRUE(host.dialogs.shown.empty());
    EXPECT_EQ(folder.Get("juego/a"), "viejo");
    EXPECT_FALSE(folder.Has("juego/n"));
    EXPECT_FALSE(folder.Has("juego/z"));
    EXPECT_TRUE(NothingLeftBehind());
  }
  EXPECT_TRUE(Unpack({{"a", "nuevo"}, {"bin/Ñ.DLL", "nuevo"}}).done);
  EXPECT_EQ(folder.Get("juego/Bin/ñ.dll"), "nuevo") << "names are matched without regard to case";
}

TEST_F(WindowsUnzipTest, ARunningProgramAndAProtectedFileAreReplaced) {
  const std::string program = folder / "juego/launcher.exe";
  platform::CloneFile(platform::ExecutablePath(), program);
  folder.Put("juego/protegido", "viejo");
  SetFileAttributesW(platform::Wide(folder / "juego/protegido").c_str(), FILE_ATTRIBUTE_READONLY);
  const HMODULE running =
      LoadLibraryExW(platform::Wide(program).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES);
  ASSERT_NE(running, nullptr);
  EXPECT_TRUE(Unpack({{"launcher.exe", "nuevo"}, {"protegido", "nuevo"}}).done);
  EXPECT_EQ(folder.Get("juego/launcher.exe"), "nuevo");
  EXPECT_EQ(folder.Get("juego/protegido"), "nuevo");
  EXPECT_TRUE(Unpack({{"launcher.exe", "otro"}}).done) << "while the old program still runs";
  EXPECT_EQ(folder.Get("juego/launcher.exe"), "otro");
  FreeLibrary(running);
  EXPECT_EQ(update::RecoverInterruptedPatch(services), "");
  EXPECT_TRUE(NothingLeftBehind());
}

}  // namespace
