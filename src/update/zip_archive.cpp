#include "update/zip_archive.hpp"

#include <algorithm>

#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "update/zip_entry.hpp"

namespace update {
namespace {

constexpr std::uint32_t kEndSignature = 0x06054b50;
constexpr std::size_t kEndSize = 22, kLongestComment = 0xFFFF;
constexpr std::uint64_t kLargestDirectory = 64u << 20;
constexpr std::uint64_t kMostExpanded = std::uint64_t{64} << 30;
constexpr std::size_t kPiece = 128 * 1024;

struct EndRecord {
  std::uint64_t offset = 0, size = 0;  // of the directory
  std::size_t count = 0;
};

// Only the last end record counts whose comment reaches just to the end of the file.
std::size_t FindEnd(const std::vector<std::byte>& tail) {
  for (std::size_t at = tail.size() - kEndSize + 1; at-- > 0;) {
    const std::byte* record = tail.data() + at;
    if (DoubleWord(record) == kEndSignature && at + kEndSize + Word(record + 20) == tail.size()) return at;
  }
  RefuseArchive("It is no ZIP archive");
}

EndRecord JudgedEnd(const std::byte* record, std::uint64_t recordOffset) {
  if (Word(record + 4) != 0 || Word(record + 6) != 0 || Word(record + 8) != Word(record + 10))
    RefuseArchive("The archive spans several disks");
  const EndRecord end{DoubleWord(record + 16), DoubleWord(record + 12), Word(record + 10)};
  if (end.offset == 0xFFFFFFFF || end.count == 0xFFFF) RefuseArchive("ZIP64 archives are not supported");
  if (end.offset + end.size > recordOffset) RefuseArchive("The archive is cut short");
  if (end.size > kLargestDirectory) RefuseArchive("The archive's directory is too large");
  return end;
}

}  // namespace

ZipArchive::ZipArchive(const std::string& path) : file_(path) {
  ReadDirectory();
  JudgeTree();
}

void ZipArchive::ReadExactly(std::uint64_t offset, std::span<std::byte> into) const {
  while (!into.empty()) {
    const std::size_t got = file_.ReadAt(offset, into);
    if (got == 0) RefuseArchive("The archive is cut short");
    offset += got;
    into = into.subspan(got);
  }
}

void ZipArchive::ReadDirectory() {
  const std::uint64_t fileSize = file_.Size();
  if (fileSize < kEndSize) RefuseArchive("It is no ZIP archive");
  std::vector<std::byte> tail(
      static_cast<std::size_t>(std::min<std::uint64_t>(fileSize, kEndSize + kLongestComment)));
  ReadExactly(fileSize - tail.size(), tail);
  const std::size_t at = FindEnd(tail);
  const EndRecord end = JudgedEnd(tail.data() + at, fileSize - tail.size() + at);

  std::vector<std::byte> bytes(static_cast<std::size_t>(end.size));
  ReadExactly(end.offset, bytes);
  std::span<const std::byte> rest = bytes;
  entries_.reserve(end.count);
  for (std::size_t i = 0; i < end.count; ++i) {
    std::size_t length = 0;
    entries_.push_back(ParseEntry(rest, length));
    expandedSize_ += entries_.back().size;
    rest = rest.subspan(length);
  }
  if (!rest.empty()) RefuseArchive("The directory is damaged");
  if (expandedSize_ > kMostExpanded) RefuseArchive("The archive expands beyond every measure");
  JudgeOverlaps(end.offset);
}

// Entries that share bytes are how a small archive expands without bound.
void ZipArchive::JudgeOverlaps(std::uint64_t directoryOffset) {
  std::vector<Entry*> ordered;
  for (Entry& entry : entries_) ordered.push_back(&entry);
  std::sort(ordered.begin(), ordered.end(),
            [](const Entry* a, const Entry* b) { return a->offset < b->offset; });
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    Entry& entry = *ordered[i];
    const bool last = i + 1 == ordered.size();
    entry.end = last ? directoryOffset : ordered[i + 1]->offset;
    if (entry.offset + kLocalSize + entry.rawName.size() + entry.packedSize <= entry.end) continue;
    RefuseArchive(last ? "The archive is cut short" : "Entries of the archive overlap");
  }
}

