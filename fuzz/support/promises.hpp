#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fuzz {

// The input as text.
inline std::string_view Text(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

// Ends the run as a crash does, with what was promised and not kept.
void Require(bool kept, const char* promise);

// A name that came from outside and was not refused.
void RequireSafeName(std::string_view name);

}  // namespace fuzz
