#pragma once

#include <optional>
#include <string>

#include "startup/services.hpp"
#include "update/archive_preparation.hpp"
#include "update/staged_archive.hpp"

namespace update {

// What the player reads of an archive that could not be unpacked.
inline constexpr const char* kUnzipFailed =
    "Error al Unzipear, pruebe que el archivo sea un original .ZIP y no .RAR";

// How the unpacking of an archive ended.
struct Unpacked {
  bool done = false;
  std::string reason{};     // one plain line (Spanish); empty when it is done, or when the program ends
  bool ownFailure = false;  // not the archive is at fault but this machine (a full disk, a file in use)
  bool noRoom = false;      // the disk is full
};

// Unpacks whole archives over a folder of the game.
class smodUnzip {
 public:
  explicit smodUnzip(const startup::Services& services) : services_(services) {}

  struct Options {
    ArchivePreparation* prepared = nullptr;  // of the same archive; used up
    std::optional<AddedFile> added{};        // applied with it; the archive's file goes then
  };

  // Expands the archive into a staging folder while proving it, and then moves every file over its old one,
  // so that the game has all of them or none (see patch_journal.hpp). `directory` is the game folder or one
  // below it. The reason is the caller's to tell. Events are handled meanwhile; no other launcher may apply a
  // patch in this game folder.
  Unpacked Unzip(const std::string& archive, const std::string& directory, const Options& options);
  Unpacked Unzip(const std::string& archive, const std::string& directory) {
    return Unzip(archive, directory, {});
  }

 private:
  const startup::Services& services_;
};

}  // namespace update
