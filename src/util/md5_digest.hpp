#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace util {

// The 16 bytes of an MD5 digest.
struct Md5Digest {
  std::array<std::uint8_t, 16> bytes{};

  std::string Hex() const;  // 32 characters, lower case
  // Nothing unless `text` is 32 hexadecimal digits in lower case.
  static std::optional<Md5Digest> FromHex(std::string_view text);
  bool operator==(const Md5Digest&) const = default;
};

}  // namespace util
