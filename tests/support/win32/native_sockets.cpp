#include <stdexcept>

#include "support/native_sockets.hpp"

namespace support::native {
namespace {

class Winsock {
 public:
  Winsock() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 2), &data) != 0) throw std::runtime_error("no Winsock");
  }
  ~Winsock() { WSACleanup(); }
};

}  // namespace

void Start() { static const Winsock winsock; }

void MakeNonBlocking(Handle handle) {
  u_long nonBlocking = 1;
  ioctlsocket(handle, FIONBIO, &nonBlocking);
}

bool Wait(Handle handle, bool reading, int milliseconds) {
  fd_set set;
  FD_ZERO(&set);
  FD_SET(handle, &set);
  timeval limit{milliseconds / 1000, milliseconds % 1000 * 1000};
  return select(0, reading ? &set : nullptr, reading ? nullptr : &set, nullptr, &limit) > 0;
}

bool WouldBlock() { return WSAGetLastError() == WSAEWOULDBLOCK; }

void Close(Handle handle) { closesocket(handle); }

}  // namespace support::native
