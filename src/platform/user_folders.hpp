#pragma once

#include <string>

namespace platform {

// The launcher's own folder among the user's data of this machine: %LOCALAPPDATA%\Kelvarin, on Linux
// $XDG_DATA_HOME/kelvarin. It may not exist yet; empty when the system does not tell.
std::string LocalDataFolder();

}  // namespace platform
