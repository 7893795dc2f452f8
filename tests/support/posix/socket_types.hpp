#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

namespace support::native {

using Handle = int;
using Size = socklen_t;

constexpr int kSendFlags = MSG_NOSIGNAL;

}  // namespace support::native
