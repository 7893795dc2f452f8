#pragma once

#include <cstdint>
#include <string>

namespace publisher {

// Appends the low `count` bytes of `value`, the lowest first.
inline void AppendLittleEndian(std::string& bytes, std::uint64_t value, int count) {
  for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFF);
}

}  // namespace publisher
