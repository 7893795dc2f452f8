#pragma once

#include <string>

namespace support {

// The name by which programs of the system that the tests run on know a file: under Wine a path of that
// system, which has a shell there; empty where there is none.
std::string HostPath(const std::string& path);
std::string HostShell();  // the shell itself, as this program starts it

}  // namespace support
