#include "web/file_fetch.hpp"

#include <optional>

#include "startup/procedure.hpp"

namespace web {
namespace {

constexpr std::uint32_t kStallLimitMs = 10'000;  // a mirror that gives nothing for so long is as good as none
constexpr int kNoSuchPart = 416;

void Get(platform::HttpClient& http, const FileRequest& request, PartialFile* part, Received& received,
         const std::stop_token& stop, FetchedFile& fetched) {
  FileSink sink(request.path, {.expected = request.expected, .most = request.most}, received, part);
  platform::HttpRequest get{
      .url = request.url, .stallLimitMs = kStallLimitMs, .wholeLimitMs = request.wholeLimitMs};
  if (part) get.headers = part->Conditions();
  fetched.report.outcome = http.Get(get, sink, stop);
  // What is saved here is unpacked and deleted; after a power cut it is fetched again.
  fetched.kept = fetched.report.outcome.Complete() && sink.Commit(platform::OutputFile::Lasting::No);
  fetched.report.otherContent = sink.OtherContent();
  fetched.tooLarge = sink.TooLarge();
}

void GetOrGoOn(platform::HttpClient& http, const FileRequest& request, Received& received,
               const std::stop_token& stop, FetchedFile& fetched) {
  std::optional<PartialFile> part;
  if (!request.part.empty()) part.emplace(request.part, request.url);
  const bool goesOn = part && part->Size() > 0;
  Get(http, request, part ? &*part : nullptr, received, stop, fetched);
  if (!goesOn) return;
  const platform::HttpOutcome& outcome = fetched.report.outcome;
  // A server that has no such part, or sends another one, may still have the whole.
  const bool otherPart = outcome.error == platform::HttpError::Refused && received.earlier == 0;
  if (!otherPart && outcome.status != kNoSuchPart) return;
  part->Forget();
  Get(http, request, &*part, received, stop, fetched);
}

}  // namespace

FetchedFile FetchFile(platform::HttpClient& http, const FileRequest& request, Received& received,
                      const std::stop_token& stop) {
  FetchedFile fetched;
  try {
    GetOrGoOn(http, request, received, stop, fetched);
    if (request.proof && fetched.kept && fetched.report.Good())
      fetched.report.disproved = !request.proof(request.path, stop) && !stop.stop_requested();
  } catch (...) {
    fetched.report.own = startup::CurrentError();
  }
  fetched.report.bytes = received.bytes;
  fetched.report.resumed = received.earlier > 0;
  if (received.total != 0) fetched.report.announced = received.total;
  return fetched;
}

}  // namespace web
