#include "platform/files.hpp"
#include "platform/player_install.hpp"

namespace platform {

bool RemoveProgram(const std::string& path) { return TryRemoveFile(path); }

}  // namespace platform
