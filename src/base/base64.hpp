#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace base {

// RFC 4648, 4. Bytes are held in plain strings.
std::string Base64(std::string_view bytes);

// None when the text is not exactly what Base64 gives for some bytes: no blanks, no missing padding, no bits
// left over.
std::optional<std::string> FromBase64(std::string_view text);

}  // namespace base
