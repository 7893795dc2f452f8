#include "publisher/installed_files.hpp"

#include "base/text.hpp"
#include "platform/files.hpp"
#include "publisher/failure.hpp"
#include "publisher/update_list.hpp"
#include "update/zip_archive.hpp"

namespace publisher {
namespace {

// Calls `take` with every folder above a name, the innermost first.
template <class Take>
void ForEachFolderAbove(std::string_view name, Take take) {
  for (std::size_t end = name.rfind('/'); end != std::string_view::npos && end != 0;
       end = name.rfind('/', end - 1)) {
    take(std::string(name.substr(0, end)));
  }
}

}  // namespace

InstalledFiles::InstalledFiles(const Layout& layout) {
  for (std::size_t i = 0; i < update::kCategories.size(); ++i) {
    const int newest = NewestPatch(layout, update::kCategories[i]);
    for (int n = 1; n <= newest; ++n) TakeIn(layout.Patch(update::kCategories[i], n), i);
  }
}

void InstalledFiles::TakeIn(const std::string& archive, std::size_t category) {
  const update::ZipArchive zip = Naming(archive, [&] { return update::ZipArchive(archive); });
  for (const update::ZipArchive::Entry& entry : zip.Entries()) {
    const std::string capitals = base::UpperLatin(entry.name);
    ForEachFolderAbove(capitals, [&](std::string folder) { folders_.insert(std::move(folder)); });
    if (entry.folder) {
      folders_.insert(capitals);
      continue;
    }
    Installed& file = files_[capitals];
    file.name = entry.name;
    file.newest[category] = Checksum{entry.size, entry.crc};
  }
}

const InstalledFiles::Installed* InstalledFiles::Find(const std::string& name) const {
  const auto found = files_.find(base::UpperLatin(name));
  return found == files_.end() ? nullptr : &found->second;
}

bool InstalledFiles::Knows(const std::string& name) const { return Find(name) != nullptr; }

bool InstalledFiles::Has(const SourceFile& file) const {
  const Installed* installed = Find(file.name);
  if (installed == nullptr) return false;
  std::optional<Checksum> actual;
  for (const auto& version : installed->newest) {
    if (!version) continue;
    if (version->size != file.size) return false;
    if (!actual) actual = ChecksumOf(file.path);
    if (*version != *actual) return false;
  }
  return true;
}

std::optional<std::size_t> InstalledFiles::LastCategory(const std::string& name) const {
  const Installed* installed = Find(name);
  if (installed == nullptr) return std::nullopt;
  std::size_t last = installed->newest.size() - 1;
  while (!installed->newest[last]) --last;
  return last;
}

std::string InstalledFiles::InTheWayOf(const std::string& name) const {
  const std::string capitals = base::UpperLatin(name);
  if (folders_.contains(capitals)) return name;
  std::string inTheWay;
  ForEachFolderAbove(capitals, [&](const std::string& folder) {
    if (files_.contains(folder)) inTheWay = name.substr(0, folder.size());
  });
  return inTheWay;
}

std::vector<std::string> InstalledFiles::Names() const {
  std::vector<std::string> names;
  for (const auto& [capitals, file] : files_) names.push_back(file.name);
  return names;
}

}  // namespace publisher
