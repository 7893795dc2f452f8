#pragma once

#include <functional>

#include "controls/main_window.hpp"
#include "platform/host.hpp"
#include "startup/deployment.hpp"
#include "startup/error_recorder.hpp"
#include "startup/folders.hpp"

namespace update {

// The repair button: forgets every applied patch and every proved file, so that the next check fetches and
// proves all.
class Repair {
 public:
  Repair(platform::Host& host, const startup::Folders& folders, const startup::Deployment& deployment,
         startup::ErrorRecorder& recorder, controls::MainWindow& frmMain, std::function<void()> startOver)
      : host_(host),
        folders_(folders),
        deployment_(deployment),
        recorder_(recorder),
        frmMain_(frmMain),
        startOver_(std::move(startOver)) {}

  void cmdReiniciarUpdates_Click();

 private:
  platform::Host& host_;
  const startup::Folders& folders_;
  const startup::Deployment& deployment_;
  startup::ErrorRecorder& recorder_;
  controls::MainWindow& frmMain_;
  std::function<void()> startOver_;  // tells a check that is under way
};

}  // namespace update
