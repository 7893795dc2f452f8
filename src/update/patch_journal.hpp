#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "startup/folders.hpp"
#include "startup/services.hpp"

namespace update {

// A patch on its way into the game lies in a staging folder of its own: each new file under a number, later
// each old file that it replaces beside it, and a journal of the moves that is on the disk before the first
// of them and removed after the last. While there is a journal the patch can be taken back, and it is.

// What a patch puts into the game. Names are relative to the game folder, "/" between their parts.
struct PatchMoves {
  std::vector<std::string> folders;  // that were missing, those above before those below
  std::vector<std::string> files;    // the first is number 0 in the staging folder
};

// Where the staging folders lie, on the volume of the game. Several threads may have theirs in it.
std::string StagingRoot(const startup::Folders& folders);
std::string NewFileOf(const std::string& staging, std::size_t number);
std::string OldFileOf(const std::string& staging, std::size_t number);
std::string InGame(const std::string& game, const std::string& name);  // full path

void WriteJournal(const std::string& staging, const PatchMoves& moves);
std::optional<PatchMoves> ReadJournal(const std::string& staging);  // nothing unless it is there and whole
void RemoveJournal(const std::string& staging);

// Puts back what was moved, as far as it had come, and removes the journal. Tries every file and raises what
// went wrong with the first one that could not be put back; the journal then stays.
void UndoMoves(const std::string& staging, const std::string& game, const PatchMoves& moves);

// Takes back a patch that was left half applied; to be called while no launcher applies one in this game
// folder. The reason (Spanish, names the file) why the game could not be put back as it was before the patch;
// empty when nothing is half applied.
std::string UndoInterruptedPatch(const startup::Services& services);

// The same at the beginning of a run, when the staging folders that are there are those of a launcher that
// was killed: they go.
std::string RecoverInterruptedPatch(const startup::Services& services);

}  // namespace update
