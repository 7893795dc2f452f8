#pragma once

#include <deque>
#include <functional>
#include <string>
#include <utility>

#include "platform/event_loop.hpp"
#include "platform/posix/unique_fd.hpp"

namespace platform {

// Events of the Linux build: lines of one input, timers, wake-ups.
class PosixEventLoop : public EventLoop {
 public:
  explicit PosixEventLoop(Clock& clock);

  void DoEvents() override;
  void WaitEvents(std::uint32_t limitMs) override;
  void Wake() override;
  TimerQueue& Timers() override { return timers_; }

  // From now on hands every line of `input` (a descriptor that stays the caller's; its line end cut off) to
  // `onLine`, one at a time, from DoEvents and WaitEvents. A line that comes while a handler runs is handed
  // over by the events that the handler lets run. The handler returns whether it takes another line in the
  // same round of events. The end of input is no event.
  void ReadLines(int input, std::function<bool(const std::string&)> onLine);

  // `action` is called before each round of events.
  void BeforeEvents(std::function<void()> action) { beforeEvents_ = std::move(action); }

  // Hands these lines over again, before any other.
  void GiveBack(std::deque<std::string> lines);

  // Whether there is no input, or it has ended and its last line was handed over.
  bool InputEnded() const { return input_ < 0 && lines_.empty(); }

 private:
  void ReadInput();
  void TakeLines();

  TimerQueue timers_;
  UniqueFd wake_;
  int input_ = -1;
  std::function<bool(const std::string&)> onLine_;
  std::function<void()> beforeEvents_ = [] {};
  std::string unfinished_;
  std::deque<std::string> lines_;
};

}  // namespace platform
