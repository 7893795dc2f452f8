#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace support {

// One entry of a ZIP archive made for a test; the fields after the bytes make it a bad one.
struct ZipItem {
  std::string name;
  std::string bytes{};
  bool stored = false;
  std::uint16_t flags = 1 << 11;  // names are UTF-8
  std::uint16_t method = 8;
  std::uint32_t unixMode = 0100644;
  std::uint32_t crcError = 0;         // added to the right checksum
  std::string localName{};            // when it differs from the directory's
  std::string extra{};                // of the directory's record
  std::int64_t claimedSizeError = 0;  // added to the right expanded size
  std::int64_t localSizeError = 0;    // added once more in the header before the data
  std::uint16_t localFlags = 0;       // turned over in the header before the data
};

std::string MakeZip(const std::vector<ZipItem>& items);

// A packed file (.kvn): the size field, then the zlib stream of `bytes`.
std::string MakePacked(std::string_view bytes);
std::string MakePacked(std::string_view bytes, std::int32_t claimedSize);

struct IndexItem {
  std::string digest;  // 32 characters
  std::string path;
};
// The unpacked index; `count` other than the number of items when it is not negative.
std::string MakeIndex(const std::vector<IndexItem>& items, std::int64_t count = -1);

std::string Md5Of(std::string_view bytes);

}  // namespace support
