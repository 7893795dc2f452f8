#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "support/native_sockets.hpp"

namespace support::native {

void Start() {}

void MakeNonBlocking(Handle handle) {
  fcntl(handle, F_SETFL, fcntl(handle, F_GETFL) | O_NONBLOCK);
  fcntl(handle, F_SETFD, FD_CLOEXEC);
}

bool Wait(Handle handle, bool reading, int milliseconds) {
  pollfd entry{handle, static_cast<short>(reading ? POLLIN : POLLOUT), 0};
  return poll(&entry, 1, milliseconds) > 0;
}

bool WouldBlock() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

void Close(Handle handle) { close(handle); }

}  // namespace support::native
