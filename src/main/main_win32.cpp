#include <windows.h>
// after windows.h, which it builds on
#include <shlwapi.h>

#include "launcher.hpp"
#include "main/install_win32.hpp"
#include "platform/crash_reports.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/win32/event_loop_win32.hpp"
#include "platform/win32/harden.hpp"
#include "platform/win32/moved_aside.hpp"
#include "platform/win32/wide.hpp"
#include "startup/error_recorder.hpp"
#include "startup/folders.hpp"
#include "startup/run_flags.hpp"
#include "ui/win32/win32_dialogs.hpp"
#include "ui/win32/win32_screen.hpp"

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int) {
  platform::HardenProcess();
  platform::RemoveMovedAside(platform::ExecutablePath());  // what an update of this program left behind
  const std::string arguments = platform::Narrow(PathGetArgsW(GetCommandLineW()));
  if (const auto status = install::RunIfAsked(arguments)) return *status;
  if (const std::string folder = platform::CrashFolder(); !folder.empty()) {
    const startup::Folders folders(platform::FolderOf(platform::ExecutablePath()));
    platform::ReportCrashesTo(folder, startup::LogFile(folders));
  }
  const auto clock = platform::MakeClock();
  platform::Win32EventLoop events(*clock);
  ui::win32::Win32Dialogs dialogs;
  const auto processes = platform::MakeProcesses({});
  const auto shell = platform::MakeShell({});
  const auto settings = platform::MakeSettingsStore();
  const auto profiles = platform::MakeProfileFiles();
  const auto http = platform::MakeHttpClient();
  ui::win32::Win32Screen screen;
  if (!startup::RunFlags(platform::BaseNameOf(platform::ExecutablePath()), arguments).UpdatesOnly) {
    screen.ExpectWindow();
  }
  events.preTranslate = [&screen](MSG& message) { return screen.Translate(message); };
  dialogs.SetScreen(&screen);
  const platform::Host host{*clock, events, dialogs, *processes, *shell, *settings, *profiles, *http};
  Launcher launcher(host, screen, {platform::ExecutablePath(), arguments});
  launcher.Main();
  return launcher.RunEvents();
}
