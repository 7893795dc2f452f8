#include "startup/run_flags.hpp"

#include "util/text.hpp"

namespace startup {

RunFlags::RunFlags(const std::string& executableBaseName, const std::string& commandLine)
    : IsLauncherExe(util::Upper(executableBaseName) == "LAUNCHER"),
      UpdatesOnly(util::Contains(commandLine, "/UPDATES")) {}

}  // namespace startup
