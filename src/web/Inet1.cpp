#include "web/Inet1.hpp"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <thread>

#include "base/text.hpp"

namespace web {
namespace {

constexpr std::size_t kLargestLead = 256 * 1024;  // how far a transfer runs ahead of its reader
constexpr std::uint32_t kAnnounceMs = 10;
constexpr std::uint32_t kRoundMs = 50;
constexpr std::chrono::milliseconds kStopPoll{20};  // while the reader takes nothing

}  // namespace

// One request. Its worker is the sink's producer, the interface thread takes out of the buffer.
//
// The worker looks for a stop and registers no std::stop_callback of its own: with MinGW's library (GCC 12)
// the destructor of one that is just being called from another thread can sleep for ever, its wait for a
// semaphore missing the release. The interface thread, which is the only one to stop anything, may have them.
struct Inet1::Transfer : platform::HttpSink {
  explicit Transfer(std::stop_token programEnds) : passOn(std::move(programEnds), StopIt{stop}) {}

  struct StopIt {
    std::stop_source stop;
    void operator()() { stop.request_stop(); }
  };

  std::stop_source stop;
  std::stop_callback<StopIt> passOn;
  mutable std::mutex mutex;
  std::condition_variable taken;
  std::vector<std::byte> buffer;
  std::size_t start = 0;  // of what has not been taken yet
  platform::HttpHead head;
  bool headArrived = false;
  bool ended = false;
  platform::HttpOutcome outcome;
  platform::EventLoop* events = nullptr;
  std::jthread worker;  // of Execute; declared last, so that it has ended before the rest goes

  ~Transfer() override { stop.request_stop(); }

  void Run(platform::HttpClient& http, const platform::HttpRequest& request) {
    platform::HttpOutcome result;
    try {
      result = http.Get(request, *this, stop.get_token());
    } catch (const std::exception&) {
      result.error = platform::HttpError::Other;
    }
    Finish(result);
  }

  void Finish(const platform::HttpOutcome& result) {
    const std::lock_guard lock(mutex);
    outcome = result;
    ended = true;
    events->Wake();
  }

  void Begin(const platform::HttpHead& answer) override {
    const std::lock_guard lock(mutex);
    head = answer;
    headArrived = true;
    events->Wake();
  }

  bool Write(std::span<const std::byte> bytes) override {
    std::unique_lock lock(mutex);
    while (buffer.size() - start >= kLargestLead) {
      if (stop.stop_requested()) return false;
      taken.wait_for(lock, kStopPoll);
    }
    if (start >= kLargestLead || start == buffer.size()) {
      buffer.erase(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(start));
      start = 0;
    }
    if (start == buffer.size()) events->Wake();
    buffer.insert(buffer.end(), bytes.begin(), bytes.end());
    return true;
  }

  // What there is, at most `size` bytes; `atEnd` when nothing will follow.
  std::vector<std::byte> Take(std::size_t size, bool& atEnd) {
    const std::lock_guard lock(mutex);
    const std::size_t count = std::min(size, buffer.size() - start);
    const auto first = buffer.begin() + static_cast<std::ptrdiff_t>(start);
    std::vector<std::byte> chunk(first, first + static_cast<std::ptrdiff_t>(count));
    start += count;
    taken.notify_one();
    atEnd = ended && count == 0;
    return chunk;
  }

  bool Ended() const {
    const std::lock_guard lock(mutex);
    return ended;
  }
};

Inet1::Inet1(const startup::Services& services) : services_(services) {}

Inet1::~Inet1() { Cancel(); }

TextAnswer Inet1::OpenURL(const std::string& url, const TextOptions& options) {
  if (StillExecuting()) return {};
  const auto transfer = std::make_shared<Transfer>(services_.lifetime.Token());
  transfer->events = &services_.host.events;
  transfer_ = transfer;
  platform::HttpRequest request{.url = url};
  request.wholeLimitMs =
      requestTimeoutSeconds_ > 0 ? static_cast<std::uint32_t>(requestTimeoutSeconds_) * 1000 : kTextLimitMs;
  if (options.wholeLimitMs != 0) request.wholeLimitMs = options.wholeLimitMs;
  TextAnswer answer = FetchText(services_, std::move(request), options.cache, transfer->stop.get_token());
  transfer->Finish(answer.report.outcome);
  if (transfer_ == transfer) head_ = answer.head;
  return answer;
}

void Inet1::Execute(const std::string& url) {
  if (StillExecuting()) return;
  head_ = {};
  transfer_ = std::make_shared<Transfer>(services_.lifetime.Token());
  Transfer& transfer = *transfer_;
  transfer.events = &services_.host.events;
  platform::HttpRequest request{.url = url};
  if (requestTimeoutSeconds_ > 0) {
    request.stallLimitMs = static_cast<std::uint32_t>(requestTimeoutSeconds_) * 1000;
    request.connectLimitMs = std::min(request.connectLimitMs, request.stallLimitMs);
  }
  transfer.worker =
      std::jthread([&transfer, &http = services_.host.http, request] { transfer.Run(http, request); });
  announcing_ = services_.host.events.Timers().Start(kAnnounceMs, [this] { Announce(); });
}

void Inet1::Announce() {
  {
    const std::lock_guard lock(transfer_->mutex);
    if (!transfer_->headArrived && !transfer_->ended) return;
    head_ = transfer_->head;
  }
  StopAnnouncing();
  StateChanged(head_.status != 0 ? kStateResponseCompleted : kStateError);
}

void Inet1::StopAnnouncing() {
  services_.host.events.Timers().Stop(announcing_);
  announcing_ = 0;
}

std::vector<std::byte> Inet1::GetChunk(std::size_t size) {
  const std::shared_ptr<Transfer> transfer = transfer_;  // a handler may cancel it meanwhile
  if (!transfer || size == 0) return {};
  for (;;) {
    bool atEnd = false;
    std::vector<std::byte> chunk = transfer->Take(size, atEnd);
    if (!chunk.empty() || atEnd) return chunk;
    services_.host.events.WaitEvents(kRoundMs);
  }
}

bool Inet1::BodyFailed() const {
  if (!transfer_) return true;
  const std::lock_guard lock(transfer_->mutex);
  return transfer_->ended && !transfer_->outcome.Complete();
}

std::string Inet1::GetHeader(const std::string& name) const { return head_.Header(base::Lower(name)); }

void Inet1::Cancel() {
  StopAnnouncing();
  std::erase_if(retired_, [](const auto& transfer) { return transfer->Ended(); });
  if (!transfer_) return;
  transfer_->stop.request_stop();
  if (!transfer_->Ended()) retired_.push_back(transfer_);
  transfer_.reset();
}

bool Inet1::StillExecuting() const { return transfer_ && (announcing_ != 0 || !transfer_->Ended()); }

}  // namespace web
