#include "update/zip_archive.hpp"

#include <algorithm>
#include <cstring>
#include <span>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "platform/encoding.hpp"
#include "update/inflater.hpp"

namespace update {
namespace {

constexpr std::uint32_t kEndSignature = 0x06054b50;
constexpr std::uint32_t kCentralSignature = 0x02014b50;
constexpr std::uint32_t kLocalSignature = 0x04034b50;
constexpr std::size_t kEndSize = 22, kCentralSize = 46, kLocalSize = 30;
constexpr std::size_t kLongestComment = 0xFFFF;
constexpr std::uint64_t kLargestDirectory = 64u << 20;
constexpr std::uint16_t kEncryptedFlag = 1, kUtf8Flag = 1 << 11;
constexpr std::uint16_t kUnicodePathField = 0x7075;
constexpr std::size_t kPiece = 128 * 1024;

[[noreturn]] void Refuse(const std::string& why) {
  throw base::RuntimeError(base::ErrorNumber::InvalidFileFormat, why);
}

std::uint16_t Word(const std::byte* at) {
  return static_cast<std::uint16_t>(std::to_integer<unsigned>(at[0]) | std::to_integer<unsigned>(at[1]) << 8);
}

std::uint32_t DoubleWord(const std::byte* at) {
  return static_cast<std::uint32_t>(Word(at)) | static_cast<std::uint32_t>(Word(at + 2)) << 16;
}

std::string Text(const std::byte* at, std::size_t length) {
  return std::string(reinterpret_cast<const char*>(at), length);
}

void ReadExactly(platform::InputFile& file, std::uint64_t offset, std::span<std::byte> into) {
  file.Seek(offset);
  for (std::size_t done = 0; done < into.size();) {
    const std::size_t got = file.Read(into.subspan(done));
    if (got == 0) Refuse("The archive is cut short");
    done += got;
  }
}

struct Directory {
  std::uint64_t offset = 0, size = 0;
  std::size_t count = 0;
};

// The end record is searched backwards, since a comment of any length may follow it.
Directory FindDirectory(platform::InputFile& file) {
  const std::uint64_t fileSize = file.Size();
  if (fileSize < kEndSize) Refuse("It is no ZIP archive");
  std::vector<std::byte> tail(
      static_cast<std::size_t>(std::min<std::uint64_t>(fileSize, kEndSize + kLongestComment)));
  ReadExactly(file, fileSize - tail.size(), tail);
  for (std::size_t at = tail.size() - kEndSize + 1; at-- > 0;) {
    const std::byte* record = tail.data() + at;
    if (DoubleWord(record) != kEndSignature || at + kEndSize + Word(record + 20) != tail.size()) continue;
    if (Word(record + 4) != 0 || Word(record + 6) != 0 || Word(record + 8) != Word(record + 10)) {
      Refuse("The archive spans several disks");
    }
    const Directory directory{DoubleWord(record + 16), DoubleWord(record + 12), Word(record + 10)};
    if (directory.offset == 0xFFFFFFFF || directory.count == 0xFFFF)
      Refuse("ZIP64 archives are not supported");
    if (directory.offset + directory.size > fileSize - tail.size() + at) Refuse("The archive is cut short");
    if (directory.size > kLargestDirectory) Refuse("The archive's directory is too large");
    return directory;
  }
  Refuse("It is no ZIP archive");
}

bool IsLink(const std::byte* central) {
  constexpr unsigned kMadeOnUnix = 3, kKindMask = 0170000, kLinkKind = 0120000;
  return std::to_integer<unsigned>(central[5]) == kMadeOnUnix &&
         (Word(central + 40) & kKindMask) == kLinkKind;
}

void JudgeName(const std::string& name) {
  if (name.starts_with('/') || name.starts_with('\\')) Refuse("Entry \"" + name + "\": the name is absolute");
  if (const std::string why = base::WhyUnsafe(name); !why.empty()) Refuse("Entry \"" + name + "\": " + why);
}

// An unpacker may prefer the name of this extra field, so that one is judged too.
void JudgeExtraFields(std::span<const std::byte> extra) {
  constexpr std::size_t kHeader = 4, kBeforeName = 5;
  while (extra.size() >= kHeader) {
    const std::size_t length = Word(extra.data() + 2);
    if (length > extra.size() - kHeader) return;  // unpackers stop reading such a block here too
    const auto body = extra.subspan(kHeader, length);
    if (Word(extra.data()) == kUnicodePathField && length > kBeforeName) {
      JudgeName(Text(body.data() + kBeforeName, length - kBeforeName));
    }
    extra = extra.subspan(kHeader + length);
  }
}

}  // namespace

ZipArchive::ZipArchive(const std::string& path) : file_(path) {
  ReadDirectory();
  JudgeOverlaps();
}

void ZipArchive::ReadDirectory() {
  const Directory directory = FindDirectory(file_);
  std::vector<std::byte> bytes(static_cast<std::size_t>(directory.size));
  ReadExactly(file_, directory.offset, bytes);
  std::size_t at = 0;
  for (std::size_t i = 0; i < directory.count; ++i) {
    const std::byte* record = bytes.data() + at;
    if (bytes.size() - at < kCentralSize || DoubleWord(record) != kCentralSignature)
      Refuse("The directory is damaged");
    const std::size_t nameLength = Word(record + 28), extraLength = Word(record + 30);
    const std::size_t length = kCentralSize + nameLength + extraLength + Word(record + 32);
    if (bytes.size() - at < length) Refuse("The directory is damaged");
    at += length;

    std::string raw = Text(record + kCentralSize, nameLength);
    const std::string name = (Word(record + 8) & kUtf8Flag) ? raw : platform::FromAnsi(raw);
    JudgeName(name);
    JudgeExtraFields(std::span(record + kCentralSize + nameLength, extraLength));
    Entry entry{base::WithSlashes(name), raw.ends_with('/') || raw.ends_with('\\'),
                DoubleWord(record + 24), DoubleWord(record + 20),
                DoubleWord(record + 16), Word(record + 10),
                DoubleWord(record + 42)};
    if (Word(record + 8) & kEncryptedFlag) Refuse("Entry \"" + name + "\" is encrypted");
    if (entry.method != 0 && entry.method != 8)
      Refuse("Entry \"" + name + "\" is packed by an unknown method");
    if (IsLink(record)) Refuse("Entry \"" + name + "\" is a link");
    if (entry.size == 0xFFFFFFFF || entry.packedSize == 0xFFFFFFFF)
      Refuse("ZIP64 archives are not supported");
    if (entry.offset + kLocalSize + nameLength + entry.packedSize > directory.offset)
      Refuse("The archive is cut short");
    entries_.push_back(std::move(entry));
    rawNames_.push_back(std::move(raw));
  }
}

// Entries that share bytes are how a small archive expands without bound.
void ZipArchive::JudgeOverlaps() const {
  std::vector<std::pair<std::uint64_t, std::uint64_t>> ranges;
  for (const Entry& entry : entries_)
    ranges.emplace_back(entry.offset, entry.offset + kLocalSize + entry.packedSize);
  std::sort(ranges.begin(), ranges.end());
  for (std::size_t i = 1; i < ranges.size(); ++i) {
    if (ranges[i].first < ranges[i - 1].second) Refuse("Entries of the archive overlap");
  }
}

void ZipArchive::Prove(std::stop_token stop) {
  std::vector<std::byte> input(kPiece), output(kPiece);
  for (std::size_t i = 0; i < entries_.size() && !stop.stop_requested(); ++i)
    ProveEntry(entries_[i], input, output);
}

std::uint64_t ZipArchive::DataOffset(const Entry& entry) {
  const std::string& raw = rawNames_[static_cast<std::size_t>(&entry - entries_.data())];
  std::vector<std::byte> header(kLocalSize + raw.size());
  ReadExactly(file_, entry.offset, header);
  const bool same = DoubleWord(header.data()) == kLocalSignature && Word(header.data() + 26) == raw.size() &&
                    Word(header.data() + 8) == entry.method &&
                    Text(header.data() + kLocalSize, raw.size()) == raw;
  if (!same) Refuse("Entry \"" + entry.name + "\": its header differs from the directory");
  std::vector<std::byte> extra(Word(header.data() + 28));
  ReadExactly(file_, entry.offset + header.size(), extra);
  JudgeExtraFields(extra);
  return entry.offset + header.size() + extra.size();
}

void ZipArchive::ProveEntry(const Entry& entry, std::vector<std::byte>& input,
                            std::vector<std::byte>& output) {
  const auto damaged = [&] { Refuse("Entry \"" + entry.name + "\" is damaged"); };
  file_.Seek(DataOffset(entry));
  uLong crc = crc32(0, nullptr, 0);
  std::uint64_t left = entry.packedSize, total = 0;
  const auto take = [&](std::span<const std::byte> bytes) {
    total += bytes.size();
    if (total > entry.size) damaged();
    crc = crc32(crc, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size()));
  };
  Inflater inflater(Inflater::Format::Raw);
  bool ended = entry.method == 0;
  bool holdsOutput = false;  // the last piece of output was full, so there may be more without further input
  while (left > 0 || !ended) {
    if (inflater.NeedsInput() && !holdsOutput) {
      if (left == 0) damaged();
      const std::size_t wanted = static_cast<std::size_t>(std::min<std::uint64_t>(left, input.size()));
      const std::size_t got = file_.Read(std::span(input).first(wanted));
      if (got == 0) damaged();
      left -= got;
      if (entry.method == 0) {
        take(std::span(input).first(got));
        continue;
      }
      if (ended) damaged();
      inflater.Feed(std::span(input).first(got));
    }
    std::size_t produced = 0;
    const auto status = inflater.Expand(output, produced);
    if (status == Inflater::Status::Corrupt) damaged();
    take(std::span(output).first(produced));
    holdsOutput = produced == output.size();
    if (status != Inflater::Status::End) continue;
    ended = true;
    if (left > 0 || !inflater.NeedsInput()) damaged();
  }
  if (total != entry.size || crc != entry.crc) damaged();
}

}  // namespace update
