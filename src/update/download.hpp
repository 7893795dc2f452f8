#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "update/index_file.hpp"
#include "update/mirror_round.hpp"
#include "update/smodUnzip.hpp"
#include "update/trust.hpp"
#include "web/download_state.hpp"
#include "web/smodXmlHttp.hpp"

namespace update {

enum class DownloadResult {
  Done,
  TryAgain,   // timed out; the next update tick is to try again
  Stopped,    // given up, or what came is of no use; `reason` tells
  Cancelled,  // the launcher is closing
};

struct Fetched {
  DownloadResult result = DownloadResult::Stopped;
  std::string reason{};  // of Stopped, for the player: a few words in Spanish, no full stop
};

// What is done with a file that came whole.
struct FileUse {
  std::function<std::string(const std::string& file)> judge{};  // why it is of no use, in a few words
  std::optional<AddedFile> added{};                             // comes into the game with its archive
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
    MirrorRound& mirrors;
    Trust& trust;
    smodUnzip& unzip;
    std::function<void()> closeLauncher;
  };

  explicit Download(const Collaborators& with) : with_(with) {}

  // The folder of the mirror from which the current stage downloads: "OldAct/" or "NewAct2/".
  std::string remoteFolder;

  // The archives that DescargarArchivo will be asked for after the present one, in their order: they are
  // fetched while that one is unpacked.
  std::vector<std::string> following;
  void ForgetFollowing();    // what was fetched and not asked for goes; what was interrupted stays
  void ForgetInterrupted();  // nothing that was interrupted is of use any longer

  // The player is told how far these archives together are, from the first one on that DescargarArchivo is
  // asked for until EndWhole.
  void BeginWhole(const std::vector<std::string>& archives);
  void EndWhole();

  // The packed files that DownloadClient will be asked for next are fetched and proved, several at a time,
  // until ForgetFollowing.
  void FetchPacked(const std::vector<IndexRecord>& records);

  // What DownloadClient reports to, and calls again and again while a file is on its way.
  struct PackedWork {
    startup::FailureList& failures;
    std::function<void()> meanwhile;
  };

  // One packed file of the index, numbered from 1 among `count`, into the update folder, from whichever
  // mirror gives it with the content that the index names. False when none did, or nobody vouches for it;
  // there is no file then.
  bool DownloadClient(std::int32_t index, std::int32_t count, const IndexRecord& record,
                      const PackedWork& work);

  // One named file into FetchDir, from whichever mirror gives a good one; with `unpack` its archive is
  // unpacked over the game and deleted. Without, it is judged, and nothing is told to the player when no
  // mirror has a good one.
  Fetched DescargarArchivo(const std::string& name, bool unpack, const FileUse& use = {});

  // The complete client archive. Players' launchers have always had it; nothing starts it today.
  void DescargarCliente();

 private:
  Fetched FetchArchive(const std::string& name, bool unpack, const FileUse& use, int& line);
  Attempt AttemptArchive(const std::string& name, const web::Expected& expected, bool unpack,
                         const FileUse& use, int& line);
  std::optional<web::Expected> ExpectedOf(const std::string& name) const;
  Attempt NotGood(const web::TransferReport& report, const std::string& url);
  Attempt UseArchive(const std::string& url, const FileUse& use);
  Attempt JudgeFile(const FileUse& use);
  Attempt WithRoom(const std::function<Attempt()>& attempt);
  std::string UrlOf(const std::string& name) const;
  web::FileRequest RequestFor(const std::string& name, const web::Expected& expected) const;
  void FetchFollowing();
  std::optional<web::FileRequest> PackedRequest(const IndexRecord& record) const;
  Attempt AttemptPacked(const web::FileRequest& request, const std::function<void()>& meanwhile);
  Attempt BadContent(const std::string& file, const std::string& why);
  Fetched OnTimeOut(int timeouts, const std::string& why);
  void AwaitClient();
  bool TimedOut() const;
  void RemoveTarget();
  void Pause();  // one round of a wait loop

  void CountOne(const web::TransferReport& report);

  Collaborators with_;
  std::unique_ptr<ArchivePreparation> prepared_;  // of the first archive that follows
  int TimeoutCount = 0;
  int SilentRetryCount = 0;
};

}  // namespace update
