#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace platform {

// Whether fewer bytes than one a second came during the last `limit`.
class SpeedWatch {
 public:
  using Clock = std::chrono::steady_clock;  // which stands still while the machine sleeps

  explicit SpeedWatch(std::chrono::milliseconds limit)
      : slice_(std::max(limit / kSlices, std::chrono::milliseconds(1))) {}

  void Stop() { started_ = {}; }
  void Start() {
    started_ = Clock::now();
    slices_.fill(0);
    newest_ = 0;
  }
  void Count(std::size_t bytes) {
    if (started_ == Clock::time_point{}) return;
    Advance();
    slices_[static_cast<std::size_t>(newest_ % kSlices)] += bytes;
  }
  bool TooSlow() {
    if (started_ == Clock::time_point{}) return false;
    Advance();
    if (newest_ < kSlices) return false;
    std::uint64_t sum = 0;
    for (const std::uint64_t bytes : slices_) sum += bytes;
    return sum * 1000 < static_cast<std::uint64_t>((slice_ * kSlices).count());
  }
  std::chrono::milliseconds Slice() const { return slice_; }

 private:
  static constexpr std::int64_t kSlices = 30;

  void Advance() {
    const std::int64_t now = (Clock::now() - started_) / slice_;
    const std::int64_t passed = std::min(now - newest_, kSlices);
    for (std::int64_t i = 0; i < passed; ++i) slices_[static_cast<std::size_t>((now - i) % kSlices)] = 0;
    newest_ = now;
  }

  std::chrono::milliseconds slice_;
  Clock::time_point started_;
  std::int64_t newest_ = 0;
  std::array<std::uint64_t, kSlices> slices_{};
};

}  // namespace platform
