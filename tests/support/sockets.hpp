#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace support {

// A TCP socket of the tests, closed when destroyed. None of its calls blocks longer than the wait it is
// given.
class Socket {
 public:
  Socket() = default;
  explicit Socket(std::intptr_t handle) : handle_(handle) {}
  Socket(Socket&& other) noexcept : handle_(other.Release()) {}
  Socket& operator=(Socket&& other) noexcept;
  ~Socket() { Close(); }

  // Bound to a free port of `address` (dotted). Without Listen a connection to it is refused.
  static Socket Bound(const std::string& address);
  static Socket Connected(const std::string& address,
                          std::uint16_t port);  // perhaps not yet, when it returns
  void Listen(int backlog);
  Socket Accept();  // invalid when nobody waits

  bool Valid() const { return handle_ != kNone; }
  std::uint16_t Port() const;
  bool WaitReadable(int milliseconds) const;
  bool WaitWritable(int milliseconds) const;
  // Bytes read or sent, 0 when none could be right now, -1 at the end or after an error.
  std::ptrdiff_t Receive(char* into, std::size_t size);
  std::ptrdiff_t Send(std::string_view bytes);
  void ResetOnClose();  // the other side reads an error instead
  void Close();

 private:
  static constexpr std::intptr_t kNone = -1;
  std::intptr_t Release() {
    const std::intptr_t handle = handle_;
    handle_ = kNone;
    return handle;
  }

  std::intptr_t handle_ = kNone;
};

}  // namespace support
