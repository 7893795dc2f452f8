#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/runtime_error.hpp"
#include "platform/http_client.hpp"

namespace web {

// How one transfer ended: what the server said, what the system said, how much came, and what went wrong on
// this side.
struct TransferReport {
  platform::HttpOutcome outcome;
  std::uint64_t bytes = 0;                   // of the body, as they came
  std::optional<std::uint64_t> announced{};  // how many the server meant to send, where it said so
  std::optional<base::RuntimeError> own{};   // a failure of this machine (a full disk, a file in use)
  bool resumed = false;                      // it went on where an earlier transfer was interrupted

  bool otherContent = false;  // what came is not the file that was expected
  bool disproved = false;     // it came as it should, but its proof failed (FileRequest)

  // Whether the whole answer came and was kept, or was a page, whatever its status.
  bool Arrived() const { return outcome.Complete() && !own && !otherContent; }
  // Whether it is what was asked for, and no page that says why not.
  bool Good() const { return Arrived() && outcome.status >= 200 && outcome.status < 300; }

  // In a few words why it is not good, for the player (Spanish, no full stop).
  std::string Reason() const;
  // The same for the log, on one line, with every number that is known.
  std::string Details() const;
};

}  // namespace web
