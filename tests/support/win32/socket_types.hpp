#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

namespace support::native {

using Handle = SOCKET;
using Size = int;

constexpr int kSendFlags = 0;

void Start();  // before the first socket
void MakeNonBlocking(Handle handle);
bool Wait(Handle handle, bool reading, int milliseconds);
bool WouldBlock();  // why the last call failed
void Close(Handle handle);

}  // namespace support::native
