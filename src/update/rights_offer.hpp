#pragma once

#include <functional>
#include <string>

#include "startup/instance_lock.hpp"
#include "startup/services.hpp"

namespace update {

// What a player is offered when something must be written into a game folder that this user may not write:
// the same launcher again, with the rights of an administrator.
class RightsOffer {
 public:
  // `executable`: full path; `arguments`: the command line behind it. `handOver` ends this launcher for the
  // one that was started.
  RightsOffer(const startup::Services& services, startup::InstanceLock& instance, std::string executable,
              std::string arguments, std::function<void()> handOver)
      : services_(services),
        instance_(instance),
        executable_(std::move(executable)),
        arguments_(std::move(arguments)),
        handOver_(std::move(handOver)) {}

  // Names the folder and asks; `otherwise` (Spanish, no full stop) says what a no means. True when the other
  // launcher was started and this one is ending; false when the player, or the system, refused.
  bool Make(const std::string& otherwise);

 private:
  bool StartAgain();

  const startup::Services& services_;
  startup::InstanceLock& instance_;
  std::string executable_, arguments_;
  std::function<void()> handOver_;
};

}  // namespace update
