#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace web {

// What is known of a file before it is asked for; nothing is, unless somebody vouches for it.
struct Expected {
  std::optional<std::uint64_t> size{};
  std::string sha256{};  // 64 lower-case hexadecimal digits; empty: unknown

  bool Any() const { return size || !sha256.empty(); }
};

}  // namespace web
