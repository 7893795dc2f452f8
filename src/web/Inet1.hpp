#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "controls/control.hpp"
#include "platform/host.hpp"
#include "startup/lifetime.hpp"

namespace web {

inline constexpr int kStateError = 11;
inline constexpr int kStateResponseCompleted = 12;

// The main window's internet transfer control: one request at a time.
class Inet1 {
 public:
  Inet1(platform::Host& host, startup::Lifetime& lifetime);
  ~Inet1();

  // Fetches a URL and returns the body as text (UTF-8; at most 16 MiB), empty on failure or when a request is
  // still executing. Events are handled meanwhile.
  std::string OpenURL(const std::string& url);

  // Starts a request whose answer is read with GetChunk. StateChanged follows from the event loop:
  // kStateResponseCompleted when the head of the answer has come, kStateError when there is none.
  void Execute(const std::string& url);

  // The next at most `size` bytes of the body, waiting (with events) until they are there; empty at the end.
  std::vector<std::byte> GetChunk(std::size_t size);
  // Whether the body ended before it was complete.
  bool BodyFailed() const;

  std::string GetHeader(const std::string& name) const;  // of the last answer, name in any case
  void Cancel();
  bool StillExecuting() const;
  void SetRequestTimeout(int seconds) { requestTimeoutSeconds_ = seconds; }  // 0: the platform's own

  controls::Event<int> StateChanged;

 private:
  struct Transfer;

  platform::Host& host_;
  startup::Lifetime& lifetime_;
  int requestTimeoutSeconds_ = 0;
  std::shared_ptr<Transfer> transfer_;
};

}  // namespace web
