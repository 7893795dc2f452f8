#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace soak {

// A disk of its own for one installation, whose free space can be taken away and given back: a file system in
// memory where this process may mount one. Elsewhere a limit on the size of files stands in for it, which
// meets fewer writes.
class Disk {
 public:
  explicit Disk(std::string folder);
  ~Disk();
  Disk(const Disk&) = delete;

  void LeaveFree(std::uint64_t bytes);
  void GiveBack();
  // What a command is started through.
  std::vector<std::string> Limited(std::vector<std::string> command) const;
  bool Mounted() const { return mounted_; }

 private:
  const std::string folder_;
  const bool mounted_;
  std::uint64_t largestFile_ = 0;  // where nothing is mounted; 0: any
};

}  // namespace soak
