#include <gtest/gtest.h>

#include "platform/files.hpp"
#include "support/recording_screen.hpp"
#include "support/test_services.hpp"
#include "ui/frmNotify.hpp"

namespace {

using Names = std::vector<std::string>;

struct NotifyTest : testing::Test, support::TestServices {
  NotifyTest() { deployment.web = "http://web.example"; }

  // The notice's upper edges since the last look; every position keeps its right edge on the work area's.
  std::vector<int> Tops() {
    std::vector<int> tops;
    for (const std::string& call : screen.Matching("MoveTo frmNotify 940,")) {
      tops.push_back(std::stoi(call.substr(call.find(',') + 1)));
    }
    EXPECT_EQ(tops.size(), screen.Matching("MoveTo").size());
    screen.calls.clear();
    return tops;
  }

  support::RecordingScreen screen;
  ui::frmNotify notify{services, screen};
};

std::vector<int> Range(int from, int to) {
  std::vector<int> range;
  for (int value = from; value != to; value += from < to ? 1 : -1) range.push_back(value);
  range.push_back(to);
  return range;
}

TEST_F(NotifyTest, SlidesUpStaysAndSlidesDown) {
  EXPECT_TRUE(screen.calls.empty()) << "made before there is news";
  const auto start = host.clock.Milliseconds();
  notify.ShowMessage("texto", "título", 7, 15000);
  EXPECT_EQ(screen.Count("Topmost frmNotify"), 1);
  EXPECT_EQ(Tops(), Range(984, 854));
  EXPECT_LE(host.clock.Milliseconds() - start, 500u);
  EXPECT_TRUE(notify.window.Visible);
  EXPECT_EQ(notify.lblNews.Caption.Get(), "texto");
  EXPECT_EQ(notify.lblTitle.Caption.Get(), "título");
  host.clock.Step(14999);
  host.events->DoEvents();
  EXPECT_TRUE(notify.window.Visible);
  host.clock.Step(1);
  host.events->DoEvents();
  EXPECT_EQ(Tops(), Range(854, 984));
  EXPECT_FALSE(notify.window.Visible);
  EXPECT_FALSE(notify.Timer1.On());
}

TEST_F(NotifyTest, HoverTurnsALabelIntoAButton) {
  notify.ShowMessage("texto", "título", 42, 15000);
  notify.lblNews.Click();
  notify.lblTitle.Click();
  EXPECT_TRUE(host.shell.pages.empty());
  EXPECT_TRUE(notify.window.Visible);

  notify.lblNews.MouseMove(controls::MouseButton::None);
  EXPECT_EQ(notify.lblNews.Caption.Get(), "Ver noticia completa");
  notify.lblNews.Click();
  EXPECT_EQ(host.shell.pages, (Names{"http://web.example/web/index.php?id=42"}));
  EXPECT_EQ(host.shell.folders, (Names{folder.Path() + platform::NativePath("\\..")}));

  notify.lblTitle.MouseMove(controls::MouseButton::None);
  EXPECT_EQ(notify.lblTitle.Caption.Get(), "Cerrar notificación.");
  EXPECT_EQ(notify.lblNews.Caption.Get(), "texto");
  notify.window.MouseMove(controls::MouseButton::None);
  EXPECT_EQ(notify.lblTitle.Caption.Get(), "título");

  notify.lblTitle.MouseMove(controls::MouseButton::None);
  notify.lblTitle.Click();
  EXPECT_FALSE(notify.window.Visible);
}

TEST_F(NotifyTest, ClosingDuringTheSlideEndsIt) {
  host.events->Timers().Start(100, [this] {
    if (!notify.window.Visible || notify.Timer1.On()) return;
    notify.lblTitle.MouseMove(controls::MouseButton::None);
    notify.lblTitle.Click();
  });
  notify.ShowMessage("texto", "título", 7, 15000);
  EXPECT_FALSE(notify.window.Visible);
  EXPECT_FALSE(notify.Timer1.On());
  const std::vector<int> tops = Tops();
  EXPECT_EQ(tops.back(), 984);
  EXPECT_GT(*std::min_element(tops.begin(), tops.end()), 854);
}

TEST_F(NotifyTest, NoticeWaitsForTheEndOfAFullScreenGame) {
  screen.playerIsBusy = true;
  notify.ShowMessage("uno", "primero", 1, 15000);
  notify.ShowMessage("dos", "segundo", 2, 15000);
  host.clock.Step(60'000);
  host.events->DoEvents();
  EXPECT_FALSE(notify.window.Visible);
  EXPECT_TRUE(Tops().empty());
  screen.playerIsBusy = false;
  host.clock.Step(5000);
  host.events->DoEvents();
  EXPECT_TRUE(notify.window.Visible);
  EXPECT_EQ(notify.lblNews.Caption.Get(), "dos");
  host.clock.Step(15000);
  host.events->DoEvents();
  EXPECT_FALSE(notify.window.Visible);
  host.clock.Step(60'000);
  host.events->DoEvents();
  EXPECT_FALSE(notify.window.Visible) << "shown once";
}

TEST_F(NotifyTest, TheProgramsEndStopsTheSlide) {
  host.events->Timers().Start(50, [this] { lifetime.End(0); });
  notify.ShowMessage("texto", "título", 7, 15000);
  EXPECT_LT(Tops().size(), 131u);
  EXPECT_FALSE(notify.Timer1.On());
}

}  // namespace
