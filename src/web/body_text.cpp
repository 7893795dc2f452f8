#include "web/body_text.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

#include "base/text.hpp"
#include "platform/encoding.hpp"

namespace web {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

struct Sequence {
  unsigned char firstLow, firstHigh;    // range of the lead byte
  unsigned char secondLow, secondHigh;  // range of the byte after it
  std::size_t length;
};

// The well-formed sequences beyond ASCII (Unicode standard, table 3-7).
constexpr std::array<Sequence, 8> kSequences = {{{0xC2, 0xDF, 0x80, 0xBF, 2},
                                                 {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                                 {0xE1, 0xEC, 0x80, 0xBF, 3},
                                                 {0xED, 0xED, 0x80, 0x9F, 3},
                                                 {0xEE, 0xEF, 0x80, 0xBF, 3},
                                                 {0xF0, 0xF0, 0x90, 0xBF, 4},
                                                 {0xF1, 0xF3, 0x80, 0xBF, 4},
                                                 {0xF4, 0xF4, 0x80, 0x8F, 4}}};

// Bytes of the valid sequence that `text` starts with; 0 when there is none.
std::size_t SequenceLength(std::string_view text) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  if (at(0) < 0x80) return 1;
  const auto found = std::find_if(kSequences.begin(), kSequences.end(), [&](const Sequence& sequence) {
    return at(0) >= sequence.firstLow && at(0) <= sequence.firstHigh;
  });
  if (found == kSequences.end() || text.size() < found->length) return 0;
  if (at(1) < found->secondLow || at(1) > found->secondHigh) return 0;
  for (std::size_t i = 2; i < found->length; ++i) {
    if ((at(i) & 0xC0) != 0x80) return 0;
  }
  return found->length;
}

bool IsUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = SequenceLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

// Both names mean Windows-1252 on the web; it is the code page of the systems this program is for.
bool SaysAnsi(std::string_view contentType) {
  constexpr std::string_view kKey = "charset=";
  const std::string lower = base::Lower(contentType);
  const std::size_t start = lower.find(kKey);
  if (start == std::string::npos) return false;
  const std::string_view rest = std::string_view(lower).substr(start + kKey.size());
  const std::string name = base::Replaced(base::Trim(base::Field(rest, 1, ';')), "\"", "");
  return name == "iso-8859-1" || name == "windows-1252";
}

}  // namespace

std::string BodyText(std::string_view contentType, std::string bytes) {
  if (bytes.starts_with(kByteOrderMark)) {
    bytes.erase(0, kByteOrderMark.size());
  } else if (SaysAnsi(contentType)) {
    return platform::FromAnsi(bytes);
  }
  return IsUtf8(bytes) ? bytes : platform::FromAnsi(bytes);
}

}  // namespace web
