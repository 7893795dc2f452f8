#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "base/runtime_error.hpp"
#include "base/unique_handle.hpp"
#include "platform/files.hpp"
#include "platform/posix/system_error.hpp"
#include "platform/posix/unique_fd.hpp"

namespace platform {
namespace {

namespace fs = std::filesystem;

bool StatOf(const std::string& path, struct stat& status) { return stat(path.c_str(), &status) == 0; }

FileStamp StampFrom(const struct stat& status) {
  return {static_cast<std::uint64_t>(status.st_size),
          status.st_mtim.tv_sec * std::int64_t{1'000'000'000} + status.st_mtim.tv_nsec};
}

struct DirectoryTraits : base::NullIsNone<DIR*> {
  static void Close(DIR* directory) { closedir(directory); }
};
using UniqueDirectory = base::UniqueHandle<DirectoryTraits>;

// Not every file system tells it with the name.
unsigned char KindOf(DIR* directory, const dirent& entry) {
  struct stat status;
  if (entry.d_type != DT_UNKNOWN ||
      fstatat(dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
    return entry.d_type;
  return IFTODT(status.st_mode);
}

}  // namespace

bool IsFile(const std::string& path) {
  struct stat status;
  return StatOf(path, status) && S_ISREG(status.st_mode);
}

bool IsFolder(const std::string& path) {
  struct stat status;
  return StatOf(path, status) && S_ISDIR(status.st_mode);
}

bool IsThere(const std::string& path) {
  struct stat status;
  return lstat(path.c_str(), &status) == 0;
}

std::uint64_t FreeSpace(const std::string& folder) {
  struct statvfs volume;
  if (statvfs(folder.c_str(), &volume) != 0) return UINT64_MAX;
  return static_cast<std::uint64_t>(volume.f_bavail) * volume.f_frsize;
}

std::optional<FileStamp> StampOf(const std::string& path) {
  struct stat status;
  if (!StatOf(path, status) || !S_ISREG(status.st_mode)) return std::nullopt;
  return StampFrom(status);
}

std::vector<std::optional<FileStamp>> StampsOf(const std::string& folder,
                                               std::span<const std::string_view> names) {
  std::vector<std::optional<FileStamp>> stamps(names.size());
  const UniqueFd directory(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!directory) return stamps;
  for (std::size_t i = 0; i < names.size(); ++i) {
    struct stat status;
    if (fstatat(directory.get(), std::string(names[i]).c_str(), &status, 0) == 0 && S_ISREG(status.st_mode))
      stamps[i] = StampFrom(status);
  }
  return stamps;
}

void RemoveFile(const std::string& path) {
  if (unlink(path.c_str()) != 0) RaiseErrno(errno, path);
}

bool TryRemoveFile(const std::string& path) {
  return unlink(path.c_str()) == 0 || errno == ENOENT || errno == ENOTDIR;
}

void RemoveTree(const std::string& folder) {
  std::error_code error;
  fs::remove_all(folder, error);
  if (error) RaiseErrno(error.value(), folder);
}

void RemoveEmptyFolders(const std::string& folder) {
  std::error_code error;
  std::vector<fs::path> found;  // parents before their children
  for (fs::recursive_directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (entry->symlink_status(error).type() == fs::file_type::directory) found.push_back(entry->path());
  }
  for (auto path = found.rbegin(); path != found.rend(); ++path) rmdir(path->c_str());
}

bool TryRemoveEmptyFolder(const std::string& path) { return rmdir(path.c_str()) == 0 || errno == ENOENT; }

bool CanWriteTo(const std::string& folder) {
  static std::atomic<unsigned> count{0};
  const std::string probe = folder + "/." + std::to_string(getpid()) + "-" + std::to_string(++count) + ".tmp";
  const UniqueFd made(open(probe.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
  return made && unlink(probe.c_str()) == 0;
}

std::string HolderOf(const std::string&) { return {}; }

void MakeFolder(const std::string& path) {
  if (mkdir(path.c_str(), 0777) == 0 || (errno == EEXIST && IsFolder(path))) return;
  const int code = errno;
  if (code == EEXIST) throw base::RuntimeError(base::ErrorNumber::PathFileAccessError);
  RaiseErrno(code == ENOENT ? ENOTDIR : code, path);
}

void MakeFolders(const std::string& path) {
  for (std::size_t end = path.find('/', 1); end != std::string::npos; end = path.find('/', end + 1)) {
    const std::string level = path.substr(0, end);
    if (!IsFolder(level)) MakeFolder(level);
  }
  if (!path.empty()) MakeFolder(path);
}

void ReplaceFileWith(const std::string& from, const std::string& to) {
  if (rename(from.c_str(), to.c_str()) != 0) RaiseErrno(errno, IsFile(from) ? to : from);
}

void RenameFile(const std::string& from, const std::string& to) {
  if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return;
  if (errno == EINVAL && access(to.c_str(), F_OK) != 0) {  // a file system that cannot refuse by itself
    if (rename(from.c_str(), to.c_str()) == 0) return;
  }
  RaiseErrno(errno, from);
}

void FlushFile(const std::string& path) {
  const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file || fsync(file.get()) != 0) RaiseUnlessHarmless(errno, path);
}

// One flush of the whole file system costs about as much as one of a single file.
void FlushTree(const std::string& folder) {
  const UniqueFd directory(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!directory || syncfs(directory.get()) != 0) RaiseUnlessHarmless(errno, folder);
}

std::vector<FolderEntry> ListFolder(const std::string& folder) {
  std::vector<FolderEntry> found;
  try {
    for (const fs::directory_entry& entry : fs::directory_iterator(folder))
      found.push_back({entry.path().filename().native(), entry.is_directory() && !entry.is_symlink()});
  } catch (const fs::filesystem_error& error) {
    RaiseErrno(error.code().value() == ENOENT ? ENOTDIR : error.code().value(), folder);
  }
  return found;
}

std::vector<FoundFile> ListTree(const std::string& folder, std::stop_token stop) {
  std::vector<FoundFile> found;
  std::vector<std::string> folders{""};  // relative, each with its trailing separator
  while (!folders.empty() && !stop.stop_requested()) {
    const std::string relative = std::move(folders.back()), path = folder + kSeparator + relative;
    folders.pop_back();
    const UniqueDirectory directory(opendir(path.c_str()));
    if (!directory) RaiseErrno(errno == ENOENT ? ENOTDIR : errno, path);
    while (const dirent* entry = readdir(directory.get())) {
      const std::string_view name = entry->d_name;
      const unsigned char kind = KindOf(directory.get(), *entry);
      if (kind == DT_REG) found.push_back({relative + entry->d_name});
      if (kind == DT_DIR && name != "." && name != "..") folders.push_back(relative + entry->d_name + "/");
    }
  }
  std::sort(found.begin(), found.end(),
            [](const FoundFile& a, const FoundFile& b) { return a.path < b.path; });
  return found;
}

struct InputFile::Handle {
  UniqueFd fd;
  std::string path;
  FileStamp opened;
};

InputFile::InputFile(const std::string& path) : handle_(std::make_unique<Handle>()) {
  handle_->path = path;
  // Not blocking, so that a pipe in the place of a file does not hold the program up.
  handle_->fd = UniqueFd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!handle_->fd) RaiseErrno(errno, path);
  struct stat status;
  if (fstat(handle_->fd.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
    throw base::RuntimeError(base::ErrorNumber::PathFileAccessError);
  }
  handle_->opened = StampFrom(status);
}

InputFile::~InputFile() = default;
InputFile::InputFile(InputFile&&) noexcept = default;

FileStamp InputFile::Stamp() const {
  struct stat status;
  if (fstat(handle_->fd.get(), &status) != 0) RaiseErrno(errno, handle_->path);
  return StampFrom(status);
}

FileStamp InputFile::Opened() const { return handle_->opened; }

std::uint64_t InputFile::Size() const { return Stamp().size; }

std::size_t InputFile::Read(std::span<std::byte> into) {
  for (;;) {
    const ssize_t count = read(handle_->fd.get(), into.data(), into.size());
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) RaiseErrno(errno, handle_->path);
  }
}

std::size_t InputFile::ReadAt(std::uint64_t offset, std::span<std::byte> into) const {
  for (;;) {
    const ssize_t count = pread(handle_->fd.get(), into.data(), into.size(), static_cast<off_t>(offset));
    if (count >= 0) return static_cast<std::size_t>(count);
    if (errno != EINTR) RaiseErrno(errno, handle_->path);
  }
}

void InputFile::Seek(std::uint64_t offset) {
  if (lseek(handle_->fd.get(), static_cast<off_t>(offset), SEEK_SET) < 0) RaiseErrno(errno, handle_->path);
}

}  // namespace platform
