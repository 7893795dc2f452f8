#include "util/md5_digest.hpp"

namespace util {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr int kNoDigit = -1;

int DigitOf(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  return c >= 'a' && c <= 'f' ? c - 'a' + 10 : kNoDigit;
}

}  // namespace

std::string Md5Digest::Hex() const {
  std::string text;
  text.reserve(2 * bytes.size());
  for (const std::uint8_t byte : bytes) text += {kDigits[byte >> 4], kDigits[byte & 15]};
  return text;
}

std::optional<Md5Digest> Md5Digest::FromHex(std::string_view text) {
  Md5Digest digest;
  if (text.size() != 2 * digest.bytes.size()) return std::nullopt;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int digit = DigitOf(text[i]);
    if (digit == kNoDigit) return std::nullopt;
    digest.bytes[i / 2] = static_cast<std::uint8_t>(digest.bytes[i / 2] << 4 | digit);
  }
  return digest;
}

}  // namespace util
