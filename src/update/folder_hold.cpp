#include "update/folder_hold.hpp"

#include "base/runtime_error.hpp"
#include "platform/files.hpp"

namespace update {
namespace {

constexpr std::uint32_t kPauseMs = 50;
constexpr const char* kName = "launcher.lock";  // in a folder that no archive may write into
constexpr const char* kWaiting = "Otro launcher está actualizando esta carpeta, se espera a que termine.";

}  // namespace

bool FolderHold::Take(const startup::Services& services, controls::MainWindow& frmMain,
                      const std::function<bool()>& mayGoOn) {
  if (!services.flags.FolderWritable) return true;
  const std::string file = services.folders.Scratch(kName);
  for (bool told = false;; told = true) {
    try {
      platform::MakeFolders(platform::FolderOf(file));
      lock_ = platform::FileLock::TryTake(file);
    } catch (const base::RuntimeError& error) {
      services.recorder.Note(std::string(kName) + ": " + error.Description());
      return true;
    }
    if (lock_) return true;
    if (!told) {
      frmMain.lblEstado.Caption = kWaiting;
      services.recorder.Note(kWaiting);
    }
    services.host.clock.Sleep(kPauseMs);
    services.host.events.DoEvents();
    if (!mayGoOn()) return false;
  }
}

}  // namespace update
