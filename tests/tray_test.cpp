#include <gtest/gtest.h>

#include "platform/files.hpp"
#include "support/recording_screen.hpp"
#include "support/test_services.hpp"
#include "ui/FrmSysTrays.hpp"

namespace {

using controls::WindowState;
using Names = std::vector<std::string>;

struct TrayTest : testing::Test, support::TestServices {
  TrayTest() {
    deployment.web = "http://web.example";
    screen.Attach(owner);
    owner.Resize += [this] { tray.MeResize(owner); };
    owner.QueryUnload += [this](controls::UnloadMode mode) { unloads.push_back(mode); };
    owner.Visible = true;
    tray.MouseMessage += [this](const std::string& name) { raised.push_back(name); };
    tray.Form_Load(owner);
  }
  ~TrayTest() override { screen.Detach(owner); }

  controls::MenuEntry& Entry(std::string_view name) {
    for (controls::MenuEntry& entry : tray.mPopupMenu.entries) {
      if (entry.name == name) return entry;
    }
    throw std::runtime_error("no such entry");
  }

  support::RecordingScreen screen;
  controls::Window owner{"frmMain", "Launcher - Kelvarin"};
  std::vector<controls::UnloadMode> unloads;
  Names raised;
  ui::FrmSysTrays tray{services, screen};
};

TEST_F(TrayTest, IconIsAddedRefreshedAndTakenAwayOnce) {
  const std::string tip = platform::BaseNameOf(platform::ExecutablePath());
  EXPECT_EQ(screen.Matching("Icon"), (Names{"Icon 0 " + tip}));
  host.clock.Step(1000);
  host.events->DoEvents();
  tray.QuitarIconoSystray();
  tray.FSys_Unload();
  host.clock.Step(5000);
  host.events->DoEvents();
  screen.TrayMessage(515);
  EXPECT_EQ(screen.Matching("Icon"), (Names{"Icon 0 " + tip, "Icon 1 " + tip, "Icon 2 " + tip}));
  EXPECT_TRUE(raised.empty());
}

TEST_F(TrayTest, DoubleClickRestoresTheStateBeforeMinimising) {
  for (const WindowState state : {WindowState::Normal, WindowState::Maximised}) {
    owner.State = state;
    tray.MeResize(owner);
    tray.mMinimize();
    EXPECT_FALSE(owner.Visible);
    screen.TrayMessage(515);
    EXPECT_TRUE(owner.Visible);
    EXPECT_EQ(owner.State.Get(), state);
    EXPECT_EQ(screen.calls.back(), "Foreground frmMain");
  }
  screen.calls.clear();
  screen.TrayMessage(515);
  EXPECT_TRUE(screen.calls.empty());
}

TEST_F(TrayTest, RestoreIsOfferedOnlyWhileTheWindowIsAway) {
  screen.TrayMessage(517);
  ASSERT_EQ(screen.menuShown, &tray.mPopupMenu);
  EXPECT_FALSE(Entry("mRestore").enabled);
  owner.Visible = false;
  screen.TrayMessage(517);
  EXPECT_TRUE(Entry("mRestore").enabled);
  Entry("mRestore").Click();
  EXPECT_TRUE(owner.Visible);
}

TEST_F(TrayTest, MenuHasItsEntriesAndTheirActions) {
  Names captions;
  for (const controls::MenuEntry& entry : tray.mPopupMenu.entries) captions.push_back(entry.caption);
  EXPECT_EQ(captions, (Names{"-", "¡Dona y consigue tus regalos!", "&Noticias (Ver en la web)", "&Restaurar",
                             "-", "&Cerrar"}));
  Entry("mDonate").Click();
  Entry("mWeb").Click();
  EXPECT_EQ(host.shell.pages,
            (Names{"http://web.example/web/index.php?op=Donaciones", "https://web.example/"}));
  Entry("mExit").Click();
  EXPECT_EQ(unloads, std::vector{controls::UnloadMode::Code});
}

TEST_F(TrayTest, ClosingFromTheControlMenuIsTurnedIntoHiding) {
  bool cancel = false;
  tray.MeQueryUnload(owner, cancel, controls::UnloadMode::SystemShutdown);
  EXPECT_FALSE(cancel);
  EXPECT_TRUE(owner.Visible);
  tray.MeQueryUnload(owner, cancel, controls::UnloadMode::ControlMenu);
  EXPECT_TRUE(cancel);
  EXPECT_FALSE(owner.Visible);
  EXPECT_EQ(owner.State.Get(), WindowState::Minimised);
}

}  // namespace
