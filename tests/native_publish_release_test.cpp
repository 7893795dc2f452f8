// One command for a new version: what players have after it, what it refuses, what a kill leaves.
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "platform/files.hpp"
#include "publisher/mirror_server.hpp"
#include "support/launcher_run.hpp"
#include "support/posix/publication.hpp"

namespace {

using support::Holds;
using support::Noise;
using support::TestPublication;
using Files = std::map<std::string, std::string>;

// The publication's mirror and the players who use it.
struct Players {
  explicit Players(const TestPublication& pub)
      : server(publisher::Layout(pub.Root()), {.port = 0, .log = true}, console) {}

  // Updates the game of a player and lets it start.
  void Update(support::LauncherRun& player) {
    support::Deploy(player.folder, player.game, {server.Url() + "update/kvn2011/"}, server.Url());
    player.PlayToTheEnd();
    EXPECT_EQ(player.machine.processes.started.size(), 2u);  // the browser cache, then the client
    player.machine.processes.started.clear();
  }

  // What was asked of the mirror since the last call and brings files of the game.
  std::vector<std::string> Downloads() {
    std::vector<std::string> downloads;
    std::istringstream lines(log.str());
    for (std::string line; std::getline(lines, line);) {
      if (Holds(line, ".zip ") || Holds(line, "/Bin/")) downloads.push_back(line);
    }
    log.str("");
    return downloads;
  }

