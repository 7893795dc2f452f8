#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "controls/main_window.hpp"
#include "platform/files.hpp"
#include "startup/services.hpp"
#include "update/digest_record.hpp"
#include "update/download.hpp"
#include "update/index_file.hpp"
#include "update/modCompression.hpp"
#include "update/tree_listing.hpp"
#include "update/trust.hpp"
#include "update/verification.hpp"

namespace update {

// Proves the files below Bin against the published index and fetches what is damaged or missing.
class IndexStage {
 public:
  IndexStage(const startup::Services& services, controls::MainWindow& frmMain, Download& download,
             Trust& trust, modCompression& compression);

  // Fetches and reads the index. False when anything went wrong on the way; the index then holds what could
  // be read.
  bool Fetch();

  // Deletes the files below Bin that the index does not name. Never in a development copy or where Bin is a
  // link, never by an index that names no file for certain or was not read whole.
  void RemoveForeignFiles();

  // Compares each file with the index and fetches the others into the update folder. Ends early, and records
  // nothing, once `abandoned` says so. True when something is left as it was, since nothing can be written.
  bool VerifyAndFetch(const std::function<bool()>& abandoned);

  // The digest that the content of a packed file must have, by its path below the update folder; none for a
  // file that this run did not fetch.
  std::optional<std::string> DigestOf(const std::string& packed) const;

  // The digest that the index names for a file of Bin, in any case; none when it names none.
  std::optional<std::string> PublishedDigest(std::string_view inBin) const;

 private:
  // How far the files of one verification have been fetched again.
  struct Progress {
    std::deque<std::size_t> damaged;  // records that are known to need their file; behind the present one
    std::size_t seen = 0;             // records that have been looked at for them
    int misses = 0;                   // files that no mirror gave, one after the other
  };

  std::string Take(const std::string& packed, modCompression::Outcome& taken);
  void FetchBehind(std::size_t i, Verification& verification, Progress& progress);
  void FetchAgain(std::size_t i, const Download::PackedWork& work, Progress& progress);
  void Remember(Verification& verification, DigestRecord& proved);
  bool Wanted(const IndexRecord& record) const;
  void NoteRefusals() const;

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  Download& download_;
  Trust& trust_;
  modCompression& compression_;
  IndexFile index_;
  std::unique_ptr<TreeListing> inBin_;                    // of the index that is on its way, or was read last
  std::unordered_map<std::string, std::string> fetched_;  // folded packed name to digest
};

}  // namespace update
