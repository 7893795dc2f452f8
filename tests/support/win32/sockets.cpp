#include "support/sockets.hpp"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <stdexcept>

namespace support {
namespace {

class Winsock {
 public:
  Winsock() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("no Winsock");
  }
  ~Winsock() { WSACleanup(); }
};

SOCKET HandleOf(std::intptr_t handle) { return static_cast<SOCKET>(handle); }

sockaddr_in AddressOf(const std::string& address, std::uint16_t port) {
  sockaddr_in result{};
  result.sin_family = AF_INET;
  result.sin_port = htons(port);
  if (inet_pton(AF_INET, address.c_str(), &result.sin_addr) != 1) throw std::runtime_error("bad address");
  return result;
}

void MakeReady(SOCKET handle) {
  u_long nonBlocking = 1;
  ioctlsocket(handle, FIONBIO, &nonBlocking);
  const BOOL on = TRUE;
  setsockopt(handle, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
}

Socket New() {
  static const Winsock winsock;
  Socket socket(static_cast<std::intptr_t>(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP)));
  if (!socket.Valid()) throw std::runtime_error("no socket");
  return socket;
}

bool Wait(SOCKET handle, bool reading, int milliseconds) {
  fd_set set;
  FD_ZERO(&set);
  FD_SET(handle, &set);
  timeval limit{milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, reading ? &set : nullptr, reading ? nullptr : &set, nullptr, &limit) > 0;
}

std::ptrdiff_t Outcome(int count) {
  if (count >= 0) return count;
  return WSAGetLastError() == WSAEWOULDBLOCK ? 0 : -1;
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
  MakeReady(HandleOf(socket.handle_));
  return socket;
}

Socket Socket::Connected(const std::string& address, std::uint16_t port) {
  Socket socket = New();
  MakeReady(HandleOf(socket.handle_));
  const sockaddr_in where = AddressOf(address, port);
  connect(HandleOf(socket.handle_), reinterpret_cast<const sockaddr*>(&where), sizeof where);
  return socket;
}

void Socket::Listen(int backlog) {
  if (listen(HandleOf(handle_), backlog) != 0) throw std::runtime_error("cannot listen");
}

Socket Socket::Accept() {
  Socket accepted(static_cast<std::intptr_t>(accept(HandleOf(handle_), nullptr, nullptr)));
  if (accepted.Valid()) MakeReady(HandleOf(accepted.handle_));
  return accepted;
}

std::uint16_t Socket::Port() const {
  sockaddr_in where{};
  int size = sizeof where;
  getsockname(HandleOf(handle_), reinterpret_cast<sockaddr*>(&where), &size);
  return ntohs(where.sin_port);
}

bool Socket::WaitReadable(int milliseconds) const { return Wait(HandleOf(handle_), true, milliseconds); }

bool Socket::WaitWritable(int milliseconds) const { return Wait(HandleOf(handle_), false, milliseconds); }

std::ptrdiff_t Socket::Receive(char* into, std::size_t size) {
  const int count = recv(HandleOf(handle_), into, static_cast<int>(size), 0);
  return count == 0 ? -1 : Outcome(count);
}

std::ptrdiff_t Socket::Send(std::string_view bytes) {
  return Outcome(send(HandleOf(handle_), bytes.data(), static_cast<int>(bytes.size()), 0));
}

void Socket::ResetOnClose() {
  const linger now{1, 0};
  setsockopt(HandleOf(handle_), SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&now), sizeof now);
}

void Socket::Close() {
  if (Valid()) closesocket(HandleOf(Release()));
}

}  // namespace support
