#pragma once

#include <functional>
#include <memory>

#include "controls/main_window.hpp"
#include "platform/file_lock.hpp"
#include "startup/services.hpp"

namespace update {

// Two launchers that update one folder would take each other's files for damaged ones, and a recovery would
// undo the other's patch. So each holds the folder while it updates; the system lets go of it for one that is
// killed. Other folders are not affected.
class FolderHold {
 public:
  // Waits until no other launcher updates this folder, and says so. False when `mayGoOn` ended the wait. A
  // folder in which no lock can be made is not held: nothing can be installed there either.
  bool Take(const startup::Services& services, controls::MainWindow& frmMain,
            const std::function<bool()>& mayGoOn);

 private:
  std::unique_ptr<platform::FileLock> lock_;
};

}  // namespace update
