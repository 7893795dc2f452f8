#include "publisher/checksum.hpp"

#include <zlib.h>

#include <cstddef>
#include <span>

#include "publisher/packed_file.hpp"

namespace publisher {
namespace {

void Add(Checksum& sum, std::span<const std::byte> bytes) {
  sum.size += bytes.size();
  sum.crc = static_cast<std::uint32_t>(
      crc32(sum.crc, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
}

}  // namespace

Checksum ChecksumOf(const std::string& path) {
  Checksum sum;
  ForEachPiece(path, [&](std::span<const std::byte> piece) { Add(sum, piece); });
  return sum;
}

Checksum ChecksumOfText(std::string_view text) {
  Checksum sum;
  Add(sum, std::as_bytes(std::span(text)));
  return sum;
}

}  // namespace publisher
