#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/files.hpp"
#include "startup/folders.hpp"
#include "util/md5_digest.hpp"

namespace update {

inline constexpr const char* kRecordName = "MD5Update.ini";  // below Bin

// Full path of the record of an installation.
std::string RecordFile(const startup::Folders& folders);

// What was proved of the files below Bin at earlier starts (MD5Update.ini): a digest counts again only while
// the file's size and time of last change are exactly the recorded ones. Lines of readable text (UTF-8): a
// heading, then
// "<digest> <size> <time> <name below Bin>" each, then a line with their number and one with a seal over all
// of it. A file that is not wholly so, such as the blank one that a repair leaves, says nothing; nor does one
// that was sealed with another text, since whoever can bring a file could bring its record too.
class DigestRecord {
 public:
  // `seal`: a secret of this installation; without one the record neither believes nor keeps anything.
  explicit DigestRecord(std::string file, std::string seal = {})
      : file_(std::move(file)), seal_(std::move(seal)) {}

  // Leaves a record that vouches for nothing; raises what the file system does.
  void Clear();
  void Load();  // never fails
  bool Empty() const { return proofs_.empty(); }
  std::optional<util::Md5Digest> Find(std::string_view inBin, const platform::FileStamp& stamp) const;
  void Expect(std::size_t proofs);  // makes room for so many at once
  // What is remembered or forgotten counts once it is saved.
  void Remember(std::string_view inBin, const platform::FileStamp& stamp, const util::Md5Digest& digest);
  void Forget(std::string_view inBin);
  // Writes the file when anything changed; raises what the file system does.
  void Save(const std::function<void(const std::string&)>& logError);

 private:
  struct Proof {
    std::uint32_t nameAt = 0, nameSize = 0;  // in names_
    platform::FileStamp stamp;
    util::Md5Digest digest;
    bool forgotten = false;
  };

  bool TakeSealed(std::string_view text);
  bool Parse(std::string_view text);
  bool ParseLine(std::string_view line);
  bool Sort();  // false when not all of them are kept
  void Add(std::string_view name, const platform::FileStamp& stamp, const util::Md5Digest& digest);
  std::string_view NameOf(const Proof& proof) const;
  std::size_t IndexOf(std::string_view name) const;  // among the sorted ones

  std::string file_, seal_;
  std::string names_;          // one behind the other
  std::vector<Proof> proofs_;  // the first sorted_ of them in the order of their names
  std::size_t sorted_ = 0;
  bool changed_ = false;
};

}  // namespace update
