#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

namespace support::native {

using Handle = SOCKET;
using Size = int;

constexpr int kSendFlags = 0;

}  // namespace support::native
