#pragma once

#include <memory>
#include <string>

namespace platform {

// A file that one holder at a time has, in whichever process. The system frees it when the holder's process
// ends, however it does.
class FileLock {
 public:
  // Makes the file `path` if it is missing. Null while another one holds it; raises what the file system
  // does.
  static std::unique_ptr<FileLock> TryTake(const std::string& path);

  virtual ~FileLock() = default;  // frees it and removes the file
};

}  // namespace platform
