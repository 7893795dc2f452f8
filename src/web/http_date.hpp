#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace web {

// Seconds since 1970 of a date as HTTP writes it today (IMF-fixdate of RFC 9110, 5.6.7: "Sun, 06 Nov 1994
// 08:49:37 GMT"); none for anything else.
std::optional<std::int64_t> FromHttpDate(std::string_view text);

}  // namespace web
