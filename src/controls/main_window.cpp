#include "controls/main_window.hpp"

namespace controls {

MainWindow::MainWindow(platform::TimerQueue& timers)
    : Window("frmMain", "Launcher - Kelvarin"),
      NewsTimer(*this, "Timer", timers, 2000, platform::TickKind::LetsEventsRun),
      tmrUpdates(*this, "tmrUpdates", timers, 100, platform::TickKind::LetsEventsRun),
      tmrShow(*this, "tmrShow", timers, 1000) {}

}  // namespace controls
