#include "publisher/release_plan.hpp"

#include <algorithm>
#include <set>

#include "base/text.hpp"
#include "publisher/categories.hpp"
#include "publisher/failure.hpp"
#include "publisher/update_list.hpp"
#include "update/counter_store.hpp"

namespace publisher {
namespace {

// One archive of a patch stays small enough to be fetched again after a failure, and below the limits of ZIP.
constexpr std::uint64_t kPatchBytes = 256u << 20;
constexpr std::size_t kPatchFiles = 50'000;

constexpr std::string_view kBin = "Bin/";
constexpr std::string_view kFirstBitmap = "RECURSOS/GRAFICOS/1.BMP", kSettings = "RECURSOS/INIT/";
constexpr const char* kPlayersOwn[] = {"CONFIGVIDEO.CFG", "WAVSILENCED.INI"};

bool IsInBin(const std::string& name) { return base::Upper(name).starts_with(base::Upper(kBin)); }

// The part of a game below Bin, named from there.
std::vector<SourceFile> BinOf(const std::vector<SourceFile>& game, const std::string& folder) {
  std::vector<SourceFile> files;
  for (const SourceFile& file : game) {
    if (!IsInBin(file.name)) continue;
    if (!file.name.starts_with(kBin)) throw Failure(file.path + ": its folder must be written \"Bin\"");
    files.push_back(file);
    files.back().name.erase(0, kBin.size());
  }
  if (files.empty()) throw Failure(folder + "/Bin: there is no file to publish");
  return files;
}

// Outside Bin files come by patches; so do the empty ones of Bin, which cannot be packed.
bool ComesByPatch(const SourceFile& file) { return !IsInBin(file.name) || file.size == 0; }

// Launchers clean Bin of what the index does not name, but for names with a "$".
bool IsCleanedAway(const std::string& name) { return IsInBin(name) && !base::Contains(name, "$"); }

std::vector<std::vector<SourceFile>> InParts(const std::vector<SourceFile>& files) {
  std::vector<std::vector<SourceFile>> parts;
  std::uint64_t bytes = 0;
  for (const SourceFile& file : files) {
    if (parts.empty() || parts.back().size() == kPatchFiles || bytes + file.size > kPatchBytes) {
      parts.emplace_back();
      bytes = 0;
    }
    parts.back().push_back(file);
    bytes += file.size;
  }
  return parts;
}

}  // namespace

ReleasePlan::ReleasePlan(const Layout& layout, const std::string& gameFolder, Console& console)
    : ReleasePlan(layout, gameFolder, ReadSource(gameFolder, "", layout, console.err), console) {}

ReleasePlan::ReleasePlan(const Layout& layout, const std::string& gameFolder, std::vector<SourceFile> game,
                         Console& console)
    : game_(std::move(game)), bin_(layout, gameFolder + "/Bin", BinOf(game_, gameFolder), console) {
  Compare(layout);
  WarnOfOddFiles(console);
}

void ReleasePlan::Compare(const Layout& layout) {
  const InstalledFiles installed(layout);
  const Categories categories(layout);
  std::vector<std::vector<SourceFile>> byCategory(update::kCategories.size());
  std::set<std::string> there;
  for (const SourceFile& file : game_) {
    there.insert(base::UpperLatin(file.name));
    if (!ComesByPatch(file) || installed.Has(file)) continue;
    if (const std::string other = installed.InTheWayOf(file.name); !other.empty()) {
      throw Failure(file.path + ": it cannot be installed where players have " + other +
                    " from an older release, once a file and once a folder");
    }
    (installed.Knows(file.name) ? outside_.changed : outside_.added).push_back(file.name);
    const std::size_t category =
        std::max(categories.Of(file.name), installed.LastCategory(file.name).value_or(0));
    byCategory[category].push_back(file);
  }
  for (const std::string& name : installed.Names()) {
    if (!IsCleanedAway(name) && !there.contains(base::UpperLatin(name))) outside_.removed.push_back(name);
  }
  PlanPatches(layout, byCategory);
}

void ReleasePlan::PlanPatches(const Layout& layout, const std::vector<std::vector<SourceFile>>& byCategory) {
  const PublicationRecord record(layout);
  counts_ = NewestPatches(layout);
  for (std::size_t i = 0; i < byCategory.size(); ++i) {
    const std::string category = update::kCategories[i];
    if (byCategory[i].empty()) continue;
    NextPatch(layout, record, category);
    for (std::vector<SourceFile>& part : InParts(byCategory[i])) {
      patches_.push_back({category, ++counts_[i], std::move(part)});
    }
    RequireCountable(layout, category, counts_[i]);
  }
}

void ReleasePlan::WarnOfOddFiles(Console& console) const {
  for (const PlannedPatch& patch : patches_) {
    for (const SourceFile& file : patch.files) {
      const std::string capitals = base::Upper(file.name);
      for (const char* own : kPlayersOwn) {
        if (capitals != std::string(kSettings) + own) continue;
        console.err << "warning: " << file.path << ": it replaces what every player has set\n";
      }
      if (capitals == kFirstBitmap) {
        console.err << "warning: " << file.path
                    << ": where it lies, launchers delete every numbered bitmap of its folder\n";
      }
    }
  }
}

}  // namespace publisher
