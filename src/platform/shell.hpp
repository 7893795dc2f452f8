#pragma once

#include <string>

namespace platform {

class Shell {
 public:
  virtual ~Shell() = default;

  // Carries out the verb "Open" on a web address, with `workingFolder`. Anything but an absolute http or
  // https address is refused: false.
  virtual bool OpenPage(const std::string& url, const std::string& workingFolder) = 0;

  // Carries out the verb "Open" on a local file text, without parameters and with a hidden window.
  virtual bool OpenFile(const std::string& file, const std::string& workingFolder) = 0;
};

}  // namespace platform
