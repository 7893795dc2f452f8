#include "util/md5_digest.hpp"

#include <array>
#include <cstdint>

namespace util {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";
constexpr std::int8_t kNoDigit = -1;

constexpr auto kValues = [] {
  std::array<std::int8_t, 256> values;
  values.fill(kNoDigit);
  for (std::size_t i = 0; i < kDigits.size(); ++i)
    values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::int8_t>(i);
  return values;
}();

int DigitOf(char c) { return kValues[static_cast<unsigned char>(c)]; }

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
  int all = 0;  // negative as soon as one is no digit
  for (std::size_t i = 0; i < digest.bytes.size(); ++i) {
    const int high = DigitOf(text[2 * i]), low = DigitOf(text[2 * i + 1]);
    all |= high | low;
    digest.bytes[i] = static_cast<std::uint8_t>(high << 4 | low);
  }
  return all < 0 ? std::nullopt : std::optional(digest);
}

}  // namespace util
