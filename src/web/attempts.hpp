#pragma once

#include <chrono>

#include "startup/lifetime.hpp"

namespace web {

// Counts the attempts of a query that is repeated until it is answered: at most 100, none once the program is
// ending, and no further one when they have taken half a minute together. Without the last a web host that
// accepts and stays silent would keep the player from playing for most of an hour. Real time is counted,
// since the limits of a transfer are real time too.
class Attempts {
 public:
  static constexpr int kMost = 100;

  explicit Attempts(const startup::Lifetime& lifetime, int alreadyUsed = 0)
      : lifetime_(lifetime), used_(alreadyUsed) {}

  // Whether one more may be made; counts it.
  bool Next() {
    const bool may = !lifetime_.Ending() && used_ < kMost && Clock::now() - started_ < kLongest;
    if (may) ++used_;
    return may;
  }

 private:
  using Clock = std::chrono::steady_clock;
  static constexpr std::chrono::seconds kLongest{30};

  const startup::Lifetime& lifetime_;
  int used_;
  Clock::time_point started_ = Clock::now();
};

}  // namespace web
