#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace publisher {

// A file as the directory of an archive tells it: enough to see that a file is another one.
struct Checksum {
  std::uint64_t size = 0;
  std::uint32_t crc = 0;  // CRC-32
  bool operator==(const Checksum&) const = default;
};

Checksum ChecksumOf(const std::string& path);
Checksum ChecksumOfText(std::string_view text);

}  // namespace publisher
