// The main job, end to end: a whole launcher against a real loopback mirror.
#include <gtest/gtest.h>

#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"
#include "support/launcher_run.hpp"

namespace {

using platform::DialogAnswer;
using support::Answer;
using support::LauncherRun;
using support::MakeIndex;
using support::MakePacked;
using support::MakeZip;

constexpr const char* kBadZip = "Error al Unzipear, pruebe que el archivo sea un original .ZIP y no .RAR";
constexpr const char* kBadIndex = "No se ha logrado descargar el indice de descargas, ¿Deseas reintentarlo?";

void PublishGame(support::GameMirror& mirror) {
  mirror.AddPatch("Init", {{"RECURSOS/INIT/datos.ini", "datos"}});
  mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/", ""}, {"RECURSOS/MAPAS1/1.map", "uno"}});
  mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno nuevo"}, {"RECURSOS/MAPAS1/Año/ñ.map", "eñe"}});
  mirror.AddPatch("Extras", {{"leame.txt", std::string(100'000, 'x')}});
  mirror.AddBinFile("KVN-DX8.exe", "el cliente");
  mirror.AddBinFile("Sub\\nested.dll", std::string(50'000, 'n'));
  mirror.Publish();
}

TEST(UpdateCheck, InstallsAnEmptyFolderAndStartsTheGame) {
  LauncherRun run;
  PublishGame(run.mirror);
  run.PlayToTheEnd();

  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
  const std::vector<std::string> asked = {"OldAct/Update.ini",           "OldAct/Init/Init1.zip",
                                          "OldAct/Mapas/Mapas1.zip",     "OldAct/Mapas/Mapas2.zip",
                                          "OldAct/Extras/Extras1.zip",   "NewAct2/Info.kvn",
                                          "NewAct2/Bin/KVN-DX8.exe.kvn", "NewAct2/Bin/Sub/nested.dll.kvn"};
  EXPECT_EQ(run.mirror.Asked(), asked);
  EXPECT_EQ(run.Counter("Mapas"), "2\r\n");
  EXPECT_EQ(run.Counter("Wavs"), "0\r\n");
  ASSERT_EQ(run.machine.processes.started.size(), 2u);  // the browser cache, then the client
  const platform::StartRequest& client = run.machine.processes.started[1];
  EXPECT_EQ(client.program, run.PathOf("Bin/KVN-DX8.exe"));
  EXPECT_EQ(client.commandLine, client.program + " CLAVE 1");
  EXPECT_EQ(run.Launched().Life().ExitStatus(), 0);
  EXPECT_TRUE(run.machine.dialogs.shown.empty());
  EXPECT_EQ(run.machine.processes.locksReleased, std::vector<std::string>{"Global\\Kelvarin"});

  // A second start with nothing new fetches the list and the index, nothing else.
  run.mirror.server.Forget();
  run.PlayToTheEnd();
  EXPECT_EQ(run.mirror.Asked(), (std::vector<std::string>{"OldAct/Update.ini", "NewAct2/Info.kvn"}));
}

TEST(UpdateCheck, FetchesOnlyWhatIsMissingAndClearsWhatIsForeign) {
  LauncherRun run;
  PublishGame(run.mirror);
  run.Start("/UPDATES");
  run.UntilEnded();  // the patches are there, Bin is not
  run.Put("Bin/KVN-DX8.exe", "el cliente");
  run.Put("Bin/sub/NESTED.dll", "dañado");
  run.Put("Bin/viejo.dll", "x");
  run.Put("Bin/propio$.txt", "x");
  run.Put("RECURSOS/INIT/AUMapas.ini", "9");
  run.Put("RECURSOS/GRAFICOS/1.bmp", "x");
  run.Put("RECURSOS/GRAFICOS/32000.bmp", "x");
  run.Put("RECURSOS/GRAFICOS/32001.bmp", "x");
  run.mirror.server.Forget();
  run.PlayToTheEnd();
  EXPECT_EQ(run.Counter("Mapas"), "2\r\n");  // pulled back to the mirror's number
  EXPECT_EQ(run.mirror.Asked(), (std::vector<std::string>{"OldAct/Update.ini", "NewAct2/Info.kvn",
                                                          "NewAct2/Bin/Sub/nested.dll.kvn"}));
  EXPECT_EQ(run.Get("Bin/Sub/nested.dll"), std::string(50'000, 'n'));
  EXPECT_FALSE(run.Has("Bin/viejo.dll"));
  EXPECT_TRUE(run.Has("Bin/propio$.txt"));
  EXPECT_FALSE(run.Has("RECURSOS/GRAFICOS/1.bmp"));
  EXPECT_FALSE(run.Has("RECURSOS/GRAFICOS/32000.bmp"));
  EXPECT_TRUE(run.Has("RECURSOS/GRAFICOS/32001.bmp"));
}

TEST(UpdateCheck, LeavesADevelopmentCopyAndTheSecondClientAlone) {
  LauncherRun run;
  run.mirror.AddBinFile("a.dll", "a");
  run.mirror.AddBinFile("KVNG.dat", "g");
  run.mirror.Publish();
  run.Put("Bin/Client.vbp", "x");
  run.Put("Bin/mio.bas", "x");
  run.PlayToTheEnd();
  EXPECT_TRUE(run.Has("Bin/mio.bas"));
  EXPECT_TRUE(run.Has("Bin/a.dll"));
  EXPECT_FALSE(run.Has("Bin/KVNG.dat"));
  EXPECT_TRUE(run.Shown("No se encuentra KVN-DX8.exe"));

  run.machine.settings->Set("LauncherTestStaff", startup::keys::kStaff, startup::keys::kStaff, "si");
  run.machine.dialogs.answers = {DialogAnswer::Cancel};
  run.PlayToTheEnd();
  EXPECT_EQ(run.Get("Bin/KVNG.dat"), "g");
  EXPECT_EQ(run.machine.dialogs.shown.back().text, "¿Que cliente deseas ejecutar?");
  EXPECT_EQ(run.machine.dialogs.shown.back().title, "Kelvar Online");
}

// Faults of a mirror in the patch stage: each ends the run, leaves no trace in the folder and no advanced
// counter.
TEST(UpdateCheck, ABadPatchStageLeavesTheFolderAsItWas) {
  const std::string zip = MakeZip({{"leame.txt", "x"}, {"RECURSOS/b", "y"}});
  const struct {
    const char* what;
    const char* path;
    Answer answer;
    std::string shown, status;
  } cases[] = {
      {"page for the list", "OldAct/Update.ini", support::Page(404, "<h1>404</h1>"), "",
       "Error no se ha logrado leer las actualizaciones de la base de datos de Kelvarin."},
      {"empty list", "OldAct/Update.ini", support::Text(""), "",
       "No se pudo obtener la lista de actualizaciones: la respuesta está vacía."},
      {"a count beyond 16 bits", "OldAct/Update.ini", support::Text("[INIT] Init=40000"),
       "Error: Error 6 (Overflow) en el procedimiento tmrUpdates_Timer del modulo Formulario frmMain en la "
       "línea 60 Tmp: InitReporta esto mediante el soporte WEB en http://soporte.example/",
       ""},
      {"page for an archive", "OldAct/Extras/Extras1.zip", support::Page(500, "<h1>500</h1>"), kBadZip, ""},
      {"damaged archive", "OldAct/Extras/Extras1.zip",
       support::Text(MakeZip({{"a", "x"}, {"leame.txt", "x", false, 1 << 11, 8, 0100644, 1}})), kBadZip, ""},
      {"hostile archive", "OldAct/Extras/Extras1.zip", support::Text(MakeZip({{"a", "x"}, {"../../x", "x"}})),
       kBadZip, ""},
  };
  for (const auto& entry : cases) {
    LauncherRun run;
    run.mirror.AddPatch("Extras", {{"leame.txt", "x"}});
    run.mirror.Publish();
    run.mirror.server.On(run.mirror.PathOf(entry.path), entry.answer);
    run.Start();
    const auto before = run.GameFiles();
    run.Play();
    run.UntilStopped();
    EXPECT_EQ(run.GameFiles(), before) << entry.what;
    EXPECT_TRUE(run.Counter("Extras").empty() || run.Counter("Extras") == "0\r\n") << entry.what;
    EXPECT_EQ(run.Shown(entry.shown), !entry.shown.empty()) << entry.what;
    if (!entry.status.empty()) {
      EXPECT_EQ(run.Status(), entry.status) << entry.what;
    }
    EXPECT_FALSE(run.folder.Has("x")) << entry.what;
    EXPECT_FALSE(run.Launched().Life().Ending()) << entry.what;

    // Put right, the next press of the play button installs everything.
    run.mirror.server.On(run.mirror.PathOf("OldAct/Extras/Extras1.zip"), support::Text(zip));
    run.mirror.Publish();
    run.Play();
    run.UntilEnded();
    EXPECT_EQ(run.Get("leame.txt"), "x") << entry.what;
  }
}

// Transfers that fail on the one mirror that is up: a cut one is tried twice, then the ring is walked; the
// rounds that follow are silent until five transfers have failed, or four rounds.
TEST(UpdateCheck, RetriesATransferThatDoesNotArrive) {
  const std::string zip = MakeZip({{"leame.txt", std::string(5000, 'x')}});
  const struct {
    const char* what;
    Answer answer;
    std::size_t asked;
  } cases[] = {
      {"cut short", support::CutShort(zip, 20), 6},
      {"another scheme", support::Redirect("ftp://127.0.0.1/x.zip"), 4},
      {"garbage", support::Garbage(), 4},
  };
  for (const auto& entry : cases) {
    LauncherRun run;
    run.mirror.AddPatch("Extras", {{"leame.txt", std::string(5000, 'x')}});
    run.mirror.Publish();
    const std::string path = run.mirror.PathOf("OldAct/Extras/Extras1.zip");
    run.mirror.server.On(path, entry.answer);
    run.Start();
    const auto before = run.GameFiles();
    run.Play();
    run.UntilStopped();
    ASSERT_EQ(run.machine.dialogs.shown.size(), 1u) << entry.what;
    EXPECT_EQ(run.machine.dialogs.shown[0].text,
              "Error, tiempo de espera agotado. ¿Deseas reintentar la descarga?");
    EXPECT_EQ(run.mirror.server.Count(path), entry.asked) << entry.what;
    EXPECT_EQ(run.GameFiles(), before) << entry.what;
    EXPECT_EQ(run.Counter("Extras"), "") << entry.what;
  }
}

// Faults of the index: asked, and No goes on to the game with nothing deleted.
TEST(UpdateCheck, ABadIndexDeletesNothingAndDoesNotKeepThePlayerFromPlaying) {
  const std::string digest(32, '0');
  const std::string good = MakePacked(MakeIndex({{digest, "\\Bin\\a"}}));
  const struct {
    const char* what;
    Answer answer;
    bool asked;
  } cases[] = {
      {"page", support::Page(404, "<!DOCTYPE html>"), true},
      {"cut record", support::Text(MakePacked(MakeIndex({{digest, "\\Bin\\a"}}).substr(0, 40))), true},
      {"cut behind a good record",
       support::Text(MakePacked(MakeIndex({{support::Md5Of("a"), "\\Bin\\a"}, {digest, "\\Bin\\b"}})
                                    .substr(0, 4 + 32 + 2 + 6 + 20))),
       true},
      {"lying count", support::Text(MakePacked(MakeIndex({{digest, "\\Bin\\a"}}, 1'000'000))), true},
      {"empty index", support::Text(MakePacked(MakeIndex({}))), false},
  };
  for (const auto& entry : cases) {
    LauncherRun run;
    run.mirror.Publish();
    run.mirror.server.On(run.mirror.PathOf("NewAct2/Info.kvn"), entry.answer);
    run.Put("Bin/KVN-DX8.exe", "cliente");
    run.PlayToTheEnd();
    EXPECT_EQ(run.Shown(kBadIndex), entry.asked) << entry.what;
    EXPECT_EQ(run.GameFiles(), (std::map<std::string, std::string>{{"Bin/KVN-DX8.exe", "cliente"}}))
        << entry.what;
    EXPECT_EQ(run.machine.processes.started.size(), 2u) << entry.what;
  }
}

TEST(UpdateCheck, AnIndexThatIsWantedAgainComesFromAConfirmedMirror) {
  LauncherRun run;
  PublishGame(run.mirror);
  run.mirror.server.On(run.mirror.PathOf("NewAct2/Info.kvn"), support::Page(404, "no"));
  run.machine.dialogs.answers = {DialogAnswer::Yes};
  std::size_t probes = 0;
  run.machine.dialogs.onShow = [&](const support::ShownDialog& dialog) {
    if (dialog.text != kBadIndex) return;
    probes = run.mirror.server.Count(run.mirror.PathOf("Online.txt"));
    run.mirror.Publish();
  };
  run.PlayToTheEnd();
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
  EXPECT_EQ(run.mirror.server.Count(run.mirror.PathOf("Online.txt")), probes + 1);
  EXPECT_EQ(run.mirror.server.Count(run.mirror.PathOf("OldAct/Mapas/Mapas1.zip")), 1u)
      << "what is applied stays so";
}

TEST(UpdateCheck, AnIndexWritesNowhereButInBin) {
  LauncherRun run;
  run.mirror.AddBinFile("bueno.dll", "b");
  for (const char* path :
       {"\\Bin\\..\\launcher.exe", "\\..\\x", "\\Bin\\...kvn\\Deployment.ini", "\\Bin\\CON"}) {
    run.mirror.AddIndexRecord({std::string(32, '0'), path});
  }
  run.mirror.Publish();
  run.mirror.server.Otherwise([](const support::SeenRequest&) { return support::Text(MakePacked("malo")); });
  run.Start();
  const std::string deployment = run.Get("Deployment.ini");
  run.Play();
  run.UntilEnded();
  EXPECT_EQ(run.GameFiles(), run.mirror.Expected());
  EXPECT_EQ(run.Get("Deployment.ini"), deployment);
  EXPECT_NE(run.folder.Get("Errores.log").find("\\Bin\\..\\launcher.exe"), std::string::npos);
}

TEST(UpdateCheck, AnIndexThatNamesNoFileForCertainDeletesNothing) {
  LauncherRun run;
  run.mirror.AddIndexRecord({std::string(32, '0'), "\\Bin\\..\\launcher.exe"});
  run.mirror.AddIndexRecord({std::string(32, '0'), "\\RECURSOS\\x"});
  run.mirror.Publish();
  run.Put("Bin/KVN-DX8.exe", "el cliente");
  run.Start();
  const auto before = run.GameFiles();
  run.Play();
  run.UntilEnded();
  EXPECT_EQ(run.GameFiles(), before);
}

TEST(Launch, RegistersTheLibrariesOncePerSet) {
  LauncherRun run;
  run.mirror.AddBinFile("KVN-DX8.exe", "cliente");
  run.mirror.Publish();
  run.machine.settings->Set(startup::keys::kLibraries, startup::keys::kVersion, startup::keys::kV, "0.4.0");
  run.Start();
  run.machine.processes.started.clear();
  run.Play();
  run.UntilEnded();
  const auto& started = run.machine.processes.started;
  ASSERT_EQ(started.size(), 12u);
  EXPECT_EQ(started[0].commandLine, "regsvr32 \"" + run.PathOf("Bin") + "COMCTL32.OCX\" /s");
  EXPECT_EQ(started[0].style, platform::WindowStyle::Minimised);
  EXPECT_EQ(started[9].commandLine, "regsvr32 \"" + run.PathOf("Bin") + "VBALPROGBAR6.OCX\" /s");
  EXPECT_EQ(started[10].commandLine, "regsvr32 \"DX8VB.DLL\" /s");
  EXPECT_TRUE(run.Shown("Se han registrado las librerias correctamente."));
  EXPECT_EQ(run.machine.settings->Get(startup::keys::kLibraries, startup::keys::kVersion, startup::keys::kV),
            "0.4.1");
  EXPECT_NE(run.machine.settings->Get(startup::keys::kOpen, startup::keys::kF, startup::keys::kA), "");
}

}  // namespace
