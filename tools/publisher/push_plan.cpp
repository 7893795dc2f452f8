#include "publisher/push_plan.hpp"

#include <algorithm>
#include <filesystem>

#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/cache_rules.hpp"
#include "publisher/failure.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/source_files.hpp"

namespace publisher {
namespace {

// The order in which files may appear: what names others comes after them, and the probe, which sends players
// here, after everything.
int RankOf(const std::string& name) {
  constexpr std::string_view kLast[] = {names::kIndex, names::kUpdateList, names::kSigned, names::kOnline};
  if (KindOf(name) == FileKind::Archive) return 0;
  const auto found = std::find(std::begin(kLast), std::end(kLast), name);
  return found == std::end(kLast) ? 1 : 2 + static_cast<int>(found - std::begin(kLast));
}

}  // namespace

// To the last digit: a list can change twice in one second and keep its size. Where a file system keeps whole
// seconds only, the bytes decide.
bool SameStamp(const std::string& a, const std::string& b) {
  std::error_code missing, other;
  const auto timeOfA = std::filesystem::last_write_time(a, missing);
  const auto timeOfB = std::filesystem::last_write_time(b, other);
  return !missing && !other && timeOfA == timeOfB && SizeOf(a) == SizeOf(b);
}

PushPlan PushPlan::For(const Layout& from, const Layout& to) {
  PushPlan plan;
  const std::vector<std::string> wanted = from.Files();
  for (const std::string& name : wanted) {
    const std::string original = from.At(name), copy = to.At(name);
    const bool there = platform::IsFile(copy);
    if (there && (name == names::kOnline || SameStamp(original, copy))) continue;
    const bool equal = there && SizeOf(original) == SizeOf(copy) && Sha256Of(original) == Sha256Of(copy);
    (equal ? plan.date : plan.copy).push_back(name);
  }
  std::stable_sort(plan.copy.begin(), plan.copy.end(),
                   [](const std::string& a, const std::string& b) { return RankOf(a) < RankOf(b); });
  if (!platform::IsFolder(to.GameFiles())) return plan;
  for (const std::string& name : to.Files()) {
    const bool packed = name.starts_with(std::string(names::kGameFiles) + "/");
    if (packed && !std::binary_search(wanted.begin(), wanted.end(), name)) plan.remove.push_back(name);
  }
  return plan;
}

}  // namespace publisher
