#pragma once

#include <optional>
#include <string_view>

// launcher.exe /INSTALL puts the launcher into a folder of the player's own, with shortcuts and an entry
// among the installed programs; /UNINSTALL takes away what that put. Neither needs special rights. /QUIET
// beside them: no message and no start of the installed launcher.
namespace install {

// Does what the arguments ask for; the exit status, 0 or 1. None when they ask for neither.
std::optional<int> RunIfAsked(std::string_view arguments);

}  // namespace install
