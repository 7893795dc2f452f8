#include "platform/ini_text.hpp"

#include "base/text.hpp"
#include "fuzz/support/promises.hpp"

namespace {

bool IsPlain(std::string_view text) {
  for (const char c : text) {
    if (static_cast<unsigned char>(c) <= ' ' || c == '=' || c == '[' || c == ']' || c == '"' || c == '\'')
      return false;
  }
  return !text.empty();
}

}  // namespace

// The first four lines say what is set, and what must not change by that; the file follows.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input = fuzz::Text(data, size);
  const auto line = [&](int n) { return std::string(base::Field(input, n, '\n')); };
  const std::string section = line(1), key = line(2), value = line(3), other = line(4);
  const std::size_t head = section.size() + key.size() + value.size() + other.size() + 4;
  const std::string before(input.substr(std::min(head, input.size())));

  std::string text = before;
  const auto neighbour = platform::IniValue(before, section, other);
  platform::SetIniValue(text, section, key, value);
  if (!IsPlain(section) || !IsPlain(key)) return 0;
  const auto now = platform::IniValue(text, section, key);
  fuzz::Require(now.has_value(), "a key that was set is there");
  if (IsPlain(value)) fuzz::Require(*now == value, "a value that was set is read again");
  if (value.find('\r') == value.npos) {
    std::string again = text;
    platform::SetIniValue(again, section, key, value);
    fuzz::Require(again == text, "setting a value twice changes nothing more");
  }
  if (IsPlain(value) && IsPlain(other) && !base::EqualIgnoringCase(other, key))
    fuzz::Require(platform::IniValue(text, section, other) == neighbour, "other keys keep their values");
  return 0;
}
