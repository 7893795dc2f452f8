#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace soak {

// One start of the launcher, whose player presses the play button and says nothing more.
class Program {
 public:
  enum class End { Ended, Stopped, Killed, Stuck, Crashed };

  // `command`: the program and its arguments; `environment`: "NAME=value" each; what it prints goes to
  // `screen`.
  Program(const std::vector<std::string>& command, const std::vector<std::string>& environment,
          const std::string& screen);
  ~Program() { Kill(); }
  Program(const Program&) = delete;

  // Waits until it ends or stops with a reason on its screen; none when it does neither in this time.
  std::optional<End> Await(std::chrono::milliseconds limit);
  void Kill();
  bool Says(std::string_view words) const;  // on its screen, so far

 private:
  bool HasEnded();
  bool HasCrashed() const;

  pid_t pid_ = -1;
  int status_ = 0;  // as waitpid tells it
  std::string screen_;
};

}  // namespace soak
