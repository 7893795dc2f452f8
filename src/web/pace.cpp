#include "web/pace.hpp"

#include <algorithm>

namespace web {
namespace {

constexpr std::uint64_t kMostMs = UINT32_MAX;

}  // namespace

std::uint32_t Pace::LimitMs(const Expected& expected) const {
  if (!expected.size) return 0;
  const std::uint64_t bytes = std::min<std::uint64_t>(*expected.size, UINT64_MAX / 1000);
  const std::uint64_t milliseconds = bytes * 1000 / leastBytesPerSecond;
  return static_cast<std::uint32_t>(std::clamp<std::uint64_t>(milliseconds, leastLimitMs, kMostMs));
}

}  // namespace web
