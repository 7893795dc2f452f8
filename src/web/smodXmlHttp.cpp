#include "web/smodXmlHttp.hpp"

#include <exception>
#include <stop_token>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "web/answer_cache.hpp"
#include "web/progress.hpp"
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

TransferReport smodXmlHttp::DownloadUrlToFile(FileRequest request, const std::function<void()>& meanwhile) {
  const std::string& localPath = request.path;
  request.wholeLimitMs = pace_.LimitMs(request.expected);
  state_.Finished = false;
  TransferReport report;
  // Nothing is fetched where the save would be refused.
  if (platform::IsFile(localPath)) report.own = base::RuntimeError(base::ErrorNumber::FileAlreadyExists);
  if (services_.lifetime.Ending()) report.outcome.error = platform::HttpError::Cancelled;
  if (services_.lifetime.Ending() || report.own) return report;
  const std::shared_ptr<FetchAhead::Item> item = ahead_.Claim(request.url);
  Received direct;
  FetchedFile fetched;
  Received& received = item ? item->received : direct;
  Progress progress(services_.host.clock, frmMain_, received, whole);
  const auto work = [&](std::stop_token stop) {
    if (item) fetched = item->Wait(localPath, stop);
    if (!item || fetched.tooLarge) fetched = FetchFile(services_.host.http, request, received, stop);
    // A second name for the same bytes: an archive of a hundred megabytes would otherwise be written twice
    // and take its room twice while it is unpacked. Nobody writes into either file, they are only replaced
    // and deleted, so the two names do not disturb each other.
    if (fetched.kept && fetched.report.Good())
      Attempt([&] { platform::ShareFile(localPath, services_.folders.Scratch("tmp.tmp")); });
  };
  const auto round = [&] {
    progress.Show();
    if (meanwhile) meanwhile();
  };
  RunTransfer(work, round, fetched.report);
  state_.Finished = fetched.kept && fetched.report.Arrived();
  if (state_.Finished) progress.ShowEnd();
  return fetched.report;
}

void smodXmlHttp::FetchNext(std::vector<FileRequest> next, const FetchAhead::Limits& limits) {
  for (FileRequest& request : next) request.wholeLimitMs = pace_.LimitMs(request.expected);
  ahead_.Want(std::move(next), limits);
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
