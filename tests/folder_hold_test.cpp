// One launcher at a time updates a folder.
#include <gtest/gtest.h>

#include "base/runtime_error.hpp"
#include "platform/file_lock.hpp"
#include "platform/files.hpp"
#include "support/launcher_run.hpp"

namespace {

using platform::FileLock;

constexpr const char* kWaiting = "Otro launcher está actualizando esta carpeta, se espera a que termine.";

struct FolderHoldTest : testing::Test {
  FolderHoldTest() {
    run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno"}});
    run.mirror.AddBinFile("KVN-DX8.exe", "el cliente");
    run.mirror.Publish();
    run.Start();
    run.machine.clock.stepOnRead = 5;
  }
  std::string LockOf(const std::string& game) const {
    return run.folder / (game + "/RECURSOS/INIT/UPDATE/launcher.lock");
  }
  // While the launcher waits: calls `action` once it has said so, from its own events.
  void OnceItWaits(std::function<void()> action) {
    onWait_ = run.machine.events->Timers().Start(5, [this, action = std::move(action)] {
      if (run.Status() != kWaiting) return;
      run.machine.events->Timers().Stop(onWait_);
      waited = true;
      action();
    });
  }

  support::LauncherRun run;
  bool waited = false;

 private:
  platform::TimerQueue::Id onWait_ = 0;
};

TEST_F(FolderHoldTest, TheSecondLauncherSaysSoAndWaits) {
  auto other = FileLock::TryTake(LockOf(run.game));
  ASSERT_TRUE(other);
  OnceItWaits([&] {
    EXPECT_TRUE(run.mirror.Asked().empty());
    other.reset();
  });
  run.Play();
  run.UntilEnded();
  EXPECT_TRUE(waited);
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
}

TEST_F(FolderHoldTest, WhoeverWaitsMayLeave) {
  const auto other = FileLock::TryTake(LockOf(run.game));
  const auto before = run.mirror.Asked();
  OnceItWaits([&] { run.Launched().MainWindow().KeyDown(controls::kKeyEscape); });
  run.Play();
  run.UntilEnded();
  EXPECT_TRUE(waited);
  EXPECT_EQ(run.mirror.Asked(), before);
  EXPECT_TRUE(platform::IsThere(LockOf(run.game))) << "it is the other's";
}

TEST_F(FolderHoldTest, TheFolderIsHeldOverTheWholeRunAndNoOtherOne) {
  platform::MakeFolders(platform::FolderOf(LockOf("otra")));
  const auto elsewhere = FileLock::TryTake(LockOf("otra"));
  int looks = 0;
  run.machine.processes.onStart = [&](const platform::StartRequest& request) {
    if (!request.program.ends_with("KVN-DX8.exe")) return;
    ++looks;  // the game starts at the very end of a run
    EXPECT_FALSE(FileLock::TryTake(LockOf(run.game)));
  };
  run.Play();
  run.UntilEnded();
  EXPECT_FALSE(waited);
  EXPECT_EQ(looks, 1);
  EXPECT_FALSE(platform::IsThere(LockOf(run.game)));
}

TEST(FileLock, IsFreeAgainHoweverOftenItWasHeld) {
  const support::TempFolder folder;
  for (int i = 0; i < 3; ++i) {
    const auto held = FileLock::TryTake(folder / "lock");
    ASSERT_TRUE(held);
    EXPECT_FALSE(FileLock::TryTake(folder / "lock"));
  }
  folder.Put("lock", "left behind by one that was killed");
  EXPECT_TRUE(FileLock::TryTake(folder / "lock"));
  EXPECT_FALSE(folder.Has("lock"));
  EXPECT_THROW(FileLock::TryTake(folder / "no such folder/lock"), base::RuntimeError);
}

}  // namespace
