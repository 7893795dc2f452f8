#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/settings_store.hpp"
#include "startup/folders.hpp"

namespace update {

// What must outlast a run so that nobody can turn back what was signed: kept for this user in the settings
// store, which nothing from the network reaches. Keys are the text of Deployment.ini (Base64). What is
// written raises when the store cannot be.
class TrustMemory {
 public:
  TrustMemory(platform::SettingsStore& settings, const startup::Folders& folders);

  // Whose signature this installation follows; empty before the first signed publication was accepted.
  struct Keys {
    std::string current;
    std::string next;  // that a publication signed with `current` announced, empty when there is none
    bool operator==(const Keys&) const = default;
  };
  Keys KeysInUse() const;
  void Remember(const Keys& keys);

  // The newest publication that was accepted under a key, in whichever folder.
  struct Publication {
    std::uint64_t version = 0;
    std::string digest;  // SHA-256 of what was signed
    bool operator==(const Publication&) const = default;
  };
  std::optional<Publication> NewestUnder(const std::string& key) const;
  void Remember(const std::string& key, const Publication& publication);

  // A text that only this user's launchers in this folder know; made when it is asked for the first time.
  // Empty when it cannot be kept.
  std::string Secret();

 private:
  std::string OfFolder(const char* name) const;  // the name of a value that belongs to the game folder
  std::string Get(const std::string& name) const;
  void Set(const std::string& name, const std::string& value);

  platform::SettingsStore& settings_;
  const startup::Folders& folders_;
};

}  // namespace update
