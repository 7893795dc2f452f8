#include "update/index_file.hpp"

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

constexpr std::size_t kDigestSize = 32, kLengthSize = 2;
constexpr std::string_view kBinFolder = "BIN/";

// Small reads out of a large buffer.
class Reader {
 public:
  explicit Reader(const std::string& path) : file_(path), left_(file_.Size()) {}
  std::uint64_t Left() const { return left_; }

  std::string Take(std::size_t count) {
    if (count > left_) throw base::RuntimeError(base::ErrorNumber::InputPastEndOfFile);
    std::string taken;
    while (taken.size() < count) {
      if (at_ == filled_) Refill();
      const std::size_t piece = std::min(count - taken.size(), filled_ - at_);
      taken.append(reinterpret_cast<const char*>(buffer_.data()) + at_, piece);
      at_ += piece;
    }
    left_ -= count;
    return taken;
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
  void Refill() {
    at_ = 0;
    filled_ = file_.Read(buffer_);
    if (filled_ == 0) throw base::RuntimeError(base::ErrorNumber::InputPastEndOfFile);
  }

  platform::InputFile file_;
  std::uint64_t left_;
  std::array<std::byte, 64 * 1024> buffer_;
  std::size_t at_ = 0, filled_ = 0;
};

IndexRecord MakeRecord(const std::string& digest, const std::string& rawPath) {
  IndexRecord record;
  record.digest = base::Lower(digest);
  record.path = platform::FromAnsi(base::Replaced(base::Replaced(rawPath, "\r", ""), "\n", ""));
  record.refusal = base::WhyUnsafe(record.path);
  if (!record.refusal.empty()) return record;
  const std::string relative = base::WithSlashes(record.path);
  if (record.path.front() != '\\' || !base::Upper(relative).starts_with(kBinFolder)) {
    record.refusal = "it is not inside Bin";
    return record;
  }
  record.inBin = relative.substr(kBinFolder.size());
  return record;
}

}  // namespace

bool IndexRecord::HasDigest() const { return !base::Contains(digest, "not found"); }

void IndexFile::Read(const std::string& path) {
  records_.clear();
  whole_ = false;
  Reader reader(path);
  const auto count = static_cast<std::int32_t>(reader.TakeNumber(4));
  if (count < 0 || static_cast<std::uint64_t>(count) > reader.Left() / (kDigestSize + kLengthSize)) {
    throw base::RuntimeError(base::ErrorNumber::Overflow);
  }
  for (std::int32_t i = 0; i < count; ++i) {
    const std::string digest = reader.Take(kDigestSize);
    const std::uint32_t length = reader.TakeNumber(kLengthSize);
    records_.push_back(MakeRecord(digest, reader.Take(length)));
  }
  whole_ = true;
}

}  // namespace update
