#pragma once

#include <string>

#include "startup/services.hpp"
#include "update/game_launch.hpp"

namespace update {

// The game as it lies in the folder, for the player who would rather play than wait.
class InstalledGame {
 public:
  InstalledGame(const startup::Services& services, GameLaunch& launch)
      : services_(services), launch_(launch) {}

  // Asks once whether to start it without updating it, `why` (a whole sentence in Spanish) being said first.
  // True when it was started; the launcher is closing then. Without a game there is nothing to ask: that is
  // said. Nobody is asked in update-only mode.
  bool Offer(const std::string& why);

 private:
  const startup::Services& services_;
  GameLaunch& launch_;
};

}  // namespace update
