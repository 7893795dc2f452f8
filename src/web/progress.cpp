#include "web/progress.hpp"

#include <algorithm>
#include <string>

#include "base/numeric.hpp"

namespace web {
namespace {

constexpr std::uint64_t kSampleMs = 500;
constexpr std::uint64_t kTellTimeAfterMs = 3'000;  // before, the speed is a guess

std::string KbText(std::uint64_t bytes) { return std::to_string(base::Kilobytes(bytes)) + "kb"; }
std::string MbNumber(std::uint64_t bytes) { return std::to_string((bytes + (1 << 19)) >> 20); }

std::string TimeText(double seconds) {
  if (seconds < 60) return "menos de 1 min";
  if (seconds < 3600) return std::to_string(static_cast<int>(seconds / 60 + 0.5)) + " min";
  return std::to_string(static_cast<int>(seconds / 3600 + 0.5)) + " h";
}

}  // namespace

Progress::Progress(platform::Clock& clock, controls::MainWindow& frmMain, const Received& received,
                   const WholeUpdate& whole)
    : clock_(clock),
      frmMain_(frmMain),
      received_(received),
      whole_(whole),
      sampleTime_(clock.Milliseconds()) {
  frmMain_.ProgressBar1.Value = 0;
  frmMain_.ProgressBar1.Visible = true;
  frmMain_.lblsize.Caption = std::string{};
  ShowWhole();
}

void Progress::Show() {
  const std::uint64_t bytes = received_.bytes;
  if (bytes == 0) return;
  const std::uint64_t total = received_.total;
  Sample(bytes);
  const std::string amount = KbText(bytes) + (total == 0 ? "" : " de " + KbText(total));
  frmMain_.lblVelocity.Caption = amount + " a " + base::NumberText(speed_) + "kb/s";
  if (total != 0) Raise(bytes, total);
  ShowWhole();
}

void Progress::ShowEnd() {
  Show();
  frmMain_.ProgressBar1.Value = frmMain_.ProgressBar1.Max.Get();
  frmMain_.lblsize.Caption = KbText(received_.bytes);
}

void Progress::Sample(std::uint64_t bytes) {
  if (sampleBytes_ == 0) sampleBytes_ = received_.earlier;
  const std::uint64_t elapsed = clock_.Milliseconds() - sampleTime_;
  if (elapsed == 0 || (sampled_ && elapsed <= kSampleMs)) return;
  const double kilobytesPerSecond =
      static_cast<double>(bytes - sampleBytes_) / 1024 * 1000 / static_cast<double>(elapsed);
  speed_ = base::RoundHalfEven(kilobytesPerSecond * 100) / 100;
  if (elapsed <= kSampleMs) return;  // the first moments are measured from the start
  sampled_ = true;
  sampleTime_ += elapsed;
  sampleBytes_ = bytes;
}

void Progress::Raise(std::uint64_t bytes, std::uint64_t total) {
  const double most = std::max<double>(1, static_cast<double>(base::Kilobytes(total)));
  frmMain_.ProgressBar1.Max = most;
  frmMain_.ProgressBar1.Value = std::min(most, static_cast<double>(base::Kilobytes(bytes)));
}

void Progress::ShowWhole() {
  if (whole_.number == 0) return;
  const std::uint64_t here = received_.bytes, file = received_.total, bytes = whole_.bytes + here;
  const bool known = whole_.total != 0 && bytes <= whole_.total;
  const double inFile = file == 0 ? 0 : std::min(1.0, static_cast<double>(here) / static_cast<double>(file));
  frmMain_.ProgressBar1.Whole = known ? static_cast<double>(bytes) / static_cast<double>(whole_.total)
                                      : (whole_.number - 1 + inFile) / whole_.count;
  std::string text = std::to_string(whole_.number) + " de " + std::to_string(whole_.count);
  text = known ? text + ", " + MbNumber(bytes) + " de " + MbNumber(whole_.total) + " MB"
               : "Parche " + text + ", " + MbNumber(bytes) + " MB";
  const std::uint64_t elapsed = clock_.Milliseconds() - whole_.startedAt;
  if (known && bytes > 0 && elapsed >= kTellTimeAfterMs) {
    const double left = static_cast<double>(whole_.total - bytes) / static_cast<double>(bytes);
    text += ", " + TimeText(left * static_cast<double>(elapsed) / 1000);
  }
  frmMain_.lblsize.Caption = text;
}

}  // namespace web
