#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>

#include "platform/clock.hpp"

namespace platform {

// What a timer's handler does to the events behind it. One that lets them run takes messages away from
// whatever loop it is called in.
enum class TickKind { Short, LetsEventsRun };

// The periodic timers of the interface thread. A handler is never entered again while it is still running;
// other timers go on firing from the events that it lets run.
class TimerQueue {
 public:
  using Id = int;

  explicit TimerQueue(Clock& clock) : clock_(clock) {}

  // Due for the first time one interval from now. An interval below 1 ms counts as 1 ms.
  Id Start(std::uint32_t intervalMs, std::function<void()> tick, TickKind kind = TickKind::Short);
  void Stop(Id id);  // also from inside its own tick; an unknown id is fine

  void FireDue();          // runs every timer that is due, once
  void FireDueAndShort();  // leaves those that let events run for later
  std::optional<std::uint64_t>
  UntilNext();  // ms until one that is not running is due; none when there is none

  // Called whenever a timer is started, so that a loop can arm its wake-up.
  std::function<void()> onChange;

 private:
  struct Entry {
    std::uint32_t interval;
    std::uint64_t due;
    std::function<void()> tick;
    TickKind kind;
    bool running = false;
  };

  void Fire(bool all);

  Clock& clock_;
  std::map<Id, Entry> entries_;
  Id last_ = 0;
};

}  // namespace platform
