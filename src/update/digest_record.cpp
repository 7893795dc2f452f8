#include "update/digest_record.hpp"

#include <charconv>
#include <exception>

#include "base/text.hpp"
#include "util/clsFastString.hpp"

namespace update {
namespace {

constexpr std::string_view kHeading = "; Archivos verificados de Bin: MD5, bytes, fecha, nombre";
constexpr std::string_view kTotal = "; total ";
constexpr std::uint64_t kLargestRecord = 64u << 20;

template <class Number>
bool ParseNumber(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && end == text.data() + text.size();
}

bool IsDigest(std::string_view text) {
  return text.size() == 32 && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

std::string RecordFile(const startup::Folders& folders) {
  return folders.BinDir + platform::kSeparator + kRecordName;
}

void DigestRecord::Empty() {
  proofs_.clear();
  changed_ = false;
  platform::WriteWhole(file_, " \r\n");
}

void DigestRecord::Load() {
  proofs_.clear();
  changed_ = false;
  try {
    if (platform::IsFile(file_) && Parse(platform::ReadWhole(file_, kLargestRecord))) return;
  } catch (const std::exception&) {  // an unreadable record is as good as none
  }
  proofs_.clear();
}

bool DigestRecord::Parse(std::string_view text) {
  if (TakeLine(text) != kHeading) return false;
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    if (line.starts_with(kTotal)) {
      std::size_t total = 0;
      return text.empty() && ParseNumber(line.substr(kTotal.size()), total) && total == proofs_.size();
    }
    if (!ParseLine(line)) return false;
  }
  return false;
}

bool DigestRecord::ParseLine(std::string_view line) {
  std::string_view fields[3];
  for (std::string_view& field : fields) {
    const std::size_t blank = line.find(' ');
    if (blank == std::string_view::npos) return false;
    field = line.substr(0, blank);
    line.remove_prefix(blank + 1);
  }
  Proof proof;
  proof.digest = fields[0];
  if (!IsDigest(proof.digest) || !ParseNumber(fields[1], proof.stamp.size) ||
      !ParseNumber(fields[2], proof.stamp.modified) || line.empty()) {
    return false;
  }
  return proofs_.emplace(line, std::move(proof)).second;
}

std::optional<std::string> DigestRecord::Find(const std::string& inBin,
                                              const platform::FileStamp& stamp) const {
  const auto found = proofs_.find(inBin);
  if (found == proofs_.end() || !(found->second.stamp == stamp)) return std::nullopt;
  return found->second.digest;
}

void DigestRecord::Remember(const std::string& inBin, const platform::FileStamp& stamp,
                            const std::string& digest) {
  Proof proof{stamp, digest};
  Proof& kept = proofs_[inBin];
  if (kept == proof) return;
  kept = std::move(proof);
  changed_ = true;
}

void DigestRecord::Forget(const std::string& inBin) {
  if (proofs_.erase(inBin) > 0) changed_ = true;
}

void DigestRecord::Save(const std::function<void(const std::string&)>& logError) {
  if (!changed_) return;
  util::clsFastString text(logError);
  text.Append(std::string(kHeading) + platform::kLineEnd);
  for (const auto& [name, proof] : proofs_) {
    text.Append(proof.digest + " " + std::to_string(proof.stamp.size) + " " +
                std::to_string(proof.stamp.modified) + " " + name + platform::kLineEnd);
  }
  text.Append(std::string(kTotal) + std::to_string(proofs_.size()) + platform::kLineEnd);
  platform::WriteWhole(file_, text.Value());
  changed_ = false;
}

}  // namespace update
