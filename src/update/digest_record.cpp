#include "update/digest_record.hpp"

#include <algorithm>
#include <charconv>
#include <exception>
#include <span>

#include "base/text.hpp"
#include "platform/digest.hpp"
#include "util/clsFastString.hpp"
#include "util/sha256.hpp"

namespace update {
namespace {

constexpr std::string_view kHeading = "; Archivos verificados de Bin: MD5, bytes, fecha, nombre";
constexpr std::string_view kTotal = "; total ", kSeal = "; sello ";
constexpr std::uint64_t kLargestRecord = 64u << 20;
constexpr std::int32_t kPiece = 48 * 1024;  // written at a time
constexpr std::size_t kNone = SIZE_MAX;

template <class Number>
bool ParseNumber(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc{} && end == text.data() + text.size();
}

std::string_view TakeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

// Over a text that comes in pieces. Who knows a sealed text but not the secret can seal no longer one either.
class Seal {
 public:
  explicit Seal(const std::string& secret) : secret_(secret) { Update(secret); }
  void Update(std::string_view text) { digest_.Update(std::as_bytes(std::span(text))); }
  std::string Text() { return util::Sha256(secret_ + digest_.Hex()); }

 private:
  const std::string& secret_;
  platform::Digest digest_{platform::DigestKind::Sha256};
};

}  // namespace

std::string RecordFile(const startup::Folders& folders) {
  return folders.BinDir + platform::kSeparator + kRecordName;
}

void DigestRecord::Clear() {
  *this = DigestRecord(file_, seal_);
  platform::WriteWhole(file_, " \r\n");
}

void DigestRecord::Load() {
  *this = DigestRecord(file_, seal_);
  if (seal_.empty()) return;
  try {
    if (platform::IsFile(file_) && TakeSealed(platform::ReadWhole(file_, kLargestRecord))) return;
  } catch (const std::exception&) {  // an unreadable record is as good as none
  }
  *this = DigestRecord(file_, seal_);
}

bool DigestRecord::TakeSealed(std::string_view text) {
  const std::size_t at = text.rfind(kSeal);
  if (at == std::string_view::npos) return false;
  const std::string_view sealed = text.substr(0, at);
  std::string_view rest = text.substr(at + kSeal.size());
  const std::string_view given = TakeLine(rest);
  Seal seal(seal_);
  seal.Update(sealed);
  return rest.empty() && given == seal.Text() && Parse(sealed);
}

bool DigestRecord::Parse(std::string_view text) {
  if (TakeLine(text) != kHeading) return false;
  while (!text.empty()) {
    const std::string_view line = TakeLine(text);
    if (line.starts_with(kTotal)) {
      std::size_t total = 0;
      return text.empty() && ParseNumber(line.substr(kTotal.size()), total) && total == proofs_.size() &&
             Sort();
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
  platform::FileStamp stamp;
  const auto digest = util::Md5Digest::FromHex(fields[0]);
  if (!digest || !ParseNumber(fields[1], stamp.size) || !ParseNumber(fields[2], stamp.modified) ||
      line.empty())
    return false;
  Add(line, stamp, *digest);
  return true;
}

void DigestRecord::Add(std::string_view name, const platform::FileStamp& stamp,
                       const util::Md5Digest& digest) {
  proofs_.push_back(
      {static_cast<std::uint32_t>(names_.size()), static_cast<std::uint32_t>(name.size()), stamp, digest});
  names_ += name;
}

std::string_view DigestRecord::NameOf(const Proof& proof) const {
  return std::string_view(names_).substr(proof.nameAt, proof.nameSize);
}

// Of two proofs of one name the later one counts.
bool DigestRecord::Sort() {
  const auto before = [this](const Proof& a, const Proof& b) { return NameOf(a) < NameOf(b); };
  const auto same = [this](const Proof& a, const Proof& b) { return NameOf(a) == NameOf(b); };
  if (!std::is_sorted(proofs_.begin(), proofs_.end(), before))
    std::stable_sort(proofs_.begin(), proofs_.end(), before);
  const std::size_t count = proofs_.size();
  const auto kept = std::unique(proofs_.rbegin(), proofs_.rend(), same);
  proofs_.erase(proofs_.begin(), kept.base());
  std::erase_if(proofs_, [](const Proof& proof) { return proof.forgotten; });
  sorted_ = proofs_.size();
  return sorted_ == count;
}

std::size_t DigestRecord::IndexOf(std::string_view name) const {
  const auto end = proofs_.begin() + static_cast<std::ptrdiff_t>(sorted_);
  const auto found = std::lower_bound(
      proofs_.begin(), end, name,
      [this](const Proof& proof, std::string_view sought) { return NameOf(proof) < sought; });
  return found != end && NameOf(*found) == name ? static_cast<std::size_t>(found - proofs_.begin()) : kNone;
}

std::optional<util::Md5Digest> DigestRecord::Find(std::string_view inBin,
                                                  const platform::FileStamp& stamp) const {
  const std::size_t at = IndexOf(inBin);
  if (at == kNone || proofs_[at].forgotten || proofs_[at].stamp != stamp) return std::nullopt;
  return proofs_[at].digest;
}

void DigestRecord::Expect(std::size_t proofs) { proofs_.reserve(proofs); }

void DigestRecord::Remember(std::string_view inBin, const platform::FileStamp& stamp,
                            const util::Md5Digest& digest) {
  if (const std::size_t at = IndexOf(inBin); at == kNone) {
    Add(inBin, stamp, digest);
  } else {
    Proof& kept = proofs_[at];
    if (!kept.forgotten && kept.stamp == stamp && kept.digest == digest) return;
    kept.stamp = stamp;
    kept.digest = digest;
    kept.forgotten = false;
  }
  changed_ = true;
}

void DigestRecord::Forget(std::string_view inBin) {
  const std::size_t at = IndexOf(inBin);
  if (at == kNone) return;
  proofs_[at].forgotten = changed_ = true;
}

void DigestRecord::Save(const std::function<void(const std::string&)>& logError) {
  if (!changed_) return;
  Sort();
  if (seal_.empty()) return;
  platform::OutputFile file(file_);
  Seal seal(seal_);
  const auto write = [&](std::string_view piece) {
    seal.Update(piece);
    file.Write(piece);
  };
  util::clsFastString text(logError);
  text.Append(std::string(kHeading) + platform::kLineEnd);
  for (const Proof& proof : proofs_) {
    text.Append(proof.digest.Hex() + " " + std::to_string(proof.stamp.size) + " " +
                std::to_string(proof.stamp.modified) + " ");
    text.Append(NameOf(proof));
    text.Append(platform::kLineEnd);
    if (text.Length() < kPiece) continue;
    write(text.Value());
    text.Clear();
  }
  text.Append(std::string(kTotal) + std::to_string(proofs_.size()) + platform::kLineEnd);
  write(text.Value());
  file.Write(std::string(kSeal) + seal.Text() + platform::kLineEnd);
  file.Commit();
  changed_ = false;
}

}  // namespace update
