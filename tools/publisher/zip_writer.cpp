#include "publisher/zip_writer.hpp"

#include <zlib.h>

#include <algorithm>

#include "publisher/deflater.hpp"
#include "publisher/failure.hpp"
#include "publisher/little_endian.hpp"

namespace publisher {
namespace {

constexpr std::uint64_t kLargest = 0xFFFFFFFE, kMostEntries = 0xFFFE;  // the next value means ZIP64
constexpr std::uint64_t kLocalSignature = 0x04034b50, kDataSignature = 0x08074b50;
constexpr std::uint64_t kCentralSignature = 0x02014b50, kEndSignature = 0x06054b50;
constexpr std::uint64_t kVersion = 20, kDeflated = 8;
// Said to be made on Unix: of archives made on DOS, unpackers convert the names from its code page.
constexpr std::uint64_t kMadeBy = 3 << 8 | kVersion;
constexpr std::uint64_t kPlainFile = 0100644, kProgram = 0100755;
constexpr std::uint64_t kUnicodePathField = 0x7075;
constexpr std::uint64_t kFlags = 1 << 3 | 1 << 11;  // sizes behind the data; the name is UTF-8
constexpr std::uint64_t kFirstDay = 1 << 5 | 1;     // 1 January 1980, midnight
constexpr std::size_t kPiece = 128 * 1024;

struct Field {
  std::uint64_t value;
  int bytes;
};

std::string Record(std::initializer_list<Field> fields) {
  std::string bytes;
  for (const Field& field : fields) AppendLittleEndian(bytes, field.value, field.bytes);
  return bytes;
}

// The name once more where it has accents, for unpackers that do not look at its UTF-8 flag.
std::string ExtraField(const std::string& name) {
  const bool plain =
      std::all_of(name.begin(), name.end(), [](char c) { return static_cast<signed char>(c) > 0; });
  if (plain) return {};
  const uLong crc = crc32(0, reinterpret_cast<const Bytef*>(name.data()), static_cast<uInt>(name.size()));
  return Record({{kUnicodePathField, 2}, {5 + name.size(), 2}, {1, 1}, {crc, 4}}) + name;
}

}  // namespace

ZipWriter::ZipWriter(const std::string& path)
    : path_(path), file_(Naming(path, [&] { return platform::OutputFile(path); })) {}

// What the header before the data, still without sizes, and the directory say alike.
std::string ZipWriter::FactsOf(const Entry& entry) {
  constexpr Field kTime{0, 2}, kDate{kFirstDay, 2};
  return Record({{kVersion, 2}, {kFlags, 2}, {kDeflated, 2}, kTime, kDate, {entry.crc, 4}}) +
         Record({{entry.packedSize, 4}, {entry.size, 4}}) +
         Record({{entry.name.size(), 2}, {ExtraField(entry.name).size(), 2}});
}

void ZipWriter::Add(const SourceFile& file, Progress& progress) {
  platform::InputFile source = Naming(file.path, [&] { return platform::InputFile(file.path); });
  AddEntry({.name = file.name, .program = file.program}, file.path, [&](std::span<std::byte> into) {
    const std::size_t count = Naming(file.path, [&] { return source.Read(into); });
    progress.Add(count);
    return count;
  });
}

void ZipWriter::AddText(const std::string& name, std::string_view text) {
  AddEntry({.name = name}, path_, [&](std::span<std::byte> into) {
    const std::size_t count = std::min(into.size(), text.size());
    std::copy_n(reinterpret_cast<const std::byte*>(text.data()), count, into.begin());
    text.remove_prefix(count);
    return count;
  });
}

void ZipWriter::AddEntry(Entry entry, const std::string& what, const Read& read) {
  if (entries_.size() == kMostEntries) {
    throw Failure(path_ + ": an archive holds at most 65,534 files; publish them in parts");
  }
  entry.offset = offset_;
  Write(Record({{kLocalSignature, 4}}) + FactsOf(entry) + entry.name + ExtraField(entry.name));
  WriteData(entry, what, read);
  Write(Record({{kDataSignature, 4}, {entry.crc, 4}, {entry.packedSize, 4}, {entry.size, 4}}));
  CheckSize(path_, offset_);
  entries_.push_back(std::move(entry));
}

void ZipWriter::WriteData(Entry& entry, const std::string& what, const Read& read) {
  std::vector<std::byte> piece(kPiece);
  uLong crc = crc32(0, nullptr, 0);
  Deflater deflater(Deflater::Format::Raw);
  const auto take = [&](std::span<const std::byte> packed) {
    Naming(path_, [&] { file_.Write(packed); });
    entry.packedSize += packed.size();
  };
  while (const std::size_t count = read(piece)) {
    crc = crc32(crc, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(count));
    entry.size += count;
    deflater.Feed(std::span(piece).first(count), take);
    CheckSize(what, entry.size);
  }
  deflater.Finish(take);
  entry.crc = static_cast<std::uint32_t>(crc);
  offset_ += entry.packedSize;
  CheckSize(what, entry.packedSize);
}

void ZipWriter::Commit() {
  const std::uint64_t start = offset_;
  constexpr Field kComment{0, 2}, kDisk{0, 2}, kInternal{0, 2};
  for (const Entry& entry : entries_) {
    const Field mode{(entry.program ? kProgram : kPlainFile) << 16, 4};
    Write(Record({{kCentralSignature, 4}, {kMadeBy, 2}}) + FactsOf(entry) +
          Record({kComment, kDisk, kInternal, mode, {entry.offset, 4}}) + entry.name +
          ExtraField(entry.name));
  }
  CheckSize(path_, offset_);
  Write(Record({{kEndSignature, 4}, kDisk, kDisk, {entries_.size(), 2}, {entries_.size(), 2}}) +
        Record({{offset_ - start, 4}, {start, 4}, kComment}));
  Naming(path_, [&] { file_.Commit(); });
}

void ZipWriter::Write(const std::string& bytes) {
  Naming(path_, [&] { file_.Write(bytes); });
  offset_ += bytes.size();
}

void ZipWriter::CheckSize(const std::string& what, std::uint64_t size) {
  if (size > kLargest) {
    throw Failure(what + ": launchers take neither archives nor files in them of 4 GiB or more");
  }
}

void WriteArchive(const std::vector<SourceFile>& files, const std::string& target, Progress& progress,
                  const std::vector<TextFile>& texts) {
  for (const SourceFile& file : files) ZipWriter::CheckSize(file.path, file.size);
  ZipWriter zip(target);
  for (const SourceFile& file : files) zip.Add(file, progress);
  for (const TextFile& text : texts) zip.AddText(text.name, text.text);
  zip.Commit();
}

}  // namespace publisher
