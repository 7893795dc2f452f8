#include "support/host_path.hpp"

#include "base/runtime_error.hpp"
#include "platform/machine.hpp"

namespace support {

std::string HostPath(const std::string& path) { return path; }

bool StartOnHost(const std::string& program, const std::string& arguments) {
  try {
    platform::MakeProcesses([](const std::string&) {
    })->Start({program, program + " " + arguments, platform::WindowStyle::Hidden, ""});
  } catch (const base::RuntimeError&) {
    return false;
  }
  return true;
}

}  // namespace support
