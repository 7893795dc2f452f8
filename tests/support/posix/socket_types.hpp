#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace support::native {

using Handle = int;
using Size = socklen_t;

constexpr int kSendFlags = MSG_NOSIGNAL;

void Start();  // before the first socket
void MakeNonBlocking(Handle handle);
bool Wait(Handle handle, bool reading, int milliseconds);
bool WouldBlock();  // why the last call failed
void Close(Handle handle);

}  // namespace support::native
