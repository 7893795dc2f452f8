#include <algorithm>
#include <array>

#include "base/numeric.hpp"
#include "base/text.hpp"
#include "platform/encoding.hpp"
#include "web/smodXmlHttp.hpp"

namespace web {
namespace {

constexpr int kByteKind = 0;
constexpr int kInt16Kind = 1;
constexpr std::size_t kMostColonParts = 26;

struct Range {
  double low, high;
};
constexpr std::array<Range, 3> kRanges = {{{0, 255}, {-32768, 32767}, {-2147483648.0, 2147483647.0}}};

// What a web host writes in place of an address that it does not know.
constexpr std::string_view kNoAddress = "Null No AU";

}  // namespace

bool IsTextToken(std::string_view text) {
  const std::string codes = platform::ToAnsi(base::Lower(text));
  return std::all_of(codes.begin(), codes.end(), [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return (code >= '0' && code <= 'z') || code == 255 || code == ' ';
  });
}

bool IsInRange(std::string_view text, int kind) {
  if (kind < 0 || static_cast<std::size_t>(kind) >= kRanges.size() || !base::IsNumeric(text)) return false;
  const Range& range = kRanges[static_cast<std::size_t>(kind)];
  const double value = base::Val(text);
  return value >= range.low && value <= range.high;
}

bool IsDottedAddress(std::string_view text) {
  const auto parts = base::Split(text, '.');
  return parts.size() == 4 && std::all_of(parts.begin(), parts.end(),
                                          [](std::string_view part) { return IsInRange(part, kByteKind); });
}

bool IsColonList(std::string_view text) {
  if (text.empty() || text == " " || text == kNoAddress) return false;
  const auto parts = base::Split(text, ':');
  return parts.size() <= kMostColonParts &&
         std::all_of(parts.begin(), parts.end(),
                     [](std::string_view part) { return IsInRange(part, kInt16Kind) || IsTextToken(part); });
}

}  // namespace web
