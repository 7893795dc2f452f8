#pragma once

#include <string>

#include "startup/services.hpp"

namespace update {

// Unpacks whole archives over a folder.
class smodUnzip {
 public:
  explicit smodUnzip(const startup::Services& services) : services_(services) {}

  // Proves the archive, unpacks it into a staging folder of the installation and moves each file over its old
  // one, so that a reader finds old or new files, never halves. On failure, which is shown to the player,
  // false; an archive that is not wholly good changes nothing. Raises 430 when the system has no unpacker.
  bool Unzip(const std::string& archive, const std::string& directory);

 private:
  const startup::Services& services_;
};

}  // namespace update
