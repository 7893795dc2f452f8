#include "startup/blocking.hpp"

#include <atomic>
#include <cstdint>
#include <exception>
#include <optional>
#include <thread>

namespace startup {
namespace {

// The work wakes the loop when it ends, so this limit only paces `onRound` and costs no latency.
constexpr std::uint32_t kRoundMs = 50;

}  // namespace

// A thread of its own for each call: starting one takes some ten microseconds, far less than the request that
// follows, and the HTTP client keeps its connections for whichever thread comes next. Calls nest (a handler
// may start another one meanwhile), which a fixed pool would have to make room for.
void RunBlocking(const Services& services, const std::function<void(std::stop_token)>& work,
                 const std::function<void()>& onRound, std::stop_token stop) {
  std::atomic<bool> ended = false;
  std::exception_ptr failure;
  std::optional<Lifetime::Work> underWay(std::in_place, services.lifetime);
  std::jthread worker([&](std::stop_token token) {
    try {
      work(token);
    } catch (...) {
      failure = std::current_exception();
    }
    underWay.reset();
    ended.store(true, std::memory_order_release);
    services.host.events.Wake();
  });
  {
    // Stops are asked for on this thread only, so these callbacks never run while they are being destroyed.
    const auto passOn = [&worker] { worker.request_stop(); };
    const std::stop_callback atTheEnd(services.lifetime.Token(), passOn);
    const std::stop_callback onDemand(stop, passOn);
    for (bool last = false; !last;) {
      if (!ended.load(std::memory_order_acquire)) services.host.events.WaitEvents(kRoundMs);
      last = ended.load(std::memory_order_acquire);
      if (onRound) onRound();
    }
  }
  worker.join();
  if (failure) std::rethrow_exception(failure);
}

}  // namespace startup
