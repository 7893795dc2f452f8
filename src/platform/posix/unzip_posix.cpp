#include "platform/unzip.hpp"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <vector>

namespace platform {
namespace {

namespace fs = std::filesystem;

class SpawnActions {
 public:
  SpawnActions() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addopen(&actions_, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions_, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  SpawnActions(const SpawnActions&) = delete;
  SpawnActions& operator=(const SpawnActions&) = delete;
  ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
  const posix_spawn_file_actions_t* get() const { return &actions_; }

 private:
  posix_spawn_file_actions_t actions_;
};

class SpawnAttributes {
 public:
  // A session of its own has no terminal, so a question for a password fails at once instead of waiting.
  SpawnAttributes() {
    posix_spawnattr_init(&attributes_);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID);
  }
  SpawnAttributes(const SpawnAttributes&) = delete;
  SpawnAttributes& operator=(const SpawnAttributes&) = delete;
  ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
  const posix_spawnattr_t* get() const { return &attributes_; }

 private:
  posix_spawnattr_t attributes_;
};

// The player's environment without default options for unzip, and with a locale in which names are UTF-8.
std::vector<std::string> Environment() {
  std::vector<std::string> variables{"LC_ALL=C.UTF-8"};
  for (char** variable = environ; *variable != nullptr; ++variable) {
    const std::string_view text = *variable;
    if (!text.starts_with("LC_ALL=") && !text.starts_with("UNZIP")) variables.emplace_back(text);
  }
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int Wait(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) == -1) {
    if (errno != EINTR) return kUnzipProgramMissing;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int RunUnzip(std::vector<std::string> arguments) {
  const SpawnActions actions;
  const SpawnAttributes attributes;
  std::vector<std::string> environment = Environment();
  pid_t child = 0;
  const int error = posix_spawnp(&child, "unzip", actions.get(), attributes.get(), Pointers(arguments).data(),
                                 Pointers(environment).data());
  return error == 0 ? Wait(child) : kUnzipProgramMissing;
}

// The program takes the archive's name, after its last "/", for a pattern.
std::string LiteralName(const std::string& archive) {
  const fs::path path = fs::absolute(archive);
  std::string name;
  for (const char c : path.filename().string()) {
    const bool special = std::string_view("[*?").find(c) != std::string_view::npos;
    name += special ? std::string{'[', c, ']'} : std::string{c};
  }
  return (path.parent_path() / name).string();
}

// The program would try the name with ".zip" added.
bool IsThere(const std::string& archive) {
  std::error_code error;
  return fs::is_regular_file(archive, error);
}

}  // namespace

int UnzipArchive(const std::string& archive, const std::string& folder) {
  if (!IsThere(archive)) return kUnzipNoArchive;
  return RunUnzip({"unzip", "-qq", "-o", "-C", LiteralName(archive), "-d", fs::absolute(folder).string()});
}

}  // namespace platform
