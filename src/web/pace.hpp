#pragma once

#include <cstdint>

#include "web/expected.hpp"

namespace web {

// How slowly a file whose size is known may come. Of one whose size is not only standstill ends the transfer.
struct Pace {
  std::uint64_t leastBytesPerSecond = 30 * 1024;  // on the average
  std::uint32_t leastLimitMs = 60'000;            // however small it is

  std::uint32_t LimitMs(const Expected& expected) const;  // 0: none
};

}  // namespace web
