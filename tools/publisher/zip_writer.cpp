#include "publisher/zip_writer.hpp"

#include <zlib.h>

#include "publisher/deflater.hpp"
#include "publisher/failure.hpp"
#include "publisher/little_endian.hpp"

namespace publisher {
namespace {

constexpr std::uint64_t kLargest = 0xFFFFFFFE, kMostEntries = 0xFFFE;  // the next value means ZIP64
constexpr std::uint64_t kLocalSignature = 0x04034b50, kDataSignature = 0x08074b50;
constexpr std::uint64_t kCentralSignature = 0x02014b50, kEndSignature = 0x06054b50;
constexpr std::uint64_t kVersion = 20, kDeflated = 8, kArchiveAttribute = 0x20;
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

}  // namespace

ZipWriter::ZipWriter(const std::string& path)
    : path_(path), file_(Naming(path, [&] { return platform::OutputFile(path); })) {}

void ZipWriter::Add(const SourceFile& file, Progress& progress) {
  CheckLimits(file.path, file.size);
  Entry entry;
  entry.name = file.name;
  entry.offset = offset_;
  Write(Record({{kLocalSignature, 4},
                {kVersion, 2},
                {kFlags, 2},
                {kDeflated, 2},
                {0, 2},
                {kFirstDay, 2},
                {0, 4},
                {0, 4},
                {0, 4},
                {entry.name.size(), 2},
                {0, 2}}) +
        entry.name);
  WriteData(entry, file.path, progress);
  Write(Record({{kDataSignature, 4}, {entry.crc, 4}, {entry.packedSize, 4}, {entry.size, 4}}));
  entries_.push_back(std::move(entry));
}

void ZipWriter::WriteData(Entry& entry, const std::string& path, Progress& progress) {
  platform::InputFile source = Naming(path, [&] { return platform::InputFile(path); });
  std::vector<std::byte> piece(kPiece);
  uLong crc = crc32(0, nullptr, 0);
  Deflater deflater(Deflater::Format::Raw);
  const auto take = [&](std::span<const std::byte> packed) {
    Naming(path_, [&] { file_.Write(packed); });
    entry.packedSize += packed.size();
  };
  while (const std::size_t count = Naming(path, [&] { return source.Read(piece); })) {
    crc = crc32(crc, reinterpret_cast<const Bytef*>(piece.data()), static_cast<uInt>(count));
    entry.size += count;
    deflater.Feed(std::span(piece).first(count), take);
    CheckLimits(path, entry.size);
    progress.Add(count);
  }
  deflater.Finish(take);
  entry.crc = static_cast<std::uint32_t>(crc);
  offset_ += entry.packedSize;
  CheckLimits(path, entry.packedSize);
}

void ZipWriter::Commit() {
  const std::uint64_t start = offset_;
  for (const Entry& entry : entries_) {
    Write(Record({{kCentralSignature, 4},
                  {kVersion, 2},
                  {kVersion, 2},
                  {kFlags, 2},
                  {kDeflated, 2},
                  {0, 2},
                  {kFirstDay, 2},
                  {entry.crc, 4},
                  {entry.packedSize, 4},
                  {entry.size, 4},
                  {entry.name.size(), 2},
                  {0, 2},
                  {0, 2},
                  {0, 2},
                  {0, 2},
                  {kArchiveAttribute, 4},
                  {entry.offset, 4}}) +
          entry.name);
  }
  CheckLimits(path_, 0);
  Write(Record({{kEndSignature, 4},
                {0, 2},
                {0, 2},
                {entries_.size(), 2},
                {entries_.size(), 2},
                {offset_ - start, 4},
                {start, 4},
                {0, 2}}));
  Naming(path_, [&] { file_.Commit(); });
}

void ZipWriter::Write(const std::string& bytes) {
  Naming(path_, [&] { file_.Write(bytes); });
  offset_ += bytes.size();
}

void ZipWriter::CheckLimits(const std::string& what, std::uint64_t size) const {
  if (size > kLargest) throw Failure(what + ": launchers take no file of 4 GiB or more in an archive");
  if (offset_ > kLargest) throw Failure(path_ + ": the archive would pass 4 GiB; publish the files in parts");
  if (entries_.size() >= kMostEntries) {
    throw Failure(path_ + ": an archive holds at most 65,534 files; publish them in parts");
  }
}

void WriteArchive(const std::vector<SourceFile>& files, const std::string& target, Progress& progress) {
  ZipWriter zip(target);
  for (const SourceFile& file : files) zip.Add(file, progress);
  zip.Commit();
}

}  // namespace publisher
