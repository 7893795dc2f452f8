#pragma once

#include <string>
#include <vector>

#include "publisher/console.hpp"
#include "publisher/layout.hpp"
#include "publisher/zip_writer.hpp"

namespace publisher {

// The counters of a game folder in which so many patches of each category are installed.
std::vector<TextFile> CountersOf(const std::vector<int>& counts);

// Packs a game with these counters as the full client `target`.
void WriteClient(const std::vector<SourceFile>& game, const std::vector<TextFile>& counters,
                 const std::string& target, Console& console);

// Whether an archive holds exactly these files, by their names, sizes and checksums.
bool HoldsExactly(const std::string& archive, const std::vector<SourceFile>& game,
                  const std::vector<TextFile>& counters);

// What keeps a player who unpacks the archive from downloading nothing, in one sentence; empty when nothing
// does. Failure when it is no good archive.
std::string WhyNotCurrent(const std::string& archive, const std::vector<TextFile>& counters);

}  // namespace publisher
