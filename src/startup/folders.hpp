#pragma once

#include <string>

namespace startup {

// The folder layout of an installation, fixed once at start. Joined by plain concatenation, so a path may
// hold a doubled separator. UTF-8, the platform's separator.
struct Folders {
  // `appPath`: the folder of the executable, without a trailing separator.
  explicit Folders(const std::string& appPath);

  std::string AppPath;
  std::string BinDir;              // no trailing separator
  std::string MapsDir;             // trailing separator
  std::string InitDir;             // trailing separator
  std::string GraphicsDir;         // trailing separator
  std::string ResourcesDir;        // no trailing separator
  std::string ResourcesUpdateDir;  // no trailing separator
  std::string ParentDir;           // trailing separator
  // Where lists and archives lie while they are used: AppPath, or a folder of the user's own when that one
  // cannot be written. No trailing separator.
  std::string FetchDir;

  std::string Scratch(const std::string& name) const;  // a file in the scratch folder below InitDir
};

}  // namespace startup
