#include "update/game_launch.hpp"

#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"
#include "startup/procedure.hpp"

namespace update {
namespace {

constexpr const char* kLibrarySet = "0.4.1";
constexpr const char* kStandard = "-DX8";

}  // namespace

std::string GameLaunch::ClientFile(const std::string& suffix) const {
  return services_.folders.BinDir + platform::NativePath("\\KVN") + suffix + ".exe";
}

bool GameLaunch::IsInstalled() const { return platform::IsFile(ClientFile(kStandard)); }

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
  const std::string suffix = kStandard + std::string(answer == DialogAnswer::Yes ? "G" : "");
  const std::string client = ClientFile(suffix);
  line = 40;
  if (!platform::IsFile(client)) {
    services_.host.dialogs.Show("No se encuentra KVN" + suffix + ".exe");
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
