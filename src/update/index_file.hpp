#pragma once

#include <string>
#include <vector>

namespace update {

// What the index says of one file of the game.
struct IndexRecord {
  std::string digest;   // 32 characters as the publisher wrote them, lower-cased
  std::string path;     // UTF-8, as the publisher wrote it without line ends: "\Bin\..." when it is of use
  std::string inBin;    // the part below Bin with "/" between folders; empty when the record is refused
  std::string refusal;  // why it is refused; empty when it is not

  bool HasDigest() const;  // false: the publisher had none, and the file is taken as it is
};

// The unpacked index: a signed 32-bit little-endian count, then that many records of a digest (32 characters)
// and a path (16-bit little-endian length, then its characters in the narrow character set).
class IndexFile {
 public:
  // Reads as far as the file is good; what was read stays when this raises 62 (cut short) or 6 (a count that
  // the file cannot hold).
  void Read(const std::string& path);

  const std::vector<IndexRecord>& Records() const { return records_; }
  bool ReadWholly() const { return whole_; }

 private:
  std::vector<IndexRecord> records_;
  bool whole_ = false;
};

}  // namespace update
