#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "startup/services.hpp"

namespace web {

// How long the web scripts (address, server list, news) may hold up whoever asks them, all of them together.
// Real time is counted, since the limits of a transfer are real time too.
class ScriptBudget {
 public:
  explicit ScriptBudget(std::chrono::milliseconds whole = std::chrono::seconds(4)) : whole_(whole) {}

  // The next question has the whole budget again.
  void Renew() { ends_.reset(); }

  // What is left, counted from the first call on.
  std::uint32_t LeftMs() {
    if (!ends_) ends_ = Clock::now() + whole_;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*ends_ - Clock::now());
    return left.count() > 0 ? static_cast<std::uint32_t>(left.count()) : 0;
  }

 private:
  using Clock = std::chrono::steady_clock;

  std::chrono::milliseconds whole_;
  std::optional<Clock::time_point> ends_;
};

// Counts the attempts of a query whose answer did not come: at most 100, none once the program is ending or
// the budget is spent, and pauses between them that grow. Whole answers, whatever they say, are no reason to
// ask again: the caller stops there.
class Attempts {
 public:
  static constexpr int kMost = 100;

  Attempts(const startup::Services& services, ScriptBudget& budget, int alreadyUsed = 0)
      : services_(services), budget_(budget), used_(alreadyUsed) {}

  // Whether one more may be made, after a pause that handles events when it is not the first; counts it.
  bool Next();

  // How long this attempt may take from connecting to the last byte, in milliseconds.
  std::uint32_t LimitMs() { return budget_.LeftMs() + 1; }

 private:
  bool May() { return !services_.lifetime.Ending() && used_ < kMost && budget_.LeftMs() > 0; }

  const startup::Services& services_;
  ScriptBudget& budget_;
  int used_;
  std::uint32_t pauseMs_ = 0;  // before the next attempt
};

}  // namespace web
