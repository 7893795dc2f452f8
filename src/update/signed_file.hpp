#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "update/counter_store.hpp"

namespace update {

// What a signed publication vouches for: Signed.txt at its root. Plain text with LF line ends:
//
//   <signature: Base64 of ECDSA P-256/SHA-256 over every byte behind this line, DER>
//   Kelvarin 1                                 the format's number
//   version 7                                  rises with each signing
//   signed 2026-11-21T17:00:00Z
//   expires 2027-02-19T23:59:59Z
//   next-key <Base64>                          left out when no other key is to follow
//   Init 1                                     then the six other categories, in their order
//   <SHA-256, lower case> <size> <name>        one per file, sorted by name, "/" between its parts
//
// There is one way to write each content, and only that is read.
struct SignedFile {
  struct File {
    std::string digest;  // SHA-256, 64 lower-case hexadecimal digits
    std::uint64_t size = 0;
    bool operator==(const File&) const = default;
  };

  std::uint64_t version = 1;                              // from 1
  std::int64_t signedAt = 0, expires = 0;                 // seconds since 1970, UTC
  std::string nextKey;                                    // Base64, empty when there is none
  std::array<std::int16_t, kCategories.size()> counts{};  // of patches, by category
  std::map<std::string, File> files;                      // by name from the publication's root, UTF-8
};

// The first line's signature, decoded, and every byte behind that line; none when the text does not begin so.
// Nothing of the body may be trusted before platform::IsSignedBy said so.
struct SignedText {
  std::string signature;
  std::string_view body;  // points into the text given
};
std::optional<SignedText> SplitSigned(std::string_view text);

// The body as a SignedFile; none when it is not written exactly as SignedBody writes it.
std::optional<SignedFile> ParseSignedBody(std::string_view body);
std::string SignedBody(const SignedFile& file);

// "2026-11-21T17:00:00Z" for years 1970 to 9999, and back; none when the text is not exactly that.
std::string UtcText(std::int64_t seconds);
std::optional<std::int64_t> FromUtcText(std::string_view text);

}  // namespace update
