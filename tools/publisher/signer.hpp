#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "publisher/command_line.hpp"
#include "publisher/console.hpp"
#include "publisher/layout.hpp"
#include "update/signed_file.hpp"

namespace publisher {

// Signed.txt in the making.
struct Signature {
  update::SignedFile file;
  std::string text;  // all of Signed.txt
};

// Signs what `layout` holds now; its version is above that of `previous`'s signature, if there is one. Writes
// nothing. Failure when something that launchers ask for is missing, or a key or day is no good.
Signature MakeSignature(const Layout& layout, const Layout& previous, const Signing& signing,
                        Console& console);

// One line for people about what was signed.
std::string WordsOf(const Layout& layout, const update::SignedFile& file);

// The last second (UTC) of a day "YYYY-MM-DD", or of the 90th day from `now` when none is given; Failure when
// it is none.
std::int64_t ExpiryOf(const std::string& day, std::int64_t now);

// Says that a signature there may have been has to be made anew.
void WarnOfSignature(const Layout& layout, Console& console);

// The signed file that is there, whoever signed it; none when there is none. Failure when it is none.
std::optional<update::SignedFile> ReadSigned(const Layout& layout);

}  // namespace publisher
