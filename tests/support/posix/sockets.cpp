#include "support/sockets.hpp"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace support {
namespace {

int Descriptor(std::intptr_t handle) { return static_cast<int>(handle); }

sockaddr_in AddressOf(const std::string& address, std::uint16_t port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(port);
  if (inet_pton(AF_INET, address.c_str(), &result.sin_addr) != 1) throw std::runtime_error("bad address");
  return result;
}

void MakeReady(int descriptor) {
  fcntl(descriptor, F_SETFL, fcntl(descriptor, F_GETFL) | O_NONBLOCK);
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  const int on = 1;
  setsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

Socket New() {
  Socket socket(::socket(AF_INET, SOCK_STREAM, 0));
  if (!socket.Valid()) throw std::runtime_error("no socket");
  return socket;
}

bool Wait(int descriptor, short events, int milliseconds) {
  pollfd entry{descriptor, events, 0};
  return poll(&entry, 1, milliseconds) > 0;
}

std::ptrdiff_t Outcome(ssize_t count) {
  if (count >= 0) return count;
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR ? 0 : -1;
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
  if (bind(Descriptor(socket.handle_), reinterpret_cast<const sockaddr*>(&where), sizeof where) != 0) {
    throw std::runtime_error("cannot bind " + address);
  }
  MakeReady(Descriptor(socket.handle_));
  return socket;
}

Socket Socket::Connected(const std::string& address, std::uint16_t port) {
  Socket socket = New();
  MakeReady(Descriptor(socket.handle_));
  const sockaddr_in where = AddressOf(address, port);
  connect(Descriptor(socket.handle_), reinterpret_cast<const sockaddr*>(&where), sizeof where);
  return socket;
}

void Socket::Listen(int backlog) {
  if (listen(Descriptor(handle_), backlog) != 0) throw std::runtime_error("cannot listen");
}

Socket Socket::Accept() {
  Socket accepted(accept(Descriptor(handle_), nullptr, nullptr));
  if (accepted.Valid()) MakeReady(Descriptor(accepted.handle_));
  return accepted;
}

std::uint16_t Socket::Port() const {
  sockaddr_in where{};
  socklen_t size = sizeof where;
  getsockname(Descriptor(handle_), reinterpret_cast<sockaddr*>(&where), &size);
  return ntohs(where.sin_port);
}

bool Socket::WaitReadable(int milliseconds) const { return Wait(Descriptor(handle_), POLLIN, milliseconds); }

bool Socket::WaitWritable(int milliseconds) const { return Wait(Descriptor(handle_), POLLOUT, milliseconds); }

std::ptrdiff_t Socket::Receive(char* into, std::size_t size) {
  const ssize_t count = recv(Descriptor(handle_), into, size, 0);
  return count == 0 ? -1 : Outcome(count);
}

std::ptrdiff_t Socket::Send(std::string_view bytes) {
  return Outcome(send(Descriptor(handle_), bytes.data(), bytes.size(), MSG_NOSIGNAL));
}

void Socket::ResetOnClose() {
  const linger now{1, 0};
  setsockopt(Descriptor(handle_), SOL_SOCKET, SO_LINGER, &now, sizeof now);
}

void Socket::Close() {
  if (Valid()) close(Descriptor(Release()));
}

}  // namespace support
