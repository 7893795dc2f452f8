#include "base/numeric.hpp"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

#include "base/runtime_error.hpp"
#include "base/text.hpp"

namespace base {
namespace {

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// Parses a number at the start of `text`; `used` is how many characters it takes, 0 when there is none.
double LeadingNumber(std::string_view text, std::size_t& used) {
  used = 0;
  std::size_t start = 0;
  const bool plus = !text.empty() && text[0] == '+';
  if (plus) start = 1;
  const std::size_t sign = !plus && !text.empty() && text[0] == '-' ? 1 : start;
  if (sign >= text.size()) return 0;
  const char first = text[sign];
  const bool digitAfterPoint =
      first == '.' && sign + 1 < text.size() && text[sign + 1] >= '0' && text[sign + 1] <= '9';
  if (!(first >= '0' && first <= '9') && !digitAfterPoint) return 0;  // keeps "inf", "nan" out
  double value = 0;
  const auto [end, error] = std::from_chars(text.data() + start, text.data() + text.size(), value);
  if (error == std::errc::invalid_argument) return 0;
  used = static_cast<std::size_t>(end - text.data());
  // from_chars leaves it open which end of the range was passed; strtod tells: infinity or nothing.
  if (error == std::errc::result_out_of_range) {
    return std::strtod(std::string(text.substr(start, used - start)).c_str(), nullptr);
  }
  return value;
}

template <class Integer>
Integer Checked(double value) {
  const double whole = RoundHalfEven(value);
  if (!(whole >= static_cast<double>(std::numeric_limits<Integer>::min()) &&
        whole <= static_cast<double>(std::numeric_limits<Integer>::max()))) {
    throw RuntimeError(ErrorNumber::Overflow);
  }
  return static_cast<Integer>(whole);
}

}  // namespace

double Val(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  std::size_t used = 0;
  return LeadingNumber(text, used);
}

bool IsNumeric(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  std::size_t used = 0;
  LeadingNumber(text, used);
  return used > 0 && used == text.size();
}

double RoundHalfEven(double value) {
  const double floor = std::floor(value);
  const double rest = value - floor;
  if (rest < 0.5) return floor;
  if (rest > 0.5) return floor + 1;
  return std::fmod(floor, 2) == 0 ? floor : floor + 1;
}

std::uint8_t ToByte(double value) { return Checked<std::uint8_t>(value); }
std::int16_t ToInt16(double value) { return Checked<std::int16_t>(value); }
std::int32_t ToInt32(double value) { return Checked<std::int32_t>(value); }

std::string NumberText(double value) {
  if (value == 0) return "0";  // the negative zero too
  char digits[64];
  const bool everyday = std::fabs(value) < 1e15 && std::fabs(value) >= 1e-4;
  const auto format = everyday ? std::chars_format::fixed : std::chars_format::general;
  const auto result = std::to_chars(digits, digits + sizeof digits, value, format);
  return std::string(digits, result.ptr);
}

std::int64_t Kilobytes(std::uint64_t bytes) {
  const std::uint64_t whole = bytes / 1024;
  const std::uint64_t rest = bytes % 1024;
  const bool up = rest > 512 || (rest == 512 && whole % 2 == 1);
  return static_cast<std::int64_t>(whole + (up ? 1 : 0));
}

}  // namespace base
