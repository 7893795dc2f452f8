#include "update/index_stage.hpp"

#include <algorithm>
#include <functional>
#include <stop_token>
#include <utility>
#include <vector>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "update/packed_file.hpp"
#include "update/verification.hpp"
#include "util/parallel.hpp"

namespace update {
namespace {

constexpr const char* kIndexName = "Info.kvn";
constexpr const char* kPackedEnding = ".kvn";
constexpr std::int32_t kLargestIndex = 64 << 20;  // bytes; a game of half a million files has a smaller one
constexpr std::size_t kFilesPerRound = 16;        // between two looks at the player's events
constexpr std::size_t kMostDamaged = 16;          // of whose fetching is begun ahead
constexpr int kMostMisses = 32;                   // in a row; an index may name whatever it likes
constexpr std::size_t kFilesAtOnce = 512;         // judged by one thread

// A link may lead to a folder that holds more than the game.
bool IsFolderItself(const std::string& path) {
  const std::vector<platform::FolderEntry> entries = platform::ListFolder(platform::FolderOf(path));
  return std::none_of(entries.begin(), entries.end(),
                      [name = platform::FileNameOf(path)](const platform::FolderEntry& entry) {
                        return base::EqualIgnoringCase(entry.name, name) && !entry.folder;
                      });
}

std::string Folded(std::string_view name) { return base::UpperLatin(base::Replaced(name, " ", "")); }

// The names of an index as Folded has them, found by their hashes so that none is kept.
class FoldedNames {
 public:
  explicit FoldedNames(const IndexFile& index) : index_(index) {
    hashes_.reserve(index.Count());
    for (std::size_t i = 0; i < index.Count(); ++i)
      hashes_.emplace_back(std::hash<std::string>()(Folded(index[i].inBin)), i);
    std::sort(hashes_.begin(), hashes_.end());
  }

  bool Contain(const std::string& folded) const {
    const std::size_t hash = std::hash<std::string>()(folded);
    for (auto at = std::lower_bound(hashes_.begin(), hashes_.end(), std::pair{hash, std::size_t{0}});
         at != hashes_.end() && at->first == hash; ++at) {
      if (Folded(index_[at->second].inBin) == folded) return true;
    }
    return false;
  }

