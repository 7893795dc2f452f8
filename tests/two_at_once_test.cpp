// Two things at once, and things that go wrong: what a player and an operator are told, and that nothing is
// lost.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <list>

#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"
#include "support/launcher_run.hpp"

namespace {

using platform::DialogAnswer;
using support::Answer;
using support::LauncherRun;
using update::Mode;

void PublishGame(LauncherRun& run) {
  run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno"}});
  run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/2.map", "dos"}});
  run.mirror.AddBinFile("KVN-DX8.exe", "el cliente");
  run.mirror.AddBinFile("sub\\a.dll", std::string(3'000, 'a'));
  run.mirror.Publish();
}

std::string Log(const LauncherRun& run) { return platform::FromAnsi(run.folder.Get("Errores.log")); }

// Does something once, from inside the events that the launcher lets happen while it waits.
class Once {
 public:
  Once(LauncherRun& run, std::function<bool()> when, std::function<void()> what)
      : run_(run),
        id_(run.machine.events->Timers().Start(5, [this, when = std::move(when), what = std::move(what)] {
          if (done || !when()) return;
          done = true;
          what();
        })) {
    run_.machine.clock.stepOnRead = 5;
  }
  ~Once() { run_.machine.events->Timers().Stop(id_); }

  bool done = false;

 private:
  LauncherRun& run_;
  platform::TimerQueue::Id id_;
};

std::function<bool()> Asked(LauncherRun& run, const std::string& piece) {
  return [&run, path = run.mirror.PathOf(piece)] { return run.mirror.server.Count(path) > 0; };
}

std::function<void()> ConfirmRepair(LauncherRun& run) {
  return [&run] {
    run.machine.dialogs.answers = {DialogAnswer::Yes};
    run.Launched().MainWindow().cmdReiniciarUpdates.Click();
  };
}

TEST(TwoAtOnce, ARepairDuringARunEndsItAndFetchesEverythingOnceMore) {
  for (const char* piece : {"OldAct/Update.ini", "OldAct/Mapas/Mapas1.zip", "OldAct/Mapas/Mapas2.zip",
                            "NewAct2/Info.kvn", "NewAct2/Bin/sub/a.dll.kvn"}) {
    SCOPED_TRACE(piece);
    LauncherRun run;
    PublishGame(run);
    run.Start();
    Once repair(run, Asked(run, piece), ConfirmRepair(run));
    run.Play();
    run.UntilEnded();
    EXPECT_TRUE(repair.done);
    EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
    EXPECT_EQ(run.Counter("Mapas"), "2\r\n");
    const auto times = [&](const char* asked) { return run.mirror.server.Count(run.mirror.PathOf(asked)); };
    EXPECT_EQ(times("OldAct/Update.ini"), 2u) << "one run for the press, one for the repair";
    EXPECT_LE(times("OldAct/Mapas/Mapas1.zip"), 2u);
    EXPECT_LE(times("NewAct2/Info.kvn"), 2u);
    EXPECT_TRUE(run.machine.dialogs.shown.size() == 1) << "nothing but the repair's question";
  }
}

TEST(TwoAtOnce, PlayDuringARepairsRunDoesNothing) {
  LauncherRun run;
  PublishGame(run);
  run.Start();
  Once play(run, Asked(run, "OldAct/Mapas/Mapas1.zip"), [&] {
    EXPECT_EQ(run.Launched().Mode(), Mode::Updating);
    run.Play();
    run.Launched().MainWindow().tmrUpdates.Tick();
  });
  ConfirmRepair(run)();
  run.UntilEnded();
  EXPECT_TRUE(play.done);
  EXPECT_EQ(run.mirror.Asked().size(), 6u) << "list, two patches, index, two files";
}

TEST(TwoAtOnce, ARepairConfirmedDuringStartUpRunsAfterIt) {
  LauncherRun run;
  PublishGame(run);
  run.Put("RECURSOS/INIT/AUMapas.ini", "2\r\n");
  Answer slow = support::Text("1");
  slow.waitMs = 300;
  run.mirror.server.On(run.mirror.PathOf("Online.txt"), slow);
  Once repair(run, Asked(run, "Online.txt"), [&] {
    EXPECT_EQ(run.Launched().Mode(), Mode::Starting);
    ConfirmRepair(run)();
  });
  run.Start();
  EXPECT_TRUE(repair.done);
  EXPECT_EQ(run.Launched().Mode(), Mode::Updating);
  run.UntilEnded();
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
  EXPECT_EQ(run.mirror.server.Count(run.mirror.PathOf("OldAct/Mapas/Mapas1.zip")), 1u);
}

// No mirror answers while the launcher starts: the player may look at the options, play what is there, or
// wait.
TEST(TwoAtOnce, PlayWhileNoMirrorAnswersAsksOnceAndStartsWhatIsInstalled) {
  const struct {
    DialogAnswer answer;
    bool installed, starts;
  } cases[] = {
      {DialogAnswer::Yes, true, true}, {DialogAnswer::No, true, false}, {DialogAnswer::Yes, false, false}};
  for (const auto& test : cases) {
    LauncherRun run;
    PublishGame(run);
    const std::string probe = run.mirror.PathOf("Online.txt");
    if (test.installed) run.Put("Bin/KVN-DX8.exe", "el de antes");
    run.mirror.server.On(probe, support::Text("0"));
    Once play(
        run,
        [&] { return run.mirror.server.Count(probe) > 0 && !run.Launched().MainWindow().cmdIniciar.Idle; },
        [&] {
          run.machine.dialogs.shown.clear();
          run.machine.dialogs.answers = {test.answer};
          run.Play();
          EXPECT_EQ(run.machine.dialogs.shown.size(), 1u);
          run.mirror.server.On(probe, support::Text("1"));
        });
    run.Start();
    EXPECT_TRUE(play.done);
    EXPECT_EQ(run.Launched().Life().Ending(), test.starts);
    const auto& started = run.machine.processes.started;
    EXPECT_EQ(!started.empty() && started.back().program.ends_with("KVN-DX8.exe"), test.starts);
    if (test.starts) continue;
    EXPECT_EQ(run.Launched().Mode(), Mode::Idle) << "the walk went on, and a mirror answered";
    run.Play();
    run.UntilEnded();
    EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
  }
}

TEST(Failures, WhoCannotUpdateMayStillPlay) {
  LauncherRun run;
  PublishGame(run);
  run.Put("Bin/KVN-DX8.exe", "el de antes");
  run.Start();
  run.mirror.server.On(run.mirror.PathOf("Online.txt"), support::Text("0"));
  run.mirror.server.On(run.mirror.PathOf("OldAct/Update.ini"), support::CutShort("[INIT]", 3));
  run.Play();
  run.UntilStopped();
  EXPECT_EQ(run.machine.processes.started.size(), 1u) << "no was the answer";
  run.machine.dialogs.answers = {DialogAnswer::Yes};
  run.Play();
  run.UntilEnded();
  EXPECT_EQ(run.machine.processes.started.size(), 2u);
  EXPECT_TRUE(
      run.Shown("Ningún servidor de actualizaciones responde.\r\n¿Deseas iniciar el juego instalado sin "
                "actualizarlo?"));
  EXPECT_EQ(run.Get("Bin/KVN-DX8.exe"), "el de antes");
}

TEST(Failures, ARunThatFailedSaysWhyAndLetsThePlayerGoOn) {
  LauncherRun run;
  PublishGame(run);
  run.mirror.server.On(run.mirror.PathOf("OldAct/Mapas/Mapas2.zip"), support::Page(404, "no"));
  run.PlayUntilStopped();
  controls::MainWindow& window = run.Launched().MainWindow();
  EXPECT_EQ(run.Status(), "No se pudo instalar Mapas/Mapas2.zip: el servidor respondió 404.");
  EXPECT_EQ(window.ProgressBar1.Value.Get(), 0);
  EXPECT_TRUE(window.NewsTimer.On());
  EXPECT_EQ(run.Launched().Mode(), Mode::Idle);
  EXPECT_EQ(run.Counter("Mapas"), "1\r\n");
  EXPECT_NE(Log(run).find("Mapas/Mapas2.zip: el servidor respondió 404 (HTTP 404, 2 de 2 bytes)"),
            std::string::npos)
      << Log(run);
  window.NewsTimer.Tick();
  EXPECT_EQ(run.Status(), "No se pudo instalar Mapas/Mapas2.zip: el servidor respondió 404.")
      << "news put it back";
  window.MouseMove(controls::MouseButton::None);
  window.NewsTimer.Tick();
  EXPECT_EQ(run.Status(), "");
}

TEST(Failures, WhateverEndsUpdateOnlyModeWithOneStandsInTheLog) {
  const struct {
    const char* what;
    const char* path;
    Answer answer;
    const char* logged;
  } cases[] = {
      {"no list", "OldAct/Update.ini", support::CutShort("[INIT]", 2), "Update.ini: la conexión se cortó"},
      {"garbage for a list", "OldAct/Update.ini", support::Text("hola"), "Update.ini: Init no es un número"},
      {"no archive", "OldAct/Mapas/Mapas1.zip", support::CutShort("PK", 1), "tiempo de espera agotado"},
      {"bad archive", "OldAct/Mapas/Mapas1.zip", support::Text("PK"), "Error al Unzipear, pruebe"},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.what);
    LauncherRun run;
    PublishGame(run);
    run.mirror.server.On(run.mirror.PathOf(entry.path), entry.answer);
    run.Start("/UPDATES");
    run.UntilEnded();
    EXPECT_EQ(run.Launched().Life().ExitStatus(), 1);
    EXPECT_NE(Log(run).find(entry.logged), std::string::npos) << Log(run);
  }
}

// Before there is a window nobody could close the program, so it ends by itself.
TEST(Failures, AStartThatFailsBeforeTheWindowEndsTheProgram) {
  for (const char* commandLine : {"", "/UPDATES"}) {
    LauncherRun run;
    run.mirror.Publish();
    run.Put("RECURSOS", "a file where a folder must be");
    run.Start(commandLine);
    EXPECT_TRUE(run.Launched().Life().Ending());
    EXPECT_EQ(run.Launched().Life().ExitStatus(), 1);
    EXPECT_EQ(run.machine.dialogs.shown.size(), 1u);
    EXPECT_NE(Log(run).find("del procedimiento Main del Módulo modGeneral En la linea: 10"),
              std::string::npos);
  }
}

TEST(Failures, AManifestOrScratchFolderThatCannotBeWrittenDoesNotStopTheStart) {
  LauncherRun run;
  run.mirror.Publish();
  run.Put("RECURSOS/INIT/UPDATE", "a file");
  run.Put("RECURSOS/INIT/Kelvarin.exe.manifest", "x");
  platform::MakeFolders(run.PathOf("Kelvarin.exe.manifest/x"));
  run.Start();
  EXPECT_EQ(run.Launched().Mode(), Mode::Idle);
  EXPECT_NE(Log(run).find("Kelvarin.exe.manifest: "), std::string::npos) << Log(run);
}

// What was expanded must be what the index names before it replaces anything.
// The second file is asked for while the first one is still on its way.
TEST(Failures, AStaleOrForeignPackedFileNeverReachesTheGame) {
  LauncherRun run;
  PublishGame(run);
  support::FaultyServer& server = run.mirror.server;
  const std::string first = run.mirror.PathOf("NewAct2/Bin/KVN-DX8.exe.kvn"),
                    second = run.mirror.PathOf("NewAct2/Bin/sub/a.dll.kvn");
  std::atomic<bool> together = false;
  server.On(first, [&, whole = server.AnswerFor({"GET", first, {}})](const support::SeenRequest&) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!together && std::chrono::steady_clock::now() < end) together = server.Count(second) > 0;
    return whole;
  });
  server.On(second, support::Text(support::MakePacked("otra versión")));
  run.Put("Bin/sub/a.dll", "la vieja");
  run.Put("RECURSOS/UPDATE/KVN-DX8.exe.kvn", support::MakePacked("ajeno"));
  run.Put("RECURSOS/UPDATE/nuevo.dll.kvn", support::MakePacked("ajeno"));
  run.PlayToTheEnd();
  EXPECT_TRUE(together);
  EXPECT_EQ(run.Get("Bin/KVN-DX8.exe"), "el cliente");
  EXPECT_EQ(run.Get("Bin/sub/a.dll"), "la vieja");
  EXPECT_FALSE(run.Has("Bin/nuevo.dll"));
  EXPECT_NE(Log(run).find("a.dll: su contenido no es el que nombra el índice"), std::string::npos)
      << Log(run);
  EXPECT_EQ(Log(run).find("a.dll.kvn"), std::string::npos) << "it is gone before it could be installed";
  EXPECT_TRUE(platform::ListTree(run.PathOf("RECURSOS/UPDATE")).empty());
  EXPECT_FALSE(run.Has("RECURSOS/UPDATE/sub")) << "no empty folder is left behind";
  EXPECT_FALSE(run.Has("RECURSOS/INIT/UPDATE/tmp.tmp"));
}

