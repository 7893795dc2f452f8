#include "web/text_fetch.hpp"

#include <utility>

#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "web/body_text.hpp"

namespace web {
namespace {

class MemorySink : public platform::HttpSink {
 public:
  void Begin(const platform::HttpHead& answer) override { head = answer; }
  bool Write(std::span<const std::byte> more) override {
    if (more.size() > kLargestText - bytes.size()) return false;
    bytes.append(reinterpret_cast<const char*>(more.data()), more.size());
    return true;
  }

  platform::HttpHead head;
  std::string bytes;
};

}  // namespace

TextAnswer FetchText(const startup::Services& services, platform::HttpRequest request, AnswerCache* cache,
                     std::stop_token stop, const OnBody& onBody) {
  TextAnswer answer;
  TransferReport& report = answer.report;
  if (services.lifetime.Ending()) {
    report.outcome.error = platform::HttpError::Cancelled;
    return answer;
  }
  if (cache) {
    if (auto kept = cache->Fresh(request.url, services.host.clock.Milliseconds())) {
      report.outcome = {platform::HttpError::None, 200};
      answer.asked = false;
      answer.text = std::move(*kept);
      return answer;
    }
    const AnswerCache::Headers conditions = cache->Conditions(request.url);
    request.headers.insert(request.headers.end(), conditions.begin(), conditions.end());
  }
  MemorySink sink;
  const auto work = [&](std::stop_token token) {
    report.outcome = services.host.http.Get(request, sink, token);
    if (report.outcome.Complete() && onBody) onBody(sink.head, sink.bytes);
  };
  try {
    startup::RunBlocking(services, work, {}, std::move(stop));
  } catch (...) {  // no memory, no thread: a query that failed like any other
    report.own = startup::CurrentError();
  }
  report.bytes = sink.bytes.size();
  report.announced = sink.head.contentLength;
  answer.head = std::move(sink.head);
  if (!report.Arrived()) return answer;
  answer.text = BodyText(answer.head.Header("content-type"), std::move(sink.bytes));
  if (cache) {
    answer.text =
        cache->Take(request.url, answer.head, std::move(answer.text), services.host.clock.Milliseconds());
  }
  return answer;
}

}  // namespace web
