#pragma once

#include <cstdint>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "publisher/layout.hpp"

namespace publisher {

// One file of the operator's game that is to be published.
struct SourceFile {
  std::string path;  // to open it
  std::string name;  // relative to the folder given, "/" between its parts
  std::uint64_t size = 0;
  bool program = false;  // marked as executable
};

// Why a launcher would not take a file of this relative name, or could not write it; empty when it would.
std::string WhyUnpublishable(std::string_view name);

// Every file below `folder`, sorted by name; there is at least one. Left out, each with a word to `warnings`:
// links, special files, and what launchers keep for themselves. Failure, naming every one of them, when names
// cannot be published or differ by case alone, and when the folder holds the publication itself. `prefix` is
// what launchers will see before the names.
std::vector<SourceFile> ReadSource(const std::string& folder, std::string_view prefix, const Layout& layout,
                                   std::ostream& warnings);

std::uint64_t TotalSize(const std::vector<SourceFile>& files);
std::uint64_t SizeOf(const std::string& path);  // 0 when there is no such file

}  // namespace publisher
