#include <cstdlib>

#include "platform/user_folders.hpp"

namespace platform {

std::string LocalDataFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data && *data == '/') return std::string(data) + "/kelvarin";
  const char* home = std::getenv("HOME");
  return home && *home ? std::string(home) + "/.local/share/kelvarin" : std::string{};
}

}  // namespace platform
