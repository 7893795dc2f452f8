#include "update/game_launch.hpp"

#include "platform/files.hpp"
#include "startup/launcher_settings.hpp"
#include "startup/procedure.hpp"
#include "util/runtime_error.hpp"

namespace update {
namespace {

constexpr const char* kLibrarySet = "0.4.1";

}  // namespace

GameLaunch::GameLaunch(platform::Host& host, const startup::Folders& folders, const startup::RunFlags& flags,
                       startup::ErrorRecorder& recorder, controls::MainWindow& frmMain,
                       LibraryCheck& libraries, std::function<void(bool)> enablePlay,
                       std::function<void()> closeLauncher)
    : host_(host),
      folders_(folders),
      flags_(flags),
      recorder_(recorder),
      frmMain_(frmMain),
      libraries_(libraries),
      enablePlay_(std::move(enablePlay)),
      closeLauncher_(std::move(closeLauncher)) {}

void GameLaunch::cmdIniciar_Click() {
  frmMain_.tmrUpdates.Set(true);
  frmMain_.NewsTimer.Set(false);
  enablePlay_(false);
}

void GameLaunch::EjecutarKelvar(const std::string& parameter) {
  startup::Guarded(
      recorder_, [&](int& line) { Launch(parameter, line); },
      [](const startup::Failure& failure) {
        return failure.Opening() + " in procedure EjecutarKelvar of Formulario frmMain";
      });
  closeLauncher_();
}

void GameLaunch::Launch(const std::string& parameter, int& line) {
  using platform::DialogAnswer;
  namespace keys = startup::keys;
  line = 10;
  const DialogAnswer answer = flags_.StaffClient
                                  ? host_.dialogs.Show("¿Que cliente deseas ejecutar?",
                                                       platform::DialogButtons::YesNoCancel, "Kelvar Online")
                                  : DialogAnswer::No;
  line = 20;
  if (host_.settings.Get(keys::kLibraries, keys::kVersion, keys::kV) != kLibrarySet) {
    host_.settings.Set(keys::kLibraries, keys::kVersion, keys::kV, kLibrarySet);
    libraries_.VerificarLibrerias();
  }
  if (answer == DialogAnswer::Cancel) return;
  line = 30;
  host_.settings.Set(keys::kOpen, keys::kF, keys::kA, std::to_string(host_.clock.SystemUptime()));
  const std::string suffix = answer == DialogAnswer::Yes ? "-DX8G" : "-DX8";
  const std::string client = folders_.BinDir + platform::NativePath("\\KVN") + suffix + ".exe";
  line = 40;
  if (!platform::IsFile(client)) {
    host_.dialogs.Show("No se encuentra KVN" + suffix + ".exe");
    return;
  }
  platform::StartRequest request;
  request.program = client;
  request.commandLine = client + " " + parameter;
  request.style = platform::WindowStyle::NormalFocus;
  request.workingFolder = folders_.BinDir;
  line = 50;
  if (!host_.processes.Start(request)) throw util::RuntimeError(util::ErrorNumber::PathFileAccessError);
}

}  // namespace update
