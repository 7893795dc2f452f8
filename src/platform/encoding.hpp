#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace platform {

// Between UTF-8 and the system's ANSI code page (Windows-1252 on Linux). A character that the target lacks
// becomes "?" and a byte that is no character becomes U+FFFD; neither fails.
std::string ToAnsi(std::string_view utf8);
std::string FromAnsi(std::string_view bytes);

// As FromAnsi, and nothing where a byte is no character or a control character of the upper half.
std::optional<std::string> CheckedFromAnsi(std::string_view bytes);
// `bytes` when they are UTF-8.
std::optional<std::string> CheckedUtf8(std::string_view bytes);

}  // namespace platform
