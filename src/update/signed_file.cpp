#include "update/signed_file.hpp"

#include <charconv>
#include <chrono>
#include <limits>

#include "base/base64.hpp"
#include "base/relative_name.hpp"
#include "base/text.hpp"

namespace update {
namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::string_view kFormat = "Kelvarin 1";
constexpr std::string_view kVersion = "version ", kSigned = "signed ", kExpires = "expires ",
                           kNextKey = "next-key ";
constexpr std::size_t kDigestSize = 64;
constexpr std::int64_t kDay = 24 * 3600, kHour = 3600, kMinute = 60;

// A whole number without leading zeros, sign or anything behind it.
template <class Number>
bool Read(std::string_view digits, Number& number) {
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return error == std::errc{} && end == digits.data() + digits.size() && std::to_string(number) == digits;
}

// Takes the next line off the text; every line has its end.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {}

  bool AtEnd() const { return text_.empty(); }
  std::optional<std::string_view> Take() {
    const std::size_t end = text_.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    const std::string_view line = text_.substr(0, end);
    text_.remove_prefix(end + 1);
    return line;
  }

  // What stands behind `start` on the next line.
  std::optional<std::string_view> TakeBehind(std::string_view start) {
    if (!text_.starts_with(start)) return std::nullopt;
    std::optional<std::string_view> line = Take();
    if (line) line->remove_prefix(start.size());
    return line;
  }

 private:
  std::string_view text_;
};

bool ReadTime(std::optional<std::string_view> text, std::int64_t& time) {
  const auto seconds = text ? FromUtcText(*text) : std::nullopt;
  if (seconds) time = *seconds;
  return seconds.has_value();
}

bool ReadHead(Lines& lines, SignedFile& file) {
  if (lines.Take() != kFormat) return false;
  const auto version = lines.TakeBehind(kVersion);
  if (!version || !Read(*version, file.version) || file.version == 0) return false;
  if (!ReadTime(lines.TakeBehind(kSigned), file.signedAt)) return false;
  if (!ReadTime(lines.TakeBehind(kExpires), file.expires)) return false;
  if (const auto key = lines.TakeBehind(kNextKey)) {
    if (key->empty() || !base::FromBase64(*key)) return false;
    file.nextKey = *key;
  }
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    const auto count = lines.TakeBehind(std::string(kCategories[i]) + " ");
    if (!count || !Read(*count, file.counts[i]) || file.counts[i] < 0) return false;
  }
  return true;
}

bool ReadFile(std::string_view line, SignedFile& file) {
  const std::string_view digest = line.substr(0, kDigestSize);
  if (digest.size() != kDigestSize ||
      digest.find_first_not_of("0123456789abcdef") != std::string_view::npos) {
    return false;
  }
  line.remove_prefix(kDigestSize);
  const std::size_t space = line.find(' ', 1);
  if (!line.starts_with(' ') || space == std::string_view::npos) return false;
  SignedFile::File entry{std::string(digest)};
  const std::string name(line.substr(space + 1));
  if (!Read(line.substr(1, space - 1), entry.size) || !base::WhyUnsafe(name).empty()) return false;
  if (base::WithSlashes(name) != name || base::Contains(name, "\\")) return false;
  if (!file.files.empty() && name <= file.files.rbegin()->first) return false;
  file.files.emplace(name, std::move(entry));
  return true;
}

void AppendTwoDigits(std::string& text, std::int64_t number) {
  text += static_cast<char>('0' + number / 10);
  text += static_cast<char>('0' + number % 10);
}

}  // namespace

std::optional<SignedText> SplitSigned(std::string_view text) {
  const std::size_t end = text.find('\n');
  if (end == std::string_view::npos) return std::nullopt;
  auto signature = base::FromBase64(text.substr(0, end));
  if (!signature || signature->empty()) return std::nullopt;
  return SignedText{std::move(*signature), text.substr(end + 1)};
}

std::optional<SignedFile> ParseSignedBody(std::string_view body) {
  Lines lines(body);
  SignedFile file;
  if (!ReadHead(lines, file)) return std::nullopt;
  while (!lines.AtEnd()) {
    const auto line = lines.Take();
    if (!line || !ReadFile(*line, file)) return std::nullopt;
  }
  return file;
}

std::string SignedBody(const SignedFile& file) {
  std::string body(kFormat);
  const auto line = [&](std::string_view start, std::string_view rest) {
    body.append("\n").append(start).append(rest);
  };
  line(kVersion, std::to_string(file.version));
  line(kSigned, UtcText(file.signedAt));
  line(kExpires, UtcText(file.expires));
  if (!file.nextKey.empty()) line(kNextKey, file.nextKey);
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    line(kCategories[i], " " + std::to_string(file.counts[i]));
  }
  for (const auto& [name, entry] : file.files) {
    line(entry.digest, " " + std::to_string(entry.size) + " " + name);
  }
  return body + "\n";
}

std::string UtcText(std::int64_t seconds) {
  const std::int64_t day = seconds / kDay, rest = seconds % kDay;
  const year_month_day date{sys_days{days{day}}};
  const int year = static_cast<int>(date.year());
  std::string text;
  AppendTwoDigits(text, year / 100);
  AppendTwoDigits(text, year % 100);
  const std::pair<char, std::int64_t> parts[] = {{'-', static_cast<unsigned>(date.month())},
                                                 {'-', static_cast<unsigned>(date.day())},
                                                 {'T', rest / kHour},
                                                 {':', rest % kHour / kMinute},
                                                 {':', rest % kMinute}};
  for (const auto& [mark, number] : parts) {
    text += mark;
    AppendTwoDigits(text, number);
  }
  return text + "Z";
}

std::optional<std::int64_t> FromUtcText(std::string_view text) {
  constexpr std::string_view kPattern = "0000-00-00T00:00:00Z";
  if (text.size() != kPattern.size()) return std::nullopt;
  const auto number = [&](std::size_t at, std::size_t digits) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + digits, value);
    return value;
  };
  const year_month_day date{std::chrono::year(number(0, 4)),
                            std::chrono::month(static_cast<unsigned>(number(5, 2))),
                            std::chrono::day(static_cast<unsigned>(number(8, 2)))};
  if (!date.ok()) return std::nullopt;
  const std::int64_t seconds = sys_days{date}.time_since_epoch().count() * kDay + number(11, 2) * kHour +
                               number(14, 2) * kMinute + number(17, 2);
  // Hours beyond 23, signs and blanks all give another text.
  return seconds >= 0 && UtcText(seconds) == text ? std::optional(seconds) : std::nullopt;
}

}  // namespace update
