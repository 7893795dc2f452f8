#include <gtest/gtest.h>

#include "platform/files.hpp"
#include "platform/player_install.hpp"
#include "support/temp_folder.hpp"

namespace platform {
namespace {

using support::TempFolder;

struct PlayerInstall : testing::Test {
  PlayerInstall() {
    source.Put("descarga (1).exe", "the program");
    source.Put("Deployment.ini", "[MIRRORS]");
    source.Put("RECURSOS/GRAFICOS/Launcher.jpg", "picture");
    source.Put("RECURSOS/GRAFICOS/Opciones/ñ.jpg", "picture");
    source.Put("leame.txt", "stays where it is");
  }
  std::string Files() const {
    std::string names;
    if (!IsFolder(game)) return "gone";
    for (const FoundFile& file : ListTree(game)) names += file.path + "|";
    return names;
  }
  const TempFolder source, target;
  const std::string program = source / "descarga (1).exe", game = target / "Kelvarin ñ/Juego";
};

TEST_F(PlayerInstall, ComesAndGoesWithoutATrace) {
  EXPECT_FALSE(IsInstalledIn(game));
  InstallInto(program, game);
  EXPECT_TRUE(IsInstalledIn(game));
  EXPECT_EQ(Files(), NativePath("Deployment.ini|Instalado.txt|RECURSOS/GRAFICOS/Launcher.jpg|"
                                "RECURSOS/GRAFICOS/Opciones/ñ.jpg|launcher.exe|"));
  EXPECT_EQ(target.Get("Kelvarin ñ/Juego/launcher.exe"), "the program");
  EXPECT_TRUE(RemoveInstalled(game));
  EXPECT_EQ(Files(), "gone");
  EXPECT_TRUE(source.Has("Deployment.ini"));
}

TEST_F(PlayerInstall, WhatItDidNotPutStays) {
  InstallInto(program, game);
  target.Put("Kelvarin ñ/Juego/Bin/KVN-DX8.exe", "the game");
  target.Put("Kelvarin ñ/Juego/RECURSOS/GRAFICOS/mio.jpg", "the player's");
  RemoveFile(source / "RECURSOS/GRAFICOS/Launcher.jpg");
  source.Put("RECURSOS/GRAFICOS/Nuevo.jpg", "picture");
  InstallInto(program, game);  // a later release: what it no longer has is still known
  EXPECT_TRUE(RemoveInstalled(game));
  EXPECT_EQ(Files(), NativePath("Bin/KVN-DX8.exe|RECURSOS/GRAFICOS/mio.jpg|"));
}

TEST_F(PlayerInstall, AListThatLeadsOutOfItsFolderIsNotFollowed) {
  InstallInto(program, game);
  target.Put("Kelvarin ñ/precious", "1");
  AppendTo(game + kSeparator + "Instalado.txt",
           "../precious\n" + NativePath(target / "Kelvarin ñ/precious") + "\nBin/../../precious\n\n");
  RemoveInstalled(game);
  EXPECT_TRUE(target.Has("Kelvarin ñ/precious"));
}

}  // namespace
}  // namespace platform