TEST(Failures, ADollarAnywhereBelowBinKeepsAFile) {
  LauncherRun run;
  PublishGame(run);
  run.Put("Bin/d$/f", "mío");
  run.Put("Bin/d/f", "ajeno");
  run.PlayToTheEnd();
  EXPECT_EQ(run.Get("Bin/d$/f"), "mío");
  EXPECT_FALSE(run.Has("Bin/d/f"));
}

// Every entry of the ring is bad in a way of its own, and the game arrives all the same.
// Seven entries, each bad in another way and none good: every piece still arrives.
TEST(Ring, EveryPieceArrivesFromAMirrorThatHasIt) {
  LauncherRun run;
  PublishGame(run);
  const std::string base = support::GameMirror::kBase;
  Answer reset = support::CutShort(std::string(9'000, 'x'), 5'000, Answer::Cut::Reset);
  const struct {
    const char* piece;
    Answer answer;
  } faults[] = {{"OldAct/Update.ini", support::Text("<html>hola</html>")},
                {"OldAct/Mapas/Mapas1.zip", support::Page(404, "no")},
                {"OldAct/Mapas/Mapas2.zip", support::Text("PK dañado")},
                {"NewAct2/Info.kvn", support::CutShort("xxxx", 2)},
                {"NewAct2/Bin/KVN-DX8.exe.kvn", support::Text(support::MakePacked("otro"))},
                {"NewAct2/Bin/sub/a.dll.kvn", reset}};
  const support::ClosedPort closed;
  std::vector<std::string> mirrors = {closed.Url(base)};
  std::list<support::FaultyServer> servers;
  for (const auto& fault : faults) {
    support::FaultyServer& bad = servers.emplace_back("127.0.0.12");
    bad.Otherwise(
        [&run](const support::SeenRequest& request) { return run.mirror.server.AnswerFor(request); });
    bad.On(base + fault.piece, fault.answer);
    mirrors.push_back(bad.Url(base));
  }
  support::Deploy(run.folder, run.game, mirrors, run.mirror.server.Url(""));
  run.PlayToTheEnd();
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
  EXPECT_TRUE(run.machine.dialogs.shown.empty());
  for (const auto& fault : faults)
    EXPECT_NE(Log(run).find(std::string(fault.piece).substr(std::string(fault.piece).rfind('/') + 1, 5)),
              std::string::npos)
        << fault.piece << " was never asked for where it is bad";
}

// The machine slept, or its network is another one, while a run goes on: for a while no mirror can be
// reached, and the run waits for one instead of giving up or starting a game with holes.
TEST(Ring, ARunOutlivesAChangeOfNetwork) {
  for (const char* piece : {"OldAct/Mapas/Mapas2.zip", "NewAct2/Bin/sub/a.dll.kvn"}) {
    SCOPED_TRACE(piece);
    LauncherRun run;
    PublishGame(run);
    support::FaultyServer unreliable("127.0.0.12");
    const std::string base = support::GameMirror::kBase;
    std::atomic<bool> gone = false;
    std::atomic<int> refused = 0;
    unreliable.Otherwise([&](const support::SeenRequest& request) {
      if (request.target == base + piece && refused == 0) gone = true;
      if (!gone) return run.mirror.server.AnswerFor(request);
      if (++refused == 8) gone = false;
      return support::CutShort("x", 0, Answer::Cut::Reset);
    });
    support::Deploy(run.folder, run.game, {unreliable.Url(base)}, run.mirror.server.Url(""));
    run.Start();
    const Once wake(
        run, [&] { return refused > 0; },
        [&] {
          run.screen.resumed();
          run.machine.clock.stepOnRead = 0;  // the minute is the launcher's from here on
        });
    run.Play();
    run.UntilEnded();
    EXPECT_TRUE(wake.done);
    EXPECT_TRUE(run.GameFiles() == run.mirror.Expected()) << run.Status() << "\n" << Log(run);
    EXPECT_TRUE(run.machine.dialogs.shown.empty());
  }
}

}  // namespace
