#pragma once

#include <cstdint>

#include "platform/timer_queue.hpp"

namespace platform {

// The interface thread's events: window messages (or lines of standard input) and timers.
class EventLoop {
 public:
  virtual ~EventLoop() = default;

  // Handles everything that is pending and every timer that is due, then returns.
  virtual void DoEvents() = 0;

  // As DoEvents, but when nothing is pending sleeps until something is, a timer is due, Wake is called, or
  // `limitMs` milliseconds have passed.
  virtual void WaitEvents(std::uint32_t limitMs) = 0;

  // Ends the sleep of WaitEvents, now or the next time. May be called from any thread.
  virtual void Wake() = 0;

  virtual TimerQueue& Timers() = 0;
};

}  // namespace platform
