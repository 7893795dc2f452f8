#include "platform/ini_text.hpp"

#include "base/text.hpp"

namespace platform {
namespace {

constexpr std::string_view kLineBreaks = "\r\n";

bool IsBlank(char c) { return static_cast<unsigned char>(c) <= ' '; }

std::string_view Trimmed(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view Unquoted(std::string_view value) {
  const bool quoted =
      value.size() >= 2 && value.front() == value.back() && (value.front() == '"' || value.front() == '\'');
  return quoted ? value.substr(1, value.size() - 2) : value;
}

// Walks over the lines of a text.
class Lines {
 public:
  explicit Lines(std::string_view text) : text_(text) {}

  bool Next() {
    if (next_ >= text_.size()) return false;
    start_ = next_;
    end_ = std::min(text_.find_first_of(kLineBreaks, start_), text_.size());
    next_ = end_;
    if (next_ < text_.size()) next_ += text_.substr(next_).starts_with("\r\n") ? 2 : 1;
    return true;
  }
  std::size_t Start() const { return start_; }
  std::size_t End() const { return end_; }     // of its text
  std::size_t After() const { return next_; }  // of its line break
  std::string_view Text() const { return Trimmed(text_.substr(start_, end_ - start_)); }

 private:
  std::string_view text_;
  std::size_t start_ = 0, end_ = 0, next_ = 0;
};

// The name in a line "[name] anything"; none when the line is no header.
std::optional<std::string_view> HeaderName(std::string_view line) {
  if (!line.starts_with('[')) return std::nullopt;
  const std::size_t close = line.rfind(']');
  if (close == std::string_view::npos) return std::nullopt;
  return Trimmed(line.substr(1, close - 1));
}

std::string_view KeyOf(std::string_view line) { return Trimmed(line.substr(0, line.find('='))); }

// Moves `lines` onto the header of the section.
bool FindSection(Lines& lines, std::string_view section) {
  while (lines.Next()) {
    const auto name = HeaderName(lines.Text());
    if (name && base::EqualIgnoringCase(*name, section)) return true;
  }
  return false;
}

struct Place {
  bool keyFound = false;
  std::size_t start = 0, end = 0;  // of the key's line; of the point for a new line
};

// Where the key is, or belongs; `lines` is on the header of its section.
Place FindKey(Lines& lines, std::string_view key) {
  Place place{false, lines.After(), lines.After()};
  while (lines.Next()) {
    const std::string_view line = lines.Text();
    if (HeaderName(line)) break;
    if (base::EqualIgnoringCase(KeyOf(line), key) && !line.empty()) return {true, lines.Start(), lines.End()};
    if (!line.empty()) place.start = place.end = lines.After();
  }
  return place;
}

void AddLine(std::string& text, std::size_t at, const std::string& line) {
  const bool unfinished = at > 0 && kLineBreaks.find(text[at - 1]) == std::string_view::npos;
  text.insert(at, (unfinished ? "\r\n" : "") + line + "\r\n");
}

}  // namespace

std::optional<std::string> IniValue(std::string_view text, std::string_view section, std::string_view key) {
  Lines lines(text);
  if (!FindSection(lines, Trimmed(section))) return std::nullopt;
  const Place place = FindKey(lines, Trimmed(key));
  if (!place.keyFound) return std::nullopt;
  const std::string_view line = text.substr(place.start, place.end - place.start);
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return std::nullopt;
  return std::string(Unquoted(Trimmed(line.substr(equals + 1))));
}

void SetIniValue(std::string& text, std::string_view section, std::string_view key, std::string_view value) {
  section = Trimmed(section);
  key = Trimmed(key);
  const std::string assignment = "=" + std::string(value);
  Lines lines(text);
  if (!FindSection(lines, section)) {
    AddLine(text, text.size(), "[" + std::string(section) + "]\r\n" + std::string(key) + assignment);
    return;
  }
  const Place place = FindKey(lines, key);
  if (!place.keyFound) {
    AddLine(text, place.start, std::string(key) + assignment);
    return;
  }
  const std::string name(KeyOf(std::string_view(text).substr(place.start, place.end - place.start)));
  text.replace(place.start, place.end - place.start, name + assignment);
}

}  // namespace platform
