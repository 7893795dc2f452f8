#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/file_lock.hpp"
#include "platform/posix/system_error.hpp"
#include "platform/posix/unique_fd.hpp"

namespace platform {
namespace {

constexpr mode_t kMode = 0666;  // less the umask

class HeldFile : public FileLock {
 public:
  HeldFile(std::string path, UniqueFd fd) : path_(std::move(path)), fd_(std::move(fd)) {}
  ~HeldFile() override { unlink(path_.c_str()); }  // while it is held, so that nobody's new one goes

 private:
  std::string path_;
  UniqueFd fd_;
};

// Whether the file has its name still: the holder before removed it, perhaps after it was opened here.
bool Named(int fd) {
  struct stat status;
  return fstat(fd, &status) == 0 && status.st_nlink > 0;
}

}  // namespace

std::unique_ptr<FileLock> FileLock::TryTake(const std::string& path) {
  for (;;) {
    UniqueFd fd(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, kMode));
    if (!fd) RaiseErrno(errno, path);
    while (flock(fd.get(), LOCK_EX | LOCK_NB) != 0) {
      if (errno == EWOULDBLOCK) return nullptr;
      if (errno != EINTR) RaiseErrno(errno, path);
    }
    if (Named(fd.get())) return std::make_unique<HeldFile>(path, std::move(fd));
  }
}

}  // namespace platform
