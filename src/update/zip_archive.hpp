#pragma once

#include <cstdint>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/files.hpp"
#include "update/inflater.hpp"

namespace update {

// A ZIP archive (format: PKWARE APPNOTE 6.3), judged by its directory when it is opened and proved while it
// is expanded, all through one open handle. Every fault of the archive is a RuntimeError 321 whose
// description says what is wrong and with which entry. Understood: stored and deflated entries; refused:
// encrypted ones, other methods, several disks, ZIP64, links, overlapping entries, names that may not be
// used, that are no text in their encoding, that differ only in case, or that make one path a file and a
// folder.
class ZipArchive {
 public:
  struct Entry {
    std::string name;  // UTF-8, "/" between its parts, a folder's without the closing "/"
    bool folder = false;
    bool program = false;  // packed on a system that marks programs, and marked as one
    std::uint64_t size = 0;

    // How it lies in the archive.
    std::uint64_t packedSize = 0, offset = 0, end = 0;  // of its local header; of the room it may take
    std::uint32_t crc = 0;
    std::uint16_t method = 0, flags = 0;
    std::string rawName;  // as the directory has it
  };

  explicit ZipArchive(const std::string& path);

  const std::vector<Entry>& Entries() const { return entries_; }
  std::uint64_t ExpandedSize() const { return expandedSize_; }  // bytes of all entries

  // Hands the bytes of an entry to `take` and raises at the end at the latest when they are not what the
  // directory promises; false when a stop was requested before. Several threads may expand entries at the
  // same time, each with an inflater of its own.
  bool Expand(const Entry& entry, Inflater& inflater, const Inflater::Take& take,
              const std::stop_token& stop) const;

  // Expands every entry for the proof alone. Returns without a verdict when `stop` is requested.
  void Prove(const std::stop_token& stop = {}) const;

 private:
  void ReadDirectory();
  void JudgeOverlaps(std::uint64_t directoryOffset);
  void JudgeTree() const;
  void ReadExactly(std::uint64_t offset, std::span<std::byte> into) const;
  std::uint64_t DataOffset(const Entry& entry) const;  // checks the local header on the way

  platform::InputFile file_;
  std::vector<Entry> entries_;
  std::uint64_t expandedSize_ = 0;
};

}  // namespace update
