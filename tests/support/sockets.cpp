#include "support/sockets.hpp"

#include <stdexcept>

#include "support/native_sockets.hpp"

namespace support {
namespace {

native::Handle HandleOf(std::intptr_t handle) { return static_cast<native::Handle>(handle); }

sockaddr_in AddressOf(const std::string& address, std::uint16_t port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(port);
  if (inet_pton(AF_INET, address.c_str(), &result.sin_addr) != 1) throw std::runtime_error("bad address");
  return result;
}

template <class Value>
void SetOption(native::Handle handle, int level, int option, const Value& value) {
  setsockopt(handle, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

void MakeReady(std::intptr_t handle) {
  native::MakeNonBlocking(HandleOf(handle));
  SetOption(HandleOf(handle), IPPROTO_TCP, TCP_NODELAY, 1);
}

Socket New() {
  native::Start();
  Socket socket(static_cast<std::intptr_t>(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)));
  if (!socket.Valid()) throw std::runtime_error("no socket");
  return socket;
}

std::ptrdiff_t Outcome(std::ptrdiff_t count) {
  if (count >= 0) return count;
  return native::WouldBlock() ? 0 : -1;
}

}  // namespace

Socket& Socket::operator=(Socket&& other) noexcept {
  Close();
  handle_ = other.Release();
  return *this;
}

Socket Socket::Bound(const std::string& address) {
  Socket socket = New();
  const sockaddr_in where = AddressOf(address, 0);
  if (bind(HandleOf(socket.handle_), reinterpret_cast<const sockaddr*>(&where), sizeof where) != 0) {
    throw std::runtime_error("cannot bind " + address);
  }
  MakeReady(socket.handle_);
  return socket;
}

Socket Socket::Connected(const std::string& address, std::uint16_t port) {
  Socket socket = New();
  MakeReady(socket.handle_);
  const sockaddr_in where = AddressOf(address, port);
  connect(HandleOf(socket.handle_), reinterpret_cast<const sockaddr*>(&where), sizeof where);
  return socket;
}

void Socket::Listen(int backlog) {
  if (listen(HandleOf(handle_), backlog) != 0) throw std::runtime_error("cannot listen");
}

Socket Socket::Accept() {
  Socket accepted(static_cast<std::intptr_t>(accept(HandleOf(handle_), nullptr, nullptr)));
  if (accepted.Valid()) MakeReady(accepted.handle_);
  return accepted;
}

std::uint16_t Socket::Port() const {
  sockaddr_in where{};
  native::Size size = sizeof where;
  getsockname(HandleOf(handle_), reinterpret_cast<sockaddr*>(&where), &size);
  return ntohs(where.sin_port);
}

bool Socket::WaitReadable(int milliseconds) const {
  return native::Wait(HandleOf(handle_), true, milliseconds);
}

bool Socket::WaitWritable(int milliseconds) const {
  return native::Wait(HandleOf(handle_), false, milliseconds);
}

std::ptrdiff_t Socket::Receive(char* into, std::size_t size) {
  const std::ptrdiff_t count = recv(HandleOf(handle_), into, static_cast<native::Size>(size), 0);
  return count == 0 ? -1 : Outcome(count);
}

std::ptrdiff_t Socket::Send(std::string_view bytes) {
  return Outcome(
      send(HandleOf(handle_), bytes.data(), static_cast<native::Size>(bytes.size()), native::kSendFlags));
}

void Socket::ResetOnClose() { SetOption(HandleOf(handle_), SOL_SOCKET, SO_LINGER, linger{1, 0}); }

void Socket::Close() {
  if (Valid()) native::Close(HandleOf(Release()));
}

}  // namespace support
