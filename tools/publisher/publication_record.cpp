#include "publisher/publication_record.hpp"

#include <algorithm>
#include <charconv>

#include "base/text.hpp"
#include "platform/digest.hpp"
#include "platform/files.hpp"
#include "publisher/failure.hpp"
#include "publisher/packed_file.hpp"
#include "publisher/update_list.hpp"
#include "update/counter_store.hpp"

namespace publisher {
namespace {

constexpr const char* kFile = "record.txt";
constexpr std::uint64_t kLargestRecord = 64u << 20;
constexpr std::size_t kDigestSize = 64;
constexpr std::string_view kBetween = "  ";  // of digest and name, as sha256sum has it

// A list that is no good for one category is none of the others' business; the check tells of it.
int Listed(const Layout& layout, const char* category) try {
  return NewestPatch(layout, category);
} catch (const Failure&) {
  return 0;
}

}  // namespace

PatchNumber PatchNumberOf(const std::string& archive) {
  for (const char* category : update::kCategories) {
    const std::string start = base::Replaced(names::Patch(category, 0), "0.zip", "");
    if (!archive.starts_with(start)) continue;
    PatchNumber patch{category};
    std::from_chars(archive.data() + start.size(), archive.data() + archive.size(), patch.number);
    if (patch.number > 0 && names::Patch(category, patch.number) == archive) return patch;
  }
  return {};
}

PublicationRecord::PublicationRecord(const Layout& layout) : layout_(layout) {
  const std::string file = layout.Own(kFile);
  if (platform::IsFile(file)) {
    Parse(Naming(file, [&] { return platform::ReadWhole(file, kLargestRecord); }), file);
  }
}

void PublicationRecord::Parse(std::string_view text, const std::string& file) {
  int line = 0;
  for (const std::string_view each : base::Split(text, '\n')) {
    ++line;
    if (each.empty()) continue;
    const std::string name(each.substr(std::min(each.size(), kDigestSize + kBetween.size())));
    const bool good =
        !name.empty() &&
        each.substr(0, kDigestSize).find_first_not_of("0123456789abcdef") == std::string_view::npos &&
        each.substr(kDigestSize, kBetween.size()) == kBetween && PatchNumberOf(name).number != 0;
    if (!good) throw Failure(file + ": line " + std::to_string(line) + " is no digest and archive");
    digests_[name] = each.substr(0, kDigestSize);
  }
}

int PublicationRecord::Newest(const std::string& category) const {
  int newest = 0;
  for (const auto& [archive, digest] : digests_) {
    const PatchNumber patch = PatchNumberOf(archive);
    if (patch.category == category) newest = std::max(newest, patch.number);
  }
  return newest;
}

void PublicationRecord::TakeInListed() {
  const std::size_t before = digests_.size();
  for (const char* category : update::kCategories) {
    for (int n = Listed(layout_, category); n > 0; --n) {
      const std::string archive = names::Patch(category, n);
      if (digests_.contains(archive) || !platform::IsFile(layout_.At(archive))) continue;
      digests_[archive] = Sha256Of(layout_.At(archive));
    }
  }
  if (digests_.size() == before) return;
  std::string text;
  for (const auto& [archive, digest] : digests_)
    text.append(digest).append(kBetween).append(archive).append("\n");
  const std::string file = layout_.Own(kFile);
  Naming(file, [&] {
    platform::MakeFolders(platform::FolderOf(file));
    platform::WriteWhole(file, text);
  });
}

}  // namespace publisher
