#pragma once

#include <functional>
#include <string>

#include "controls/main_window.hpp"
#include "startup/instance_lock.hpp"
#include "startup/services.hpp"
#include "update/counter_store.hpp"
#include "update/download.hpp"
#include "update/game_launch.hpp"
#include "update/index_stage.hpp"
#include "update/patch_installation.hpp"
#include "update/update_list.hpp"
#include "web/Inet1.hpp"
#include "web/host_selection.hpp"

namespace update {

// The body of the timer tmrUpdates: patches, then the index, then the game.
class UpdateCheck {
 public:
  struct Collaborators {
    const startup::Services& services;
    startup::InstanceLock& instance;
    controls::MainWindow& frmMain;
    web::DownloadState& state;
    const web::Hosts& hosts;
    web::Inet1& inet;
    modGeneral::HostSelection& selection;
    CounterStore& counters;
    Download& download;
    IndexStage& index;
    PatchInstallation& installation;
    GameLaunch& launch;
    std::function<void(bool)> enablePlay;
  };

  explicit UpdateCheck(const Collaborators& with) : with_(with) {}

  void tmrUpdates_Timer();

  // What was installed and proved counts no longer (a repair): a run that is under way ends and starts over.
  void StartOver() { startOver_ = true; }

 private:
  enum class Step {
    GoOn,
    NextTick,  // the run ends; the timer's next tick tries again
    Stop,      // the run ends with the timer off; the player may press play again
    Ended,     // the program is ending
  };

  Step Run(int& line);
  Step PatchStage(int& line);
  Step ApplyPatches(const PatchCounts& remote, const PatchCounts& local);
  Step ApplyPatch(std::size_t category, int number);
  Step IndexLoop(int& line);
  void Complete(int& line);
  void RemoveLooseBitmaps();
  void Show(const char* status);
  void Finish(Step step);

  Collaborators with_;
  bool startOver_ = false;
  bool confirmHost_ = false;  // the last run failed, so the mirror may be gone
  std::string working_;       // what the run is at, for the error report
};

}  // namespace update
