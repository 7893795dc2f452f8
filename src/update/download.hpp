#pragma once

#include <functional>
#include <string>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "update/index_file.hpp"
#include "update/smodUnzip.hpp"
#include "web/download_state.hpp"
#include "web/smodXmlHttp.hpp"

namespace update {

enum class DownloadResult {
  Done,
  TryAgain,      // timed out; the next update tick is to try again
  GivenUp,       // timed out, and the player does not want another try
  UnpackFailed,  // reported to the player, archive deleted
  Failed,        // a run-time error, reported
  Cancelled,     // the launcher is closing
};

// Brings files from the chosen mirror to disk and keeps the player informed; asks before it gives up.
class Download {
 public:
  struct Collaborators {
    const startup::Services& services;
    controls::MainWindow& frmMain;
    web::DownloadState& state;
    const web::Hosts& hosts;
    web::smodXmlHttp& transfers;
    smodUnzip& unzip;
    std::function<void()> closeLauncher;
  };

  explicit Download(const Collaborators& with) : with_(with) {}

  // The folder of the mirror from which the current stage downloads: "OldAct/" or "NewAct2/".
  std::string remoteFolder;

  // One packed file of the index, numbered from 1 among `count`, into the update folder; false when it did
  // not come.
  bool DownloadClient(std::int32_t index, std::int32_t count, const IndexRecord& record);

  // One named file into AppPath; with `unpack` its archive is unpacked over the game and deleted. Stops
  // tmrUpdates when it is done.
  DownloadResult DescargarArchivo(const std::string& name, bool unpack);

  // The complete client archive.
  void DescargarCliente();

 private:
  DownloadResult FetchArchive(const std::string& name, const std::string& url, bool unpack, int& line);
  DownloadResult FinishArchive(bool unpack);
  DownloadResult UnpackerMissing(bool& mayTryAgain);
  DownloadResult OnTimeOut();
  void AwaitClient();
  bool TimedOut() const;
  void RemoveTarget();
  void Pause();  // one round of a wait loop

  Collaborators with_;
  int TimeoutCount = 0;
  int SilentRetryCount = 0;
};

}  // namespace update
