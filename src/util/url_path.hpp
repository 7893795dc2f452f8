#pragma once

#include <string>
#include <string_view>

namespace util {

// A relative path for a URL: "/" stays, every other byte that has a meaning of its own there is written %XX
// (RFC 3986, 2.1); letters, digits and the marks of plain file names stay as they are.
std::string UrlPath(std::string_view relativePath);

}  // namespace util
