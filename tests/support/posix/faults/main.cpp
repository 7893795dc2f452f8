// Preloaded into a program, fails or ends it at one step of its work on the files below a folder:
//   FAULT_BELOW   the folder
//   FAULT_KIND    full: from that step on the disk takes nothing more; denied: that step is refused; kill:
//   the
//                 program is gone before it
//   FAULT_AT      the number of the step, from 1
//   FAULT_REPORT  a file that is made when the step has come
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

enum class Step { Grow, Name };  // takes room on the disk; only changes names

std::string Setting(const char* name) {
  const char* value = getenv(name);
  return value ? value : "";
}

struct Plan {
  const std::string below = Setting("FAULT_BELOW"), kind = Setting("FAULT_KIND"),
                    report = Setting("FAULT_REPORT");
  const long at = atol(Setting("FAULT_AT").c_str());
  std::atomic<long> steps = 0;
};

Plan& ThePlan() {
  static Plan* const plan = new Plan;  // outlives every thread
  return *plan;
}

std::string PathOf(int fd) {
  char path[4096];
  const std::string link = "/proc/self/fd/" + std::to_string(fd);
  const ssize_t size = readlink(link.c_str(), path, sizeof path);
  return size > 0 ? std::string(path, static_cast<std::size_t>(size)) : std::string();
}

// The error that the step is to end with; 0 when it may go on.
int Fault(Step step, const std::string& path) {
  Plan& plan = ThePlan();
  if (plan.at == 0 || path.compare(0, plan.below.size(), plan.below) != 0) return 0;
  if (plan.kind == "full" && step != Step::Grow) return 0;
  const long now = ++plan.steps;
  if (now == plan.at) {
    syscall(SYS_close, syscall(SYS_openat, AT_FDCWD, plan.report.c_str(), O_CREAT | O_WRONLY, 0600));
    if (plan.kind == "kill") raise(SIGKILL);
  }
  if (plan.kind == "full") return now >= plan.at ? ENOSPC : 0;
  return now == plan.at ? EACCES : 0;
}

template <class Call>
long Unless(int fault, Call call) {
  if (fault == 0) return call();
  errno = fault;
  return -1;
}

}  // namespace

extern "C" {

ssize_t write(int fd, const void* bytes, size_t count) {
  const int kept = errno;
  struct stat about;
  const bool file = fstat(fd, &about) == 0 && S_ISREG(about.st_mode);
  errno = kept;
  return Unless(file ? Fault(Step::Grow, PathOf(fd)) : 0,
                [&] { return syscall(SYS_write, fd, bytes, count); });
}

int open(const char* path, int flags, ...) {
  va_list list;
  va_start(list, flags);
  const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(list, mode_t) : 0;
  va_end(list);
  const bool writes = (flags & (O_WRONLY | O_RDWR | O_CREAT)) != 0;
  const int fault = writes ? Fault((flags & O_CREAT) != 0 ? Step::Grow : Step::Name, path) : 0;
  return static_cast<int>(Unless(fault, [&] { return syscall(SYS_openat, AT_FDCWD, path, flags, mode); }));
}

int mkdir(const char* path, mode_t mode) noexcept {
  return static_cast<int>(Unless(Fault(Step::Grow, path), [&] { return syscall(SYS_mkdir, path, mode); }));
}

int renameat2(int from, const char* old, int to, const char* path, unsigned flags) noexcept {
  return static_cast<int>(
      Unless(Fault(Step::Name, path), [&] { return syscall(SYS_renameat2, from, old, to, path, flags); }));
}

int rename(const char* old, const char* path) noexcept { return renameat2(AT_FDCWD, old, AT_FDCWD, path, 0); }

int linkat(int from, const char* old, int to, const char* path, int flags) noexcept {
  return static_cast<int>(
      Unless(Fault(Step::Name, path), [&] { return syscall(SYS_linkat, from, old, to, path, flags); }));
}

int unlink(const char* path) noexcept {
  return static_cast<int>(Unless(Fault(Step::Name, path), [&] { return syscall(SYS_unlink, path); }));
}

int rmdir(const char* path) noexcept {
  return static_cast<int>(Unless(Fault(Step::Name, path), [&] { return syscall(SYS_rmdir, path); }));
}

}  // extern "C"
