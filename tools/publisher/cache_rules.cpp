#include "publisher/cache_rules.hpp"

#include <algorithm>
#include <limits>

namespace publisher {
namespace {

constexpr std::uint32_t kAnyTime = std::numeric_limits<std::uint32_t>::max();

constexpr std::string_view kPolls[] = {"Online.txt", "web/include/info.php", "web/include/noticiasbase.php"};
constexpr std::string_view kPersonal = "web/include/ipdate.php";
constexpr std::string_view kPatches = "OldAct/", kArchiveEnd = ".zip";

}  // namespace

FileKind KindOf(std::string_view path) {
  if (std::find(std::begin(kPolls), std::end(kPolls), path) != std::end(kPolls)) return FileKind::Poll;
  if (path == kPersonal) return FileKind::Personal;
  const bool archive = path.starts_with(kPatches) && path.ends_with(kArchiveEnd);
  return archive ? FileKind::Archive : FileKind::Replaced;
}

const CacheRule& CachingOf(FileKind kind) {
  static constexpr CacheRule kPollRule{"max-age=60", 30, 300};
  static constexpr CacheRule kPersonalRule{"no-store", 0, 60};
  static constexpr CacheRule kArchiveRule{"max-age=31536000, immutable", 0, kAnyTime};
  static constexpr CacheRule kReplacedRule{"no-cache", 0, 60};
  switch (kind) {
    case FileKind::Poll:
      return kPollRule;
    case FileKind::Personal:
      return kPersonalRule;
    case FileKind::Archive:
      return kArchiveRule;
    case FileKind::Replaced:
      break;
  }
  return kReplacedRule;
}

}  // namespace publisher
