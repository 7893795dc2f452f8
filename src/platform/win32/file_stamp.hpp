#pragma once

#include <windows.h>

#include <cstdint>

#include "platform/files.hpp"

namespace platform {

// From any of the system's records that tell size and time of last change of a file.
template <class Data>
FileStamp StampFrom(const Data& data) {
  const auto joined = [](DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; };
  const FILETIME& time = data.ftLastWriteTime;
  return {joined(data.nFileSizeHigh, data.nFileSizeLow),
          static_cast<std::int64_t>(joined(time.dwHighDateTime, time.dwLowDateTime))};
}

}  // namespace platform
