#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>

#include "platform/files.hpp"
#include "publisher/push_plan.hpp"
#include "support/posix/publication.hpp"

namespace {

using support::Holds;
namespace fs = std::filesystem;

// A publication with two patches and a game, and a folder to copy it to.
struct PushTest : testing::Test {
  PushTest() {
    pub.game.Put("Bin/KVN-DX8.exe", "client");
    pub.game.Put("Bin/old", "goes");
    pub.game.Put("RECURSOS/MAPAS1/1.map", support::Noise(50'000, 1));
    pub.game.Put("leame.txt", "one");
    EXPECT_EQ(pub.Release(), 0) << pub.err;
  }

  int Push(std::vector<std::string> options = {}) {
    std::vector<std::string> words = {"push", pub.Root(), mirror};
    words.insert(words.end(), options.begin(), options.end());
    return pub.Run(words);
  }
  // The next version of the game, published.
  void Change() {
    pub.game.Put("Bin/KVN-DX8.exe", "newer client");
    platform::RemoveFile(pub.game / "Bin/old");
    pub.game.Put("leame.txt", "two");
    ASSERT_EQ(pub.Release(), 0) << pub.err;
  }

  support::TestPublication pub;
  const std::string mirror = pub.folder / "mirror";
};

TEST_F(PushTest, TheCopyIsTheSameAndKeepsWhatIsItsOwn) {
  ASSERT_EQ(Push(), 0) << pub.err;
  auto expected = pub.Everything();
  std::erase_if(expected, [](const auto& file) { return file.first.starts_with(".publisher"); });
  EXPECT_EQ(support::FilesOf(mirror), expected);
  EXPECT_EQ(pub.Run({"check", mirror}), 0) << pub.out;

  pub.folder.Put("mirror/Online.txt", "0");  // switched off
  pub.folder.Put("mirror/robots.txt", "of its web server");
  Change();
  ASSERT_EQ(Push({"--dry-run"}), 0);
  const std::string announced = pub.out;
  ASSERT_EQ(Push(), 0) << pub.err;
  EXPECT_EQ(announced.substr(0, announced.rfind('/')), pub.out.substr(0, pub.out.rfind('/')));
  EXPECT_FALSE(Holds(pub.out, "MAPAS")) << pub.out;
  EXPECT_TRUE(Holds(pub.out, "- NewAct2/Bin/old.kvn\n")) << pub.out;
  expected = pub.Everything();
  std::erase_if(expected, [](const auto& file) { return file.first.starts_with(".publisher"); });
  expected["Online.txt"] = "0";
  expected["robots.txt"] = "of its web server";
  EXPECT_EQ(support::FilesOf(mirror), expected);
  ASSERT_EQ(Push(), 0);
  EXPECT_TRUE(Holds(pub.out, "0 files copied, 0 removed")) << pub.out;
}

// Validators of web servers are made of the time, so a download can go on at another mirror.
TEST_F(PushTest, TimesAreThoseOfTheOriginal) {
  ASSERT_EQ(Push(), 0) << pub.err;
  const char* name = "/OldAct/Mapas/Mapas1.zip";
  EXPECT_EQ(fs::last_write_time(mirror + name), fs::last_write_time(pub.Root() + name));
  fs::last_write_time(mirror + name, fs::file_time_type{});  // as a copy by other means leaves it
  ASSERT_EQ(Push(), 0);
  EXPECT_TRUE(Holds(pub.out, "0 files copied")) << pub.out;
  EXPECT_EQ(fs::last_write_time(mirror + name), fs::last_write_time(pub.Root() + name));
}

TEST_F(PushTest, NothingIsNamedBeforeItIsThere) {
  Change();
  pub.Put("Signed.txt", "signature");
  const auto plan = publisher::PushPlan::For(publisher::Layout(pub.Root()), publisher::Layout(mirror)).copy;
  const auto place = [&](const std::string& name) {
    return std::find(plan.begin(), plan.end(), name) - plan.begin();
  };
  const char* order[] = {"OldAct/Extras/Extras2.zip",
                         "NewAct2/Bin/KVN-DX8.exe.kvn",
                         "NewAct2/Info.kvn",
                         "OldAct/Update.ini",
                         "Signed.txt",
                         "Online.txt"};
  for (std::size_t i = 1; i < std::size(order); ++i)
    EXPECT_LT(place(order[i - 1]), place(order[i])) << order[i];
  EXPECT_LT(place("OldAct/Mapas/Mapas1.zip"), place("NewAct2/Bin/KVN-DX8.exe.kvn"));
  EXPECT_LT(place("Kelvarin.zip"), place("NewAct2/Info.kvn"));
  EXPECT_EQ(place("Online.txt"), static_cast<std::ptrdiff_t>(plan.size()) - 1);
}

TEST_F(PushTest, ARunThatWasCutOffGoesOnWithWhatHadNotArrived) {
  ASSERT_EQ(Push(), 0) << pub.err;
  Change();
  // The last file that is to arrive cannot: a folder lies where it goes.
  pub.folder.Put("mirror/.publisher/push/OldAct/Update.ini/in the way", "x");
  const auto before = support::FilesOf(mirror + "/OldAct");
  EXPECT_EQ(Push(), 1);
  EXPECT_TRUE(Holds(pub.err, "OldAct/Update.ini: ")) << pub.err;
  EXPECT_EQ(support::FilesOf(mirror + "/OldAct"), before) << "players see nothing of it yet";
  EXPECT_EQ(pub.Run({"check", mirror}), 0) << pub.out;
  platform::RemoveTree(mirror + "/.publisher/push/OldAct/Update.ini");
  const std::string arrived = mirror + "/.publisher/push/OldAct/Extras/Extras2.zip";
  struct stat first {};
  ASSERT_EQ(stat(arrived.c_str(), &first), 0);
  ASSERT_EQ(Push(), 0) << pub.err;
  struct stat second {};
  ASSERT_EQ(stat((mirror + "/OldAct/Extras/Extras2.zip").c_str(), &second), 0);
  EXPECT_EQ(first.st_ino, second.st_ino) << "it was copied again";
  EXPECT_FALSE(fs::exists(mirror + "/.publisher/push"));
  EXPECT_EQ(pub.Run({"check", mirror}), 0) << pub.out;
}

TEST_F(PushTest, WhatWouldHarmIsRefused) {
  EXPECT_EQ(pub.Run({"push", pub.Root(), pub.Root() + "/copy"}), 1);
  EXPECT_EQ(pub.Run({"push", pub.Root(), pub.folder.Path()}), 1);
  EXPECT_EQ(pub.Run({"push", pub.Root(), pub.game.Path()}), 1);
  EXPECT_TRUE(Holds(pub.err, pub.game.Path() + ": the folder is not empty and no publication")) << pub.err;
  ASSERT_EQ(Push(), 0);
  pub.folder.Put("mirror/OldAct/Update.ini", "[INIT] Init=0 Mapas=4 Graficos=0 Midis=0 Wavs=0 AU=0 Extras=1");
  EXPECT_EQ(Push(), 1);
  EXPECT_TRUE(Holds(pub.err, "it has 4 patches of Mapas, ")) << pub.err;
  EXPECT_EQ(Push({"--force"}), 0) << pub.err;
  EXPECT_EQ(pub.Run({"check", mirror}), 0) << pub.out;
}

}  // namespace
