#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "update/signed_file.hpp"
#include "update/trust_memory.hpp"

namespace update {

// Why a mirror's Signed.txt does not count, the one that tells a player more behind the other.
enum class SignedFault {
  None,
  NotArrived,
  Unsigned,       // there is none
  Altered,        // no key in use signed these bytes
  UnknownFormat,  // signed, and written in a way that this launcher does not know
  Older,          // than what was accepted already
  Different,      // under the number of what was accepted already
  FromFuture,     // by this computer's date
  Expired,
};

// A judged Signed.txt. What it says may be looked at only when there is no fault, and its times also when
// they are the fault.
struct SignedVerdict {
  SignedFault fault = SignedFault::NotArrived;
  SignedFile file{};
  std::string key{};     // that signed it
  std::string digest{};  // SHA-256 of what was signed
};

struct SignedJudge {
  struct Key {
    std::string text, der;
    std::optional<TrustMemory::Publication> newest;  // accepted under it
  };
  std::vector<Key> keys;
  std::int64_t now = 0;  // seconds since 1970

  // The signature is verified before anything behind it is read. Takes a while for a long text.
  SignedVerdict Judge(std::string_view text) const;
};

}  // namespace update
