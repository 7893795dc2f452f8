// A game folder may be called whatever the player likes, on a system of any language.
#include <gtest/gtest.h>

#include "platform/files.hpp"
#include "support/launcher_run.hpp"

namespace {

// Four levels, so that files below it have paths of over 300 characters.
std::string LongName() {
  std::string name;
  for (const char letter : {'a', 'b', 'c', 'd'})
    name += (name.empty() ? "" : "/") + std::string(70, letter) + "ñ";
  return name;
}

class GameFolderNames : public testing::TestWithParam<std::string> {};

TEST_P(GameFolderNames, TheGameIsInstalledProvedAndStarted) {
  support::LauncherRun run;
  run.game = GetParam();
  platform::MakeFolders(run.folder / run.game);
  run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno"}});
  run.mirror.AddBinFile("KVN-DX8.exe", "el cliente");
  run.mirror.Publish();
  for (const char* round : {"into an empty folder", "over itself"}) {
    SCOPED_TRACE(round);
    run.machine.processes.started.clear();
    run.PlayToTheEnd();
    EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
    EXPECT_TRUE(run.machine.dialogs.shown.empty());
    ASSERT_FALSE(run.machine.processes.started.empty());
    EXPECT_EQ(run.machine.processes.started.back().program, run.PathOf("Bin/KVN-DX8.exe"));
    EXPECT_EQ(run.Counter("Mapas"), "1\r\n");
  }
}

INSTANTIATE_TEST_SUITE_P(Any, GameFolderNames,
                         testing::Values("juego", "Año ñandú", "игра Кельварин", "漢字 ゲーム",
                                         "a\xF0\x9F\x8E\xAE b", LongName()));

}  // namespace
