#include "update/signed_file.hpp"

#include <set>

#include "base/base64.hpp"
#include "base/text.hpp"
#include "fuzz/support/promises.hpp"
#include "platform/ecdsa_der.hpp"
#include "platform/files.hpp"
#include "platform/signature.hpp"
#include "update/signed_verdict.hpp"

namespace {

// The key of the seeds, and what was signed with it.
struct Operator {
  std::string keyText, key;
  std::set<std::string> bodies;

  Operator() {
    const std::string seeds = FUZZ_FOLDER "/seeds/";
    keyText = platform::ReadWhole(seeds + "signed_file.key", 1000);
    keyText = base::Replaced(keyText, "\n", "");
    key = base::FromBase64(keyText).value_or("");
    fuzz::Require(platform::IsPublicKey(key), "the seeds' key can be used");
    for (const char* name : {"whole", "next-key", "empty"}) {
      const std::string text = platform::ReadWhole(seeds + "signed_file/" + name, 1u << 20);
      fuzz::Require(Judged(text) != update::SignedFault::Altered, "what the operator signed is his");
      bodies.emplace(update::SplitSigned(text)->body);
    }
  }

  update::SignedFault Judged(std::string_view text) const {
    const update::SignedJudge judge{{{keyText, key, std::nullopt}}, 1'795'256'430};
    return judge.Judge(text).fault;
  }
};

void JudgeTimes(std::string_view text) {
  const auto seconds = update::FromUtcText(text);
  fuzz::Require(!seconds || update::UtcText(*seconds) == text, "a time is written in one way");
}

void JudgeBody(std::string_view body) {
  const auto file = update::ParseSignedBody(body);
  if (!file) return;
  fuzz::Require(update::SignedBody(*file) == body, "what is read is written in one way");
  fuzz::Require(file->version > 0 && file->signedAt >= 0 && file->expires >= 0,
                "numbers are counted from one");
  for (const std::int16_t count : file->counts) fuzz::Require(count >= 0, "counts are counts");
  for (const auto& [name, entry] : file->files) {
    fuzz::RequireSafeName(name);
    fuzz::Require(entry.digest.size() == 64, "every file has its digest");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Operator theOperator;
  const std::string_view text = fuzz::Text(data, size);
  JudgeBody(text);
  JudgeTimes(text.substr(0, 20));
  platform::PointOf(text);
  if (const auto split = update::SplitSigned(text)) {
    JudgeBody(split->body);
    platform::SignatureNumbers(split->signature);
    fuzz::Require(theOperator.bodies.contains(std::string(split->body)) ||
                      theOperator.Judged(text) == update::SignedFault::Altered,
                  "only what the operator signed counts");
  }
  return 0;
}
