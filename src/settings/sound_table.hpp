#pragma once

#include <array>
#include <string>

#include "platform/profile_files.hpp"
#include "startup/folders.hpp"

namespace settings {

inline constexpr int kSoundCount = 305;

// Which of the game's sounds, numbered from 1, are muted: WavSilenced.ini and its copy in memory.
class SoundTable {
 public:
  SoundTable(platform::ProfileFiles& profiles, const startup::Folders& folders);

  // A missing file mutes nothing.
  void Load();

  // A number outside 1 to 305 is not muted.
  bool Silenced(int number) const;

  // Writes the key of that number; one outside 1 to 305 changes nothing in memory.
  void Silence(int number, bool silenced);

 private:
  platform::ProfileFiles& profiles_;
  const std::string file_;
  std::array<bool, kSoundCount> silenced_{};
};

}  // namespace settings
