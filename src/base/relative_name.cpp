#include "base/relative_name.hpp"

#include <algorithm>
#include <array>

#include "base/text.hpp"

namespace base {
namespace {

constexpr std::size_t kLongestDevice = 7;  // CONERR$

bool IsDeviceName(std::string_view part) {
  static constexpr std::array<std::string_view, 8> kPlain = {"CON",    "PRN",     "AUX",    "NUL",
                                                             "CONIN$", "CONOUT$", "CLOCK$", "CONERR$"};
  std::string_view stem = part.substr(0, part.find('.'));
  stem = Trim(stem);
  if (stem.size() > kLongestDevice) return false;
  const std::string upper = Upper(stem);
  if (std::find(kPlain.begin(), kPlain.end(), upper) != kPlain.end()) return true;
  if (!upper.starts_with("COM") && !upper.starts_with("LPT")) return false;
  const std::string_view number = std::string_view(upper).substr(3);
  // The superscript digits one to three name the same ports as the plain ones.
  static constexpr std::array<std::string_view, 3> kSuperscripts = {"\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
  return (number.size() == 1 && number[0] >= '0' && number[0] <= '9') ||
         std::find(kSuperscripts.begin(), kSuperscripts.end(), number) != kSuperscripts.end();
}

std::string WhyPartUnsafe(std::string_view part) {
  if (part.find_first_not_of('.') == std::string_view::npos) return "it climbs folders";
  if (part.front() == ' ') return "a part starts with a blank";
  if (part.back() == ' ' || part.back() == '.') return "a part ends in a blank or dot";
  if (IsDeviceName(part)) return "it names a device";
  return {};
}

std::string_view NextPart(std::string_view& rest) {
  const auto end = std::find_if(rest.begin(), rest.end(), [](char c) { return c == '\\' || c == '/'; });
  const std::string_view part(rest.begin(), end);
  rest.remove_prefix(std::min(part.size() + 1, rest.size()));
  return part;
}

}  // namespace

std::string WhyUnsafe(std::string_view name) {
  if (name.size() > kLongestName) return "it is too long";
  for (const char c : name) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 32 || code == 127) return "it holds a control character";
    if (c == ':') return "it names a drive or stream";
    if (c == '<' || c == '>' || c == '"' || c == '|' || c == '?' || c == '*')
      return "it holds a forbidden character";
  }
  bool any = false;
  for (std::string_view rest = name; !rest.empty();) {
    const std::string_view part = NextPart(rest);
    if (part.empty()) continue;
    any = true;
    if (std::string why = WhyPartUnsafe(part); !why.empty()) return why;
  }
  return any ? std::string{} : "it is empty";
}

std::string WithSlashes(std::string_view name) {
  std::string result;
  for (std::string_view rest = name; !rest.empty();) {
    const std::string_view part = NextPart(rest);
    if (part.empty()) continue;
    if (!result.empty()) result += '/';
    result += part;
  }
  return result;
}

}  // namespace base
