#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "startup/folders.hpp"
#include "update/staged_patch.hpp"
#include "update/zip_archive.hpp"

namespace update {

// A small file that comes into the game together with what an archive brings, all or none.
struct AddedFile {
  std::string name;  // below the game folder, "/" between its parts
  std::string content;
};

// An archive expanded beside the game, in a staging folder that goes with this object.
class StagedArchive {
 public:
  // Proves what it expands. `directory` is the game folder or one below it. RuntimeError 321 when the archive
  // is at fault, PatchFailure when the disk is full. May be made on any thread.
  StagedArchive(const std::string& archive, const std::string& directory, const startup::Folders& folders,
                const std::stop_token& stop);

  bool Whole() const { return whole_; }  // no stop was requested before everything was there

  // Moves every file over its old one, so that the game has all of them or none; see StagedPatch::Apply. To
  // be called once, for a whole one. With the file `added`, which records that this is installed, nobody
  // comes back for `archive`, the file that it was expanded from: it goes before the first move.
  void Apply(const std::string& archive, const std::optional<AddedFile>& added);

 private:
  struct Piece {
    std::string name;  // below the game folder
    bool folder = false;
  };

  void Expand(const ZipArchive& zip, const std::stop_token& stop);
  void ExpandOne(const ZipArchive& zip, const ZipArchive::Entry& entry, std::size_t number,
                 Inflater& inflater, const std::stop_token& stop);

  StagedPatch patch_;
  std::vector<Piece> pieces_;
  std::atomic<std::uint64_t> written_ = 0;
  bool whole_ = false;
};

}  // namespace update
