#pragma once

#include <exception>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "platform/files.hpp"

namespace update {

// What lies below a folder, found out while something else goes on. Destroyed early it ends after about one
// folder more.
class TreeListing {
 public:
  explicit TreeListing(std::string folder);

  // Waits for its end, or for about that of one folder once `stop` is requested, when files are missing from
  // the result. Raises what platform::ListTree does. To be called once.
  std::vector<platform::FoundFile> Take(std::stop_token stop);

 private:
  std::vector<platform::FoundFile> found_;
  std::exception_ptr failure_;
  std::jthread thread_;  // last: stopped before what it fills goes away
};

}  // namespace update
