#pragma once

namespace platform {

// Keeps the machine from falling asleep by itself while this lives; the player may still send it to sleep.
// Nested ones count. Made and destroyed on the same thread. Nothing on Linux.
class KeepAwake {
 public:
  KeepAwake();
  ~KeepAwake();
  KeepAwake(const KeepAwake&) = delete;
  KeepAwake& operator=(const KeepAwake&) = delete;
};

}  // namespace platform
