#pragma once

#include <map>
#include <string>
#include <vector>

#include "publisher/changes.hpp"
#include "publisher/console.hpp"
#include "publisher/layout.hpp"
#include "publisher/source_files.hpp"

namespace publisher {

// The game's Bin beside what is published of it: what has to be packed, and what launchers will see change.
class GameFiles {
 public:
  // `bin`: the folder Bin of a game, `files`: all of it, named from there. Reads each of them, and of what is
  // published every packed file that is to stay. Failure when one of them cannot be published so.
  GameFiles(const Layout& layout, std::string bin, std::vector<SourceFile> files, Console& console);

  const std::vector<SourceFile>& Files() const { return files_; }
  const Changes& ForPlayers() const { return changes_; }
  // As published, or to be mended there: there is something to do.
  bool Stale() const { return changes_.Any() || toPack_ != 0; }
  std::size_t ToPack() const { return toPack_; }

  // Why an operator hardly means this, in one sentence; empty when it looks right.
  std::string WhyDoubtful() const;

  // Writes the index and every packed file into another publication, the packed ones that stay as second
  // names of the bytes in this one.
  void WriteInto(const Layout& target, Console& console) const;

 private:
  void Compare(Console& console);
  bool Holds(std::string_view name) const;

  const Layout& layout_;
  const std::string bin_;
  std::vector<SourceFile> files_;
  std::map<std::string, std::string> published_;  // digests
  std::vector<std::string> digests_;              // of files_, empty for an empty file
  std::vector<char> stays_;                       // which of files_ are published well already
  std::size_t toPack_ = 0;
  Changes changes_;
};

}  // namespace publisher
