#include "update/zip_entry.hpp"

#include <zlib.h>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "platform/encoding.hpp"

namespace update {
namespace {

constexpr std::uint16_t kEncrypted = 1, kNameIsUtf8 = 1 << 11;  // flags
constexpr std::uint16_t kUnicodePathField = 0x7075;
constexpr std::uint64_t kBestRatio = 1032, kSlack = 64;  // no deflate stream expands further

std::string Text(std::span<const std::byte> bytes) {
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// The name that an extra field gives in UTF-8 for programs that do not read the flag; empty when there is
// none or when it was made for another name.
std::string UnicodePath(std::span<const std::byte> extra, const std::string& raw) {
  constexpr std::size_t kHeader = 4, kBeforeName = 5;
  while (extra.size() >= kHeader) {
    const std::size_t length = Word(extra.data() + 2);
    if (length > extra.size() - kHeader) return {};
    const auto body = extra.subspan(kHeader, length);
    extra = extra.subspan(kHeader + length);
    if (Word(body.data() - kHeader) != kUnicodePathField || length <= kBeforeName) continue;
    const uLong crc = crc32(0, reinterpret_cast<const Bytef*>(raw.data()), static_cast<uInt>(raw.size()));
    if (std::to_integer<int>(body[0]) == 1 && DoubleWord(body.data() + 1) == crc)
      return Text(body.subspan(kBeforeName));
  }
  return {};
}

std::string NameOf(const std::string& raw, bool utf8, std::span<const std::byte> extra) {
  const std::string unicode = UnicodePath(extra, raw);
  const auto name = !unicode.empty() ? platform::CheckedUtf8(unicode)
                    : utf8           ? platform::CheckedUtf8(raw)
                                     : platform::CheckedFromAnsi(raw);
  if (!name) RefuseEntry(platform::FromAnsi(raw), "its name is no text");
  return *name;
}

void JudgeName(const std::string& name) {
  if (name.starts_with('/') || name.starts_with('\\')) RefuseEntry(name, "the name is absolute");
  if (const std::string why = base::WhyUnsafe(name); !why.empty()) RefuseEntry(name, why);
}

void JudgeSizes(const ZipArchive::Entry& entry) {
  if (entry.size == 0xFFFFFFFF || entry.packedSize == 0xFFFFFFFF)
    RefuseArchive("ZIP64 archives are not supported");
  const bool possible = entry.folder              ? entry.size == 0
                        : entry.method == kStored ? entry.size == entry.packedSize
                                                  : entry.size <= entry.packedSize * kBestRatio + kSlack;
  if (!possible) RefuseEntry(entry.name, "its sizes contradict each other");
}

bool MadeOnUnix(const std::byte* record) { return std::to_integer<unsigned>(record[5]) == 3; }

}  // namespace

void RefuseArchive(const std::string& why) {
  throw base::RuntimeError(base::ErrorNumber::InvalidFileFormat, why);
}

void RefuseEntry(const std::string& name, const std::string& why) {
  RefuseArchive("Entry \"" + name + "\": " + why);
}

ZipArchive::Entry ParseEntry(std::span<const std::byte> bytes, std::size_t& length) {
  const std::byte* record = bytes.data();
  if (bytes.size() < kCentralSize || DoubleWord(record) != kCentralSignature)
    RefuseArchive("The directory is damaged");
  const std::size_t nameLength = Word(record + 28), extraLength = Word(record + 30);
  length = kCentralSize + nameLength + extraLength + Word(record + 32);
  if (bytes.size() < length) RefuseArchive("The directory is damaged");

  ZipArchive::Entry entry;
  entry.flags = Word(record + 8);
  entry.method = Word(record + 10);
  entry.crc = DoubleWord(record + 16);
  entry.packedSize = DoubleWord(record + 20);
  entry.size = DoubleWord(record + 24);
  entry.offset = DoubleWord(record + 42);
  entry.rawName = Text(bytes.subspan(kCentralSize, nameLength));
  const std::string name = NameOf(entry.rawName, (entry.flags & kNameIsUtf8) != 0,
                                  bytes.subspan(kCentralSize + nameLength, extraLength));
  JudgeName(name);
  entry.name = base::WithSlashes(name);
  entry.folder = name.ends_with('/') || name.ends_with('\\');
  if (entry.flags & kEncrypted) RefuseEntry(name, "it is encrypted");
  if (entry.method != kStored && entry.method != kDeflated)
    RefuseEntry(name, "its packing method is unknown");
  JudgeSizes(entry);
  if (MadeOnUnix(record)) {
    constexpr unsigned kKindMask = 0170000, kLinkKind = 0120000, kAnyoneRuns = 0111;
    const unsigned mode = Word(record + 40);
    if ((mode & kKindMask) == kLinkKind) RefuseEntry(name, "it is a link");
    entry.program = (mode & kAnyoneRuns) != 0 && !entry.folder;
  }
  return entry;
}

}  // namespace update
