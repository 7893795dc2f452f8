#pragma once

#include <functional>

#include "startup/services.hpp"
#include "update/counter_store.hpp"
#include "update/rights_offer.hpp"

namespace update {

// The repair button: forgets every applied patch and every proved file, so that the next check fetches and
// proves all.
class Repair {
 public:
  // `confirmed` is called when everything is forgotten.
  Repair(const startup::Services& services, CounterStore& counters, RightsOffer& rights,
         std::function<void()> confirmed)
      : services_(services), counters_(counters), rights_(rights), confirmed_(std::move(confirmed)) {}

  void cmdReiniciarUpdates_Click();

 private:
  const startup::Services& services_;
  CounterStore& counters_;
  RightsOffer& rights_;
  std::function<void()> confirmed_;
};

}  // namespace update
