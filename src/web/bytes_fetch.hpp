#pragma once

#include <cstddef>
#include <string>

#include "startup/services.hpp"
#include "web/pace.hpp"
#include "web/transfer_report.hpp"

namespace web {

struct Bytes {
  std::string bytes;  // as they came; empty unless the whole answer came
  TransferReport report;
};

// Fetches a file of at most `most` bytes into memory while events go on being handled. Its size is not known
// beforehand, so what comes is held to `pace` while it comes.
Bytes FetchBytes(const startup::Services& services, const std::string& url, std::size_t most,
                 const Pace& pace);

}  // namespace web
