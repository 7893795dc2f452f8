#include "support/archives.hpp"

#include <zlib.h>

#include <span>

#include "platform/digest.hpp"

namespace support {
namespace {

std::string Little(std::uint64_t value, int bytes) {
  std::string text;
  for (int i = 0; i < bytes; ++i) text += static_cast<char>(value >> (8 * i));
  return text;
}

std::string ZlibStream(std::string_view bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string stream(size, '\0');
  compress(reinterpret_cast<Bytef*>(stream.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()),
           static_cast<uLong>(bytes.size()));
  stream.resize(size);
  return stream;
}

// A raw deflate stream is a zlib stream without its two-byte head and its checksum (RFC 1950).
std::string RawStream(std::string_view bytes) {
  const std::string stream = ZlibStream(bytes);
  return stream.substr(2, stream.size() - 6);
}

}  // namespace

std::string MakeZip(const std::vector<ZipItem>& items) {
  std::string archive, directory;
  for (const ZipItem& item : items) {
    const std::uint16_t method = item.stored ? 0 : item.method;
    const std::string data = item.stored ? item.bytes : RawStream(item.bytes);
    const auto crc = static_cast<std::uint32_t>(crc32(0, reinterpret_cast<const Bytef*>(item.bytes.data()),
                                                      static_cast<uInt>(item.bytes.size()))) +
                     item.crcError;
    const std::string localName = item.localName.empty() ? item.name : item.localName;
    const std::uint64_t claimed = item.bytes.size() + static_cast<std::uint64_t>(item.claimedSizeError);
    const auto common = [&](std::uint16_t flags, std::uint64_t size, std::size_t nameSize,
                            std::size_t extraSize) {
      return Little(20, 2) + Little(flags, 2) + Little(method, 2) + Little(0, 2) + Little(33, 2) +
             Little(crc, 4) + Little(data.size(), 4) + Little(size, 4) + Little(nameSize, 2) +
             Little(extraSize, 2);
    };
    directory += Little(0x02014b50, 4) + Little(20 | 3 << 8, 2) +
                 common(item.flags, claimed, item.name.size(), item.extra.size()) + Little(0, 2) +
                 Little(0, 2) + Little(0, 2) + Little(item.unixMode << 16, 4) + Little(archive.size(), 4) +
                 item.name + item.extra;
    archive += Little(0x04034b50, 4) +
               common(item.flags ^ item.localFlags, claimed + static_cast<std::uint64_t>(item.localSizeError),
                      localName.size(), 0) +
               localName + data;
  }
  return archive + directory + Little(0x06054b50, 4) + Little(0, 4) + Little(items.size(), 2) +
         Little(items.size(), 2) + Little(directory.size(), 4) + Little(archive.size(), 4) + Little(0, 2);
}

std::string MakePacked(std::string_view bytes) {
  return MakePacked(bytes, static_cast<std::int32_t>(bytes.size()));
}

std::string MakePacked(std::string_view bytes, std::int32_t claimedSize) {
  return Little(static_cast<std::uint32_t>(claimedSize), 4) + ZlibStream(bytes);
}

std::string MakeIndex(const std::vector<IndexItem>& items, std::int64_t count) {
  std::string index =
      Little(static_cast<std::uint64_t>(count < 0 ? static_cast<std::int64_t>(items.size()) : count), 4);
  for (const IndexItem& item : items) index += item.digest + Little(item.path.size(), 2) + item.path;
  return index;
}

std::string Md5Of(std::string_view bytes) {
  platform::Digest digest(platform::DigestKind::Md5);
  digest.Update(std::as_bytes(std::span(bytes)));
  return digest.Hex();
}

}  // namespace support
