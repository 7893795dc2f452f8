#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
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

  // One piece of work on another thread, from before it begins until it has ended.
  class Work {
   public:
    explicit Work(Lifetime& lifetime) : lifetime_(lifetime) { lifetime_.CountWork(1); }
    ~Work() { lifetime_.CountWork(-1); }
    Work(const Work&) = delete;

   private:
    Lifetime& lifetime_;
  };

  // Waits, and handles no events meanwhile, until no work is under way; false when the limit came first.
  bool AwaitWork(std::chrono::milliseconds limit) {
    std::unique_lock lock(mutex_);
    return workEnded_.wait_for(lock, limit, [this] { return working_ == 0; });
  }

 private:
  void CountWork(int more) {
    const std::lock_guard lock(mutex_);
    working_ += more;
    workEnded_.notify_all();
  }

  platform::EventLoop& events_;
  std::stop_source stop_;
  int exitStatus_ = 0;
  std::mutex mutex_;
  std::condition_variable workEnded_;
  int working_ = 0;
};

}  // namespace startup
