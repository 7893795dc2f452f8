#pragma once

#include <string>

namespace support {

// While this lives, the tests' own launcher may write neither into the folder nor anywhere below it: as a
// player who has no rights there. What else it writes to (settings, the user's data) it still may.
class ReadOnly {
 public:
  explicit ReadOnly(const std::string& folder);
  ~ReadOnly();
  ReadOnly(const ReadOnly&) = delete;

  bool Holds() const;  // false where the file system of the tests cannot be kept from being written

 private:
  std::string folder_;
};

}  // namespace support
