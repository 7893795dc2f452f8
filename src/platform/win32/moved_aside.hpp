#pragma once

#include <string>

// A running program can be renamed but neither deleted nor written. So the old one is moved to a neighbour of
// its name, which goes when the same name is replaced again or at the next start (see main).
namespace platform {

// MoveFileExW over `to`, which is moved aside when it is a running program; false, with the system's last
// error, when that did not work and `to` is as it was.
bool MoveOver(const std::wstring& from, const std::string& to);

// Deletes those old programs of `path` that have ended meanwhile.
void RemoveMovedAside(const std::string& path);

}  // namespace platform
