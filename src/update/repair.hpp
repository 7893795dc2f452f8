#pragma once

#include <functional>

#include "controls/main_window.hpp"
#include "startup/services.hpp"

namespace update {

// The repair button: forgets every applied patch and every proved file, so that the next check fetches and
// proves all.
class Repair {
 public:
  Repair(const startup::Services& services, controls::MainWindow& frmMain, std::function<void()> startOver)
      : services_(services), frmMain_(frmMain), startOver_(std::move(startOver)) {}

  void cmdReiniciarUpdates_Click();

 private:
  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  std::function<void()> startOver_;  // tells a check that is under way
};

}  // namespace update
