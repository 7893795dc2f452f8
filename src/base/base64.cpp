#include "base/base64.hpp"

#include <algorithm>
#include <cstdint>

namespace base {
namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kGroup = 4, kGroupBytes = 3;

}  // namespace

std::string Base64(std::string_view bytes) {
  std::string text;
  for (; !bytes.empty(); bytes.remove_prefix(std::min(kGroupBytes, bytes.size()))) {
    const std::size_t count = std::min(kGroupBytes, bytes.size());
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kGroupBytes; ++i) {
      bits = bits << 8 | (i < count ? static_cast<unsigned char>(bytes[i]) : 0u);
    }
    for (std::size_t i = 0; i < kGroup; ++i) text += i > count ? '=' : kDigits[bits >> (18 - 6 * i) & 63];
  }
  return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
  if (text.size() % kGroup != 0) return std::nullopt;
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); at += kGroup) {
    const std::string_view group = text.substr(at, kGroup);
    const std::size_t digits = std::min(group.find('='), kGroup);
    std::uint32_t bits = 0;
    for (std::size_t i = 0; i < kGroup; ++i) {
      const std::size_t digit = i < digits ? kDigits.find(group[i]) : 0;
      if (digit == std::string_view::npos) return std::nullopt;
      bits = bits << 6 | static_cast<std::uint32_t>(digit);
    }
    for (std::size_t i = 0; i + 1 < digits; ++i) bytes += static_cast<char>(bits >> (16 - 8 * i) & 0xFF);
  }
  // Padding inside, padding too long and left-over bits all give another text.
  return Base64(bytes) == text ? std::optional(bytes) : std::nullopt;
}

}  // namespace base
