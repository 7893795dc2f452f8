#pragma once

#include <string>
#include <utility>
#include <vector>

#include "publisher/changes.hpp"
#include "publisher/game_files.hpp"
#include "publisher/installed_files.hpp"

namespace publisher {

struct PlannedPatch {
  std::string category;
  int number = 0;
  std::vector<SourceFile> files;  // named from the game folder
};

// A game folder beside what a publication already installs: which patches and which files of Bin make players
// have this game.
class ReleasePlan {
 public:
  // Failure when the game or the publication is no good, or when a file could not be installed because it is
  // a folder for players who have the older game, or the other way about.
  ReleasePlan(const Layout& layout, const std::string& gameFolder, Console& console);

  const std::vector<SourceFile>& Game() const { return game_; }
  const GameFiles& Bin() const { return bin_; }
  const std::vector<PlannedPatch>& Patches() const { return patches_; }
  std::vector<int> CountsAfter() const { return counts_; }  // of the update list, by category

  // Outside Bin; what was removed stays with the players who have it, since no patch takes a file away.
  const Changes& Outside() const { return outside_; }
  std::string WhyDoubtful() const { return bin_.WhyDoubtful(); }

 private:
  ReleasePlan(const Layout& layout, const std::string& gameFolder, std::vector<SourceFile> game,
              Console& console);
  void Compare(const Layout& layout);
  void PlanPatches(const Layout& layout, const std::vector<std::vector<SourceFile>>& byCategory);
  void WarnOfOddFiles(Console& console) const;

  std::vector<SourceFile> game_;
  GameFiles bin_;
  std::vector<PlannedPatch> patches_;
  std::vector<int> counts_;
  Changes outside_;
};

}  // namespace publisher
