#include "update/launcher_state.hpp"

#include <gtest/gtest.h>

namespace {

TEST(LauncherState, IsWhatNoPublicationMayBring) {
  const struct {
    const char* name;
    bool own;
  } cases[] = {
      {"RECURSOS/INIT/AUMapas.ini", true},
      {"recursos\\init\\auMAPAS.INI", true},
      {"\\RECURSOS\\INIT\\AUAU.ini", true},
      {"RECURSOS/INIT/AU.ini", false},
      {"RECURSOS/AUMapas.ini", false},
      {"Bin/MD5Update.ini", true},
      {"Bin/Sub/MD5Update.ini", false},
      {"RECURSOS/UPDATE", true},
      {"RECURSOS/UPDATE/x/y.kvn", true},
      {"RECURSOS/UPDATES/x", false},
      {"RECURSOS//INIT/UPDATE/tmp.tmp", true},
      {"BIN/client.vbp", true},
      {"Bin/CODIGOS/a.cls", true},
      {"Bin/CODIGOS2", false},
      {"RECURSOS/INIT/ConfigVideo.cfg", false},
      {"launcher.exe", false},
  };
  for (const auto& [name, own] : cases) EXPECT_EQ(update::IsLauncherState(name), own) << name;
}

}  // namespace
