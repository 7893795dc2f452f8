#pragma once

#include <string>

namespace platform {

// Per-user settings: application / section / key -> text (UTF-8). On Windows the registry key
// HKEY_CURRENT_USER\Software\VB and VBA Program Settings\<application>\<section>; on Linux
// $XDG_CONFIG_HOME/<application>.ini.
class SettingsStore {
 public:
  virtual ~SettingsStore() = default;

  // Empty text when there is no such value.
  virtual std::string Get(const std::string& application, const std::string& section,
                          const std::string& key) = 0;

  // Raises 5 (Invalid procedure call or argument) when the store cannot be written.
  virtual void Set(const std::string& application, const std::string& section, const std::string& key,
                   const std::string& value) = 0;
};

}  // namespace platform
