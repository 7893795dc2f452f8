#include "support/host_path.hpp"

namespace support {

std::string HostPath(const std::string& path) { return path; }
std::string HostShell() { return "/bin/sh"; }

}  // namespace support