  std::ostringstream log;
  publisher::Console console{log, log};
  publisher::MirrorServer server;
};

// As a player does with any program for archives.
void UnpackByHand(const std::string& archive, const support::TempFolder& folder, const std::string& game) {
  for (const auto& [name, bytes] : support::FilesIn(archive)) folder.Put(game + "/" + name, bytes);
}

void PutGame(const TestPublication& pub) {
  const std::pair<const char*, std::string> files[] = {
      {"Bin/KVN-DX8.exe", Noise(60'000, 1)},
      {"Bin/Sub/ñandú.dll", "a library"},
      {"Bin/empty.cfg", ""},
      {"Bin/old.dll", "goes"},
      {"RECURSOS/INIT/datos.ini", "init"},
      {"RECURSOS/MAPAS1/Año 1.map", Noise(9'000, 2)},
      {"RECURSOS/MAPAS2/2.map", "two"},
      {"RECURSOS/GRAFICOS/7.bmp", Noise(5'000, 3)},
      {"RECURSOS/MIDIS/1.mid", "midi"},
      {"RECURSOS/WAVS/1.wav", "wave"},
      {"RECURSOS/AU/x.dat", "au"},
      {"leame.txt", "read me"},
      {"RECURSOS/GRAFICOS2/ui.bmp", "extras"},
  };
  for (const auto& [name, bytes] : files) pub.game.Put(name, bytes);
}

TEST(Release, EveryPlayerHasTheGameAfterAnyOfThem) {
  TestPublication pub;
  PutGame(pub);
  const Files first = support::FilesOf(pub.game.Path());
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  Players players(pub);
  support::LauncherRun old;
  players.Update(old);
  EXPECT_EQ(old.GameFiles(), first);

  // The second: changed, added and deleted, in Bin and outside.
  pub.game.Put("Bin/KVN-DX8.exe", Noise(60'000, 10));
  platform::RemoveFile(pub.game / "Bin/old.dll");
  pub.game.Put("Bin/new.dll", "new");
  pub.game.Put("RECURSOS/MAPAS1/Año 1.map", Noise(9'000, 11));
  platform::RemoveFile(pub.game / "RECURSOS/WAVS/1.wav");
  pub.game.Put("RECURSOS/GRAFICOS/8.bmp", "eight");
  const Files second = support::FilesOf(pub.game.Path());
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  EXPECT_TRUE(Holds(pub.out, "= RECURSOS/WAVS/1.wav ")) << pub.out;
  players.Downloads();
  players.Update(old);
  EXPECT_EQ(players.Downloads().size(), 4u);  // two patches, two files of Bin
  Files expected = second;
  expected["RECURSOS/WAVS/1.wav"] = "wave";  // which no patch can take away
  EXPECT_EQ(old.GameFiles(), expected);
  support::LauncherRun fresh;
  players.Update(fresh);
  EXPECT_EQ(fresh.GameFiles(), expected);

  // Taken back: the first game once more, as the next numbers.
  for (const auto& [name, bytes] : second) platform::RemoveFile(pub.game / name);
  PutGame(pub);
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  players.Update(old);
  players.Update(fresh);
  expected = first;
  expected["RECURSOS/GRAFICOS/8.bmp"] = "eight";
  EXPECT_EQ(old.GameFiles(), expected);
  EXPECT_EQ(fresh.GameFiles(), expected);
  EXPECT_EQ(pub.Check(), 0) << pub.out;
  EXPECT_FALSE(Holds(pub.out, "warning: ")) << pub.out;

  // And nothing more to do.
  const Files before = pub.Everything();
  ASSERT_EQ(pub.Release(), 0);
  EXPECT_TRUE(Holds(pub.out, "it installs this game already")) << pub.out;
  EXPECT_EQ(pub.Everything(), before);
}

TEST(Release, WhoUnpacksTheFullClientDownloadsNothing) {
  TestPublication pub;
  PutGame(pub);
  pub.game.Put("RECURSOS/INIT/AUMapas.ini", "77\r\n");  // of the operator's own trials
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  EXPECT_TRUE(Holds(pub.err, "AUMapas.ini: left out")) << pub.err;
  pub.game.Put("leame.txt", "changed");
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  Players players(pub);
  support::LauncherRun player;
  UnpackByHand(pub.Root() + "/Kelvarin.zip", player.folder, player.game);
  players.Update(player);
  EXPECT_EQ(players.Downloads(), std::vector<std::string>());
  EXPECT_EQ(player.Counter("Extras"), "2\r\n");
}

TEST(Release, EachFolderHasItsCategoryUnlessThePublicationSaysOtherwise) {
  const struct {
    const char *name, *category;
  } cases[] = {
      {"recursos/mapas1/a", "Mapas"},        {"WAVS/a", "Wavs"},
      {"RECURSOS/AUX1/a", "Extras"},         {"Bin/empty", "Extras"},
      {"RECURSOS/GRAFICOS/ui/a", "AU"},      {"RECURSOS/GRAFICOS/ui/b", "Midis"},
      {"RECURSOS/GRAFICOS/uib", "Graficos"},
  };
  TestPublication pub;
  pub.game.Put("Bin/KVN-DX8.exe", "client");
  for (const auto& each : cases) pub.game.Put(each.name, each.name == std::string("Bin/empty") ? "" : "x");
  pub.Put(".publisher/categories.txt",
          "# ours\n\nRecursos\\Graficos\\UI = AU\r\nRECURSOS/GRAFICOS/ui/b = Midis\n");
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  std::map<std::string, std::string> found;
  for (const char* category : {"Mapas", "Graficos", "Midis", "Wavs", "AU", "Extras"}) {
    const std::string archive = pub.Root() + "/OldAct/" + category + "/" + category + "1.zip";
    for (const auto& [name, bytes] : support::FilesIn(archive)) found[name] = category;
  }
  for (const auto& [name, category] : cases) EXPECT_EQ(found[name], category) << name;
  EXPECT_EQ(found.size(), std::size(cases));

  for (const char* bad : {"RECURSOS/UI", "RECURSOS/UI = mapas", "a = Extras\nb"}) {
    pub.Put(".publisher/categories.txt", bad);
    EXPECT_EQ(pub.Release(), 1) << bad;
    EXPECT_TRUE(Holds(pub.err, pub.Root() + "/.publisher/categories.txt: line ")) << pub.err;
  }
}

// New players get Extras after Mapas, so a newer file of Mapas would lose against the older one of Extras.
TEST(Release, AFileThatALaterCategoryBroughtIsReplacedThere) {
  TestPublication pub;
  pub.game.Put("RECURSOS/MAPAS1/1.map", "by hand");
  ASSERT_EQ(pub.Patch("Extras"), 0);
  pub.game.Put("RECURSOS/MAPAS1/1.map", "by the rules");
  ASSERT_EQ(pub.Patch("Mapas"), 0);
  pub.game.Put("Bin/KVN-DX8.exe", "client");
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  EXPECT_TRUE(Holds(pub.out, "Extras2.zip: 1 files")) << pub.out;
  Players players(pub);
  support::LauncherRun player;
  players.Update(player);
  EXPECT_EQ(player.GameFiles()["RECURSOS/MAPAS1/1.map"], "by the rules");
}

TEST(Release, WhatIsRefusedChangesNothing) {
  TestPublication pub;
  PutGame(pub);
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  pub.game.Put("leame.txt", "something new");
  Files before = pub.Everything();
  const auto refused = [&](const std::string& told) {
    EXPECT_EQ(pub.Release(), 1) << told;
    EXPECT_TRUE(Holds(pub.err, told)) << told << "\n" << pub.err;
    EXPECT_EQ(pub.Everything(), before) << told;
  };
  const std::string bin = pub.game / "Bin";
  std::filesystem::rename(bin, bin + "2");
  refused("/Bin: there is no file");
  std::filesystem::rename(bin + "2", pub.game / "BIN");
  refused("/BIN/KVN-DX8.exe: its folder must be written \"Bin\"");
  std::filesystem::rename(pub.game / "BIN", bin);
  std::filesystem::rename(bin + "/KVN-DX8.exe", bin + "/other.exe");
  refused("KVN-DX8.exe is missing, so nobody could start the game");
  std::filesystem::rename(bin + "/other.exe", bin + "/KVN-DX8.exe");
  // A publication whose old patches are damaged is not made worse.
  std::string& archive = before["OldAct/Mapas/Mapas1.zip"];
  archive[200] ^= 1;  // within the data of its first file
  pub.Put("OldAct/Mapas/Mapas1.zip", archive);
  refused("Mapas1.zip");
  EXPECT_TRUE(Holds(pub.err, "would not pass its check")) << pub.err;
}

TEST(Release, AFileWherePlayersHaveAFolderIsRefused) {
  for (const bool folderFirst : {false, true}) {
    TestPublication pub;
    pub.game.Put("Bin/KVN-DX8.exe", "client");
    pub.game.Put(folderFirst ? "Datos/x" : "Datos", "x");
    ASSERT_EQ(pub.Release(), 0) << pub.err;
    platform::RemoveFile(pub.game / (folderFirst ? "Datos/x" : "Datos"));
    if (folderFirst) platform::RemoveTree(pub.game / "Datos");
    pub.game.Put(folderFirst ? "DATOS" : "datos/y", "x");
    EXPECT_EQ(pub.Release(), 1) << folderFirst;
    EXPECT_TRUE(Holds(pub.err, "once a file and once a folder")) << pub.err;
  }
}

TEST(Release, MoreThanHalfOfBinGoneNeedsAWord) {
  TestPublication pub;
  pub.game.Put("Bin/KVN-DX8.exe", "client");
  for (const char* name : {"a", "b", "c"}) pub.game.Put(std::string("Bin/") + name, name);
  ASSERT_EQ(pub.Index(), 0) << pub.err;
  for (const char* name : {"a", "b"}) platform::RemoveFile(pub.game / (std::string("Bin/") + name));
  EXPECT_EQ(pub.Run({"index", pub.Root(), pub.game.Path(), "--dry-run"}), 0) << "half of them may go";
  platform::RemoveFile(pub.game / "Bin/c");
  const Files before = pub.Everything();
  EXPECT_EQ(pub.Index(), 1);
  EXPECT_TRUE(Holds(pub.err, "lacks 3 of the 4 files that are published")) << pub.err;
  EXPECT_TRUE(Holds(pub.out, "- Bin/a\n- Bin/b\n- Bin/c\n")) << pub.out;
  EXPECT_EQ(pub.Release(), 1);
  EXPECT_EQ(pub.Everything(), before);
  EXPECT_EQ(pub.Run({"index", pub.Root(), pub.game.Path(), "--force"}), 0);
  EXPECT_FALSE(pub.folder.Has("pub/NewAct2/Bin/a.kvn"));
  platform::RemoveFile(pub.game / "Bin/KVN-DX8.exe");
  pub.game.Put("Bin/d", "d");
  EXPECT_EQ(pub.Index(), 1);
  EXPECT_EQ(pub.Release({"--force"}), 0) << pub.err;
  EXPECT_EQ(pub.Check(), 0) << pub.out;
}

TEST(Release, ADryRunOfAnyCommandWritesNothing) {
  TestPublication pub;
  PutGame(pub);
  ASSERT_EQ(pub.Release(), 0);
  pub.game.Put("leame.txt", "new");
  pub.game.Put("Bin/new", "new");
  const std::string key = pub.folder / "key.pem", fresh = pub.folder / "fresh";
  ASSERT_EQ(pub.Run({"keygen", key}), 0) << pub.err;
  const Files before = support::FilesOf(pub.folder.Path());
  const std::vector<std::vector<std::string>> commands = {
      {"init", fresh},
      {"patch", pub.Root(), "AU", pub.game.Path()},
      {"index", pub.Root(), pub.game.Path()},
      {"client", pub.Root(), pub.game.Path()},
      {"release", pub.Root(), pub.game.Path()},
      {"release", pub.Root(), pub.game.Path(), "--json", "--key", key},
      {"push", pub.Root(), fresh},
      {"sign", pub.Root(), key},
      {"keygen", pub.folder / "other.pem"},
  };
  for (auto words : commands) {
    words.push_back("--dry-run");
    EXPECT_EQ(pub.Run(words), 0) << words[0] << "\n" << pub.err;
    EXPECT_FALSE(pub.out.empty()) << words[0];
    EXPECT_EQ(support::FilesOf(pub.folder.Path()), before) << words[0];
    EXPECT_FALSE(pub.folder.Has("fresh")) << words[0];
  }
}

TEST(Release, TellsProgramsTheSameAsPeople) {
  TestPublication pub;
  pub.game.Put("Bin/KVN-DX8.exe", "client");
  pub.game.Put("leame.txt", "one");
  pub.game.Put("ñ/gone", "one");
  ASSERT_EQ(pub.Release(), 0) << pub.err;
  pub.game.Put("leame.txt", "other");
  pub.game.Put("Bin/x", "x");
  platform::RemoveFile(pub.game / "ñ/gone");
  ASSERT_EQ(pub.Release({"--json"}), 0) << pub.err;
  const auto bytes = std::filesystem::file_size(pub.Root() + "/OldAct/Extras/Extras2.zip");
  EXPECT_EQ(pub.out, R"({"publication":")" + pub.Root() +
                         R"(","dryRun":false,"patches":[{"category":"Extras","number":2,)" +
                         R"("archive":"OldAct/Extras/Extras2.zip","files":["leame.txt"],"bytes":)" +
                         std::to_string(bytes) + R"(}],"bin":{"added":["x"],"changed":[],"removed":[]},)" +
                         R"("outsideBin":{"added":[],"changed":["leame.txt"],"staying":["ñ/gone"]},)" +
                         R"("client":true,"signed":false})" + "\n");
}

TEST(Release, KilledAtAnyMomentItLeavesAPublicationThatChecks) {
  TestPublication pub;
  PutGame(pub);
  const auto change = [&](int round) {
    for (const char* name : {"Bin/KVN-DX8.exe", "RECURSOS/MAPAS1/Año 1.map", "leame.txt"})
      pub.game.Put(name, Noise(30'000, static_cast<unsigned>(round + 1000)));
  };
  support::KillAtAnyMoment(pub, change, [&] { return pub.Release(); });
  EXPECT_FALSE(Holds(pub.out, "warning: ")) << pub.out;
}

}  // namespace
