#pragma once

#include <cstdint>
#include <string>

namespace platform {

class Clock {
 public:
  virtual ~Clock() = default;

  // Milliseconds since an arbitrary point that never run backwards and do not wrap, those left out in which
  // the machine slept; timers are due by these.
  virtual std::uint64_t Milliseconds() = 0;

  // The system's millisecond tick counter (time since the machine started) with its top bit cleared.
  virtual std::uint32_t SystemUptime() = 0;

  // Blocks the calling thread; handles no events.
  virtual void Sleep(std::uint32_t milliseconds) = 0;

  // Seconds since 1970 (UTC), as far as the player set the computer's date right.
  virtual std::int64_t UnixTime() = 0;

  // Local date (short form) and time (long form) in the user's regional format, UTF-8.
  virtual std::string DateText() = 0;
  virtual std::string TimeText() = 0;
};

constexpr std::uint32_t kUptimeMask = 0x7FFFFFFF;

// Milliseconds from `start` to `now`, both of SystemUptime, across its wrap.
constexpr std::uint32_t Elapsed(std::uint32_t now, std::uint32_t start) {
  return (now - start) & kUptimeMask;
}

}  // namespace platform
