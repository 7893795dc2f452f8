#include "publisher/signature_check.hpp"

#include <algorithm>
#include <ctime>

#include "base/base64.hpp"
#include "platform/signature.hpp"
#include "publisher/cache_rules.hpp"
#include "publisher/failure.hpp"
#include "publisher/layout.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/source_files.hpp"

namespace publisher {
namespace {

constexpr std::int64_t kSoon = 14 * 24 * 3600;

// What a signature is there to vouch for: all but what says so little that anybody may answer it.
bool IsVouchedFor(const std::string& name) {
  const FileKind kind = KindOf(name);
  return (kind == FileKind::Archive || kind == FileKind::Replaced) && name != names::kUpdateList &&
         name != names::kSigned;
}

}  // namespace

void SignatureCheck::TakeIn(const std::string& text, const std::string& called) {
  const auto split = update::SplitSigned(text);
  if (!split) throw Failure("its first line is no signature");
  if (Wanted()) {
    const auto key = base::FromBase64(publicKey_);
    if (!key || !platform::IsPublicKey(*key)) {
      throw Failure("it cannot be verified, since \"" + publicKey_ + "\" is no public key");
    }
    if (!platform::IsSignedBy(*key, split->body, split->signature)) {
      throw Failure("it is not signed with the key that launchers trust, or was altered");
    }
  }
  file_ = update::ParseSignedBody(split->body);
  if (!file_) throw Failure("it is not written as launchers want it");
  const std::int64_t now = std::time(nullptr);
  if (file_->expires < now) throw Failure("it expired on " + update::UtcText(file_->expires));
  if (file_->expires < now + kSoon)
    findings_.Warning(called + ": it expires on " + update::UtcText(file_->expires));
}

void SignatureCheck::Compare(const std::string& name, const std::string& path, const std::string& called) {
  if (!file_ || !IsVouchedFor(name)) return;
  const auto entry = file_->files.find(name);
  if (entry == file_->files.end()) {
    findings_.Problem(called + ": Signed.txt does not vouch for it");
  } else if (entry->second.size != SizeOf(path) || entry->second.digest != Sha256Of(path)) {
    findings_.Problem(called + ": it is not the file that Signed.txt vouches for");
  }
}

void SignatureCheck::CompareCounts(const std::vector<int>& counts, const std::string& called) {
  if (!file_ || std::equal(counts.begin(), counts.end(), file_->counts.begin(), file_->counts.end())) return;
  findings_.Problem(called + ": it names other numbers of patches than Signed.txt");
}

}  // namespace publisher
