#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

#include "soak/dice.hpp"
#include "soak/game.hpp"

namespace soak {

// What there is to install, and with what.
struct Setting {
  const Game& game;
  std::string launcher;  // path of the program
  std::string folder;    // where installations lie, each in its own
  // Of an installation that nothing disturbed, see Measured.
  std::map<std::string, std::string> left{};  // files that are no part of the game, counters with their bytes
  std::chrono::milliseconds time{0};          // how long it takes
  std::uint64_t gameSize = 0;                 // bytes of the game's files
};

// How one installation went.
struct Course {
  std::string lost;  // what is wrong with the folder or how the launcher failed; empty: all is well
  std::map<std::string, int> faults;
  int kills = 0, fullDisks = 0, starts = 0;
  int again = 0;  // starts beyond the first that nobody killed and that had room
  double seconds = 0;
  bool limitedFiles = false;  // a limit on the size of files stood in for a full disk
};

// The setting with what an undisturbed installation leaves and takes. Raises when that fails.
Setting Measured(Setting setting);

// Installs the game among bad mirrors, kills and full disks until the launcher starts it, and proves the
// folder. What it leaves is removed unless it is lost.
Course Install(const Setting& setting, const std::string& name, const Dice& dice);

}  // namespace soak
