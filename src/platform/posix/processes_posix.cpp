#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <thread>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "platform/machine.hpp"
#include "platform/posix/system_error.hpp"
#include "platform/posix/unique_fd.hpp"

namespace platform {
namespace {

// What posix_spawn is told about the child: its own session, no input or output of ours, no signal ignored.
class SpawnSettings {
 public:
  explicit SpawnSettings(const std::string& workingFolder) {
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    if (!workingFolder.empty()) posix_spawn_file_actions_addchdir_np(&actions, workingFolder.c_str());
    posix_spawnattr_init(&attributes);
    sigset_t defaults, none;
    sigemptyset(&none);
    sigemptyset(&defaults);
    sigaddset(&defaults, SIGPIPE);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &defaults);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSettings() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  SpawnSettings(const SpawnSettings&) = delete;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

// The words of a command line; double quotes hold blanks together.
std::vector<std::string> Words(const std::string& commandLine) {
  std::vector<std::string> words;
  bool quoted = false, open = false;
  for (const char c : commandLine) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ' ' && !quoted) {
      open = false;
      continue;
    }
    if (!open) words.emplace_back();
    open = true;
    if (c != '"') words.back() += c;
  }
  return words;
}

// A program that came out of an archive may lack the permission to be run.
void AllowRunning(const std::string& program) {
  struct stat status;
  if (access(program.c_str(), X_OK) == 0 || stat(program.c_str(), &status) != 0) return;
  chmod(program.c_str(), (status.st_mode & 0777) | S_IXUSR);
}

void Spawn(const std::string& program, const StartRequest& request) {
  // The program stands in front of its own words, unquoted, and may have blanks in its path.
  const bool inFront = request.commandLine.starts_with(request.program);
  std::vector<std::string> words =
      Words(inFront ? request.commandLine.substr(request.program.size()) : request.commandLine);
  if (inFront || words.empty()) words.emplace(words.begin());
  words.front() = program;
  std::vector<char*> arguments;
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  const SpawnSettings settings(request.workingFolder);
  pid_t child = 0;
  const int error = posix_spawn(&child, program.c_str(), &settings.actions, &settings.attributes,
                                arguments.data(), environ);
  if (error != 0) RaiseWithText(error, program);
  // Nobody else waits for the child, and it must not stay in the process list when it has ended.
  std::thread([child] { waitpid(child, nullptr, 0); }).detach();
}

std::string LinkText(const std::filesystem::path& link) {
  std::error_code error;
  return std::filesystem::read_symlink(link, error).string();
}

// A small file of /proc, which does not know its own size.
std::string ProcText(const std::string& path) {
  std::string text;
  const UniqueFd file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::array<char, 4096> piece;
  if (!file) return text;
  const ssize_t count = read(file.get(), piece.data(), piece.size());
  if (count > 0) text.assign(piece.data(), static_cast<std::size_t>(count));
  return text;
}

std::string WithoutFolders(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }

// The program itself, the name it was started by (a Windows program runs inside a loader), and the script
// that an interpreter runs, told by the process's short name.
void AddNamesOf(const std::string& processFolder, std::set<std::string>& names) {
  std::string program = WithoutFolders(LinkText(processFolder + "/exe"));
  constexpr std::string_view kDeleted = " (deleted)";
  if (program.ends_with(kDeleted)) program.resize(program.size() - kDeleted.size());
  if (!program.empty()) names.insert(program);
  std::string shortName = ProcText(processFolder + "/comm");
  if (shortName.ends_with('\n')) shortName.pop_back();
  const std::string arguments = ProcText(processFolder + "/cmdline");
  bool first = true;
  for (std::size_t start = 0; start < arguments.size() && start != std::string::npos;) {
    const std::size_t end = arguments.find('\0', start);
    const std::string name = WithoutFolders(arguments.substr(start, end - start));
    if (!name.empty() && (first || (!shortName.empty() && name.starts_with(shortName)))) names.insert(name);
    start = end == std::string::npos ? end : end + 1;
    first = false;
  }
}

// A record lock on a file of the user's run-time folder that every holder shares. The first one is told by
// getting it for itself alone; open file description locks change from that to shared without a gap.
class FileLock : public NamedLock {
 public:
  explicit FileLock(const std::string& file)
      : fd_(open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600)) {
    if (!fd_) return;
    existed_ = !Lock(F_WRLCK, F_OFD_SETLK);
    Lock(F_RDLCK, F_OFD_SETLKW);
  }
  bool AlreadyExisted() const override { return existed_; }

 private:
  bool Lock(short type, int command) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    int result;
    while ((result = fcntl(fd_.get(), command, &range)) != 0 && errno == EINTR) {
    }
    return result == 0;
  }

  UniqueFd fd_;
  bool existed_ = true;
};

std::string LockFile(const std::string& name) {
  std::string safe = name;
  std::replace_if(
      safe.begin(), safe.end(),
      [](unsigned char c) { return !std::isalnum(c) && c != '-' && c != '_' && c != '.'; }, '_');
  const char* folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder && *folder == '/') return std::string(folder) + "/" + safe + ".lock";
  return "/tmp/" + std::to_string(getuid()) + "-" + safe + ".lock";
}

class PosixProcesses : public Processes {
 public:
  explicit PosixProcesses(TellOutside tell) : tell_(std::move(tell)) {}

  // A bare name is mostly a system program of Windows; where Linux has none of that name, telling is all.
  void Start(const StartRequest& request) override {
    tell_("Run " + request.commandLine);
    const bool ofSystem = request.program.find('/') == std::string::npos;
    const std::string program = ofSystem ? SystemFolder() + kSeparator + request.program : request.program;
    if (!IsFile(program)) {
      if (ofSystem) return;
      RaiseWithText(ENOENT, program);
    }
    if (!ofSystem) AllowRunning(program);
    Spawn(program, request);
  }

  bool StartElevated(const StartRequest& request) override {
    tell_("RunElevated " + request.commandLine);
    return false;
  }

  void EndAtOnce(int exitStatus) override { std::_Exit(exitStatus); }

  std::vector<std::string> RunningImageNames() override {
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
      const std::string name = entry.path().filename().string();
      if (std::all_of(name.begin(), name.end(), [](unsigned char c) { return std::isdigit(c); })) {
        AddNamesOf(entry.path().string(), names);
      }
    }
    return {names.begin(), names.end()};
  }

  std::unique_ptr<NamedLock> TakeLock(const std::string& name) override {
    return std::make_unique<FileLock>(LockFile(name));
  }

 private:
  TellOutside tell_;
};

}  // namespace

std::unique_ptr<Processes> MakeProcesses(TellOutside tell) {
  return std::make_unique<PosixProcesses>(std::move(tell));
}

}  // namespace platform
