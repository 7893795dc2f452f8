#pragma once

#include <windows.h>

#include <string>

namespace support {

// A picture of one colour in a format that needs no encoder.
inline std::string OneColour(COLORREF colour) {
  const auto byte = [](int value) { return static_cast<char>(value); };
  std::string bytes("BM\x3A\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\x01\0\0\0\x01\0\0\0\x01\0\x18\0", 30);
  bytes.resize(54);
  return bytes + byte(GetBValue(colour)) + byte(GetGValue(colour)) + byte(GetRValue(colour)) + '\0';
}

}  // namespace support
