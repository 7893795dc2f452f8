#include "update/game_launch.hpp"

#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"
#include "startup/procedure.hpp"

namespace update {
namespace {

constexpr const char* kLibrarySet = "0.4.1";
constexpr const char *kClient = "KVN-DX8", *kStaffClient = "KVN-DX8G";

}  // namespace

std::string GameLaunch::PathOf(const std::string& client) const {
  return services_.folders.BinDir + platform::kSeparator + client + ".exe";
}

bool GameLaunch::Installed() const { return platform::IsFile(PathOf(kClient)); }

void GameLaunch::EjecutarKelvar(const std::string& parameter) {
  startup::Guarded(
      services_.recorder, [&](int& line) { Launch(parameter, line); },
      [](const startup::Failure& failure) {
        return failure.Opening() + " in procedure EjecutarKelvar of Formulario frmMain";
      });
  closeLauncher_();
}

void GameLaunch::Launch(const std::string& parameter, int& line) {
  using platform::DialogAnswer;
  namespace keys = startup::keys;
  line = 10;
  const DialogAnswer answer =
      services_.flags.StaffClient
          ? services_.host.dialogs.Show("¿Que cliente deseas ejecutar?", platform::DialogButtons::YesNoCancel,
                                        "Kelvar Online")
          : DialogAnswer::No;
  line = 20;
  if (services_.host.settings.Get(keys::kLibraries, keys::kVersion, keys::kV) != kLibrarySet) {
    services_.host.settings.Set(keys::kLibraries, keys::kVersion, keys::kV, kLibrarySet);
    libraries_.VerificarLibrerias();
  }
  if (answer == DialogAnswer::Cancel) return;
  line = 30;
  services_.host.settings.Set(keys::kOpen, keys::kF, keys::kA,
                              std::to_string(services_.host.clock.SystemUptime()));
  const std::string name = answer == DialogAnswer::Yes ? kStaffClient : kClient;
  const std::string client = PathOf(name);
  line = 40;
  if (!platform::IsFile(client)) {
    services_.host.dialogs.Show("No se encuentra " + name + ".exe");
    return;
  }
  platform::StartRequest request;
  request.program = client;
  request.commandLine = client + " " + parameter;
  request.style = platform::WindowStyle::NormalFocus;
  request.workingFolder = services_.folders.BinDir;
  line = 50;
  services_.host.processes.Start(request);
}

}  // namespace update
