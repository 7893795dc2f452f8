#include "fuzz/support/promises.hpp"

#include <cstdio>
#include <cstdlib>
#include <filesystem>

namespace fuzz {

void Require(bool kept, const char* promise) {
  if (kept) return;
  std::fprintf(stderr, "ERROR: a promise is not kept: %s\n", promise);
  std::abort();
}

// Judged by the standard library's own idea of paths, on a system that takes "\" for a letter and on one that
// takes it for a separator.
void RequireSafeName(std::string_view name) {
  for (const bool backslashSeparates : {false, true}) {
    std::string text(name);
    for (char& c : text) c = backslashSeparates && c == '\\' ? '/' : c;
    const auto relative = std::filesystem::path(text).relative_path().lexically_normal();
    Require(!relative.empty() && *relative.begin() != "..", "a name that passed stays below the folder");
    for (const auto& part : relative)
      Require(part != ".." && part != ".", "a name that passed climbs nowhere");
  }
  Require(name.find_first_of(std::string_view(":<>\"|?*\0", 8)) == name.npos, "a name that passed is plain");
}

}  // namespace fuzz
