#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "controls/control.hpp"
#include "startup/services.hpp"
#include "web/text_fetch.hpp"
#include "web/text_options.hpp"

namespace web {

inline constexpr int kStateError = 11;
inline constexpr int kStateResponseCompleted = 12;

// The main window's internet transfer control: one request at a time.
class Inet1 {
 public:
  explicit Inet1(const startup::Services& services);
  ~Inet1();

  // Fetches a URL as text (at most 16 MiB) whatever the status; fails when a request is still executing.
  // Events are handled meanwhile.
  TextAnswer OpenURL(const std::string& url, const TextOptions& options = {});

  // Starts a request whose answer is read with GetChunk; nothing happens when one is still executing.
  // StateChanged follows from a timer of the event loop: kStateResponseCompleted when the head of the answer
  // has come, kStateError when there is none.
  void Execute(const std::string& url);

  // The next bytes of the body, at most `size`, waiting (with events) until there are some; empty at the end.
  // The transfer runs ahead by a bounded amount only.
  std::vector<std::byte> GetChunk(std::size_t size);
  // Whether the body ended before it was complete.
  bool BodyFailed() const;

  std::string GetHeader(const std::string& name) const;  // of the last answer, name in any case
  void Cancel();                                         // no StateChanged follows
  bool StillExecuting() const;
  // Of the requests that start from now on: how long OpenURL may take as a whole, and how long Execute may
  // receive nothing. 0: limits of the control's own.
  void SetRequestTimeout(int seconds) { requestTimeoutSeconds_ = seconds; }

  controls::Event<int> StateChanged;

 private:
  struct Transfer;

  void Announce();
  void StopAnnouncing();

  const startup::Services& services_;
  int requestTimeoutSeconds_ = 0;
  platform::HttpHead head_;  // of the last answer
  platform::TimerQueue::Id announcing_ = 0;
  std::shared_ptr<Transfer> transfer_;              // the current one, null when there is none
  std::vector<std::shared_ptr<Transfer>> retired_;  // cancelled ones whose threads may still be ending
};

}  // namespace web
