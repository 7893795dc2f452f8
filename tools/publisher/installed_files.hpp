#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "publisher/checksum.hpp"
#include "publisher/layout.hpp"
#include "publisher/source_files.hpp"
#include "update/counter_store.hpp"

namespace publisher {

// What the numbered patches of a publication put into a game folder, read from their directories. Names are
// compared as Windows does.
class InstalledFiles {
 public:
  // Failure when the list or an archive that it names is no good.
  explicit InstalledFiles(const Layout& layout);

  // Whether every player who has all patches has exactly this file: a new player, who gets the categories one
  // after the other, and an old one, who got each patch when it was new.
  bool Has(const SourceFile& file) const;
  bool Knows(const std::string& name) const;

  // The last category that brings a file of this name, by its place in update::kCategories; none when no
  // patch does. Only a patch of this or a later category replaces it for new players too.
  std::optional<std::size_t> LastCategory(const std::string& name) const;

  // A name that cannot become a file or a folder because the patches made it the other; empty when all is
  // well.
  std::string InTheWayOf(const std::string& name) const;

  std::vector<std::string> Names() const;  // as the newest archive spells them

 private:
  struct Installed {
    std::string name;
    std::array<std::optional<Checksum>, update::kCategories.size()> newest;  // by category
  };

  void TakeIn(const std::string& archive, std::size_t category);
  const Installed* Find(const std::string& name) const;

  std::map<std::string, Installed> files_;  // by the name in capitals
  std::set<std::string> folders_;           // in capitals
};

}  // namespace publisher
