#pragma once

#include <cstdint>
#include <string>

namespace web {

// The one record of the transfer in progress; touched on the interface thread only.
struct DownloadState {
  std::string TargetPath;           // the file being downloaded, which the clean-up paths delete
  bool Finished = false;            // DownloadUrlToFile has written the file
  bool Completed = false;           // the chunked transfer ended
  bool Failed = false;              // the chunked transfer lost its connection
  std::uint32_t WatchdogStart = 0;  // SystemUptime of the last sign of life
  bool CancelRequested = false;     // the player leaves the launcher
  bool TimedOut = false;
  bool RetryPending =
      false;  // to be tried again on the next update tick; what a run returns decides that today
};

// The mirror bases in use; each ends in "/" or is empty before one was chosen.
struct Hosts {
  std::string CurrentUpdateURL;
  std::string WebBaseURL;
};

}  // namespace web
