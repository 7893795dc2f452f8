#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "publisher/layout.hpp"
#include "publisher/publication_record.hpp"

namespace publisher {

inline constexpr int kHighestPatch = 32767;  // launchers count in 16 bits

// The update list when nothing has been published.
std::string EmptyUpdateList();

// The number of each category's newest patch in the text of a list, as launchers read it, to whom every blank
// is a line end; Failure, without the list's name, when one of them is no good.
std::vector<int> PatchCountsIn(const std::string& list);

// The same of a publication's list.
std::vector<int> NewestPatches(const Layout& layout);
int NewestPatch(const Layout& layout, const std::string& category);

// The number that the category's next patch gets. Failure when there is none left, and when the list went
// back behind what was published: a number must not be used twice.
int NextPatch(const Layout& layout, const PublicationRecord& record, const std::string& category);

// Failure when launchers could not count so far.
void RequireCountable(const Layout& layout, const std::string& category, int number);

// Writes it, leaving everything else in the list as it is; Failure when it could not be written.
void SetNewestPatch(const Layout& layout, const std::string& category, int number);

}  // namespace publisher
