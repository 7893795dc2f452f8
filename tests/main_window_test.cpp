#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "controls/main_window.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/launcher_settings.hpp"
#include "support/recording_screen.hpp"
#include "support/test_services.hpp"
#include "ui/frmMain.hpp"

namespace {

using controls::MouseButton;

constexpr const char* kStems[] = {"cerrar", "help", "minimizar", "jugar", "config", "reparar", "whatsapp"};

// The main window in a folder of its own, the other modules replaced by notes of their calls.
struct MainWindowTest : testing::Test, support::TestServices {
  MainWindowTest() {
    folder.Put("RECURSOS/INIT/here", "");
    folder.Put("RECURSOS/GRAFICOS/Launcher.jpg", "x");
    for (const char* stem : kStems) {
      for (const char* state : {"_n", "_a", "_c"}) {
        folder.Put(std::string("RECURSOS/GRAFICOS/") + stem + state + ".jpg", "x");
      }
    }
    deployment.support = "http://support.example";
    deployment.chat = "https://chat.example/5491100000000";
    deployment.staffApplication = "LauncherTestStaff";
    host.settings->Set(startup::keys::kApplication, startup::keys::kConfig, startup::keys::kShow, "0");
    host.settings->Set(deployment.staffApplication, startup::keys::kStaff, startup::keys::kStaff, "");
  }

  ui::frmMain::Actions Actions() {
    const auto note = [this](const char* what) { return [this, what] { actions.push_back(what); }; };
    ui::frmMain::Actions made;
    made.LoadGameConfig = note("LoadGameConfig");
    made.RestoreHosts = note("RestoreHosts");
    made.SwitchURL = note("SwitchURL");
    made.ComenzarActualizacion = note("ComenzarActualizacion");
    made.ServerListEmpty = [this] { return serverListEmpty; };
    made.GetServersList = note("GetServersList");
    made.Iniciar = note("Iniciar");
    made.ReiniciarUpdates = note("ReiniciarUpdates");
    made.ShowOptions = note("ShowOptions");
    made.UnloadOptions = note("UnloadOptions");
    made.ClearNotify = note("ClearNotify");
    made.CloseLauncher = note("CloseLauncher");
    made.DownloadFile = [](const std::string& url, const std::string&) { return url == "good"; };
    return made;
  }

  std::string Picture(const std::string& name) { return folders.GraphicsDir + name + ".jpg"; }
  std::string Show() {
    return host.settings->Get(startup::keys::kApplication, startup::keys::kConfig, startup::keys::kShow);
  }

