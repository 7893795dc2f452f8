#pragma once

#include <string>

// Shortcut files (".lnk"). The thread has a COM apartment.
namespace platform {

// A shortcut to a program, started in its own folder; an old one is replaced. Raises base::RuntimeError.
void MakeShellLink(const std::string& path, const std::string& program, const std::string& description);

// Full path of what a shortcut leads to; empty when there is none or it leads to no file.
std::string TargetOfShellLink(const std::string& path);

}  // namespace platform
