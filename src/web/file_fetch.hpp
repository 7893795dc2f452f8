#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>
#include <string>

#include "platform/http_client.hpp"
#include "web/file_sink.hpp"
#include "web/transfer_report.hpp"

namespace web {

// A file of a mirror and where it goes.
struct FileRequest {
  std::string url;
  std::string path;  // must not exist
  Expected expected{};
  std::string part{};               // where what an interruption leaves lies; empty: it leaves nothing
  std::uint64_t most = UINT64_MAX;  // bytes; nothing is taken of a file that is larger
  std::uint32_t wholeLimitMs = 0;   // 0: only standstill ends it
  // Whether what came is of use; asked on the thread that fetches.
  std::function<bool(const std::string& path, const std::stop_token& stop)> proof{};
};

struct FetchedFile {
  TransferReport report;
  bool kept = false;      // there is a file now; a page, too, where nothing was expected
  bool tooLarge = false;  // larger than the most
};

// Fetches one file on the thread that calls, going on where an earlier transfer was interrupted. What fails
// on this machine is in the report; nothing is raised.
FetchedFile FetchFile(platform::HttpClient& http, const FileRequest& request, Received& received,
                      const std::stop_token& stop);

}  // namespace web
