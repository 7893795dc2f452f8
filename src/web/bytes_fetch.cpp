#include "web/bytes_fetch.hpp"

#include <chrono>

#include "startup/blocking.hpp"
#include "startup/procedure.hpp"

namespace web {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t kStallLimitMs = 10'000;

// Real time is counted, since the limits of a transfer are real time too.
class PacedSink : public platform::HttpSink {
 public:
  PacedSink(std::size_t most, const Pace& pace) : most_(most), pace_(pace) {}

  void Begin(const platform::HttpHead& head) override { announced = head.contentLength; }
  bool Write(std::span<const std::byte> more) override {
    if (more.size() > most_ - bytes.size()) return false;
    bytes.append(reinterpret_cast<const char*>(more.data()), more.size());
    tooSlow = Clock::now() - begun_ > std::chrono::milliseconds(pace_.LimitMs({.size = bytes.size()}));
    return !tooSlow;
  }

  std::optional<std::uint64_t> announced;
  std::string bytes;
  bool tooSlow = false;

 private:
  const std::size_t most_;
  const Pace& pace_;
  const Clock::time_point begun_ = Clock::now();
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
  PacedSink sink(most, pace);
  try {
    startup::RunBlocking(services, [&](std::stop_token stop) {
      report.outcome = services.host.http.Get({.url = url, .stallLimitMs = kStallLimitMs}, sink, stop);
    });
  } catch (...) {  // no memory, no thread
    report.own = startup::CurrentError();
  }
  if (sink.tooSlow) report.outcome.error = platform::HttpError::Stalled;
  report.bytes = sink.bytes.size();
  report.announced = sink.announced;
  if (report.Arrived()) answer.bytes = std::move(sink.bytes);
  return answer;
}

}  // namespace web
