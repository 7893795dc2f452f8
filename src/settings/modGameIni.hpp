#pragma once

#include <string>

#include "platform/profile_files.hpp"
#include "settings/game_config.hpp"
#include "startup/error_recorder.hpp"
#include "startup/folders.hpp"

namespace settings {

// Owns the game client's settings: the record in memory is the truth, ConfigVideo.cfg its copy. Keys of the
// file that the record does not know are left as they are. Each procedure reports its own failures and throws
// nothing.
class modGameIni {
 public:
  modGameIni(platform::ProfileFiles& profiles, const startup::Folders& folders,
             startup::ErrorRecorder& recorder);

  GameConfig Config;

  // Fills the record from the file. A file of another version, or none, is replaced by factory values, of
  // which only RememberPassword is spared. A number that its field cannot hold ends the reading there.
  void LoadGameConfig();

  // Factory values for everything but RememberPassword; the list of credit lines keeps its length.
  void LoadDefaultGameConfig();

  // Writes every key but OptimizarRendimiento, replacing the file once. Credit lines that the record does not
  // hold stay in the file as they are.
  void SaveGameConfig(const GameConfig& config);

  // Writes the one key that a save leaves out.
  void SaveOptimizarRendimiento();

 private:
  void ReadFields(int& line);
  void ReadCredits();

  platform::ProfileFiles& profiles_;
  startup::ErrorRecorder& recorder_;
  const std::string file_;
};

}  // namespace settings
