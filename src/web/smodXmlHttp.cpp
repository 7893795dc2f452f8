#include "web/smodXmlHttp.hpp"

#include <algorithm>
#include <atomic>
#include <exception>
#include <stop_token>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "web/answer_cache.hpp"
#include "web/file_sink.hpp"
#include "web/text_fetch.hpp"

namespace web {
namespace {

using platform::OutputFile;

constexpr std::uint32_t kStallLimitMs = 10'000;  // a mirror that gives nothing for so long is as good as none

// Runs a step whose failure changes nothing for the caller.
template <class Step>
void Attempt(Step step) {
  try {
    step();
  } catch (const std::exception&) {
  }
}

// Tells the player how far a download is and how fast it goes.
class Progress {
 public:
  Progress(platform::Clock& clock, controls::MainWindow& frmMain, const Received& received)
      : clock_(clock), frmMain_(frmMain), received_(received), sampleTime_(clock.Milliseconds()) {
    frmMain_.ProgressBar1.Value = 0;
    frmMain_.ProgressBar1.Visible = true;
  }

  void Show() {
    const std::uint64_t bytes = received_.bytes;
    if (bytes == 0) return;
    const std::uint64_t total = received_.total;
    Sample(bytes);
    const std::string amount = KbText(bytes) + (total == 0 ? "" : " de " + KbText(total));
    frmMain_.lblVelocity.Caption = amount + " a " + base::NumberText(speed_) + "kb/s";
    if (total != 0) Raise(bytes, total);
  }

  void ShowEnd() {
    Show();
    frmMain_.ProgressBar1.Value = frmMain_.ProgressBar1.Max.Get();
    frmMain_.lblsize.Caption = KbText(received_.bytes);
  }

 private:
  static constexpr std::uint64_t kSampleMs = 500;

  static std::string KbText(std::uint64_t bytes) { return std::to_string(base::Kilobytes(bytes)) + "kb"; }

  void Sample(std::uint64_t bytes) {
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

  void Raise(std::uint64_t bytes, std::uint64_t total) {
    const double most = std::max<double>(1, static_cast<double>(base::Kilobytes(total)));
    frmMain_.ProgressBar1.Max = most;
    frmMain_.ProgressBar1.Value = std::min(most, static_cast<double>(base::Kilobytes(bytes)));
  }

  platform::Clock& clock_;
  controls::MainWindow& frmMain_;
  const Received& received_;
  std::uint64_t sampleTime_;
  std::uint64_t sampleBytes_ = 0;
  double speed_ = 0;
  bool sampled_ = false;
};

// Whether there was no answer at all although there could have been one.
bool Unreachable(const platform::HttpOutcome& outcome) {
  return outcome.status == 0 && outcome.error != platform::HttpError::None &&
         outcome.error != platform::HttpError::BadUrl && outcome.error != platform::HttpError::Cancelled;
}

}  // namespace

TextAnswer smodXmlHttp::GetHttpText(const std::string& url, const TextOptions& options) {
  platform::HttpRequest request{.url = url,
                                .headers = {{"Content-Type", "application/x-www-form-urlencoded"}}};
  request.wholeLimitMs = options.wholeLimitMs != 0 ? options.wholeLimitMs : kTextLimitMs;
  const std::string scratch = services_.folders.Scratch("Tmp.tmp");
  const auto keepCopy = [&](const platform::HttpHead& head, const std::string& bytes) {
    if (head.status == 200) Attempt([&] { platform::WriteWhole(scratch, bytes); });
  };
  TextAnswer answer = FetchText(services_, std::move(request), options.cache, {}, keepCopy);
  if (Unreachable(answer.report.outcome)) ShowUnreachable();
  return answer;
}

void smodXmlHttp::ShowUnreachable() {
  const std::string host =
      base::Replaced(base::Replaced(hosts_.CurrentUpdateURL, "/update/kvn2011/", ""), "/files", "");
  frmMain_.lblName.Caption = "No se pudo acceder a " + host;
}

TransferReport smodXmlHttp::DownloadUrlToFile(const std::string& url, const std::string& localPath,
                                              const Expected& expected) {
  state_.Finished = false;
  TransferReport report;
  // Nothing is fetched where the save would be refused.
  if (platform::IsFile(localPath)) report.own = base::RuntimeError(base::ErrorNumber::FileAlreadyExists);
  if (services_.lifetime.Ending()) report.outcome.error = platform::HttpError::Cancelled;
  if (services_.lifetime.Ending() || report.own) return report;
  Received received;
  bool kept = false;
  Progress progress(services_.host.clock, frmMain_, received);
  const auto work = [&](std::stop_token stop) {
    FileSink sink(localPath, {.expected = expected}, received);
    report.outcome = services_.host.http.Get(
        {.url = url, .stallLimitMs = kStallLimitMs, .wholeLimitMs = pace_.LimitMs(expected)}, sink, stop);
    // What is saved here is unpacked and deleted; after a power cut it is fetched again.
    kept = report.outcome.Complete() && sink.Commit(OutputFile::Lasting::No);
    report.otherContent = sink.OtherContent();
    if (!kept) return;
    // A second name for the same bytes: an archive of a hundred megabytes would otherwise be written twice
    // and take its room twice while it is unpacked. Nobody writes into either file, they are only replaced
    // and deleted, so the two names do not disturb each other.
    if (report.outcome.status == 200) {
      Attempt([&] { platform::ShareFile(localPath, services_.folders.Scratch("tmp.tmp")); });
    }
  };
  RunTransfer(
      work, [&] { progress.Show(); }, report);
  report.bytes = received.bytes;
  if (received.total != 0) report.announced = received.total;
  state_.Finished = kept && report.Arrived();
  if (state_.Finished) progress.ShowEnd();
  return report;
}

// `work` on another thread; what it raises goes into the report.
void smodXmlHttp::RunTransfer(const std::function<void(std::stop_token)>& work,
                              const std::function<void()>& onRound, TransferReport& report) {
  std::stop_source cancel;
  const auto round = [&] {
    if (state_.CancelRequested) cancel.request_stop();
    onRound();
  };
  try {
    startup::RunBlocking(services_, work, round, cancel.get_token());
  } catch (...) {
    report.own = startup::CurrentError();
  }
}

bool smodXmlHttp::DownloadFile(const std::string& Url, const std::string& LocalFilename) {
  Received received;
  TransferReport report;
  bool saved = false;
  const auto work = [&](std::stop_token stop) {
    FileSink sink(LocalFilename, {.existing = OutputFile::Existing::Replace, .successOnly = true}, received);
    saved =
        services_.host.http.Get({.url = Url}, sink, stop).Complete() && sink.Commit(OutputFile::Lasting::Yes);
  };
  RunTransfer(
      work, [] {}, report);
  return saved && !report.own;
}

}  // namespace web
