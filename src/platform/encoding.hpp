#pragma once

#include <string>
#include <string_view>

namespace platform {

// Between UTF-8 and the system's ANSI code page (Windows-1252 on Linux). A character that the target lacks
// becomes "?" and a byte that is no character becomes U+FFFD; neither fails.
std::string ToAnsi(std::string_view utf8);
std::string FromAnsi(std::string_view bytes);

}  // namespace platform
