#include "base/text.hpp"

#include <algorithm>

namespace base {
namespace {

char UpperChar(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }
char LowerChar(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

}  // namespace

std::string Upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), UpperChar);
  return result;
}

std::string UpperLatin(std::string_view text) {
  std::string result = Upper(text);
  for (std::size_t i = 1; i < result.size(); ++i) {
    const auto lead = static_cast<unsigned char>(result[i - 1]), code = static_cast<unsigned char>(result[i]);
    // U+00E0 to U+00FE, the division sign aside, are 0x20 above their capitals.
    if (lead == 0xC3 && code >= 0xA0 && code <= 0xBE && code != 0xB7)
      result[i] = static_cast<char>(code - 0x20);
  }
  return result;
}

std::string Lower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), LowerChar);
  return result;
}

bool EqualIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return UpperChar(x) == UpperChar(y); });
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

bool Contains(std::string_view text, std::string_view piece) {
  return text.find(piece) != std::string_view::npos;
}

std::string Replaced(std::string_view text, std::string_view from, std::string_view to) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t at = 0;;) {
    const std::size_t next = from.empty() ? std::string_view::npos : text.find(from, at);
    result.append(text.substr(at, next == std::string_view::npos ? next : next - at));
    if (next == std::string_view::npos) return result;
    result.append(to);
    at = next + from.size();
  }
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (;;) {
    const std::size_t at = text.find(separator);
    pieces.push_back(text.substr(0, at));
    if (at == std::string_view::npos) return pieces;
    text.remove_prefix(at + 1);
  }
}

std::string_view Field(std::string_view text, int n, char separator) {
  for (; n > 1; --n) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) return {};
    text.remove_prefix(at + 1);
  }
  return text.substr(0, text.find(separator));
}

}  // namespace base
