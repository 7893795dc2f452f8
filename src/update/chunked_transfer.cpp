#include "update/chunked_transfer.hpp"

#include "base/numeric.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace update {
namespace {

constexpr int kRequestTimeoutSeconds = 10;
constexpr std::size_t kChunk = 1024;
constexpr std::uint32_t kSampleMs = 500;

std::string WholeKb(double bytes) { return base::NumberText(base::RoundHalfEven(bytes / 1024)); }

}  // namespace

ChunkedTransfer::ChunkedTransfer(const startup::Services& services, controls::MainWindow& frmMain,
                                 web::Inet1& inet, web::DownloadState& state,
                                 std::function<void()> closeLauncher)
    : services_(services),
      frmMain_(frmMain),
      inet_(inet),
      state_(state),
      closeLauncher_(std::move(closeLauncher)) {}

void ChunkedTransfer::Inet1_StateChanged(int stateNumber) {
  try {
    frmMain_.ProgressBar1.Visible = true;
    if (stateNumber == web::kStateError) {
      frmMain_.lblEstado.Caption = "Error en la conexión.";
      state_.Completed = state_.Failed = true;
    } else if (stateNumber == web::kStateResponseCompleted) {
      ReceiveBody();
    }
  } catch (...) {
    state_.Completed = state_.Failed = true;
    services_.recorder.LogError(
        "Se ha perdido la conexión, porfavor reintenta la realizar las actualizaciones. Si el problema "
        "persiste "
        "repórtalo en el foro de Kelvarin " +
        services_.deployment.forum + "\r\nDescrición del error: " + startup::CurrentFailure(0).description);
  }
}

void ChunkedTransfer::ReceiveBody() {
  inet_.SetRequestTimeout(kRequestTimeoutSeconds);
  const double total = base::ToInt32(base::Val(inet_.GetHeader("Content-length")));
  frmMain_.lblEstado.Caption = "Descarga iniciada. Directory: " + state_.TargetPath;
  platform::OutputFile target(state_.TargetPath);
  std::vector<std::byte> chunk = inet_.GetChunk(kChunk);
  services_.host.events.DoEvents();
  while (!chunk.empty()) {
    if (state_.CancelRequested || services_.lifetime.Ending()) {
      platform::TryRemoveFile(state_.TargetPath);
      closeLauncher_();
      return;
    }
    target.Write(chunk);
    chunk = inet_.GetChunk(kChunk);
    Sample(total);
    const double step =
        2.0 * static_cast<double>(chunk.size()) / sizeof(char16_t);  // a character is two bytes
    if (frmMain_.ProgressBar1.Max >= frmMain_.ProgressBar1.Value + step) {
      frmMain_.ProgressBar1.Value = frmMain_.ProgressBar1.Value + step;
    }
    ShowVelocity(total);
    state_.WatchdogStart = services_.host.clock.SystemUptime();
    services_.host.events.DoEvents();
  }
  if (inet_.BodyFailed()) {
    Inet1_StateChanged(web::kStateError);
    return;
  }
  target.Commit();
  frmMain_.lblEstado.Caption = "Descarga finalizada.";
  frmMain_.lblsize.Caption = WholeKb(total) + "kb";
  state_.Completed = true;
}

// The value sampled is the whole size, which no chunk reduces: the first sample shows it, every later one 0.
// Players have always seen it so.
void ChunkedTransfer::Sample(double total) {
  const std::uint32_t now = services_.host.clock.SystemUptime();
  if (platform::Elapsed(now, sampleTime_) <= kSampleMs) return;
  speed_ = static_cast<float>((total - sampleValue_) / 1024);
  sampleTime_ = now;
  sampleValue_ = total;
}

void ChunkedTransfer::ShowVelocity(double total) {
  const double rounded = base::RoundHalfEven(static_cast<double>(speed_) * 100) / 100;
  frmMain_.lblVelocity.Caption =
      WholeKb(total) + "kb de " + WholeKb(total) + "kb a " + base::NumberText(rounded * 2) + "kb/s";
}

}  // namespace update
