#include "publisher/changes.hpp"

#include <algorithm>

namespace publisher {
namespace {

constexpr std::size_t kShown = 20;

void PrintNames(const std::vector<std::string>& names, const char* mark, const std::string& prefix, bool all,
                std::ostream& out) {
  const std::size_t shown = all ? names.size() : std::min(names.size(), kShown);
  for (std::size_t i = 0; i < shown; ++i) out << mark << prefix << names[i] << "\n";
  if (shown < names.size()) out << mark << "... and " << names.size() - shown << " more\n";
}

}  // namespace

std::string Counted(const Changes& changes) {
  return std::to_string(changes.added.size()) + " added, " + std::to_string(changes.changed.size()) +
         " changed, " + std::to_string(changes.removed.size()) + " removed";
}

void PrintChanges(const Changes& changes, const std::string& prefix, bool all, std::ostream& out) {
  PrintNames(changes.added, "+ ", prefix, all, out);
  PrintNames(changes.changed, "~ ", prefix, all, out);
  PrintNames(changes.removed, "- ", prefix, all, out);
}

}  // namespace publisher