  web::Hosts hosts;
  support::RecordingScreen screen;
  controls::MainWindow window{host.events->Timers()};
  std::vector<std::string> actions;
  bool serverListEmpty = true;
  ui::frmMain main{services, hosts, screen, window, Actions()};
};

using Names = std::vector<std::string>;

TEST_F(MainWindowTest, SetUpRunsItsStepsInOrder) {
  main.Form_Load(true);
  EXPECT_EQ(actions, (Names{"LoadGameConfig", "RestoreHosts", "SwitchURL", "ComenzarActualizacion",
                            "GetServersList"}));
  EXPECT_TRUE(host.dialogs.shown.empty());
  EXPECT_EQ(window.Picture.Get(), Picture("Launcher"));
  EXPECT_EQ(window.cmdClose.Picture.Get(), Picture("cerrar_n"));
  EXPECT_TRUE(window.Visible);
  EXPECT_TRUE(window.tmrShow.On());
  EXPECT_FALSE(window.lblClienteGm.Visible);
  EXPECT_TRUE(folder.Has("RECURSOS/UPDATE"));
  EXPECT_EQ(screen.Matching("Icon 0").size(), 1u);
}

TEST_F(MainWindowTest, KnownHostAndServersAreNotAskedForAgain) {
  hosts.WebBaseURL = "http://127.0.0.1/";
  serverListEmpty = false;
  host.settings->Set(deployment.staffApplication, startup::keys::kStaff, startup::keys::kStaff, "x");
  main.Form_Load(false);
  EXPECT_EQ(actions, (Names{"LoadGameConfig", "RestoreHosts", "ComenzarActualizacion"}));
  EXPECT_FALSE(window.Visible);
  EXPECT_TRUE(window.lblClienteGm.Visible);
}

TEST_F(MainWindowTest, MissingPicturesAreReportedOnceAndTheStartGoesOn) {
  platform::RemoveTree(folder / "RECURSOS/GRAFICOS");
  main.Form_Load(true);
  ASSERT_EQ(host.dialogs.shown.size(), 1u);
  EXPECT_EQ(
      host.dialogs.shown[0].text,
      "Error: Error 53 (File not found) en el procedimiento Form_Load del modulo Formulario frmMain en la "
      "línea 50 reporta esto mediante el soporte WEB en http://support.example");
  EXPECT_EQ(actions.back(), "GetServersList");
  window.cmdReiniciarUpdates.Click();
  EXPECT_EQ(actions.back(), "ReiniciarUpdates");
}

TEST_F(MainWindowTest, OneButtonIsLitAtATime) {
  main.Form_Load(true);
  main.btnIniciar.EnableButton(true);
  window.cmdIniciar.MouseMove(MouseButton::None);
  EXPECT_EQ(window.cmdIniciar.Picture.Get(), Picture("jugar_a"));
  EXPECT_EQ(window.lblEstado.Caption.Get(), "¡Iniciar la aventura de Kelvarin!");
  EXPECT_FALSE(window.lblErrorWhatsApp.Visible);
  window.cmdReportar.MouseMove(MouseButton::None);
  EXPECT_EQ(window.cmdIniciar.Picture.Get(), Picture("jugar_n"));
  EXPECT_EQ(window.cmdReportar.Picture.Get(), Picture("whatsapp_a"));
  EXPECT_EQ(window.lblEstado.Caption.Get(), "¡Iniciar la aventura de Kelvarin!");
  EXPECT_TRUE(window.lblErrorWhatsApp.Visible);
  window.cmdReportar.MouseDown(MouseButton::Left);
  EXPECT_EQ(window.cmdReportar.Picture.Get(), Picture("whatsapp_c"));
  window.cmdReportar.MouseUp(MouseButton::Left);
  EXPECT_EQ(window.cmdReportar.Picture.Get(), Picture("whatsapp_a"));
  window.MouseMove(MouseButton::None);
  EXPECT_EQ(window.cmdReportar.Picture.Get(), Picture("whatsapp_n"));
  EXPECT_EQ(window.lblEstado.Caption.Get(), "");
  EXPECT_TRUE(window.lblErrorWhatsApp.Visible);
}

TEST_F(MainWindowTest, DisabledButtonKeepsItsPictureAndDoesNothing) {
  folder.Put("RECURSOS/GRAFICOS/jugar_d.jpg", "x");
  main.Form_Load(true);
  EXPECT_EQ(window.cmdIniciar.Picture.Get(), Picture("jugar_d"));
  EXPECT_EQ(window.cmdConfig.Picture.Get(), Picture("config_c"));
  window.cmdIniciar.MouseMove(MouseButton::None);
  EXPECT_EQ(window.cmdIniciar.Picture.Get(), Picture("jugar_d"));
  window.cmdIniciar.MouseDown(MouseButton::Left);
  EXPECT_EQ(window.cmdIniciar.Picture.Get(), Picture("jugar_c"));
  window.cmdIniciar.MouseUp(MouseButton::Left);
  EXPECT_EQ(window.cmdIniciar.Picture.Get(), Picture("jugar_d"));
  actions.clear();
  window.cmdIniciar.Click();
  window.cmdConfig.Click();
  EXPECT_TRUE(actions.empty());
  main.btnIniciar.EnableButton(true);
  main.btnConfig.EnableButton(true);
  window.cmdIniciar.Click();
  window.cmdConfig.Click();
  EXPECT_EQ(actions, (Names{"Iniciar", "ShowOptions"}));
  main.btnIniciar.EnableButton();
  EXPECT_FALSE(main.btnIniciar.isEnabled());
}

TEST_F(MainWindowTest, EscapeAndClosingEndTheProgram) {
  main.Form_Load(true);
  actions.clear();
  window.KeyDown('A');
  EXPECT_FALSE(lifetime.Ending());
  window.KeyDown(controls::kKeyEscape);
  EXPECT_EQ(actions, (Names{"CloseLauncher"}));
  EXPECT_EQ(screen.Matching("Icon 2").size(), 1u);
  EXPECT_TRUE(lifetime.Ending());
}

TEST_F(MainWindowTest, EveryWayOfUnloadingEndsTheProgram) {
  using controls::UnloadMode;
  for (const UnloadMode mode : {UnloadMode::ControlMenu, UnloadMode::Code, UnloadMode::SystemShutdown}) {
    startup::Lifetime life(*host.events);
    controls::MainWindow other(host.events->Timers());
    const startup::Services own{host.host, folders, deployment, flags, recorder, life};
    ui::frmMain form(own, hosts, screen, other, Actions());
    form.Form_Load(true);
    actions.clear();
    screen.calls.clear();
    other.QueryUnload(mode);
    EXPECT_EQ(actions, (Names{"UnloadOptions", "ClearNotify"}));
    EXPECT_EQ(screen.Matching("Icon 2").size(), 1u);
    EXPECT_EQ(other.Visible.Get(), mode != UnloadMode::ControlMenu);
    EXPECT_TRUE(life.Ending());
  }
}

// The process may be gone as soon as the window has answered, whatever waits below it on the stack.
TEST_F(MainWindowTest, TheEndOfTheSessionWaitsForTheWorkUnderWay) {
  enum class Outcome { UnderWay, Finished, BrokenOff };
  main.Form_Load(true);
  std::atomic<Outcome> outcome = Outcome::UnderWay;
  std::optional<Outcome> answered;
  std::atomic<bool> begun = false;
  host.clock.stepOnRead = 5;
  const auto timer = host.events->Timers().Start(5, [&] {
    if (!begun || answered) return;
    window.QueryUnload(controls::UnloadMode::SystemShutdown);
    answered = outcome;
  });
  startup::RunBlocking(services, [&](std::stop_token stop) {
    begun = true;
    for (int i = 0; i < 10 && !stop.stop_requested(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    outcome = stop.stop_requested() ? Outcome::BrokenOff : Outcome::Finished;
  });
  host.events->Timers().Stop(timer);
  EXPECT_EQ(answered, Outcome::Finished);
  EXPECT_TRUE(lifetime.Ending());
}

TEST_F(MainWindowTest, ShowRequestBringsTheWindowBackAndIsAnswered) {
  const struct {
    const char* value;
    bool restored;
    const char* after;
    std::size_t reports;
  } cases[] = {{"1", true, "0", 0}, {"0", false, "0", 0}, {"si", false, "si", 0}, {"999", false, "0", 1}};
  main.Form_Load(true);
  for (const auto& row : cases) {
    SCOPED_TRACE(row.value);
    window.cmdClose.Click();
    host.dialogs.shown.clear();
    host.settings->Set(startup::keys::kApplication, startup::keys::kConfig, startup::keys::kShow, row.value);
    window.tmrShow.Tick();
    EXPECT_EQ(window.Visible.Get(), row.restored);
    EXPECT_EQ(Show(), row.after);
    ASSERT_EQ(host.dialogs.shown.size(), row.reports);
  }
  EXPECT_EQ(host.dialogs.shown[0].text,
            "Error: Error 6 (Overflow) procedimiento tmrShow_Timer Formulario frmMain línea: 30");
}

TEST_F(MainWindowTest, ReportButtonOpensTheChat) {
  main.Form_Load(true);
  window.cmdReportar.Click();
  EXPECT_EQ(host.shell.pages, (Names{deployment.chat}));
  EXPECT_EQ(host.shell.folders, (Names{folder.Path() + platform::NativePath("\\..")}));
}

}  // namespace
