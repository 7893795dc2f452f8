// Start-up, the error recorder and the deployment file.
#include <gtest/gtest.h>

#include "platform/crash_reports.hpp"
#include "platform/files.hpp"
#include "startup/error_recorder.hpp"
#include "startup/launcher_settings.hpp"
#include "support/launcher_run.hpp"
#include "support/test_services.hpp"

namespace {

using platform::DialogAnswer;
using support::LauncherRun;
namespace keys = startup::keys;

struct Recorder : testing::Test, support::TestServices {
  Recorder() : TestServices("juego") { platform::MakeFolder(folders.AppPath); }
  std::string Log() { return folder.Get("Errores.log"); }
  static std::string Line(const std::string& text) {
    return "21/11/2026 10:20:30 " + text + platform::kLineEnd;
  }
};

TEST_F(Recorder, ShowsEveryTextAndWritesNoRepeats) {
  const auto start = host.clock.Milliseconds();
  for (const char* text : {"A", "A", "A", "B", "A", "", ""}) recorder.LogError(text);
  EXPECT_EQ(host.dialogs.shown.size(), 7u);
  EXPECT_EQ(host.clock.Milliseconds() - start, 5 * 100u) << "a pause before each line that is written";
  EXPECT_EQ(Log(), Line("A") + Line("B") + Line("A") + Line("") + Line(""));
}

TEST_F(Recorder, NotesAreWrittenOnceInARowAndShownToNobody) {
  for (const char* text : {"A {1}", "A {1}", "B", "A {1}"}) recorder.Note(text);
  EXPECT_EQ(Log(), Line("A -1-") + Line("B") + Line("A -1-"));
  EXPECT_TRUE(host.dialogs.shown.empty());
  recorder.LogError("x {y} z");
  EXPECT_EQ(host.dialogs.shown[0].text, "Error: x {y} z");
  EXPECT_TRUE(Log().ends_with(Line("x -y- z")));
}

TEST_F(Recorder, StartsAFreshLogBeyond3000Bytes) {
  folder.Put("Errores.log", std::string(3000, 'x'));
  recorder.LogError("A");
  EXPECT_EQ(Log(), std::string(3000, 'x') + Line("A"));
  recorder.LogError("B");
  EXPECT_EQ(Log(), Line("B"));
}

TEST_F(Recorder, AsksToCloseAndOnlyYesEndsTheProgram) {
  recorder.LogError("A", true);
  EXPECT_FALSE(lifetime.Ending());
  host.dialogs.answers = {DialogAnswer::Yes};
  recorder.LogError("B", true);
  EXPECT_TRUE(lifetime.Ending());
  EXPECT_EQ(host.processes.endedAtOnce, 1) << "nothing is unloaded or saved any more";
  EXPECT_EQ(host.dialogs.shown.back().title, "¡Error en el Launcher de Kelvarin!");
  EXPECT_EQ(host.dialogs.shown.back().text,
            "B\r\n\r\n¿Desea cerrar el Launcher? Si presiona 'NO' podrá intentar jugar de todas maneras.");
}

TEST_F(Recorder, ALogThatCannotBeWrittenIsNoFailure) {
  platform::MakeFolder(folder / "Errores.log");
  recorder.LogError("A");
  EXPECT_EQ(host.dialogs.shown.size(), 1u);
}

TEST(RunFlags, ComeFromTheNameAndTheCommandLine) {
  const struct {
    const char* name;
    const char* commandLine;
    bool launcher, updates;
  } cases[] = {{"launcher", "", true, false},
               {"LaunCHER", "x/UPDATESy", true, true},
               {"Juego", "/updates", false, false},
               {"launcher2", "-v /UPDATES", false, true},
               {"", "/UPDATE S", false, false}};
  for (const auto& entry : cases) {
    const startup::RunFlags flags(entry.name, entry.commandLine);
    EXPECT_EQ(flags.IsLauncherExe, entry.launcher) << entry.name;
    EXPECT_EQ(flags.UpdatesOnly, entry.updates) << entry.commandLine;
  }
}

TEST(Deployment, TakesBuiltInValuesForWhatTheFileLacks) {
  const support::TempFolder folder;
  const auto profiles = platform::MakeProfileFiles();
  const startup::Deployment none = startup::LoadDeployment(*profiles, folder / "Deployment.ini");
  EXPECT_TRUE(startup::ProblemsOf(none).empty());
  EXPECT_EQ(none.mirrors[2], "http://127.0.0.1:8250/update/kvn2011/");

  folder.Put("Deployment.ini",
             "[MIRRORS]\r\n1=http://a/x\r\n2=ftp://a/\r\n3=\r\n4=a/b/\r\n5=https://h:81/u/"
             "\r\n[SITE]\r\nWeb=http://w/\r\n");
  const startup::Deployment some = startup::LoadDeployment(*profiles, folder / "Deployment.ini");
  EXPECT_EQ(some.usable, (std::array<bool, 7>{false, false, false, false, true, false, false}));
  EXPECT_EQ(some.web, "http://w");
  EXPECT_EQ(some.parameter, "KELVARIN");
  EXPECT_TRUE(some.IsSecondHost("https://h:81/u/"));
  const auto problems = startup::ProblemsOf(some);
  ASSERT_EQ(problems.size(), 3u) << "an empty or missing entry is none";
  EXPECT_NE(problems[2].find("MIRRORS/4"), std::string::npos);
}

TEST(Main, PreparesTheFolderAndTheTimers) {
  LauncherRun run;
  run.mirror.Publish();
  run.Put("RECURSOS/INIT/Kelvarin.exe.manifest", "nuevo");
  run.Put("RECURSOS/INIT/WavSilenced.ini", "[INIT]\r\nWAV12=-3\r\n");
  run.Start();
  for (const char* made : {"Bin", "RECURSOS/INIT/UPDATE", "RECURSOS/UPDATE"}) {
    EXPECT_TRUE(run.Has(made)) << made;
  }
  EXPECT_EQ(run.Get("Kelvarin.exe.manifest"), "nuevo");
  const controls::MainWindow& window = run.Launched().MainWindow();
  EXPECT_TRUE(window.Visible);
  EXPECT_TRUE(window.NewsTimer.On());
  EXPECT_TRUE(window.tmrShow.On());
  EXPECT_FALSE(window.tmrUpdates.On());
  EXPECT_EQ(window.lblServerState1.Caption.Get(), "Alpha ONLINE - 37 Users.");
  EXPECT_EQ(run.machine.settings->Get(keys::kApplication, keys::kLastUrl, keys::kUrl), run.mirror.Url());
  ASSERT_EQ(run.machine.processes.started.size(), 1u);
  EXPECT_EQ(run.machine.processes.started[0].commandLine,
            "RunDll32.exe InetCpl.cpl, ClearMyTracksByProcess 8");
  EXPECT_EQ(run.machine.processes.locksTaken, std::vector<std::string>{"Global\\Kelvarin"});
  EXPECT_EQ(run.mirror.server.Count("/web/include/ipdate.php"), 1u);
  EXPECT_EQ(run.mirror.server.Count("/web/include/info.php"), 1u);
  run.Launched().MainWindow().cmdConfig.Click();
  ui::OptionsWindow& options = run.Launched().Options().Window;
  EXPECT_TRUE(options.Visible) << "settings are for everybody once the start is done";
  options.cmbWavsList.Text = "12";
  options.cmbWavsList.KeyUp();
  EXPECT_TRUE(options.chkSilenciarWav.Checked.Get()) << "the list of sounds was read";
  run.Put("RECURSOS/INIT/Kelvarin.exe.manifest", "más nuevo");
  run.Start();
  EXPECT_EQ(run.Get("Kelvarin.exe.manifest"), "nuevo");  // never overwritten
}

TEST(Main, MeetsOtherInstances) {
  const struct {
    const char* commandLine;
    bool locked, client;
    std::vector<std::string> shown;
    std::string show;
  } cases[] = {
      {"", false, false, {}, ""},
      {"", true, true, {"Se encontró otra instancia del launcher abierta."}, "1"},
      {"", false, true, {"Se encontró otra instancia ejecutada del launcher abierta."}, ""},
      {"/UPDATES", true, true, {}, ""},
  };
  for (const auto& entry : cases) {
    LauncherRun run;
    run.mirror.Publish();
    run.machine.processes.lockExists = entry.locked;
    if (entry.client) run.machine.processes.running = {"otro.exe", "KELVARIN.EXE"};
    std::vector<std::string> shown;
    run.machine.dialogs.onShow = [&](const support::ShownDialog& dialog) {
      if (!dialog.text.starts_with("Error")) shown.push_back(dialog.text);
    };
    run.Start(entry.commandLine);
    const bool alone = *entry.commandLine != 0;
    EXPECT_EQ(shown, entry.shown);
    EXPECT_EQ(run.machine.settings->Get(keys::kApplication, keys::kConfig, keys::kShow), entry.show);
    EXPECT_EQ(run.screen.Count("Let others come to front"), entry.locked && !alone ? 1 : 0);
    EXPECT_EQ(run.machine.processes.locksTaken.empty(), alone);
    EXPECT_EQ(run.Launched().MainWindow().Visible, !alone);  // neither message ends the start-up
  }
}

TEST(Main, ARenamedLauncherEndsAStaleClient) {
  LauncherRun run;
  run.program = "actualizador.exe";
  run.mirror.Publish();
  run.machine.processes.lockExists = true;
  run.machine.processes.running = {"Kelvarin.exe"};
  run.Start();
  ASSERT_EQ(run.machine.processes.started.size(), 2u);
  EXPECT_EQ(run.machine.processes.started[0].commandLine, "taskkill.exe /f /t /im Kelvarin.exe");
  EXPECT_EQ(run.machine.processes.started[0].style, platform::WindowStyle::Minimised);
  EXPECT_EQ(run.machine.processes.locksTaken[0], "Global\\actualizador");
}

TEST(Main, ReportsAMirrorThatCannotBeUsedAndPassesItOver) {
  LauncherRun run;
  run.mirror.Publish();
  support::Deploy(run.folder, run.game, {"no es una dirección", run.mirror.Url()}, run.mirror.server.Url(""));
  std::vector<std::string> shown;
  run.machine.dialogs.onShow = [&](const support::ShownDialog& dialog) { shown.push_back(dialog.text); };
  run.Start();
  ASSERT_FALSE(shown.empty());
  EXPECT_EQ(shown[0],
            "Error: Deployment.ini: MIRRORS/1 no es una dirección http o https completa terminada en \"/\"; "
            "no se usará.");
  EXPECT_EQ(run.machine.settings->Get(keys::kApplication, keys::kLastUrl, keys::kUrl), run.mirror.Url());
}

TEST(Main, TellsOnceOfACrashWhereSomebodyReadsIt) {
  LauncherRun run;
  run.mirror.Publish();
  const std::string report =
      platform::CrashFolder() + platform::NativePath("\\crash-20991231-235959-999.txt");
  platform::MakeFolders(platform::CrashFolder());
  platform::WriteWhole(report, "launcher");
  std::vector<std::string> told;
  run.machine.dialogs.onShow = [&](const support::ShownDialog& dialog) {
    if (dialog.text.ends_with(report)) told.push_back(dialog.text);
  };
  for (const char* commandLine : {"/UPDATES", "", ""}) run.Start(commandLine);
  platform::RemoveTree(platform::CrashFolder());
  ASSERT_EQ(told.size(), 1u);
  EXPECT_NE(told[0].find("http://soporte.example/"), std::string::npos) << told[0];
}

TEST(Main, ClosingWritesThatNothingIsPending) {
  LauncherRun run;
  run.mirror.Publish();
  run.Start();
  run.machine.settings->Set(keys::kApplication, keys::kConfig, keys::kShow, "1");
  run.Launched().MainWindow().KeyDown(controls::kKeyEscape);
  EXPECT_TRUE(run.Launched().Life().Ending());
  EXPECT_EQ(run.machine.settings->Get(keys::kApplication, keys::kConfig, keys::kShow), "0");
}

}  // namespace