// With "/" below every other character, what lies in a folder follows right behind the folder's own name.
void ZipArchive::JudgeTree() const {
  std::vector<std::pair<std::string, const Entry*>> paths;
  for (const Entry& entry : entries_) {
    paths.emplace_back(base::UpperLatin(entry.name), &entry);
    std::replace(paths.back().first.begin(), paths.back().first.end(), '/', '\0');
  }
  std::sort(paths.begin(), paths.end());
  for (std::size_t i = 1; i < paths.size(); ++i) {
    const auto& [before, earlier] = paths[i - 1];
    const auto& [path, entry] = paths[i];
    if (path == before && !(entry->folder && earlier->folder))
      RefuseEntry(entry->name, "the archive holds it twice");
    if (!earlier->folder && path.starts_with(before + '\0'))
      RefuseEntry(earlier->name, "it is a file and a folder");
  }
}

std::uint64_t ZipArchive::DataOffset(const Entry& entry) const {
  std::vector<std::byte> header(kLocalSize + entry.rawName.size());
  ReadExactly(entry.offset, header);
  const std::byte* local = header.data();
  const bool sizesBehind = (entry.flags & kSizesBehindData) != 0;
  const auto sameNumber = [&](std::size_t at, std::uint64_t number) {
    const std::uint32_t told = DoubleWord(local + at);
    return told == number || (sizesBehind && told == 0);
  };
  const std::string_view name(reinterpret_cast<const char*>(local + kLocalSize), entry.rawName.size());
  const bool same = DoubleWord(local) == kLocalSignature && Word(local + 6) == entry.flags &&
                    Word(local + 8) == entry.method && sameNumber(14, entry.crc) &&
                    sameNumber(18, entry.packedSize) && sameNumber(22, entry.size) &&
                    Word(local + 26) == entry.rawName.size() && name == entry.rawName;
  if (!same) RefuseEntry(entry.name, "its header differs from the directory");
  const std::uint64_t data = entry.offset + header.size() + Word(local + 28);
  if (data + entry.packedSize > entry.end) RefuseArchive("Entries of the archive overlap");
  return data;
}

bool ZipArchive::Expand(const Entry& entry, Inflater& inflater, const Inflater::Take& take,
                        const std::stop_token& stop) const {
  std::uint64_t at = DataOffset(entry), left = entry.packedSize, total = 0;
  uLong crc = crc32(0, nullptr, 0);
  const auto read = [&](std::span<std::byte> into) {
    const auto wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, into.size()));
    const std::size_t got = wanted == 0 ? 0 : file_.ReadAt(at, into.first(wanted));
    at += got;
    left -= got;
    return got;
  };
  const auto prove = [&](std::span<const std::byte> bytes) {
    total += bytes.size();
    crc = crc32(crc, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size()));
    take(bytes);
  };
  bool good = true;
  if (entry.method == kDeflated) {
    using Outcome = Inflater::Outcome;
    const Outcome outcome = inflater.Expand(Inflater::Format::Raw, entry.size, read, prove, stop);
    good = (outcome == Outcome::Whole && inflater.Unused() == 0) || outcome == Outcome::Stopped;
  } else {
    std::vector<std::byte> piece(static_cast<std::size_t>(std::min<std::uint64_t>(entry.size, kPiece)));
    while (!stop.stop_requested()) {
      const std::size_t got = read(piece);
      if (got == 0) break;
      prove(std::span(piece).first(got));
    }
  }
  if (good && stop.stop_requested()) return false;
  if (!good || left > 0 || total != entry.size || crc != entry.crc) RefuseEntry(entry.name, "it is damaged");
  return true;
}

void ZipArchive::Prove(const std::stop_token& stop) const {
  Inflater inflater;
  for (const Entry& entry : entries_) {
    if (!Expand(
            entry, inflater, [](std::span<const std::byte>) {}, stop))
      return;
  }
}

}  // namespace update
