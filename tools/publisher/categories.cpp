#include "publisher/categories.hpp"

#include <algorithm>

#include "base/relative_name.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/failure.hpp"
#include "update/counter_store.hpp"

namespace publisher {
namespace {

constexpr const char* kFile = "categories.txt";
constexpr std::uint64_t kLargest = 1u << 20;
constexpr std::string_view kResources = "RECURSOS/";

struct FolderRule {
  std::string_view folder;  // the start of its name
  bool whole;               // and all of it
  const char* category;
};
constexpr FolderRule kRules[] = {{"INIT", true, "Init"},         {"MAPAS", false, "Mapas"},
                                 {"GRAFICOS", true, "Graficos"}, {"MIDIS", true, "Midis"},
                                 {"WAVS", true, "Wavs"},         {"AU", true, "AU"}};
constexpr const char* kOtherwise = "Extras";

std::size_t PlaceOf(std::string_view category) {
  const auto found = std::find(update::kCategories.begin(), update::kCategories.end(), category);
  return static_cast<std::size_t>(found - update::kCategories.begin());
}

// The folders above are those of the game itself or of its folder of resources.
const char* ByFolder(std::string_view capitals) {
  if (capitals.starts_with(kResources)) capitals.remove_prefix(kResources.size());
  const std::size_t end = capitals.find('/');
  if (end == std::string_view::npos) return kOtherwise;
  const std::string_view folder = capitals.substr(0, end);
  for (const FolderRule& rule : kRules) {
    if (rule.whole ? folder == rule.folder : folder.starts_with(rule.folder)) return rule.category;
  }
  return kOtherwise;
}

}  // namespace

Categories::Categories(const Layout& layout) {
  const std::string file = layout.Own(kFile);
  if (platform::IsFile(file)) Parse(Naming(file, [&] { return platform::ReadWhole(file, kLargest); }), file);
}

void Categories::Parse(std::string_view text, const std::string& file) {
  int line = 0;
  for (std::string_view each : base::Split(text, '\n')) {
    ++line;
    if (each.ends_with('\r')) each.remove_suffix(1);
    if (base::Trim(each).empty() || base::Trim(each).starts_with('#')) continue;
    const std::size_t equals = each.rfind('=');
    const std::string name = base::WithSlashes(base::Trim(each.substr(0, equals)));
    const std::size_t place = equals == std::string_view::npos ? update::kCategories.size()
                                                               : PlaceOf(base::Trim(each.substr(equals + 1)));
    if (name.empty() || place == update::kCategories.size()) {
      throw Failure(file + ": line " + std::to_string(line) + " is not \"FOLDER = CATEGORY\"");
    }
    said_[base::UpperLatin(name)] = place;
  }
}

std::size_t Categories::Of(const std::string& name) const {
  const std::string capitals = base::UpperLatin(name);
  for (std::string part = capitals; !part.empty();) {
    if (const auto found = said_.find(part); found != said_.end()) return found->second;
    const std::size_t slash = part.rfind('/');
    part.resize(slash == std::string::npos ? 0 : slash);
  }
  return PlaceOf(ByFolder(capitals));
}

}  // namespace publisher
