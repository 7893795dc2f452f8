#include "startup/run_flags.hpp"

#include "base/text.hpp"

namespace startup {

RunFlags::RunFlags(const std::string& executableBaseName, const std::string& commandLine)
    : IsLauncherExe(base::Upper(executableBaseName) == "LAUNCHER"),
      UpdatesOnly(base::Contains(commandLine, "/UPDATES")) {}

}  // namespace startup
