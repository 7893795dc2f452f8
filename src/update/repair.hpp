#pragma once

#include <functional>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "update/counter_store.hpp"
#include "update/rights_offer.hpp"

namespace update {

// The repair button: forgets every applied patch and every proved file, so that the next check fetches and
// proves all.
class Repair {
 public:
  // `confirmed` has ForgetInstalled called as soon as that may be.
  Repair(const startup::Services& services, controls::MainWindow& frmMain, CounterStore& counters,
         RightsOffer& rights, std::function<void()> confirmed)
      : services_(services),
        frmMain_(frmMain),
        counters_(counters),
        rights_(rights),
        confirmed_(std::move(confirmed)) {}

  void cmdReiniciarUpdates_Click();

  // Waits while another launcher updates this folder. False, and reported unless the program ends, when not
  // everything is forgotten.
  bool ForgetInstalled();

 private:
  template <class Body>
  bool Reported(Body&& body);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  CounterStore& counters_;
  RightsOffer& rights_;
  std::function<void()> confirmed_;
};

}  // namespace update
