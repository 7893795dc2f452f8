#pragma once

#include <stop_token>

#include "platform/event_loop.hpp"

namespace startup {

// Whether the program is to go on. Every wait loop asks Ending and returns promptly once it is true;
// transfers on other threads watch the stop token.
class Lifetime {
 public:
  explicit Lifetime(platform::EventLoop& events) : events_(events) {}

  // The first call decides the process's exit status.
  void End(int exitStatus) {
    if (Ending()) return;
    exitStatus_ = exitStatus;
    stop_.request_stop();
    events_.Wake();
  }
  bool Ending() const { return stop_.stop_requested(); }
  int ExitStatus() const { return exitStatus_; }
  std::stop_token Token() const { return stop_.get_token(); }

 private:
  platform::EventLoop& events_;
  std::stop_source stop_;
  int exitStatus_ = 0;
};

}  // namespace startup
