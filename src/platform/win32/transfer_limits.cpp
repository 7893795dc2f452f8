#include "platform/win32/transfer_limits.hpp"

#include <algorithm>

namespace platform {

TransferLimits::TransferLimits(const HttpRequest& request, std::stop_token stop)
    : request_(request),
      speed_(request.stallLimitMs),
      wholeDeadline_(request.wholeLimitMs == 0 ? UINT64_MAX : AwakeMs() + request.wholeLimitMs),
      stop_(std::move(stop)),
      stopped_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      onStop_(stop_, EventSetter{stopped_.get()}) {}

void TransferLimits::BeginHop() {
  connected_ = false;
  connectDeadline_ = AwakeMs() + request_.connectLimitMs;
}

void TransferLimits::Connected() {
  if (connected_) return;
  connected_ = true;
  speed_.Restart();
}

HttpError TransferLimits::Sleep(const unique_event& event) {
  if (stop_.stop_requested()) return HttpError::Cancelled;
  const std::uint64_t phaseDeadline = connected_ ? speed_.Deadline() : connectDeadline_;
  const std::uint64_t deadline = std::min(phaseDeadline, wholeDeadline_);
  const std::uint64_t now = AwakeMs();
  if (now >= deadline) {
    return !connected_ && phaseDeadline == deadline ? HttpError::CannotConnect : HttpError::Stalled;
  }
  const HANDLE handles[] = {event.get(), stopped_.get()};
  WaitForMultipleObjects(2, handles, FALSE,
                         static_cast<DWORD>(std::min<std::uint64_t>(deadline - now, MAXLONG)));
  return HttpError::None;
}

}  // namespace platform
