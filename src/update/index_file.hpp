#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "util/md5_digest.hpp"

namespace update {

// What the index says of one file of the game; the name stands in the IndexFile that gave it.
struct IndexRecord {
  util::Md5Digest digest;    // all zero, which no file has, where the publisher wrote something else
  bool hasDigest = false;    // false: the publisher had none, and the file is taken as it is
  std::string_view inBin{};  // UTF-8, the part below Bin with "/" between folders; empty when refused

  std::string Path() const;  // as the game folder has it: "\Bin\..."
};

// The unpacked index: a signed 32-bit little-endian count, then that many records of a digest (32 characters)
// and a path (16-bit little-endian length, then its characters in the narrow character set).
class IndexFile {
 public:
  // Of a record that may not be used; records are numbered from 0.
  struct Refusal {
    std::size_t record;
    std::string path, why;
  };
  static constexpr std::size_t kMostRecords = 1'000'000;
  static constexpr std::size_t kKeptRefusals = 10;

  // Reads as far as the file is good; what was read stays when this raises 62 (cut short) or 6 (a count that
  // the file cannot hold, or that no game has).
  void Read(const std::string& path);

  std::size_t Count() const { return entries_.size(); }
  IndexRecord operator[](std::size_t record) const;
  bool ReadWholly() const { return whole_; }
  std::size_t RefusedCount() const { return refused_; }
  const std::vector<Refusal>& Refusals() const { return refusals_; }  // the first ones

 private:
  struct Entry {
    util::Md5Digest digest;
    std::uint32_t nameAt = 0;  // in names_
    std::uint16_t nameSize = 0;
    bool hasDigest = false;
  };

  void Add(std::string_view digest, std::string_view rawPath);
  std::string NameInBin(std::string_view rawPath);  // empty when it is refused, which is noted

  std::vector<Entry> entries_;
  std::string names_;  // one behind the other
  std::vector<Refusal> refusals_;
  std::size_t refused_ = 0;
  bool whole_ = false;
};

}  // namespace update
