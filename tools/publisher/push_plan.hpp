#pragma once

#include <string>
#include <vector>

#include "publisher/layout.hpp"

namespace publisher {

// What makes a copy of a publication equal to it. The lists hold names below the root.
struct PushPlan {
  std::vector<std::string> copy;    // in the order in which they may appear
  std::vector<std::string> date;    // equal but for the time of their last change
  std::vector<std::string> remove;  // packed files that no index names any more

  // Compares sizes and times, and the bytes where only the times differ. The copy's own Online.txt is left
  // alone. Failure when a file cannot be read.
  static PushPlan For(const Layout& from, const Layout& to);
};

// Whether a file is as it was when the other was copied from it: size and time are the same.
bool SameStamp(const std::string& a, const std::string& b);

}  // namespace publisher
