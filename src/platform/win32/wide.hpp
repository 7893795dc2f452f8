#pragma once

#include <string>
#include <string_view>

namespace platform {

// Between UTF-8 and UTF-16; what is invalid becomes U+FFFD.
std::wstring Wide(std::string_view utf8);
std::string Narrow(std::wstring_view utf16);

// Through a code page of the system, with the flags of the system's own conversion calls.
std::wstring FromCodePage(unsigned codePage, std::string_view bytes);

// UTF-8 into a code page; a character that it lacks becomes "?", never one that looks alike.
std::string ToCodePage(unsigned codePage, std::string_view utf8);

// `path` (UTF-8) as the system's calls take it: with separators of its own, and with the prefix "\\?\" where
// the path is too long without it.
std::wstring SystemPath(std::string_view path);

}  // namespace platform
