#pragma once

#include <memory>
#include <string>

#include "platform/processes.hpp"
#include "startup/run_flags.hpp"

namespace startup {

// The system-wide lock by which a second start notices the first.
class InstanceLock {
 public:
  InstanceLock(platform::Processes& processes, const RunFlags& flags, const std::string& executableBaseName)
      : processes_(processes), name_("Global\\" + (flags.IsLauncherExe ? "Kelvarin" : executableBaseName)) {}

  // Takes the lock if it is not held yet; whether another instance held it then.
  bool HeldByAnother() {
    if (!lock_) lock_ = processes_.TakeLock(name_);
    return lock_->AlreadyExisted();
  }
  bool Taken() const { return lock_ != nullptr; }
  void Release() { lock_.reset(); }

 private:
  platform::Processes& processes_;
  std::string name_;
  std::unique_ptr<platform::NamedLock> lock_;
};

}  // namespace startup
