#include "platform/files.hpp"
#include "startup/procedure.hpp"
#include "update/download.hpp"

namespace update {

void Download::DescargarCliente() {
  web::DownloadState& state = with_.state;
  controls::MainWindow& frmMain = with_.frmMain;
  startup::Guarded(
      with_.services.recorder,
      [&](int& line) {
        line = 10;
        frmMain.lblEstado.Caption = "Descargando cliente completo...";
        frmMain.lblName.Caption = "Cliente Kelvarin.zip";
        frmMain.lblDirectorio.Caption = with_.services.folders.BinDir + platform::kSeparator;
        state.TargetPath = with_.services.folders.BinDir + platform::NativePath("\\Kelvarin.zip");
        line = 20;
        if (platform::IsFile(state.TargetPath)) {
          platform::RemoveFile(state.TargetPath);
          with_.services.host.events.DoEvents();
        }
        line = 30;
        state.Finished = false;
        if (const auto expected = ExpectedOf("Kelvarin.zip")) {
          with_.transfers.DownloadUrlToFile(with_.hosts.CurrentUpdateURL + "Kelvarin.zip", state.TargetPath,
                                            *expected);
        }
        state.Completed = state.Failed = false;
        state.WatchdogStart = with_.services.host.clock.SystemUptime();
        line = 40;
        // The archive goes before it is unpacked: the full-client path has always ended so, and the unpacking
        // reports that there is none.
        if (platform::IsFile(state.TargetPath)) platform::RemoveFile(state.TargetPath);
        line = 50;
        AwaitClient();
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() +
               " en el procedimiento DescargarCliente del modulo Formulario frmMain en la línea " +
               failure.Line() + " reporta esto mediante el soporte WEB en " +
               with_.services.deployment.support;
      });
}

// Ends at the first time-out: its question would follow a fifth one, and the count starts anew with each
// call.
void Download::AwaitClient() {
  web::DownloadState& state = with_.state;
  while (!state.Finished) {
    if (state.CancelRequested || with_.services.lifetime.Ending()) {
      RemoveTarget();
      with_.closeLauncher();
      return;
    }
    if (TimedOut()) {
      state.TimedOut = state.RetryPending = true;
      return;
    }
    Pause();
  }
  if (!state.Failed) {
    const bool done =
        with_.unzip.Unzip(state.TargetPath, with_.services.folders.BinDir + platform::kSeparator).done;
    if (!done) with_.services.host.dialogs.Show(kUnzipFailed);
  }
  RemoveTarget();
}

}  // namespace update
