// A game in a folder that its player may not write, as below Program Files: what is complete is played, and
// what must be written is offered with the rights of an administrator.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "platform/encoding.hpp"
#include "platform/files.hpp"
#include "platform/user_folders.hpp"
#include "startup/launcher_settings.hpp"
#include "support/launcher_run.hpp"
#include "support/read_only.hpp"

namespace {

using platform::DialogAnswer;
using update::Mode;

constexpr const char* kOffer = "No se puede escribir en la carpeta del juego:";
const std::string kOwnLog = "Errores.log";

struct GameOfAnotherUser : support::LauncherRun {
  GameOfAnotherUser() {
    mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno"}});
    mirror.AddBinFile("KVN-DX8.exe", "el cliente");
    mirror.AddBinFile("sub\\a.dll", std::string(3'000, 'a'));
    mirror.Publish();
    machine.dialogs.onShow = [this](const support::ShownDialog& dialog) {
      // The game of these tests has no pictures, which is not what they are about.
      if (dialog.text.find("Form_Load") == std::string::npos) told.push_back(dialog.text);
    };
    platform::TryRemoveFile(OwnLog());
  }
  void Install() {
    Start();
    Play();
    UntilEnded();
    Lock(false);
  }
  void Lock(bool on = true) {
    readOnly.reset();
    told.clear();
    machine.processes.started.clear();
    mirror.server.Forget();
    if (on) readOnly.emplace(folder.Path());
  }
  static std::string OwnLog() { return platform::LocalDataFolder() + platform::kSeparator + kOwnLog; }
  std::string Log() const {
    return platform::IsFile(OwnLog()) ? platform::FromAnsi(platform::ReadWhole(OwnLog(), 1 << 20)) : "";
  }
  bool GameStarted() const {
    const auto& started = machine.processes.started;
    return std::any_of(started.begin(), started.end(),
                       [](const auto& request) { return request.program.ends_with("KVN-DX8.exe"); });
  }
  std::vector<std::string> told;
  std::optional<support::ReadOnly> readOnly;  // the last to come, the first to go
};

#define SKIP_UNLESS_HELD(run) \
  if (!(run).readOnly->Holds()) GTEST_SKIP() << "the file system cannot be kept from being written"

TEST(UnwritableFolder, ACompleteGameIsPlayedAndNothingIsWritten) {
  const struct {
    const char* what;
    std::vector<const char*> removed;  // that the launcher would make again
  } cases[] = {
      {"as it was installed", {}},
      {"as out of an archive", {"RECURSOS/UPDATE", "RECURSOS/INIT/UPDATE", "RECURSOS/INIT/ConfigVideo.cfg"}},
      {"without what it remembers", {"Bin/MD5Update.ini", "RECURSOS/INIT/AUWavs.ini"}},
  };
  for (const auto& entry : cases) {
    SCOPED_TRACE(entry.what);
    GameOfAnotherUser run;
    run.Install();
    for (const char* name : entry.removed) platform::RemoveTree(run.folder / (run.game + "/" + name));
    run.Put("Bin/ajeno.dll", "x");
    run.Put("RECURSOS/GRAFICOS/1.bmp", "x");
    run.Put("RECURSOS/INIT/Kelvarin.exe.manifest", "x");
    const auto before = platform::ListTree(run.folder.Path());
    run.Lock();
    SKIP_UNLESS_HELD(run);
    run.PlayToTheEnd();
    EXPECT_TRUE(run.GameStarted());
    EXPECT_TRUE(run.told.empty()) << run.told[0];
    EXPECT_EQ(platform::ListTree(run.folder.Path()), before);
    for (const platform::FoundFile& left : platform::ListTree(platform::LocalDataFolder())) {
      EXPECT_TRUE(left.path == kOwnLog || left.path.starts_with("Fallos"))
          << left.path << " was not wanted any more";
    }
    EXPECT_NE(run.Log().find("Sin permiso para escribir en "), std::string::npos) << run.Log();
  }
}

TEST(UnwritableFolder, WhatMustBeWrittenIsOfferedWithTheRightsForIt) {
  using Damage = void (*)(GameOfAnotherUser&);
  const Damage kDamages[] = {
      [](GameOfAnotherUser& run) {
        run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno nuevo"}});
        run.mirror.Publish();
      },
      [](GameOfAnotherUser& run) { run.Put("Bin/sub/a.dll", "dañado"); },
      [](GameOfAnotherUser& run) { platform::RemoveFile(run.PathOf("Bin/sub/a.dll")); },
      [](GameOfAnotherUser& run) {
        run.Put("RECURSOS/INIT/UPDATE/Unzip/1/diario.txt",
                "; Parche a medio instalar\narchivo RECURSOS/MAPAS1/1.map\n; total 1\n");
        run.Put("RECURSOS/INIT/UPDATE/Unzip/1/viejo0", "cero");
      },
  };
  const struct {
    DialogAnswer answer;
    bool allowed, restarts;
  } answers[] = {
      {DialogAnswer::Yes, true, true}, {DialogAnswer::Yes, false, false}, {DialogAnswer::No, true, false}};
  for (std::size_t i = 0; i < std::size(kDamages); ++i) {
    for (const auto& entry : answers) {
      SCOPED_TRACE("damage " + std::to_string(i) + (entry.restarts ? ", accepted" : ", refused"));
      GameOfAnotherUser run;
      run.Install();
      kDamages[i](run);
      const auto before = run.GameFiles();
      run.Lock();
      SKIP_UNLESS_HELD(run);
      run.machine.processes.allowElevation = entry.allowed;
      run.Start("-x \"dos palabras\"");
      run.machine.settings->Set(startup::keys::kApplication, startup::keys::kConfig, startup::keys::kShow,
                                "");
      run.machine.dialogs.answers = {entry.answer};
      run.Play();
      run.UntilEnded();
      ASSERT_EQ(run.told.size(), 1u);
      EXPECT_TRUE(run.told[0].starts_with(kOffer)) << run.told[0];
      EXPECT_NE(run.told[0].find(run.folder / run.game), std::string::npos) << "names the folder";
      EXPECT_EQ(run.GameStarted(), !entry.restarts);
      EXPECT_EQ(run.GameFiles(), before);
      const auto& elevated = run.machine.processes.elevated;
      ASSERT_EQ(elevated.size(), entry.answer == DialogAnswer::Yes ? 1u : 0u);
      if (elevated.empty()) continue;
      const std::string program = run.PathOf("launcher.exe");
      EXPECT_EQ(elevated[0].program, program);
      EXPECT_EQ(elevated[0].commandLine, "\"" + program + "\" -x \"dos palabras\"");
      EXPECT_EQ(run.machine.settings->Get(startup::keys::kApplication, startup::keys::kConfig,
                                          startup::keys::kShow),
                entry.restarts ? "" : "0")
          << "a launcher that goes on keeps what it is asked for";
    }
  }
}

TEST(UnwritableFolder, RepairAndSettingsOfferTheSameAndTheNewLauncherFindsNoOther) {
  for (const bool repair : {true, false}) {
    GameOfAnotherUser run;
    run.Install();
    run.Lock();
    SKIP_UNLESS_HELD(run);
    run.Start();
    const auto press = [&] {
      controls::MainWindow& window = run.Launched().MainWindow();
      (repair ? window.cmdReiniciarUpdates : window.cmdConfig).Click();
    };
    const DialogAnswer sure = repair ? DialogAnswer::Yes : DialogAnswer::No;
    run.machine.dialogs.answers = {sure, DialogAnswer::No};
    run.machine.processes.locksReleased.clear();
    press();
    EXPECT_EQ(run.Launched().Mode(), Mode::Idle);
    EXPECT_EQ(run.Launched().Options().Window.Visible, !repair);
    EXPECT_EQ(run.Counter("Mapas"), "1\r\n");
    EXPECT_TRUE(run.machine.processes.locksReleased.empty());
    run.Launched().Options().Unload();
    run.machine.dialogs.answers = {DialogAnswer::Yes, DialogAnswer::Yes};
    press();
    EXPECT_EQ(run.machine.processes.elevated.size(), 1u);
    EXPECT_EQ(run.machine.processes.locksReleased, std::vector<std::string>{"Global\\Kelvarin"});
    EXPECT_TRUE(run.Launched().Life().Ending());
  }
}

TEST(UnwritableFolder, WithoutAGameItSaysSoAndStays) {
  GameOfAnotherUser run;
  support::Deploy(run.folder, run.game, {run.mirror.Url()}, run.mirror.server.Url(""));
  run.Lock();
  SKIP_UNLESS_HELD(run);
  run.Start();
  run.machine.dialogs.answers = {DialogAnswer::No};
  run.Play();
  run.UntilStopped();
  EXPECT_EQ(run.Launched().Mode(), Mode::Idle);
  EXPECT_EQ(run.Status(), "No se puede escribir en la carpeta del juego: " + run.folder / run.game + ".");
  EXPECT_FALSE(run.GameStarted());
}

TEST(UnwritableFolder, UpdateOnlyModeAsksNobodyAndTellsTheLog) {
  GameOfAnotherUser run;
  run.Install();
  for (const int status : {0, 1}) {
    if (status == 1) run.mirror.AddPatch("Mapas", {{"RECURSOS/MAPAS1/1.map", "uno nuevo"}});
    run.mirror.Publish();
    run.Lock();
    SKIP_UNLESS_HELD(run);
    run.Start("/UPDATES");
    run.UntilEnded();
    EXPECT_EQ(run.Launched().Life().ExitStatus(), status);
    EXPECT_TRUE(run.told.empty());
    EXPECT_TRUE(run.machine.processes.elevated.empty());
    EXPECT_EQ(run.Log().find(kOffer) != std::string::npos, status == 1) << run.Log();
    EXPECT_FALSE(run.GameStarted());
  }
}

}  // namespace
