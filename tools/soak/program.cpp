#include "soak/program.hpp"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <stdexcept>
#include <thread>

#include "base/text.hpp"
#include "platform/files.hpp"

namespace soak {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint64_t kLargestScreen = 256 << 20;
constexpr std::chrono::milliseconds kGoodbye{3'000}, kStarting{10'000}, kPause{10};

std::vector<char*> Pointers(const std::vector<std::string>& words) {
  std::vector<char*> pointers;
  for (const std::string& word : words) pointers.push_back(const_cast<char*>(word.c_str()));
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

Program::Program(const std::vector<std::string>& command, const std::vector<std::string>& environment,
                 const std::string& screen)
    : screen_(screen) {
  static constexpr std::string_view kPlay = "frmMain.cmdIniciar\n";
  const std::string input = screen + ".input";
  platform::WriteWhole(input, kPlay);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, screen.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                   0644);
  posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
  // A process that is just being started elsewhere may hold the fresh copy of the program open for writing.
  int failed = ETXTBSY;
  for (const auto end = Clock::now() + kStarting; failed == ETXTBSY && Clock::now() < end;) {
    failed = posix_spawn(&pid_, command.front().c_str(), &actions, nullptr, Pointers(command).data(),
                         Pointers(environment).data());
    if (failed == ETXTBSY) std::this_thread::sleep_for(kPause);
  }
  posix_spawn_file_actions_destroy(&actions);
  if (failed != 0) throw std::runtime_error(command.front() + " does not start");
}

std::optional<Program::End> Program::Await(std::chrono::milliseconds limit) {
  const auto due = Clock::now() + limit;
  while (!HasEnded()) {
    if (Says("ProgressBar1.Failed: True")) {
      kill(pid_, SIGTERM);
      for (const auto end = Clock::now() + kGoodbye; !HasEnded() && Clock::now() < end;)
        std::this_thread::sleep_for(kPause);
      Kill();
      return End::Stopped;
    }
    if (Clock::now() >= due) return std::nullopt;
    std::this_thread::sleep_for(std::min<Clock::duration>(kPause, due - Clock::now()));
  }
  return HasCrashed() ? End::Crashed : End::Ended;
}

bool Program::HasEnded() {
  if (pid_ >= 0 && waitpid(pid_, &status_, WNOHANG) == pid_) pid_ = -1;
  return pid_ < 0;
}

// A sanitizer ends the program with the status of a failure and tells why.
bool Program::HasCrashed() const {
  return WIFSIGNALED(status_) || Says("Sanitizer") || Says("runtime error:");
}

bool Program::Says(std::string_view words) const {
  return base::Contains(platform::ReadWhole(screen_, kLargestScreen), words);
}

void Program::Kill() {
  if (pid_ < 0) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, &status_, 0);
  pid_ = -1;
}

}  // namespace soak
