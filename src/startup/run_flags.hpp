#pragma once

#include <string>

namespace startup {

struct RunFlags {
  bool IsLauncherExe = false;  // the executable's base name is LAUNCHER in any case
  bool UpdatesOnly = false;    // the command line holds "/UPDATES" anywhere, in upper case
  bool StaffClient =
      false;  // the second client may be chosen and is kept up to date; read with the main window
  bool FolderWritable = true;  // this user may make files in the game folder; found out once, at start

  RunFlags() = default;
  RunFlags(const std::string& executableBaseName, const std::string& commandLine);
};

}  // namespace startup
