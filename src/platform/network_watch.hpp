#pragma once

#include <functional>
#include <memory>

namespace platform {

// Tells when this machine's network addresses change, as when a cable goes, a Wi-Fi comes or the machine has
// woken. Nothing on Linux.
class NetworkWatch {
 public:
  // `changed` is called on another thread, never after the destructor.
  explicit NetworkWatch(std::function<void()> changed);
  ~NetworkWatch();
  NetworkWatch(const NetworkWatch&) = delete;

 private:
  struct Watcher;
  std::unique_ptr<Watcher> watcher_;
};

}  // namespace platform
