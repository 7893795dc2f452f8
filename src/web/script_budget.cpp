#include "web/script_budget.hpp"

#include <algorithm>

namespace web {
namespace {

constexpr std::uint32_t kFirstPauseMs = 50, kLongestPauseMs = 1'000;
constexpr std::uint32_t kSliceMs = 50;  // the window handles its events after each

}  // namespace

bool Attempts::Next() {
  for (std::uint32_t waited = 0; waited < pauseMs_ && May(); waited += kSliceMs) {
    services_.host.clock.Sleep(kSliceMs);
    services_.host.events.DoEvents();
  }
  pauseMs_ = std::clamp(pauseMs_ * 2, kFirstPauseMs, kLongestPauseMs);
  if (!May()) return false;
  ++used_;
  return true;
}

}  // namespace web
