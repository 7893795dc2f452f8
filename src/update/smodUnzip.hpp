#pragma once

#include <string>

#include "platform/host.hpp"
#include "startup/error_recorder.hpp"
#include "startup/folders.hpp"
#include "startup/lifetime.hpp"

namespace update {

// Unpacks whole archives over a folder.
class smodUnzip {
 public:
  smodUnzip(platform::Host& host, const startup::Folders& folders, startup::ErrorRecorder& recorder,
            startup::Lifetime& lifetime)
      : host_(host), folders_(folders), recorder_(recorder), lifetime_(lifetime) {}

  // Proves the archive, unpacks it into a staging folder of the installation and moves each file over its old
  // one, so that a reader finds old or new files, never halves. On failure, which is shown to the player,
  // false; an archive that is not wholly good changes nothing. Raises 430 when the system has no unpacker.
  bool Unzip(const std::string& archive, const std::string& directory);

 private:
  platform::Host& host_;
  const startup::Folders& folders_;
  startup::ErrorRecorder& recorder_;
  startup::Lifetime& lifetime_;
};

}  // namespace update
