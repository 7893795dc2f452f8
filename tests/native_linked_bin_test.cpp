#include <gtest/gtest.h>

#include <filesystem>

#include "platform/files.hpp"
#include "support/launcher_run.hpp"

namespace {

// A player may keep the game's programs on another disk, in a folder where other things lie as well.
TEST(LinkedBin, IsUpdatedButNeverEmptied) {
  support::LauncherRun run;
  run.mirror.AddBinFile("KVN-DX8.exe", "el cliente");
  run.mirror.Publish();
  run.folder.Put("otro disco/foto.png", "mía");
  run.folder.Put("otro disco/KVN-DX8.exe", "el de antes");
  std::filesystem::create_directory_symlink(run.folder / "otro disco", run.PathOf("Bin"));
  run.PlayToTheEnd();
  EXPECT_EQ(run.folder.Get("otro disco/foto.png"), "mía");
  EXPECT_EQ(run.folder.Get("otro disco/KVN-DX8.exe"), "el cliente");
}

}  // namespace
