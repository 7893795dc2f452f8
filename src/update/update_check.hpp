#pragma once

#include <exception>
#include <optional>
#include <string>

#include "controls/main_window.hpp"
#include "startup/instance_lock.hpp"
#include "startup/services.hpp"
#include "update/counter_store.hpp"
#include "update/download.hpp"
#include "update/game_launch.hpp"
#include "update/index_stage.hpp"
#include "update/installed_game.hpp"
#include "update/patch_installation.hpp"
#include "update/rights_offer.hpp"
#include "update/run_mode.hpp"
#include "update/trust.hpp"
#include "update/update_list.hpp"
#include "web/Inet1.hpp"
#include "web/host_selection.hpp"

namespace update {

// One run of the update: patches, then the index, then the game.
class UpdateCheck {
 public:
  struct Collaborators {
    const startup::Services& services;
    const RunMode& mode;
    startup::InstanceLock& instance;
    controls::MainWindow& frmMain;
    web::DownloadState& state;
    const web::Hosts& hosts;
    web::Inet1& inet;
    modGeneral::HostSelection& selection;
    MirrorRound& mirrors;
    Trust& trust;
    CounterStore& counters;
    Download& download;
    IndexStage& index;
    PatchInstallation& installation;
    GameLaunch& launch;
    RightsOffer& rights;
    InstalledGame& installed;
  };

  explicit UpdateCheck(const Collaborators& with) : with_(with) {}

  // What the timer tmrUpdates does. `hostInDoubt`: the mirror is confirmed before anything is asked of it.
  // Leaves nothing behind but what was installed, however it ends. Waits while another launcher updates this
  // folder.
  RunOutcome tmrUpdates_Timer(bool hostInDoubt);

 private:
  using Ended = std::optional<RunOutcome>;  // none: go on

  RunOutcome Run(int& line, bool hostInDoubt);
  Ended IndexLoop(int& line, bool hostInDoubt);
  bool MayGoOn() const { return with_.mode.MayGoOn() && !with_.trust.Outdated(); }
  Ended PatchStage(int& line, bool hostInDoubt);
  Ended AcceptPublication();
  RunOutcome OfferGame(const RunOutcome& stopped);
  Ended FetchCounts(PatchCounts& remote, PatchCounts& local, int& line);
  Ended FetchList(PatchCounts& remote, PatchCounts& local, int& line);
  Attempt AttemptList(PatchCounts& remote, PatchCounts& local, int& line);
  Ended ApplyPatches(const PatchCounts& remote, const PatchCounts& local);
  void PlanPatches(const PatchCounts& remote, const PatchCounts& local);
  Ended ApplyPatch(std::size_t category, int number);
  Ended Record(std::size_t category, int number);
  RunOutcome Complete(int& line);
  RunOutcome Unwritable();
  bool FolderWritable() const { return with_.services.flags.FolderWritable; }
  RunOutcome Interrupted() const;
  void RemoveLooseBitmaps();
  void RemoveScratch();
  void Show(const char* status);

  Collaborators with_;
  std::vector<std::string> patches_;  // names of those that this run installs, in their order
  std::size_t installed_ = 0;         // of them
  std::string working_;               // what the run is at, for the error report
  std::exception_ptr listError_;      // what the last list raised when it was read
};

}  // namespace update
