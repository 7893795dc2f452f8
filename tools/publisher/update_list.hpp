#pragma once

#include <string>
#include <string_view>

#include "publisher/layout.hpp"

namespace publisher {

inline constexpr int kHighestPatch = 32767;  // launchers count in 16 bits

// The update list when nothing has been published.
std::string EmptyUpdateList();

// The number of a category's newest patch; Failure when the list or its number is no good.
int NewestPatch(const Layout& layout, const std::string& category);

// Writes it, leaving everything else in the list as it is; Failure when it could not be written.
void SetNewestPatch(const Layout& layout, const std::string& category, int number);

}  // namespace publisher
