#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/files.hpp"
#include "startup/folders.hpp"

namespace update {

inline constexpr const char* kRecordName = "MD5Update.ini";  // below Bin

// Full path of the record of an installation.
std::string RecordFile(const startup::Folders& folders);

// What was proved of the files below Bin at earlier starts (MD5Update.ini): a digest counts again only while
// the file's size and time of last change are exactly the recorded ones. Lines of readable text (UTF-8): a
// heading, then
// "<digest> <size> <time> <name below Bin>" each, then a line with their number. A file that is not wholly
// so, such as the blank one that a repair leaves, says nothing.
class DigestRecord {
 public:
  explicit DigestRecord(std::string file) : file_(std::move(file)) {}

  // Leaves a record that vouches for nothing; raises what the file system does.
  void Empty();
  void Load();  // never fails
  std::optional<std::string> Find(const std::string& inBin, const platform::FileStamp& stamp) const;
  void Remember(const std::string& inBin, const platform::FileStamp& stamp, const std::string& digest);
  void Forget(const std::string& inBin);
  // Writes the file when anything changed; raises what the file system does.
  void Save(const std::function<void(const std::string&)>& logError);

 private:
  struct Proof {
    platform::FileStamp stamp;
    std::string digest;
    bool operator==(const Proof&) const = default;
  };

  bool Parse(std::string_view text);
  bool ParseLine(std::string_view line);

  std::string file_;
  std::map<std::string, Proof> proofs_;
  bool changed_ = false;
};

}  // namespace update
