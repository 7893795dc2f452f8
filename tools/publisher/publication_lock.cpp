#include "publisher/publication_lock.hpp"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstring>

#include "publisher/failure.hpp"

namespace publisher {

PublicationLock::PublicationLock(const Layout& layout, Kind kind)
    : folder_(open(layout.Root().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  if (!folder_) throw Failure(layout.Root() + ": " + std::strerror(errno));
  if (flock(folder_.get(), (kind == Kind::Writing ? LOCK_EX : LOCK_SH) | LOCK_NB) == 0) return;
  throw Failure(layout.Root() + ": " +
                (errno == EWOULDBLOCK ? "another publisher is at work on it" : std::strerror(errno)));
}

}  // namespace publisher
