#pragma once

#include <memory>
#include <string>
#include <vector>

namespace platform {

enum class WindowStyle { NormalFocus, Minimised, Hidden };

struct StartRequest {
  // Full path of the program (UTF-8). A bare file name names a program of the system folder and of nowhere
  // else.
  std::string program;
  // The whole command line as the started program receives it; shown to the player as it stands.
  std::string commandLine;
  WindowStyle style = WindowStyle::NormalFocus;
  std::string workingFolder;  // empty: the launcher's own
};

// A system-wide lock that other processes can see; given back when destroyed.
class NamedLock {
 public:
  virtual ~NamedLock() = default;
  // Whether another process held a lock of this name when this one was taken.
  virtual bool AlreadyExisted() const = 0;
};

class Processes {
 public:
  virtual ~Processes() = default;

  // Starts a program and does not wait for it. Raises a base::RuntimeError (53, 70, 75, ...) whose
  // description is the system's own text when it could not be started.
  virtual void Start(const StartRequest& request) = 0;

  // As Start, with the rights of an administrator, for which the system asks the player over the program's
  // active window. False when the player refuses. On Linux never more than this user's rights: false.
  virtual bool StartElevated(const StartRequest& request) = 0;

  // Ends this process at once: no window is unloaded, nothing is saved.
  virtual void EndAtOnce(int exitStatus) = 0;

  // Executable file names (no folders) of the running processes.
  virtual std::vector<std::string> RunningImageNames() = 0;

  // Never null; a lock that the system refuses counts as one that existed already.
  virtual std::unique_ptr<NamedLock> TakeLock(const std::string& name) = 0;
};

}  // namespace platform
