#include "update/signed_verdict.hpp"

#include <algorithm>

#include "platform/signature.hpp"
#include "util/sha256.hpp"

namespace update {
namespace {

constexpr std::int64_t kClockMayBeSlow = 24 * 3600;  // seconds

SignedFault FaultOf(const SignedVerdict& verdict, const std::optional<TrustMemory::Publication>& newest,
                    std::int64_t now) {
  const SignedFile& file = verdict.file;
  if (newest && file.version < newest->version) return SignedFault::Older;
  if (newest && file.version == newest->version && verdict.digest != newest->digest)
    return SignedFault::Different;
  if (file.signedAt > now + kClockMayBeSlow) return SignedFault::FromFuture;
  return now > file.expires ? SignedFault::Expired : SignedFault::None;
}

}  // namespace

SignedVerdict SignedJudge::Judge(std::string_view text) const {
  SignedVerdict verdict{SignedFault::Altered};
  const auto split = SplitSigned(text);
  if (!split) return verdict;
  const auto signer = std::find_if(keys.begin(), keys.end(), [&](const Key& key) {
    return platform::IsSignedBy(key.der, split->body, split->signature);
  });
  if (signer == keys.end()) return verdict;
  verdict.fault = SignedFault::UnknownFormat;
  auto file = ParseSignedBody(split->body);
  if (!file) return verdict;
  verdict.file = std::move(*file);
  verdict.key = signer->text;
  verdict.digest = util::Sha256(split->body);
  verdict.fault = FaultOf(verdict, signer->newest, now);
  return verdict;
}

}  // namespace update
