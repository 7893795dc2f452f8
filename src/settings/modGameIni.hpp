#pragma once

#include <string>
#include <type_traits>
#include <vector>

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

  const GameConfig& Config() const { return config_; }

  // What the player chose. The next save writes it, even where it is what the record held already.
  template <class T>
  void Set(T GameConfig::*field, const std::type_identity_t<T>& value) {
    config_.*field = value;
    Own(field);
  }

  // Fills the record from the file. A file of another version, or none, is replaced by factory values, of
  // which only RememberPassword is spared. A number that its field cannot hold ends the reading there.
  void LoadGameConfig();

  // Factory values for everything but RememberPassword; the list of credit lines keeps its length.
  void LoadDefaultGameConfig();

  // Writes every key but OptimizarRendimiento, replacing the file once. Keys of fields that were neither read
  // nor set, which are those behind the number that ended the reading, stay in the file as they are, and so
  // do credit lines that the record does not hold.
  void SaveGameConfig(const GameConfig& config);

  // Writes the one key that a save leaves out.
  void SaveOptimizarRendimiento();

 private:
  void ReadFields(int& line);
  void ReadCredits();
  void Own(GameConfigMember field);

  platform::ProfileFiles& profiles_;
  startup::ErrorRecorder& recorder_;
  const std::string file_;
  GameConfig config_;
  std::vector<bool> own_;  // a field each: its value is the file's or the player's, so a save may write it
  bool ownsCredits_ = false;
};

}  // namespace settings
