#pragma once

#include <string>
#include <string_view>

namespace update {

// A category's counter: its file in RECURSOS/INIT, and what stands in it when `number` patches are installed.
std::string CounterFileName(const std::string& category);
std::string CounterPath(const std::string& category);  // below the game folder, "/" between its parts
std::string CounterText(int number);

// Whether a path below the game folder (any separators, any case) is the launcher's own state, which no
// publication may bring: counters, the record of digests, the folders of updates under way, and what marks a
// developer's copy.
bool IsLauncherState(std::string_view name);

}  // namespace update
