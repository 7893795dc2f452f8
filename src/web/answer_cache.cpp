#include "web/answer_cache.hpp"

#include <algorithm>
#include <charconv>

#include "base/text.hpp"

namespace web {
namespace {

constexpr std::size_t kMostAnswers = 16;
constexpr std::size_t kLongestText = 256 * 1024;
constexpr std::size_t kLongestTag = 256;
// A slip of the operator must not silence the news for a year.
constexpr std::uint64_t kLongestSeconds = 24 * 3600;

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

Directives DirectivesOf(const platform::HttpHead& head) {
  Directives directives;
  bool mustAsk = false;
  const std::string control = base::Lower(head.Header("cache-control"));
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

}  // namespace

std::optional<std::string> AnswerCache::Fresh(const std::string& url, std::uint64_t now) const {
  const auto found = kept_.find(url);
  if (found == kept_.end() || now >= found->second.freshUntil) return std::nullopt;
  return found->second.text;
}

AnswerCache::Headers AnswerCache::Conditions(const std::string& url) const {
  const auto found = kept_.find(url);
  if (found == kept_.end() || found->second.tag.empty()) return {};
  return {{"If-None-Match", found->second.tag}};
}

std::string AnswerCache::Take(const std::string& url, const platform::HttpHead& head, std::string text,
                              std::uint64_t now) {
  const Directives directives = DirectivesOf(head);
  const std::uint64_t freshUntil = directives.seconds == 0 ? 0 : now + directives.seconds * 1000;
  const auto found = kept_.find(url);
  if (head.status == 304 && found != kept_.end()) {
    found->second.freshUntil = freshUntil;
    return found->second.text;
  }
  Kept answer{text, head.Header("etag"), freshUntil};
  if (answer.tag.size() > kLongestTag) answer.tag.clear();
  const bool reusable = !answer.tag.empty() || freshUntil != 0;
  if (head.status == 200 && directives.store && reusable && text.size() <= kLongestText) {
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
