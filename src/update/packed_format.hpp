#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace update {

// A packed file (.kvn): its expanded size, signed, in four bytes, low first; behind it one zlib stream.
// Launcher and publisher both take it from here.
inline constexpr std::size_t kPackedHeaderSize = 4;
inline constexpr std::uint64_t kLargestPacked = 0x7FFFFFFF;

using PackedHeader = std::array<std::byte, kPackedHeaderSize>;

constexpr PackedHeader PackedHeaderFor(std::uint32_t expandedSize) {
  PackedHeader header{};
  for (std::size_t i = 0; i < header.size(); ++i) header[i] = std::byte(expandedSize >> (8 * i) & 0xFF);
  return header;
}

constexpr std::int32_t SizeIn(const PackedHeader& header) {
  std::uint32_t size = 0;
  for (std::size_t i = 0; i < header.size(); ++i) {
    size |= std::to_integer<std::uint32_t>(header[i]) << (8 * i);
  }
  return static_cast<std::int32_t>(size);
}

}  // namespace update