 private:
  const IndexFile& index_;
  std::vector<std::pair<std::size_t, std::size_t>> hashes_;  // with the record that has it
};

}  // namespace

IndexStage::IndexStage(const startup::Services& services, controls::MainWindow& frmMain, Download& download,
                       Trust& trust, modCompression& compression)
    : services_(services), frmMain_(frmMain), download_(download), trust_(trust), compression_(compression) {}

bool IndexStage::Fetch() {
  index_ = IndexFile();
  fetched_.clear();
  if (services_.flags.FolderWritable) inBin_ = std::make_unique<TreeListing>(services_.folders.BinDir);
  modCompression::Outcome taken;
  const Fetched fetched = download_.DescargarArchivo(
      kIndexName, false, {.judge = [&](const std::string& packed) { return Take(packed, taken); }});
  platform::TryRemoveFile(services_.folders.FetchDir + platform::kSeparator + kIndexName);
  services_.host.events.DoEvents();
  const bool good = fetched.result == DownloadResult::Done;
  if (!good && taken.complaint && !services_.lifetime.Ending()) compression_.Tell(kIndexName, taken);
  NoteRefusals();
  return good;
}

// Reads the index; why it cannot be used, empty when it can.
std::string IndexStage::Take(const std::string& packed, modCompression::Outcome& taken) {
  const std::string unpacked = packed + ".txt";
  std::string why;
  try {
    if (ClaimedSize(packed) > kLargestIndex) throw base::RuntimeError(base::ErrorNumber::Overflow);
    startup::RunBlocking(services_, [&](std::stop_token stop) {
      taken = modCompression::Expand(packed, unpacked, {.lasting = platform::OutputFile::Lasting::No}, stop);
      if (taken.done) index_.Read(unpacked);
    });
    if (taken.complaint) why = taken.complaint->text;
  } catch (...) {
    why = startup::CurrentFailure(0).Opening();
  }
  platform::TryRemoveFile(unpacked);
  return why;
}

void IndexStage::NoteRefusals() const {
  for (const IndexFile::Refusal& refusal : index_.Refusals())
    services_.recorder.Note("Info.kvn: \"" + refusal.path + "\": " + refusal.why);
  if (index_.RefusedCount() > index_.Refusals().size())
    services_.recorder.Note("Info.kvn: " + std::to_string(index_.RefusedCount()) +
                            " entradas rechazadas en total");
}

void IndexStage::RemoveForeignFiles() {
  const std::unique_ptr<TreeListing> inBin = std::move(inBin_);
  const bool namesAny = index_.Count() > index_.RefusedCount();
  if (!inBin || !index_.ReadWholly() || !namesAny) return;
  if (!IsFolderItself(services_.folders.BinDir)) return;
  const bool developmentCopy =
      platform::IsFolder(services_.folders.BinDir + platform::NativePath("\\CODIGOS")) ||
      platform::IsFile(services_.folders.BinDir + platform::NativePath("\\Client.vbp"));
  if (developmentCopy) return;
  startup::RunBlocking(services_, [&](std::stop_token stop) {
    const FoldedNames named(index_);
    const std::vector<platform::FoundFile> found = inBin->Take(stop);
    const std::string record = Folded(kRecordName);
    const std::size_t pieces = (found.size() + kFilesAtOnce - 1) / kFilesAtOnce;
    util::ForEachParallel(pieces, [&](std::size_t piece) {
      const std::size_t end = std::min(found.size(), (piece + 1) * kFilesAtOnce);
      for (std::size_t i = piece * kFilesAtOnce; i < end && !stop.stop_requested(); ++i) {
        const std::string& path = found[i].path;
        if (base::Contains(path, "$")) continue;
        const std::string folded = Folded(base::WithSlashes(path));
        if (folded == record || named.Contain(folded)) continue;
        platform::TryRemoveFile(services_.folders.BinDir + platform::kSeparator + path);
      }
    });
  });
}

bool IndexStage::Wanted(const IndexRecord& record) const {
  return !record.inBin.empty() && record.hasDigest &&
         (services_.flags.StaffClient || !base::Contains(record.inBin, "KVNG"));
}

bool IndexStage::VerifyAndFetch(const std::function<bool()>& abandoned) {
  DigestRecord proved(RecordFile(services_.folders), trust_.RecordSeal());
  proved.Load();
  const auto nameOf = [this](std::size_t i) {
    const IndexRecord record = index_[i];
    return Wanted(record) ? record.inBin : std::string_view{};
  };
  const auto ended = [&] { return services_.lifetime.Ending() || abandoned(); };
  const bool writable = services_.flags.FolderWritable;
  bool left = false;
  Progress progress;
  startup::FailureList failures(services_.recorder);  // a folder in a bad way has one thing to say
  Verification verification(services_.folders.BinDir, index_.Count(), nameOf, proved, services_.host.events,
                            services_.lifetime);
  for (std::size_t i = 0; i < index_.Count() && !ended(); ++i) {
    const FileProof proof = verification.Take(i);
    frmMain_.lblEstado.Caption = "Archivos verificados: " + std::to_string(i + 1);
    if (i % kFilesPerRound == 0 || i + 1 == index_.Count()) services_.host.events.DoEvents();
    const IndexRecord record = index_[i];
    if (!Wanted(record) || proof.Has(record.digest) || ended()) continue;
    if (!writable) {
      left = true;
    } else if (progress.misses < kMostMisses) {
      FetchAgain(i, {failures, [&, i] { FetchBehind(i, verification, progress); }}, progress);
    }
  }
  if (writable && !ended()) Remember(verification, proved);
  return left;
}

// Has those fetched that will be needed behind this file, as far as the proofs have come.
void IndexStage::FetchBehind(std::size_t i, Verification& verification, Progress& progress) {
  auto& [damaged, seen, misses] = progress;
  while (!damaged.empty() && damaged.front() <= i) damaged.pop_front();
  bool more = false;
  for (seen = std::max(seen, i + 1); seen < index_.Count() && damaged.size() < kMostDamaged; ++seen) {
    const auto proof = verification.Peek(seen);
    if (!proof) break;
    const IndexRecord record = index_[seen];
    if (!Wanted(record) || proof->Has(record.digest)) continue;
    damaged.push_back(seen);
    more = true;
  }
  if (!more) return;
  std::vector<IndexRecord> next;
  for (const std::size_t at : damaged) next.push_back(index_[at]);
  download_.FetchPacked(next);
}

void IndexStage::FetchAgain(std::size_t i, const Download::PackedWork& work, Progress& progress) {
  const IndexRecord record = index_[i];
  const auto number = static_cast<std::int32_t>(i + 1), count = static_cast<std::int32_t>(index_.Count());
  if (download_.DownloadClient(number, count, record, work)) {
    fetched_[Folded(std::string(record.inBin) + kPackedEnding)] = record.digest.Hex();
    progress.misses = 0;
  } else if (++progress.misses == kMostMisses) {
    services_.recorder.Note("Info.kvn: " + std::to_string(progress.misses) +
                            " archivos seguidos que ningún servidor da; los demás quedan para otra vez");
  }
}

std::optional<std::string> IndexStage::DigestOf(const std::string& packed) const {
  const auto found = fetched_.find(Folded(base::WithSlashes(packed)));
  return found == fetched_.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::string> IndexStage::PublishedDigest(std::string_view inBin) const {
  for (std::size_t i = 0; i < index_.Count(); ++i) {
    const IndexRecord record = index_[i];
    if (!record.inBin.empty() && record.hasDigest && Folded(record.inBin) == Folded(inBin))
      return record.digest.Hex();
  }
  return std::nullopt;
}

void IndexStage::Remember(Verification& verification, DigestRecord& proved) {
  proved.Expect(index_.Count());
  for (std::size_t i = 0; i < index_.Count(); ++i) {
    const IndexRecord record = index_[i];
    if (!Wanted(record)) continue;
    const FileProof proof = verification.Take(i);
    if (proof.stamp && proof.Has(record.digest)) {
      proved.Remember(record.inBin, *proof.stamp, record.digest);
    } else {
      proved.Forget(record.inBin);
    }
  }
  try {
    proved.Save([this](const std::string& text) { services_.recorder.LogError(text); });
  } catch (const base::RuntimeError& error) {  // costs the next start time, nothing else
    services_.recorder.Note(std::string(kRecordName) + ": " + error.Description());
  }
}

}  // namespace update
