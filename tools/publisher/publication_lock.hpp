#pragma once

#include "platform/posix/unique_fd.hpp"
#include "publisher/layout.hpp"

namespace publisher {

// Keeps a second publisher off a publication while this lives; the system lets go of it when the process
// dies. Readers share it among themselves.
class PublicationLock {
 public:
  enum class Kind { Reading, Writing };
  PublicationLock(const Layout& layout, Kind kind);  // Failure when another publisher holds it

 private:
  platform::UniqueFd folder_;
};

}  // namespace publisher
