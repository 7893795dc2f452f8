#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
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

// Hands every piece of a plain file to `take`; how many bytes it had.
std::uint64_t ForEachPiece(const std::string& path,
                           const std::function<void(std::span<const std::byte>)>& take);

// The content of a plain file.
Content ContentOf(const std::string& path, Progress& progress);

// The SHA-256 of a plain file, lower case.
std::string Sha256Of(const std::string& path);

// Packs `source` as `target`. Failure when the source is empty, which the format cannot say, or 2 GiB or
// more.
Content PackFile(const std::string& source, const std::string& target, Progress& progress);
void PackText(std::string_view bytes, const std::string& target);

// Unpacks `path` without keeping the bytes; Failure when it is not one whole packed file.
Content ContentOfPacked(const std::string& path);

}  // namespace publisher
