#pragma once

#include <string>

#include "startup/services.hpp"

namespace update {

struct Unpacked {
  bool done = false;
  std::string reason{};     // when it is not done: a few words in Spanish, for log and status line
  bool ownFailure = false;  // not the archive is at fault but this machine (a full disk, a file in use)
};

// Unpacks whole archives over a folder.
class smodUnzip {
 public:
  explicit smodUnzip(const startup::Services& services) : services_(services) {}

  // Proves the archive, unpacks it into a staging folder of the installation and moves each file over its old
  // one, so that a reader finds old or new files, never halves. An archive that is not wholly good changes
  // nothing.
  Unpacked Unzip(const std::string& archive, const std::string& directory);

 private:
  const startup::Services& services_;
};

}  // namespace update
