#pragma once

#include <cstdint>
#include <stop_token>
#include <string>
#include <vector>

#include "platform/files.hpp"

namespace update {

// A ZIP archive read and judged before anything of it is used (format: PKWARE APPNOTE 6.3). Every failure is
// a RuntimeError 321 whose description says what is wrong and with which entry. Understood: stored and
// deflated entries; refused: encrypted ones, other methods, several disks, ZIP64, links, overlapping entries,
// names that may not be used.
class ZipArchive {
 public:
  struct Entry {
    std::string name;  // UTF-8, "/" between its parts, a folder's without the closing "/"
    bool folder = false;
    std::uint64_t size = 0, packedSize = 0;
    std::uint32_t crc = 0;
    std::uint16_t method = 0;
    std::uint64_t offset = 0;  // of its local header
  };

  // Reads the central directory and judges every entry by its header.
  explicit ZipArchive(const std::string& path);

  const std::vector<Entry>& Entries() const { return entries_; }

  // Expands every entry in memory, a piece at a time, and compares length and checksum. Returns early,
  // without a verdict, when `stop` is requested.
  void Prove(std::stop_token stop = {});

 private:
  void ReadDirectory();
  void JudgeOverlaps() const;
  std::uint64_t DataOffset(const Entry& entry);  // checks the local header on the way
  void ProveEntry(const Entry& entry, std::vector<std::byte>& input, std::vector<std::byte>& output);

  platform::InputFile file_;
  std::vector<Entry> entries_;
  std::vector<std::string> rawNames_;  // as the directory has them, to compare with the local headers
};

}  // namespace update
