#pragma once

#include <cstddef>
#include <map>
#include <string>

#include "publisher/layout.hpp"

namespace publisher {

// Which category's patches bring a file, by its folder. The file .publisher/categories.txt of a publication
// may say otherwise: lines "FOLDER = CATEGORY" or "FILE = CATEGORY", "#" before remarks, the longest name
// decides.
class Categories {
 public:
  explicit Categories(const Layout& layout);  // Failure, with its line, when the file is no good

  // The category's place in update::kCategories, for a path below the game folder.
  std::size_t Of(const std::string& name) const;

 private:
  void Parse(std::string_view text, const std::string& file);

  std::map<std::string, std::size_t> said_;  // by the name in capitals
};

}  // namespace publisher
