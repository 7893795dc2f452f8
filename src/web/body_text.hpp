#pragma once

#include <string>
#include <string_view>

namespace web {

// The bytes of a body as UTF-8. `contentType` is the header's value: Latin-1 and Windows-1252 are taken at
// their word, anything else is UTF-8 when it is valid and the ANSI code page when not. A leading UTF-8 byte
// order mark is dropped.
std::string BodyText(std::string_view contentType, std::string bytes);

}  // namespace web
