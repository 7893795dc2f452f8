#include "web/bytes_fetch.hpp"

#include <atomic>
#include <chrono>
#include <optional>
#include <stop_token>

#include "startup/blocking.hpp"
#include "startup/procedure.hpp"

namespace web {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kStallLimitMs = 10'000;

class MemorySink : public platform::HttpSink {
 public:
  explicit MemorySink(std::size_t most) : most_(most) {}

  void Begin(const platform::HttpHead& head) override { announced = head.contentLength; }
  bool Write(std::span<const std::byte> more) override {
    if (more.size() > most_ - bytes.size()) return false;
    bytes.append(reinterpret_cast<const char*>(more.data()), more.size());
    received = bytes.size();
    return true;
  }

  std::optional<std::uint64_t> announced;
  std::string bytes;
  std::atomic<std::size_t> received = 0;

 private:
  const std::size_t most_;
};

}  // namespace

Bytes FetchBytes(const startup::Services& services, const std::string& url, std::size_t most,
                 const Pace& pace) {
  Bytes answer;
  TransferReport& report = answer.report;
  if (services.lifetime.Ending()) {
    report.outcome.error = platform::HttpError::Cancelled;
    return answer;
  }
  MemorySink sink(most);
  std::stop_source stop;
  // Real time is counted, since the limits of a transfer are real time too. Not in the sink: a system may
  // gather a trickle for long before it hands it over.
  const Clock::time_point begun = Clock::now();
  const auto watch = [&] {
    const std::chrono::milliseconds limit(pace.LimitMs({.size = sink.received}));
    if (Clock::now() - begun > limit) stop.request_stop();
  };
  const auto work = [&](std::stop_token stopped) {
    report.outcome = services.host.http.Get({.url = url, .stallLimitMs = kStallLimitMs}, sink, stopped);
  };
  try {
    startup::RunBlocking(services, work, watch, stop.get_token());
  } catch (...) {  // no memory, no thread
    report.own = startup::CurrentError();
  }
  if (stop.stop_requested() && !report.outcome.Complete())
    report.outcome.error = platform::HttpError::Stalled;
  report.bytes = sink.bytes.size();
  report.announced = sink.announced;
  if (report.Arrived()) answer.bytes = std::move(sink.bytes);
  return answer;
}

}  // namespace web
