#include <unistd.h>

#include <iostream>
#include <string>

#include "launcher.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "ui/terminal/terminal_screen.hpp"

namespace {

constexpr const char* kUsage =
    "Usage: launcher [/UPDATES]\n"
    "Installs, updates and starts the game of the folder that holds this program. /UPDATES applies the "
    "missing\n"
    "patches and ends: status 0 when all are applied, 1 when not.\n"
    "Standard input acts as the player, a line each: frmMain.cmdIniciar clicks a control, "
    "frmOpciones.cmbFPS=500\n"
    "enters a value, frmMain.Esc presses a key, frmMain.cmdReportar~ points at a control, frmMain.close "
    "closes.\n";

std::string Joined(int argc, char** argv) {
  std::string line;
  for (int i = 1; i < argc; ++i) line += (i > 1 ? " " : "") + std::string(argv[i]);
  return line;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string commandLine = Joined(argc, argv);
  if (commandLine == "--help" || commandLine == "--version") {
    std::cout << (commandLine == "--help" ? kUsage : "launcher " LAUNCHER_VERSION "\n");
    return 0;
  }
  const auto clock = platform::MakeClock();
  platform::PosixEventLoop events(*clock);
  ui::TerminalScreen screen(events, STDIN_FILENO, std::cout, std::cerr);
  const auto tell = [&screen](const std::string& line) { screen.Tell(line); };
  const auto processes = platform::MakeProcesses(tell);
  const auto shell = platform::MakeShell(tell);
  const auto settings = platform::MakeSettingsStore();
  const auto profiles = platform::MakeProfileFiles();
  const auto http = platform::MakeHttpClient();
  const platform::Host host{*clock, events, screen, *processes, *shell, *settings, *profiles, *http};
  Launcher launcher(host, screen, {platform::ExecutablePath(), commandLine});
  launcher.Main();
  screen.StartUpDone();
  return launcher.RunEvents();
}
