#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace publisher {

// What a command does to the names that players have; each list sorted.
struct Changes {
  std::vector<std::string> added, changed, removed;

  bool Any() const { return !added.empty() || !changed.empty() || !removed.empty(); }
};

// "3 added, 1 changed, 0 removed".
std::string Counted(const Changes& changes);

// One line per name, "+ ", "~ " or "- " before it; the first twenty of each kind unless `all` is asked for.
void PrintChanges(const Changes& changes, const std::string& prefix, bool all, std::ostream& out);

}  // namespace publisher
