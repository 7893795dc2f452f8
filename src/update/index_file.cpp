#include "update/index_file.hpp"

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/encoding.hpp"
#include "platform/files.hpp"

namespace update {
namespace {

constexpr std::size_t kCountSize = 4, kDigestSize = 32, kLengthSize = 2;
constexpr std::string_view kBinFolder = "Bin/", kNoDigest = "not found";

// Small reads out of a large buffer.
class Reader {
 public:
  explicit Reader(const std::string& path) : file_(path) {}
  std::uint64_t Size() const { return file_.Size(); }

  // Good until the next is taken.
  std::string_view Take(std::size_t count) {
    if (count <= filled_ - at_) return Piece(count);
    across_.clear();
    while (across_.size() < count) {
      if (at_ == filled_) Refill();
      across_ += Piece(std::min(count - across_.size(), filled_ - at_));
    }
    return across_;
  }

  std::uint32_t TakeNumber(std::size_t bytes) {
    std::uint32_t number = 0;
    unsigned shift = 0;
    for (const char c : Take(bytes)) {
      number |= static_cast<std::uint32_t>(static_cast<unsigned char>(c)) << shift;
      shift += 8;
    }
    return number;
  }

 private:
  std::string_view Piece(std::size_t count) {
    const char* const from = reinterpret_cast<const char*>(buffer_.data()) + at_;
    at_ += count;
    return {from, count};
  }

  void Refill() {
    at_ = 0;
    filled_ = file_.Read(buffer_);
    if (filled_ == 0) throw base::RuntimeError(base::ErrorNumber::InputPastEndOfFile);
  }

  platform::InputFile file_;
  std::array<std::byte, 64 * 1024> buffer_;
  std::size_t at_ = 0, filled_ = 0;
  std::string across_;  // what the buffer does not hold as a whole
};

// Why a path that may be used as a name is no path of a file in Bin.
bool IsInBin(std::string_view path, std::string_view relative) {
  return path.front() == '\\' && base::EqualIgnoringCase(relative.substr(0, kBinFolder.size()), kBinFolder) &&
         relative.size() > kBinFolder.size();
}

}  // namespace

std::string IndexRecord::Path() const {
  return "\\" + base::Replaced("Bin/" + std::string(inBin), "/", "\\");
}

IndexRecord IndexFile::operator[](std::size_t record) const {
  const Entry& entry = entries_[record];
  return {entry.digest, entry.hasDigest, std::string_view(names_).substr(entry.nameAt, entry.nameSize)};
}

std::string IndexFile::NameInBin(std::string_view rawPath) {
  std::string line(rawPath);
  std::erase_if(line, [](char c) { return c == '\r' || c == '\n'; });
  const std::string path = platform::FromAnsi(line);
  std::string why = base::WhyUnsafe(path);
  if (why.empty()) {
    const std::string relative = base::WithSlashes(path);
    if (IsInBin(path, relative)) return relative.substr(kBinFolder.size());
    why = "it is not inside Bin";
  }
  if (++refused_ <= kKeptRefusals) refusals_.push_back({entries_.size(), path, why});
  return {};
}

void IndexFile::Add(std::string_view digest, std::string_view rawPath) {
  const std::string name = NameInBin(rawPath), lower = base::Lower(digest);
  entries_.push_back({util::Md5Digest::FromHex(lower).value_or(util::Md5Digest{}),
                      static_cast<std::uint32_t>(names_.size()), static_cast<std::uint16_t>(name.size()),
                      !base::Contains(lower, kNoDigest)});
  names_ += name;
}

void IndexFile::Read(const std::string& path) {
  *this = IndexFile();
  Reader reader(path);
  const auto count = static_cast<std::int32_t>(reader.TakeNumber(kCountSize));
  const std::uint64_t room = reader.Size() - kCountSize;
  if (count < 0 || static_cast<std::size_t>(count) > kMostRecords ||
      static_cast<std::uint64_t>(count) > room / (kDigestSize + kLengthSize)) {
    throw base::RuntimeError(base::ErrorNumber::Overflow);
  }
  const auto records = static_cast<std::size_t>(count);
  entries_.reserve(records);
  names_.reserve(static_cast<std::size_t>(
      std::min<std::uint64_t>(room - records * (kDigestSize + kLengthSize), records * base::kLongestName)));
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string digest(reader.Take(kDigestSize));
    const std::uint32_t length = reader.TakeNumber(kLengthSize);
    Add(digest, reader.Take(length));
  }
  whole_ = true;
}

}  // namespace update
