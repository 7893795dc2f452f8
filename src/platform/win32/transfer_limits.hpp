#pragma once

#include <windows.h>

#include <stop_token>

#include "platform/http_client.hpp"
#include "platform/win32/awake_time.hpp"
#include "platform/win32/handles.hpp"

namespace platform {

// When an answer has become too slow: fewer than one byte a second over the limit.
class SpeedWatch {
 public:
  explicit SpeedWatch(std::uint32_t limitMs)
      : limitMs_(limitMs), enough_(limitMs < 1000 ? 1 : limitMs / 1000), start_(AwakeMs()) {}
  void Restart() {
    start_ = AwakeMs();
    bytes_ = 0;
  }
  void Count(std::uint64_t bytes) {
    bytes_ += bytes;
    if (bytes_ >= enough_) Restart();
  }
  void Excuse(std::uint64_t ms) { start_ += ms; }  // time that was not the server's
  std::uint64_t Deadline() const { return start_ + limitMs_; }

 private:
  std::uint32_t limitMs_;
  std::uint64_t enough_;  // bytes that buy another full limit
  std::uint64_t start_;
  std::uint64_t bytes_ = 0;
};

struct EventSetter {
  HANDLE event;
  void operator()() const { SetEvent(event); }
};

// The limits of one HttpRequest over all its hops, and the thread's one place to sleep in.
class TransferLimits {
 public:
  TransferLimits(const HttpRequest& request, std::stop_token stop);

  void BeginHop();   // connecting starts
  void Connected();  // the request is on its way
  bool IsConnected() const { return connected_; }
  void Count(std::uint64_t bytes) { speed_.Count(bytes); }
  void Excuse(std::uint64_t ms) { speed_.Excuse(ms); }

  // Sleeps until `event` is set, a limit is reached or a little time has passed; tells the limit, or the
  // stop, that was there before it slept.
  HttpError Sleep(const unique_event& event);

 private:
  const HttpRequest& request_;
  SpeedWatch speed_;
  std::uint64_t wholeDeadline_;
  std::uint64_t connectDeadline_ = 0;
  bool connected_ = false;
  std::stop_token stop_;
  unique_event stopped_;
  std::stop_callback<EventSetter> onStop_;  // gone before the event that it sets
};

}  // namespace platform
