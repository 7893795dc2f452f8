#pragma once

#include <string>

namespace publisher {

// A folder of its own in the system's temporary folder, removed with all in it; Failure when none can be
// made.
class ScratchFolder {
 public:
  ScratchFolder();
  ~ScratchFolder();
  ScratchFolder(const ScratchFolder&) = delete;

  std::string operator/(const std::string& name) const { return path_ + "/" + name; }

 private:
  std::string path_;
};

}  // namespace publisher
