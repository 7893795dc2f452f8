#pragma once

#include <cstddef>
#include <string>
#include <unordered_set>

#include "update/patch_journal.hpp"

namespace update {

// One patch in a staging folder of its own, which goes with this object. Files are announced, then written,
// then moved into the game all or none.
class StagedPatch {
 public:
  // `root`: where staging folders lie, on the volume of the game; made when it is missing. It stays, since
  // others may be making theirs in it.
  StagedPatch(const std::string& root, const std::string& game);
  ~StagedPatch();
  StagedPatch(const StagedPatch&) = delete;

  const std::string& Folder() const { return folder_; }

  // Announce what the patch brings, by names below the game folder with "/" between their parts. PatchFailure
  // when it does not fit there: a file cannot take a folder's place, nor a folder a file's.
  void AddFolder(const std::string& name);
  void AddFile(const std::string& name);

  // Moves the announced files, which were written under NewFileOf(Folder(), 0) and so on, to their places
  // once they and the journal are on the disk. PatchFailure when one cannot be moved; the game is then as it
  // was, or will be after RecoverInterruptedPatch.
  void Apply();

 private:
  void MoveAll();

  const std::string game_, folder_;
  PatchMoves moves_;
  std::unordered_set<std::string> looked_;  // at these folders
  bool halfApplied_ = false;
};

}  // namespace update
