#include "publisher/index_writer.hpp"

#include "base/text.hpp"
#include "platform/encoding.hpp"
#include "publisher/little_endian.hpp"

namespace publisher {
namespace {

constexpr std::size_t kDigestSize = 32;
const std::string kNoDigest = "NOT FOUND";

}  // namespace

std::string IndexBytes(const std::vector<IndexEntry>& entries) {
  std::string bytes;
  AppendLittleEndian(bytes, entries.size(), 4);
  for (const IndexEntry& entry : entries) {
    std::string digest = entry.digest.empty() ? kNoDigest : entry.digest;
    digest.resize(kDigestSize, ' ');
    const std::string path = platform::ToAnsi("\\Bin\\" + base::Replaced(entry.name, "/", "\\"));
    bytes += digest;
    AppendLittleEndian(bytes, path.size(), 2);
    bytes += path;
  }
  return bytes;
}

}  // namespace publisher
