#include "platform/encoding.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace platform {
namespace {

// Windows-1252, bytes 0x80 to 0x9F (published by Unicode as CP1252.TXT); the five unassigned ones are the C1
// control characters of the same number, as Windows itself converts them. All other bytes are Latin-1.
constexpr std::array<char32_t, 32> kUpperHalf = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr char32_t kNoCharacter = 0xFFFD;

// The next code point of `text`, which is shortened by it; kNoCharacter for bytes that are no UTF-8.
char32_t NextCodePoint(std::string_view& text) {
  const auto first = static_cast<unsigned char>(text.front());
  const std::size_t length = first < 0x80             ? 1
                             : (first & 0xE0) == 0xC0 ? 2
                             : (first & 0xF0) == 0xE0 ? 3
                             : (first & 0xF8) == 0xF0 ? 4
                                                      : 0;
  char32_t point = length == 1 ? first : first & (0x7F >> length);
  std::size_t used = 1;
  while (used < length && used < text.size() && (text[used] & 0xC0) == 0x80) {
    point = point << 6 | (static_cast<unsigned char>(text[used++]) & 0x3F);
  }
  text.remove_prefix(used);
  constexpr std::array<char32_t, 5> kSmallest = {0, 0, 0x80, 0x800, 0x10000};
  const bool valid = length > 0 && used == length && point >= kSmallest[length] && point <= 0x10FFFF &&
                     !(point >= 0xD800 && point <= 0xDFFF);
  return valid ? point : kNoCharacter;
}

void AppendUtf8(std::string& text, char32_t point) {
  if (point < 0x80) {
    text += static_cast<char>(point);
  } else if (point < 0x800) {
    text += {static_cast<char>(0xC0 | point >> 6), static_cast<char>(0x80 | (point & 0x3F))};
  } else {
    text += {static_cast<char>(0xE0 | point >> 12), static_cast<char>(0x80 | (point >> 6 & 0x3F)),
             static_cast<char>(0x80 | (point & 0x3F))};
  }
}

char AnsiByte(char32_t point) {
  if (point < 0x80 || (point >= 0xA0 && point <= 0xFF)) return static_cast<char>(point);
  const auto found = std::find(kUpperHalf.begin(), kUpperHalf.end(), point);
  return found == kUpperHalf.end() ? '?' : static_cast<char>(0x80 + (found - kUpperHalf.begin()));
}

}  // namespace

std::string ToAnsi(std::string_view utf8) {
  std::string bytes;
  bytes.reserve(utf8.size());
  while (!utf8.empty()) bytes += AnsiByte(NextCodePoint(utf8));
  return bytes;
}

std::string FromAnsi(std::string_view bytes) {
  if (std::all_of(bytes.begin(), bytes.end(), [](char c) { return (c & 0x80) == 0; }))
    return std::string(bytes);
  std::string utf8;
  utf8.reserve(bytes.size());
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    AppendUtf8(utf8, code >= 0x80 && code < 0xA0 ? kUpperHalf[code - 0x80] : code);
  }
  return utf8;
}

std::optional<std::string> CheckedFromAnsi(std::string_view bytes) {
  for (const char c : bytes) {
    const auto code = static_cast<unsigned char>(c);
    if (code >= 0x80 && code < 0xA0 && kUpperHalf[code - 0x80] == code) return std::nullopt;
  }
  return FromAnsi(bytes);
}

std::optional<std::string> CheckedUtf8(std::string_view bytes) {
  for (std::string_view rest = bytes; !rest.empty();) {
    if (NextCodePoint(rest) == kNoCharacter) return std::nullopt;
  }
  return std::string(bytes);
}

}  // namespace platform
