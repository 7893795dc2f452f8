#pragma once

#include <functional>
#include <stop_token>
#include <string>

#include "controls/main_window.hpp"
#include "platform/network_watch.hpp"
#include "settings/modGameIni.hpp"
#include "settings/sound_table.hpp"
#include "startup/instance_lock.hpp"
#include "startup/services.hpp"
#include "startup/unattended_dialogs.hpp"
#include "ui/frmMain.hpp"
#include "ui/frmNotify.hpp"
#include "ui/frmOpciones.hpp"
#include "ui/screen.hpp"
#include "update/chunked_transfer.hpp"
#include "update/repair.hpp"
#include "update/rights_offer.hpp"
#include "update/run_mode.hpp"
#include "update/update_check.hpp"
#include "web/news_query.hpp"

// How the process was started, all UTF-8.
struct Start {
  std::string executable;   // full path
  std::string commandLine;  // everything after the program's name
};

// The composition root: every record and module of one running launcher, in order of dependency.
class Launcher {
 public:
  // Host and screen outlive the launcher.
  Launcher(const platform::Host& host, ui::Screen& screen, const Start& start);
  ~Launcher();
  Launcher(const Launcher&) = delete;

  // Start-up: from the folders to the running timers. Returns early when the program ends meanwhile.
  void Main();

  // Handles events until the program ends; the exit status.
  int RunEvents();

  // Unloads every window; the program ends then.
  void CloseLauncher();

  // The parts that tests look at.
  startup::Lifetime& Life() { return lifetime_; }
  controls::MainWindow& MainWindow() { return frmMain_; }
  ui::frmOpciones& Options() { return options_; }
  update::Mode Mode() const { return mode_.Now(); }

 private:
  void StartUp(int& line);
  void AttemptAndNote(const char* what, const std::function<void()>& step);
  void ProbeFolder();
  void PrepareFolders();
  void PrepareScratch();
  void ReportDeployment();
  void TellOfCrash();
  void EndStaleClient();
  void MeetOtherInstances();
  void CopyManifest();
  void ShowMainWindow();
  void EraseCache();
  void OfferInstalledGame();
  bool IsProcessNameRunning(const std::string& imageName);
  ui::frmMain::Actions WindowActions();
  void ShowOptions();
  void HandOver();
  void ForgetShowRequest();

  startup::Folders folders_;
  std::string executableBaseName_;
  startup::RunFlags flags_;
  startup::UnattendedDialogs unattended_;
  platform::Host host_;
  ui::Screen& screen_;
  startup::Lifetime lifetime_;
  startup::ErrorRecorder recorder_;
  startup::Deployment deployment_;
  startup::InstanceLock instance_;
  startup::Services services_;

  controls::MainWindow frmMain_;
  web::DownloadState state_;
  web::Hosts hosts_;
  web::Inet1 inet_;
  web::smodXmlHttp transfers_;
  web::ScriptBudget scripts_;
  modGeneral::HostSelection selection_;
  modGeneral::ServerList servers_;
  web::NewsQuery news_;

  settings::modGameIni gameIni_;
  settings::SoundTable sounds_;

  bool handedOver_ = false;  // another launcher, started by this one, goes on

  update::RunMode mode_;
  update::smodUnzip unzip_;
  update::modCompression compression_;
  update::CounterStore counters_;
  update::MirrorRound mirrors_;
  update::Trust trust_;
  update::Download download_;
  update::ChunkedTransfer chunked_;
  update::PatchInstallation installation_;
  update::IndexStage index_;
  update::LibraryCheck libraries_;
  update::GameLaunch launch_;
  update::RightsOffer rights_;
  update::InstalledGame installed_;
  update::UpdateCheck check_;
  update::Repair repair_;

  ui::SettingsServices settingsServices_;
  ui::frmOpciones options_;
  ui::frmNotify notify_;
  ui::frmMain mainForm_;
  platform::NetworkWatch network_;
  // A box that waits for an answer does not keep the program from ending.
  std::stop_callback<std::function<void()>> closeBoxes_;
};
