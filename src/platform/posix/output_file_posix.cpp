#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>

#include "platform/files.hpp"
#include "platform/posix/system_error.hpp"
#include "platform/posix/unique_fd.hpp"

namespace platform {
namespace {

constexpr mode_t kNewFileMode = 0666, kNewProgramMode = 0777;  // less the umask

std::string NeighbourOf(const std::string& path) {
  static std::atomic<unsigned> count{0};
  return path + "." + std::to_string(getpid()) + "-" + std::to_string(++count) + ".tmp";
}

void WriteAll(int fd, std::span<const std::byte> bytes, const std::string& path) {
  while (!bytes.empty()) {
    const ssize_t count = write(fd, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) RaiseErrno(errno, path);
    bytes = bytes.subspan(static_cast<std::size_t>(count));
  }
}

}  // namespace

// The file has no name until Commit where the file system can do that, so that not even a killed process
// leaves anything; elsewhere it is a neighbour from the start.
struct OutputFile::Handle {
  std::string path;
  std::string neighbour;
  bool named = false;
  Existing existing;
  UniqueFd fd;

  void Open() {
    fd =
        UniqueFd(open((FolderOf(path) + kSeparator).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, kNewFileMode));
    if (!fd) {
      fd = UniqueFd(open(neighbour.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode));
      if (!fd) RaiseErrno(errno, path);
      named = true;
    }
    struct stat old;
    if (stat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode)) {
      // As far as the system lets us: a replaced program stays executable.
      [[maybe_unused]] const int ignored = fchmod(fd.get(), old.st_mode & 0777);
    }
  }

  void Name() {
    if (named) return;
    const std::string self = "/proc/self/fd/" + std::to_string(fd.get());
    if (linkat(AT_FDCWD, self.c_str(), AT_FDCWD, neighbour.c_str(), AT_SYMLINK_FOLLOW) != 0) {
      RaiseErrno(errno, path);
    }
    named = true;
  }

  ~Handle() {
    if (named) unlink(neighbour.c_str());
  }
};

OutputFile::OutputFile(const std::string& path, Existing existing) : handle_(std::make_unique<Handle>()) {
  handle_->path = path;
  handle_->neighbour = NeighbourOf(path);
  handle_->existing = existing;
  handle_->Open();
}

OutputFile::~OutputFile() = default;
OutputFile::OutputFile(OutputFile&&) noexcept = default;

void OutputFile::Write(std::span<const std::byte> bytes) {
  WriteAll(handle_->fd.get(), bytes, handle_->path);
}
void OutputFile::Write(std::string_view text) { Write(std::as_bytes(std::span(text))); }

void OutputFile::Commit(Lasting lasting) {
  Handle& file = *handle_;
  if (lasting == Lasting::Yes && fsync(file.fd.get()) != 0) RaiseUnlessHarmless(errno, file.path);
  file.Name();
  const unsigned flags = file.existing == Existing::Refuse ? RENAME_NOREPLACE : 0;
  if (renameat2(AT_FDCWD, file.neighbour.c_str(), AT_FDCWD, file.path.c_str(), flags) != 0) {
    RaiseErrno(errno, file.path);
  }
  file.named = false;
}

struct NewFile::Handle {
  UniqueFd fd;
  std::string path;
};

NewFile::NewFile(const std::string& path, Kind kind) : handle_(std::make_unique<Handle>()) {
  handle_->path = path;
  const mode_t mode = kind == Kind::Program ? kNewProgramMode : kNewFileMode;
  handle_->fd = UniqueFd(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
  if (!handle_->fd) RaiseErrno(errno, path);
}

NewFile::NewFile(std::unique_ptr<Handle> handle) : handle_(std::move(handle)) {}

NewFile NewFile::Continuing(const std::string& path) {
  auto handle = std::make_unique<Handle>();
  handle->path = path;
  handle->fd = UniqueFd(open(path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC));
  if (!handle->fd) RaiseErrno(errno, path);
  return NewFile(std::move(handle));
}

NewFile::~NewFile() = default;
NewFile::NewFile(NewFile&&) noexcept = default;

void NewFile::Write(std::span<const std::byte> bytes) { WriteAll(handle_->fd.get(), bytes, handle_->path); }

void CloneFile(const std::string& from, const std::string& to) {
  InputFile source(from);
  OutputFile target(to);
  std::array<std::byte, 64 * 1024> piece;
  while (const std::size_t count = source.Read(piece)) target.Write(std::span(piece).first(count));
  target.Commit();
}

void WriteWhole(const std::string& path, std::string_view bytes) {
  OutputFile file(path);
  file.Write(bytes);
  file.Commit();
}

void AppendTo(const std::string& path, std::string_view bytes) {
  const UniqueFd file(open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, kNewFileMode));
  if (!file) RaiseErrno(errno, path);
  WriteAll(file.get(), std::as_bytes(std::span(bytes)), path);
}

}  // namespace platform
