// A library of a stranger beside the program is not run, not even before the program's first own step.
#include <gtest/gtest.h>
#include <windows.h>

#include "platform/files.hpp"
#include "support/faulty_server.hpp"
#include "support/temp_folder.hpp"
#include "support/win32/run_program.hpp"

namespace {

// Of those that the program uses, the ones that Wine itself does not load with every window.
constexpr const char* kLibraries[] = {"winmm", "winhttp", "bcrypt"};

TEST(WindowsPlantedLibraries, AreNotLoadedByTheProgramThatLiesBesideThem) {
  const support::TempFolder folder;
  const std::string built = platform::FolderOf(platform::ExecutablePath()) + "\\";
  support::FaultyServer mirror;
  mirror.Otherwise([](const support::SeenRequest&) { return support::Page(404, "no"); });
  mirror.On("/Online.txt", support::Text("1"));
  folder.Put("game/Deployment.ini", "[MIRRORS]\r\n1=" + mirror.Url("/") + "\r\n");
  platform::CloneFile(built + "launcher.exe", folder / "game/launcher.exe");
  std::string nativeFirst;
  for (const char* library : kLibraries) {
    platform::CloneFile(built + "planted_library.dll", folder / (std::string("game/") + library + ".dll"));
    nativeFirst += std::string(nativeFirst.empty() ? "" : ",") + library;
  }
  char before[1024] = "";
  GetEnvironmentVariableA("WINEDLLOVERRIDES", before, sizeof before);
  // Wine prefers its own libraries; Windows takes the first that it finds.
  SetEnvironmentVariableA("WINEDLLOVERRIDES", (std::string(before) + ";" + nativeFirst + "=n,b").c_str());
  const DWORD status = support::RunProgram("\"" + (folder / "game/launcher.exe") + "\" /UPDATES");
  SetEnvironmentVariableA("WINEDLLOVERRIDES", before);
  EXPECT_EQ(status, 1u) << "no mirror has a list";
  for (const char* library : kLibraries) {
    EXPECT_FALSE(folder.Has(std::string("game/") + library + ".dll.loaded")) << library;
  }
}

}  // namespace
