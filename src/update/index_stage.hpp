#pragma once

#include <functional>
#include <vector>

#include "controls/main_window.hpp"
#include "startup/services.hpp"
#include "update/digest_record.hpp"
#include "update/download.hpp"
#include "update/index_file.hpp"
#include "update/verification.hpp"

namespace update {

// Proves the files below Bin against the published index and fetches what is damaged or missing.
class IndexStage {
 public:
  IndexStage(const startup::Services& services, controls::MainWindow& frmMain, Download& download);

  // Fetches and reads the index. False when anything went wrong on the way; the index then holds what could
  // be read.
  bool Fetch();

  // Deletes the files below Bin that the index does not name. Never in a development copy, never by an index
  // that is empty or was not read whole.
  void RemoveForeignFiles() const;

  // Compares each file with the index and fetches the others into the update folder. Ends early, and records
  // nothing, once `abandoned` says so.
  void VerifyAndFetch(const std::function<bool()>& abandoned);

 private:
  void FetchAgain(std::size_t i);
  void Remember(const std::vector<FileProof>& proofs, DigestRecord& proved);
  bool Wanted(const IndexRecord& record) const;
  void NoteRefusals() const;

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  Download& download_;
  IndexFile index_;
};

}  // namespace update
