#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "publisher/console.hpp"

namespace publisher {

// What a packed file holds, or a file that is to be packed.
struct Content {
  std::string digest;  // MD5, lower case
  std::uint64_t size = 0;
  bool operator==(const Content&) const = default;
};

// The content of a plain file.
Content ContentOf(const std::string& path, Progress& progress);

// Packs `source` as `target`. Failure when the source is empty, which the format cannot say, or 2 GiB or
// more.
Content PackFile(const std::string& source, const std::string& target, Progress& progress);
void PackText(std::string_view bytes, const std::string& target);

// Unpacks `path` without keeping the bytes; Failure when it is not one whole packed file.
Content ContentOfPacked(const std::string& path);

}  // namespace publisher
