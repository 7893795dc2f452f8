#include "publisher/header_rules.hpp"

#include <charconv>
#include <optional>

#include "base/text.hpp"

namespace publisher {
namespace {

// How long caches may give the answer without asking (RFC 9111, 5.2.2); none when it does not say.
std::optional<std::uint64_t> FreshSeconds(const platform::HttpHead& head) {
  constexpr std::string_view kMaxAge = "max-age=";
  std::optional<std::uint64_t> seconds;
  const std::string control = base::Lower(head.Header("cache-control"));
  for (const std::string_view piece : base::Split(control, ',')) {
    const std::string_view directive = base::Trim(piece);
    if (directive == "no-cache" || directive == "no-store") return 0;
    if (!directive.starts_with(kMaxAge)) continue;
    std::uint64_t value = 0;
    std::from_chars(directive.data() + kMaxAge.size(), directive.data() + directive.size(), value);
    seconds = value;
  }
  return seconds;
}

void JudgeCaching(const platform::HttpHead& head, FileKind kind, const std::string& called,
                  Findings& findings) {
  const CacheRule& rule = CachingOf(kind);
  const std::string better = std::string(" (better: \"Cache-Control: ") + rule.header + "\")";
  const std::optional<std::uint64_t> fresh = FreshSeconds(head);
  if (!fresh && kind != FileKind::Personal) {
    return findings.Warning(called + ": it does not say how long it may be kept" + better);
  }
  if (!fresh) return;
  if (*fresh > rule.mostSeconds) {
    findings.Problem(called + ": it may be kept for " + std::to_string(*fresh) +
                     " s, so players are kept from what is new" + better);
  } else if (*fresh < rule.leastSeconds) {
    findings.Warning(called + ": it may be kept for only " + std::to_string(*fresh) +
                     " s, so every open launcher asks for it all the time" + better);
  }
}

}  // namespace

void JudgeHead(const platform::HttpHead& head, FileKind kind, const std::string& called, Findings& findings) {
  JudgeCaching(head, kind, called, findings);
  if (const std::string packed = head.Header("content-encoding"); !packed.empty() && packed != "identity") {
    findings.Problem(called + ": it is sent packed (" + packed + "), though nobody asked for that");
  }
  if (kind == FileKind::Personal) return;
  if (head.Header("etag").empty() && head.Header("last-modified").empty()) {
    findings.Warning(called + ": it has neither ETag nor Last-Modified, so it is sent whole each time");
  }
  const bool download = kind == FileKind::Archive || kind == FileKind::Replaced;
  if (download && !head.contentLength) {
    findings.Warning(called + ": it has no Content-Length, so launchers cannot say how far they are");
  }
}

}  // namespace publisher
