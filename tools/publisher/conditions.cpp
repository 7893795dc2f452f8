#include "publisher/conditions.hpp"

#include <algorithm>
#include <charconv>
#include <optional>

#include "base/text.hpp"

namespace publisher {
namespace {

bool NotModified(const ServedFile& file, const Conditions& asked) {
  if (!asked.ifNoneMatch.empty()) {
    return base::Trim(asked.ifNoneMatch) == "*" || base::Contains(asked.ifNoneMatch, file.etag);
  }
  const std::optional<std::time_t> since = TimeOf(asked.ifModifiedSince);
  return since && file.modified <= *since;
}

std::optional<std::uint64_t> Number(std::string_view digits) {
  std::uint64_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (digits.empty() || error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// "bytes=FIRST-LAST", "bytes=FIRST-" or "bytes=-COUNT" of a file of `size` bytes.
Portion PartOf(std::string_view range, std::uint64_t size) {
  constexpr std::string_view kUnit = "bytes=";
  if (!range.starts_with(kUnit)) return {};
  range.remove_prefix(kUnit.size());
  const auto ends = base::Split(range, '-');
  if (ends.size() != 2) return {};
  const auto first = Number(base::Trim(ends[0])), last = Number(base::Trim(ends[1]));
  if (ends[0].empty() && last) {
    const std::uint64_t count = std::min(*last, size);
    if (count == 0) return {Portion::Kind::BeyondTheEnd};
    return {Portion::Kind::Part, size - count, count};
  }
  if (!first || (!ends[1].empty() && (!last || *last < *first))) return {};
  if (*first >= size) return {Portion::Kind::BeyondTheEnd};
  return {Portion::Kind::Part, *first, std::min(last.value_or(size - 1), size - 1) - *first + 1};
}

}  // namespace

Portion PortionFor(const ServedFile& file, const Conditions& asked) {
  if (NotModified(file, asked)) return {Portion::Kind::NotModified};
  const bool same = asked.ifRange.empty() || asked.ifRange == file.etag || asked.ifRange == file.lastModified;
  return same ? PartOf(asked.range, file.size) : Portion{};
}

}  // namespace publisher
