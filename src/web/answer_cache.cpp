#include "web/answer_cache.hpp"

#include <algorithm>
#include <charconv>

#include "base/text.hpp"
#include "web/http_date.hpp"

namespace web {
namespace {

constexpr std::size_t kMostAnswers = 16;
constexpr std::size_t kLongestText = 256 * 1024;
constexpr std::size_t kLongestHeader = 256;
// A slip of the operator must not silence the news for a year.
constexpr std::uint64_t kLongestSeconds = 24 * 3600;
constexpr std::uint64_t kLongestGuess = 30;  // seconds that a server which says nothing may be spared

struct Directives {
  bool store = true;
  std::uint64_t seconds = 0;  // how long the answer stays fresh
};

std::uint64_t Seconds(std::string_view digits) {
  std::uint64_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::result_out_of_range) return kLongestSeconds;
  return end == digits.data() ? 0 : std::min(value, kLongestSeconds);
}

// How long an answer may be taken for fresh about which its server says nothing (RFC 9111, 4.2.2): a tenth of
// its age when it was sent, or the most there is when only its tag shows that it is a file.
std::uint64_t GuessedSeconds(const platform::HttpHead& head) {
  const auto changed = FromHttpDate(head.Header("last-modified")), sent = FromHttpDate(head.Header("date"));
  if (!changed) return head.Header("etag").empty() ? 0 : kLongestGuess;
  if (!sent || *sent < *changed) return 0;
  return std::min<std::uint64_t>(static_cast<std::uint64_t>(*sent - *changed) / 10, kLongestGuess);
}

// Of an answer without Cache-Control; an Expires that is no date means "expired" (RFC 9111, 5.3).
std::uint64_t SecondsWithoutControl(const platform::HttpHead& head) {
  const std::string expires = head.Header("expires");
  if (expires.empty()) return GuessedSeconds(head);
  const auto ends = FromHttpDate(expires), sent = FromHttpDate(head.Header("date"));
  if (!ends || !sent || *ends <= *sent) return 0;
  return std::min(static_cast<std::uint64_t>(*ends - *sent), kLongestSeconds);
}

Directives DirectivesOf(const platform::HttpHead& head) {
  Directives directives;
  bool mustAsk = false;
  const std::string control = base::Lower(head.Header("cache-control"));
  if (control.empty()) directives.seconds = SecondsWithoutControl(head);
  for (const std::string_view piece : base::Split(control, ',')) {
    const std::string_view directive = base::Trim(piece);
    if (directive == "no-store") directives.store = false;
    if (directive == "no-cache") mustAsk = true;
    if (directive.starts_with("max-age=")) directives.seconds = Seconds(directive.substr(8));
  }
  // The time that the answer has already spent in caches on the way.
  const std::uint64_t age = Seconds(head.Header("age"));
  directives.seconds = mustAsk || age >= directives.seconds ? 0 : directives.seconds - age;
  return directives;
}

std::uint64_t FreshUntil(const platform::HttpHead& head, std::uint64_t now) {
  const std::uint64_t seconds = DirectivesOf(head).seconds;
  return seconds == 0 ? 0 : now + seconds * 1000;
}

// Whether a header may be sent back to its server; a control character could make it two of a request.
bool IsPlain(std::string_view value) {
  return value.size() <= kLongestHeader && std::all_of(value.begin(), value.end(), [](char c) {
           return static_cast<unsigned char>(c) >= ' ' && c != 127;
         });
}

// What a 304 does not repeat holds as it was said before.
platform::HttpHead Remembered(const platform::HttpHead& head, const platform::HttpHead& before) {
  platform::HttpHead kept;
  for (const char* name : {"cache-control", "age", "date", "expires", "etag", "last-modified"}) {
    std::string value = head.Header(name);
    if (value.empty()) value = before.Header(name);
    if (IsPlain(value)) kept.headers.emplace_back(name, std::move(value));
  }
  return kept;
}

AnswerCache::Headers ConditionsOf(const platform::HttpHead& head) {
  if (const std::string tag = head.Header("etag"); !tag.empty()) return {{"If-None-Match", tag}};
  const std::string changed = head.Header("last-modified");
  if (FromHttpDate(changed)) return {{"If-Modified-Since", changed}};
  return {};
}

}  // namespace

std::optional<std::string> AnswerCache::Fresh(const std::string& url, std::uint64_t now) const {
  const auto found = kept_.find(url);
  if (found == kept_.end() || now >= found->second.freshUntil) return std::nullopt;
  return found->second.text;
}

AnswerCache::Headers AnswerCache::Conditions(const std::string& url) const {
  const auto found = kept_.find(url);
  return found == kept_.end() ? Headers{} : ConditionsOf(found->second.head);
}

std::string AnswerCache::Take(const std::string& url, const platform::HttpHead& head, std::string text,
                              std::uint64_t now) {
  const auto found = kept_.find(url);
  if (head.status == 304 && found != kept_.end()) {
    Kept& kept = found->second;
    kept.head = Remembered(head, kept.head);
    kept.freshUntil = FreshUntil(kept.head, now);
    return kept.text;
  }
  Kept answer{text, Remembered(head, {}), FreshUntil(head, now)};
  const bool reusable = answer.freshUntil != 0 || !ConditionsOf(answer.head).empty();
  if (head.status == 200 && DirectivesOf(head).store && reusable && text.size() <= kLongestText) {
    Keep(url, std::move(answer));
  } else {
    Forget(url);
  }
  return text;
}

void AnswerCache::Keep(const std::string& url, Kept answer) {
  if (kept_.size() >= kMostAnswers && !kept_.contains(url)) {
    kept_.erase(std::min_element(kept_.begin(), kept_.end(), [](const auto& a, const auto& b) {
      return a.second.freshUntil < b.second.freshUntil;
    }));
  }
  kept_[url] = std::move(answer);
}

}  // namespace web
