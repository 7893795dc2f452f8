#include <windows.h>

#include "platform/files.hpp"
#include "platform/win32/wide.hpp"

// Stands in for the game's client: writes how it was started into eco.txt beside itself, a line each for its
// own path, its whole command line and its working folder (UTF-8), and ends.
int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  wchar_t folder[MAX_PATH] = L"";
  GetCurrentDirectoryW(MAX_PATH, folder);
  const std::string own = platform::ExecutablePath();
  platform::WriteWhole(
      platform::FolderOf(own) + platform::kSeparator + "eco.txt",
      own + "\n" + platform::Narrow(GetCommandLineW()) + "\n" + platform::Narrow(folder) + "\n");
  return 0;
}
