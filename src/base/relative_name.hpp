#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace base {

inline constexpr std::size_t kLongestName = 240;  // bytes

// Why a name that came from outside may not be used as a path inside a folder; empty when it may.
// A name is relative, its parts separated by "\" or "/", leading and doubled separators tolerated. Refused on
// every platform alike: "..", a drive or stream (":"), device names (CON, COM1.dat, ...), control characters,
// the characters `<>"|?*`, a part that starts with a blank or ends in a blank or dot, an empty name, a
// name over kLongestName.
std::string WhyUnsafe(std::string_view name);

// The name with "/" between its parts and no leading, trailing or doubled separator.
std::string WithSlashes(std::string_view name);

}  // namespace base
