#pragma once

#include <map>
#include <string>

#include "publisher/layout.hpp"
#include "update/index_file.hpp"

namespace publisher {

// The records of a packed index; Failure when it is not one whole packed file or holds no whole index.
update::IndexFile ReadIndex(const std::string& packed);

// The digest of each published file of Bin by its name below Bin ("" where the index has none); nothing when
// no index is published.
std::map<std::string, std::string> PublishedDigests(const Layout& layout);

}  // namespace publisher
