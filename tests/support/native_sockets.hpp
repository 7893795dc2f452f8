#pragma once

// Handle, Size and kSendFlags, from the system's own folder
#include "socket_types.hpp"

namespace support::native {

void Start();  // before the first socket
void MakeNonBlocking(Handle handle);
bool Wait(Handle handle, bool reading, int milliseconds);
bool WouldBlock();  // why the last call failed
void Close(Handle handle);

}  // namespace support::native
