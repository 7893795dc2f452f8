#include "update/download.hpp"

#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "base/url.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace update {
namespace {

constexpr std::uint32_t kWatchdogMs = 10'000;
constexpr std::uint32_t kRoundMs = 10;  // a wait loop's pause, so that it costs no processor
constexpr int kMostTimeouts = 5;
constexpr int kMostSilentRetries = 3;
constexpr const char* kTimeOutQuestion = "Error, tiempo de espera agotado. ¿Deseas reintentar la descarga?";

}  // namespace

void Download::Pause() {
  with_.services.host.clock.Sleep(kRoundMs);
  with_.services.host.events.DoEvents();
}

bool Download::TimedOut() const {
  return platform::Elapsed(with_.services.host.clock.SystemUptime(), with_.state.WatchdogStart) > kWatchdogMs;
}

void Download::RemoveTarget() { platform::TryRemoveFile(with_.state.TargetPath); }

bool Download::DownloadClient(std::int32_t index, std::int32_t count, const IndexRecord& record) {
  web::DownloadState& state = with_.state;
  std::string local;
  startup::Guarded(
      with_.services.recorder,
      [&](int& line) {
        line = 10;
        with_.frmMain.lblEstado.Caption = "Actualizando, aguarde un momento...";
        const std::string url =
            with_.hosts.CurrentUpdateURL + remoteFolder + "Bin/" + base::UrlPath(record.inBin) + ".kvn";
        line = 20;
        state.TargetPath = with_.services.folders.ResourcesUpdateDir + platform::kSeparator +
                           platform::NativePath(record.inBin);
        local = state.TargetPath + ".kvn";
        platform::MakeFolders(platform::FolderOf(local));
        line = 30;
        if (platform::IsFile(local)) platform::RemoveFile(local);
        line = 40;
        with_.transfers.DownloadUrlToFile(url, local);
        line = 50;
        with_.frmMain.lblName.Caption = "Descargando actualizaciones: " + std::to_string(index) + "/" +
                                        std::to_string(count) + " - " +
                                        std::string(base::Field(record.path, 3, '\\'));
        with_.frmMain.lblDirectorio.Caption = state.TargetPath;
        state.Finished = false;
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() + " in procedure DownloadClient of Formulario frmMain";
      });
  return platform::IsFile(local);
}

DownloadResult Download::DescargarArchivo(const std::string& name, bool unpack) {
  const std::string url = with_.hosts.CurrentUpdateURL + remoteFolder + name;
  int line = 0;
  bool mayTryAgain = true;
  DownloadResult result = DownloadResult::Failed;
  bool unpackOnly = false;
  for (;;) {
    try {
      return unpackOnly ? FinishArchive(unpack) : FetchArchive(name, url, unpack, line);
    } catch (const base::RuntimeError& error) {
      if (error.Is(base::ErrorNumber::InterfaceNotSupported)) {
        result = UnpackerMissing(mayTryAgain);
        unpackOnly = true;
        if (result == DownloadResult::TryAgain) continue;
        return result;
      }
      const startup::Failure failure = startup::CurrentFailure(line);
      with_.services.recorder.LogError(
          failure.Opening() +
          " en el procedimiento DescargarArchivo del módulo Formulario frmMain en la línea: " +
          failure.Line() + " Nombre: " + name + " U: " + url);
      return DownloadResult::Failed;
    }
  }
}

DownloadResult Download::FetchArchive(const std::string& name, const std::string& url, bool unpack,
                                      int& line) {
  web::DownloadState& state = with_.state;
  controls::MainWindow& frmMain = with_.frmMain;
  line = 10;
  frmMain.lblName.Caption = name;
  frmMain.lblDirectorio.Caption = with_.services.folders.BinDir + platform::kSeparator;
  state.TargetPath = with_.services.folders.AppPath + platform::kSeparator + base::Replaced(name, "/", "");
  state.Completed = state.Failed = false;
  line = 20;
  for (const std::string& old : {state.TargetPath, state.TargetPath + ".txt"}) {
    if (!platform::IsFile(old)) continue;
    platform::RemoveFile(old);
    with_.services.host.events.DoEvents();
  }
  line = 30;
  frmMain.lblEstado.Caption = "Actualizando juego, por favor aguarde unos minutos.";
  state.Finished = false;
  line = 40;
  with_.transfers.DownloadUrlToFile(url, state.TargetPath);
  state.WatchdogStart = with_.services.host.clock.SystemUptime();
  line = 50;
  while (!state.Finished) {
    if (state.CancelRequested || with_.services.lifetime.Ending()) {
      RemoveTarget();
      with_.closeLauncher();
      return DownloadResult::Cancelled;
    }
    if (TimedOut()) return OnTimeOut();
    Pause();
  }
  line = 60;
  return FinishArchive(unpack);
}

DownloadResult Download::FinishArchive(bool unpack) {
  if (with_.state.Failed) {
    RemoveTarget();
    return DownloadResult::Failed;
  }
  bool unpacked = true;
  if (unpack) {
    unpacked =
        with_.unzip.Unzip(with_.state.TargetPath, with_.services.folders.AppPath + platform::kSeparator).done;
    RemoveTarget();
  }
  with_.frmMain.tmrUpdates.Set(false);
  if (with_.services.lifetime.Ending()) return DownloadResult::Cancelled;
  return unpacked ? DownloadResult::Done : DownloadResult::UnpackFailed;
}

DownloadResult Download::OnTimeOut() {
  web::DownloadState& state = with_.state;
  state.TimedOut = state.RetryPending = true;
  ++TimeoutCount;
  if (TimeoutCount < kMostTimeouts && SilentRetryCount < kMostSilentRetries) {
    ++SilentRetryCount;
    return DownloadResult::TryAgain;
  }
  const auto answer = with_.services.host.dialogs.Show(kTimeOutQuestion, platform::DialogButtons::YesNo);
  TimeoutCount = 0;
  if (answer != platform::DialogAnswer::Yes) return DownloadResult::GivenUp;
  state.RetryPending = true;
  SilentRetryCount = 0;
  RemoveTarget();
  return DownloadResult::TryAgain;
}

DownloadResult Download::UnpackerMissing(bool& mayTryAgain) {
  const std::string library = with_.services.folders.BinDir + platform::NativePath("\\Unzip32.dll");
  if (mayTryAgain && platform::IsFile(library)) {
    mayTryAgain = false;
    with_.services.host.shell.OpenFile("regsvr32 " + library, with_.services.folders.BinDir);
    return DownloadResult::TryAgain;
  }
  with_.services.host.dialogs.Show(
      "El juego esta dañado. Le faltan archivos escenciales. Porfavor reinstale Kelvarin, bajelo desde: " +
      with_.services.deployment.client1 + " " + with_.services.deployment.client2);
  RemoveTarget();
  with_.services.lifetime.End(1);
  return DownloadResult::Cancelled;
}

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
        with_.transfers.DownloadUrlToFile(with_.hosts.CurrentUpdateURL + "Kelvarin.zip", state.TargetPath);
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
    with_.unzip.Unzip(state.TargetPath, with_.services.folders.BinDir + platform::kSeparator);
    with_.frmMain.tmrUpdates.Set(false);
  }
  RemoveTarget();
}

}  // namespace update
