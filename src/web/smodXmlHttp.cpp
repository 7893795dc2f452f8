#include "web/smodXmlHttp.hpp"

#include <algorithm>
#include <atomic>
#include <exception>
#include <optional>
#include <stop_token>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "web/answer_cache.hpp"
#include "web/text_fetch.hpp"

namespace web {
namespace {

using platform::OutputFile;

// Runs a step whose failure changes nothing for the caller.
template <class Step>
void Attempt(Step step) {
  try {
    step();
  } catch (const std::exception&) {
  }
}

// Counted on the working thread, shown on the interface thread.
struct Received {
  std::atomic<std::uint64_t> bytes = 0;
  std::atomic<std::uint64_t> total = 0;  // as announced, 0 when it is not known
};

// Streams a body into a file, which is made when the answer begins: without an answer there is none.
class FileSink : public platform::HttpSink {
 public:
  FileSink(const std::string& path, OutputFile::Existing existing, bool successOnly, Received& received)
      : path_(path), existing_(existing), successOnly_(successOnly), received_(received) {}

  void Begin(const platform::HttpHead& head) override {
    const bool success = head.status >= 200 && head.status < 300;
    if (successOnly_ && !success) return;
    received_.total = head.contentLength.value_or(0);
    Attempt([&] { file_.emplace(path_, existing_); });
  }
  bool Write(std::span<const std::byte> bytes) override {
    if (!file_) return false;
    bool written = false;
    Attempt([&] {
      file_->Write(bytes);
      written = true;
    });
    received_.bytes += bytes.size();
    return written;
  }
  // Whether the file is there now.
  bool Commit(OutputFile::Lasting lasting) {
    bool committed = false;
    Attempt([&] {
      if (!file_) return;
      file_->Commit(lasting);
      committed = true;
    });
    return committed;
  }

 private:
  const std::string& path_;
  OutputFile::Existing existing_;
  bool successOnly_;
  Received& received_;
  std::optional<OutputFile> file_;
};

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

std::string smodXmlHttp::GetHttpText(const std::string& url, const TextOptions& options) {
  platform::HttpRequest request{.url = url,
                                .headers = {{"Content-Type", "application/x-www-form-urlencoded"}}};
  request.wholeLimitMs = options.wholeLimitMs != 0 ? options.wholeLimitMs : kTextLimitMs;
  const std::string scratch = services_.folders.Scratch("Tmp.tmp");
  const auto keepCopy = [&](const platform::HttpHead& head, const std::string& bytes) {
    if (head.status == 200) Attempt([&] { platform::WriteWhole(scratch, bytes); });
  };
  TextAnswer answer = FetchText(services_, std::move(request), options.cache, {}, keepCopy);
  if (Unreachable(answer.outcome)) ShowUnreachable();
  return std::move(answer.text);
}

void smodXmlHttp::ShowUnreachable() {
  const std::string host =
      base::Replaced(base::Replaced(hosts_.CurrentUpdateURL, "/update/kvn2011/", ""), "/files", "");
  frmMain_.lblName.Caption = "No se pudo acceder a " + host;
}

void smodXmlHttp::DownloadUrlToFile(const std::string& url, const std::string& localPath) {
  state_.Finished = false;
  // Nothing is fetched where the save would be refused.
  if (services_.lifetime.Ending() || platform::IsFile(localPath)) return;
  Received received;
  Progress progress(services_.host.clock, frmMain_, received);
  std::stop_source cancel;
  bool saved = false;
  const auto work = [&](std::stop_token stop) {
    FileSink sink(localPath, OutputFile::Existing::Refuse, false, received);
    const platform::HttpOutcome outcome = services_.host.http.Get({.url = url}, sink, stop);
    // What is saved here is unpacked and deleted; after a power cut it is fetched again.
    saved = outcome.Complete() && sink.Commit(OutputFile::Lasting::No);
    // A second name for the same bytes: an archive of a hundred megabytes would otherwise be written twice
    // and take its room twice while it is unpacked. Nobody writes into either file, they are only replaced
    // and deleted, so the two names do not disturb each other.
    if (saved && outcome.status == 200) {
      Attempt([&] { platform::ShareFile(localPath, services_.folders.Scratch("tmp.tmp")); });
    }
  };
  const auto onRound = [&] {
    if (state_.CancelRequested) cancel.request_stop();
    progress.Show();
  };
  Attempt([&] { startup::RunBlocking(services_, work, onRound, cancel.get_token()); });
  if (saved) progress.ShowEnd();
  state_.Finished = saved;
}

bool smodXmlHttp::DownloadFile(const std::string& Url, const std::string& LocalFilename) {
  Received received;
  std::stop_source cancel;
  bool saved = false;
  const auto work = [&](std::stop_token stop) {
    FileSink sink(LocalFilename, OutputFile::Existing::Replace, true, received);
    saved =
        services_.host.http.Get({.url = Url}, sink, stop).Complete() && sink.Commit(OutputFile::Lasting::Yes);
  };
  const auto onRound = [&] {
    if (state_.CancelRequested) cancel.request_stop();
  };
  Attempt([&] { startup::RunBlocking(services_, work, onRound, cancel.get_token()); });
  return saved;
}

}  // namespace web
