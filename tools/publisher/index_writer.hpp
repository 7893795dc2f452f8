#pragma once

#include <string>
#include <vector>

namespace publisher {

struct IndexEntry {
  std::string name;    // relative to Bin, UTF-8, "/" between its parts
  std::string digest;  // empty: launchers keep the file as it is and fetch nothing
};

// The index that launchers read, not packed yet: the number of records in four bytes, low first, then for
// each a digest of 32 characters, the length of its path in two bytes and the path in Windows-1252,
// "\Bin\...".
std::string IndexBytes(const std::vector<IndexEntry>& entries);

}  // namespace publisher
