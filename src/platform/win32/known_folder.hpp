#pragma once

#include <windows.h>
// after windows.h, which it builds on
#include <shlobj.h>

#include <string>

namespace platform {

// The path of one of the shell's folders, made when missing; empty when the system does not tell.
std::string KnownFolder(const KNOWNFOLDERID& id);

}  // namespace platform
