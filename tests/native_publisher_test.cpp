#include <gtest/gtest.h>
#include <zlib.h>

#include <algorithm>
#include <filesystem>
#include <map>

#include "platform/files.hpp"
#include "publisher/publication_lock.hpp"
#include "publisher/source_files.hpp"
#include "support/archives.hpp"
#include "support/posix/publication.hpp"
#include "update/counter_store.hpp"

namespace {

using support::Holds;
using support::Noise;
using support::TestPublication;

std::string Unpacked(const std::string& packed, std::size_t size) {
  std::string bytes(size, '\0');
  uLongf length = size;
  const int result = uncompress(reinterpret_cast<Bytef*>(bytes.data()), &length,
                                reinterpret_cast<const Bytef*>(packed.data()) + 4, packed.size() - 4);
  return result == Z_OK && length == size ? bytes : "not unpacked";
}

TEST(Publisher, AFreshPublicationIsCompleteAndASecondInitKeepsWhatIsThere) {
  TestPublication pub;
  EXPECT_EQ(pub.Check(), 0) << pub.out;
  EXPECT_EQ(pub.Get("OldAct/Update.ini"),
            "[INIT]\r\nInit=0\r\nMapas=0\r\nGraficos=0\r\nMidis=0\r\nWavs=0\r\nAU=0\r\nExtras=0\r\n");
  EXPECT_EQ(Unpacked(pub.Get("NewAct2/Info.kvn"), 4), support::MakeIndex({}));
  pub.Put("web/include/info.php", "mine");
  EXPECT_EQ(pub.Init(), 0);
  EXPECT_EQ(pub.Get("web/include/info.php"), "mine");
}

TEST(Publisher, ArchivesHoldEveryFileAndTheSameFilesGiveTheSameBytes) {
  TestPublication pub;
  const std::vector<std::pair<std::string, std::string>> files = {
      {"Bin/KVN-DX8.exe", Noise(300'000, 1)},
      {"Mapas/Mapa1.map", std::string(1'000'000, 'x')},
      {"RECURSOS/Camión/ñandú.txt", "accents"},
      {"empty", ""},
  };
  for (const auto& [name, bytes] : files) pub.game.Put(name, bytes);
  ASSERT_EQ(pub.Run({"client", pub.Root(), pub.game.Path()}), 0) << pub.err;
  const std::string first = pub.Get("Kelvarin.zip");
  std::map<std::string, std::string> expected(files.begin(), files.end());
  for (const char* category : update::kCategories)
    expected["RECURSOS/INIT/AU" + std::string(category) + ".ini"] = "0\r\n";
  EXPECT_TRUE(support::FilesIn(pub.Root() + "/Kelvarin.zip") == expected);
  // The same files made in another order and at another time, below a folder of another name.
  support::TempFolder again;
  for (auto file = files.rbegin(); file != files.rend(); ++file) again.Put(file->first, file->second);
  std::filesystem::last_write_time(again / "empty", {});
  ASSERT_EQ(pub.Run({"client", pub.Root(), again.Path() + "/"}), 0);
  EXPECT_TRUE(pub.Get("Kelvarin.zip") == first);
}

TEST(Publisher, NamesThatLaunchersWouldRefuseAreRefusedHere) {
  const struct {
    std::string name;
    bool good;
  } cases[] = {
      {"Mapas/Mapa1.map", true}, {"Gráficos/€.bmp", true}, {"a b/c.txt", true},
      {"Mapas/日本.map", false}, {"bad\xFFname", false},   {"a\\b", false},
      {"COM1.dat", false},       {"sub/aux", false},       {"trailing.", false},
      {"blank ", false},         {"what?", false},         {"line\nend", false},
      {"a:stream", false},       {"../up", false},         {std::string(241, 'x'), false},
  };
  for (const auto& [name, good] : cases) EXPECT_EQ(publisher::WhyUnpublishable(name).empty(), good) << name;

  for (const std::string name : {"NUL.txt", "日本", "mapa1.MAP"}) {
    TestPublication pub;
    pub.game.Put("Mapa1.map", "good");
    pub.game.Put(name, "bad");
    const std::string list = pub.Get("OldAct/Update.ini");
    EXPECT_EQ(pub.Patch("Mapas"), 1);
    EXPECT_TRUE(Holds(pub.err, name)) << pub.err;
    EXPECT_EQ(pub.Get("OldAct/Update.ini"), list);
    EXPECT_FALSE(pub.folder.Has("pub/OldAct/Mapas/Mapas1.zip"));
  }
}

TEST(Publisher, WhatCannotBePublishedIsSaidAndChangesNothing) {
  TestPublication pub;
  EXPECT_EQ(pub.Patch("Mapas"), 1);  // an empty folder
  EXPECT_EQ(pub.Index(), 1);         // no Bin
  pub.game.Put("Bin/huge", "");
  std::filesystem::resize_file(pub.game / "Bin/huge", 0xFFFFFFFF);  // a hole of 4 GiB less a byte
  EXPECT_EQ(pub.Patch("Mapas"), 1);
  EXPECT_TRUE(Holds(pub.err, "Bin/huge: launchers take")) << pub.err;
  std::filesystem::resize_file(pub.game / "Bin/huge", 0x80000000);
  EXPECT_EQ(pub.Index(), 1);
  EXPECT_TRUE(Holds(pub.err, "Bin/huge: a file of 2 GiB")) << pub.err;
  platform::RemoveFile(pub.game / "Bin/huge");
  pub.game.Put("Bin/LIST.kvn", "x");  // launchers would install it under another name
  EXPECT_EQ(pub.Index(), 1);
  EXPECT_TRUE(Holds(pub.err, "LIST.kvn"));
  platform::RemoveTree(pub.game / "Bin");
  pub.game.Put("file", "x");
  std::filesystem::create_symlink("/etc/passwd", pub.game / "link");
  EXPECT_EQ(pub.Patch("mapas"), 2);  // categories are written as they stand
  EXPECT_EQ(pub.Run({"patch", pub.folder.Path(), "Mapas", pub.game.Path()}), 1);
  EXPECT_TRUE(Holds(pub.err, "not a publication"));
  EXPECT_EQ(pub.Run({"patch", pub.Root(), "Mapas", pub.folder.Path()}), 1);
  EXPECT_TRUE(Holds(pub.err, "holds the publication itself"));
  {
    const publisher::PublicationLock other(publisher::Layout(pub.Root()),
                                           publisher::PublicationLock::Kind::Writing);
    EXPECT_EQ(pub.Patch("Mapas"), 1);
    EXPECT_TRUE(Holds(pub.err, "another publisher"));
  }
  pub.Put("OldAct/Update.ini", "[INIT]\r\nMapas=32767\r\nWavs=some\r\n");
  EXPECT_EQ(pub.Patch("Mapas"), 1);
  EXPECT_EQ(pub.Patch("Wavs"), 1);
  EXPECT_EQ(pub.Get("OldAct/Update.ini"), "[INIT]\r\nMapas=32767\r\nWavs=some\r\n");
  pub.Put("OldAct/Update.ini", "[INIT]\r\nMapas=0\r\n");
  EXPECT_EQ(pub.Patch("Mapas"), 0);
  EXPECT_TRUE(Holds(pub.err, "link: left out"));
}

TEST(Publisher, WordsThatMakeNoCommandGiveTwo) {
  TestPublication pub;
  const std::vector<std::vector<std::string>> wrong = {
      {},
      {"patch", "x"},
      {"patch", "x", "Mapas", "y", "--force"},
      {"patch", "x", "Mapas", "y", "--dry-run=yes"},
      {"serve", "x", "--port", "65536"},
  };
  for (const auto& words : wrong) {
    EXPECT_EQ(pub.Run(words), 2) << testing::PrintToString(words);
    EXPECT_TRUE(pub.out.empty());
  }
  for (const std::string command : {"init", "patch", "index", "client", "check", "serve"}) {
    EXPECT_EQ(pub.Run({command, "--help"}), 0);
    EXPECT_TRUE(pub.out.starts_with("Usage: publisher " + command + " PUBLICATION")) << pub.out;
  }
  EXPECT_EQ(pub.Run({"--version"}), 0);
  EXPECT_EQ(pub.out, "publisher " LAUNCHER_VERSION "\n");
}

TEST(Publisher, TheIndexNamesEveryFileOfBinAndPacksOnlyWhatChanged) {
  TestPublication pub;
  pub.game.Put("Bin/KVN-DX8.exe", Noise(200'000, 2));
  pub.game.Put("Bin/Sub/ñandú.dat", "data");
  pub.game.Put("Bin/empty", "");
  pub.game.Put("Bin/MD5Update.ini", "the launcher's own");
  pub.game.Put("Mapas/not.map", "not in Bin");
  ASSERT_EQ(pub.Index(), 0) << pub.err;
  EXPECT_TRUE(Holds(pub.err, "empty: an empty file")) << pub.err;
  const std::string index = support::MakeIndex({{support::Md5Of(Noise(200'000, 2)), "\\Bin\\KVN-DX8.exe"},
                                                {support::Md5Of("data"),
                                                 "\\Bin\\Sub\\\xF1"
                                                 "and\xFA.dat"},
                                                {"NOT FOUND" + std::string(23, ' '), "\\Bin\\empty"}});
  EXPECT_EQ(Unpacked(pub.Get("NewAct2/Info.kvn"), index.size()), index);
  EXPECT_EQ(pub.Get("NewAct2/Info.kvn").substr(0, 4),
            std::string({static_cast<char>(index.size()), 0, 0, 0}));
  EXPECT_EQ(Unpacked(pub.Get("NewAct2/Bin/Sub/ñandú.dat.kvn"), 4), "data");
  EXPECT_EQ(pub.Check(), 0) << pub.out;

  const std::string program = pub.Root() + "/NewAct2/Bin/KVN-DX8.exe.kvn";
  const auto stamp = platform::StampOf(program);
  pub.game.Put("Bin/Sub/ñandú.dat", "new!");
  platform::RemoveFile(pub.game / "Bin/empty");
  ASSERT_EQ(pub.Index(), 0);
  EXPECT_EQ(platform::StampOf(program), stamp);
  EXPECT_TRUE(Holds(pub.out, "2 files, 0 added, 1 changed, 1 removed; 1 packed anew")) << pub.out;
  EXPECT_TRUE(Holds(pub.out, "~ Bin/Sub/ñandú.dat\n- Bin/empty\n")) << pub.out;

  // A packed file that has rotted is packed again; one that is no longer in the game goes.
  std::string rotten = pub.Get("NewAct2/Bin/KVN-DX8.exe.kvn");
  rotten[rotten.size() / 2] ^= 1;
  pub.Put("NewAct2/Bin/KVN-DX8.exe.kvn", rotten);
  EXPECT_EQ(pub.Check(), 1);
  platform::RemoveTree(pub.game / "Bin/Sub");
  ASSERT_EQ(pub.Index(), 0);
  EXPECT_FALSE(pub.folder.Has("pub/NewAct2/Bin/Sub"));
  EXPECT_FALSE(pub.folder.Has("pub/.publisher/next"));
  EXPECT_EQ(pub.Check(), 0) << pub.out;
}

TEST(Publisher, CheckFindsEveryKindOfDamage) {
  const struct {
    std::string file, bytes;  // put there; no bytes: removed
    std::string told;
  } cases[] = {
      {"Online.txt", "", "Online.txt: it is missing"},
      {"OldAct/Update.ini", "[INIT]\r\nInit=x\r\n", "no number of patches for Init"},
      {"OldAct/Mapas/Mapas1.zip", "", "Mapas1.zip: it is missing"},
      {"OldAct/Mapas/Mapas1.zip", support::MakeZip({}), "Mapas1.zip: it is empty"},
      {"OldAct/Mapas/Mapas1.zip", support::MakeZip({{.name = "a", .bytes = "x", .crcError = 1}}),
       "Mapas1.zip"},
      {"OldAct/Mapas/Mapas1.zip", support::MakeZip({{.name = "../a", .bytes = "x"}}), "Mapas1.zip"},
      {"OldAct/Mapas/Mapas1.zip", support::MakeZip({{.name = "日本", .bytes = "x"}}), "Windows-1252"},
      {"NewAct2/Info.kvn", support::MakePacked(support::MakeIndex({}, 5)), "Info.kvn"},
      {"NewAct2/Info.kvn", support::MakePacked(support::MakeIndex({{std::string(32, 'a'), "\\..\\x"}})),
       "refuse"},
      {"NewAct2/Bin/file.kvn", "", "file.kvn: it is missing"},
      {"NewAct2/Bin/file.kvn", support::MakePacked("other"), "not the file of the index"},
      {"NewAct2/Bin/file.kvn", support::MakePacked("content", 6), "size field"},
      {"NewAct2/Bin/file.kvn", support::MakePacked("content").substr(0, 9), "cut short"},
      {"web/include/info.php", "1@Sur@ONLINE@0@0@32768@@0|", "record 1: field 6 (the players) is \"32768\""},
      {"web/include/noticiasbase.php", "<html>1|0|a|b</html>", "number|...|title|text@"},
      {"web/include/ipdate.php", "{date}-{address}", "is no date"},
      {"web/include/ipdate.php", "1/2/2026-1.2.3.256", "with an address"},
      {"Kelvarin.zip", "no archive", "Kelvarin.zip"},
  };
  TestPublication pub;
  pub.game.Put("Bin/file", "content");
  pub.game.Put("Bin/KVN-DX8.exe", "the client");
  ASSERT_EQ(pub.Patch("Mapas"), 0);
  ASSERT_EQ(pub.Index(), 0);
  ASSERT_EQ(pub.Run({"client", pub.Root(), pub.game.Path()}), 0);
  for (const auto& [file, bytes, told] : cases) {
    const std::string good = pub.Get(file);
    if (bytes.empty()) platform::RemoveFile(pub.Root() + "/" + file);
    if (!bytes.empty()) pub.Put(file, bytes);
    EXPECT_EQ(pub.Check(), 1) << file;
    EXPECT_TRUE(Holds(pub.out, "problem: ") && Holds(pub.out, told)) << told << "\n" << pub.out;
    pub.Put(file, good);
  }
  // On one line, as launchers take it too; and a file that nobody asks for is no problem.
  pub.Put("OldAct/Update.ini", "[INIT] Init=0 Mapas=1 Graficos=0 Midis=0 Wavs=0 AU=0 Extras=0");
  pub.Put("OldAct/stray", "x");
  // As launchers take them: fields left empty or too many, numbers at their ends, a line end behind it.
  pub.Put("web/include/info.php", "255@a@x@@-2147483648@32767@@2147483647|@b@@@@-32768@@@more|\n");
  pub.Put("web/include/noticiasbase.php", "|0|title|@1|0|older|text@");
  pub.Put("web/include/ipdate.php", "1/2/2026-203.0.113.5\n");
  EXPECT_EQ(pub.Check(), 0) << pub.out;
  EXPECT_TRUE(Holds(pub.out, "stray: no launcher asks for it"));
}

TEST(Publisher, KilledAtAnyMomentItLeavesAPublicationThatChecks) {
  TestPublication pub;
  pub.game.Put("Bin/KVN-DX8.exe", "the client");
  const auto change = [&](int round) {  // everything at first, then a third of it
    for (int i = std::max(round, 0) % 3; i < 12; i += round < 0 ? 1 : 3)
      pub.game.Put("Bin/file" + std::to_string(i),
                   Noise(60'000, static_cast<unsigned>(100 * (round + 2) + i)));
  };
  support::KillAtAnyMoment(pub, change, [&] { return pub.Index() + pub.Patch("Mapas"); });
}

}  // namespace
