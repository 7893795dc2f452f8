#include "update/index_stage.hpp"

#include <unordered_set>

#include "base/relative_name.hpp"
#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "update/packed_file.hpp"
#include "update/verification.hpp"

namespace update {
namespace {

constexpr const char* kIndexName = "Info.kvn";
constexpr const char* kPackedEnding = ".kvn";
constexpr std::int32_t kLargestIndex = 256 << 20;  // bytes; a game of a million files has a smaller one
constexpr std::size_t kNotedRefusals = 10;
constexpr std::size_t kFilesPerRound = 16;  // between two looks at the player's events

std::string Folded(std::string_view name) { return base::UpperLatin(base::Replaced(name, " ", "")); }

}  // namespace

IndexStage::IndexStage(const startup::Services& services, controls::MainWindow& frmMain, Download& download,
                       modCompression& compression)
    : services_(services), frmMain_(frmMain), download_(download), compression_(compression) {}

bool IndexStage::Fetch() {
  index_ = IndexFile();
  fetched_.clear();
  complaint_.reset();
  const Fetched fetched = download_.DescargarArchivo(
      kIndexName, false, [this](const std::string& packed) { return Take(packed); });
  platform::TryRemoveFile(services_.folders.FetchDir + platform::kSeparator + kIndexName);
  services_.host.events.DoEvents();
  const bool good = fetched.result == DownloadResult::Done;
  if (!good && complaint_ && !services_.lifetime.Ending()) compression_.Tell(*complaint_);
  NoteRefusals();
  return good;
}

// Reads the index; why it cannot be used, empty when it can.
std::string IndexStage::Take(const std::string& packed) {
  const std::string unpacked = packed + ".txt";
  std::string why;
  try {
    if (ClaimedSize(packed) > kLargestIndex) throw base::RuntimeError(base::ErrorNumber::Overflow);
    bool done = false;
    complaint_ = compression_.Expand(packed, unpacked, {.lasting = platform::OutputFile::Lasting::No}, done);
    if (complaint_) why = complaint_->text;
    if (done) startup::RunBlocking(services_, [&](std::stop_token) { index_.Read(unpacked); });
  } catch (...) {
    why = startup::CurrentFailure(0).Opening();
  }
  platform::TryRemoveFile(unpacked);
  return why;
}

void IndexStage::NoteRefusals() const {
  std::size_t count = 0;
  for (const IndexRecord& record : index_.Records()) {
    if (record.refusal.empty()) continue;
    if (++count <= kNotedRefusals)
      services_.recorder.Note("Info.kvn: \"" + record.path + "\": " + record.refusal);
  }
  if (count > kNotedRefusals)
    services_.recorder.Note("Info.kvn: " + std::to_string(count) + " entradas rechazadas en total");
}

void IndexStage::RemoveForeignFiles() const {
  if (!services_.flags.FolderWritable || !index_.ReadWholly() || index_.Records().empty()) return;
  const bool developmentCopy =
      platform::IsFolder(services_.folders.BinDir + platform::NativePath("\\CODIGOS")) ||
      platform::IsFile(services_.folders.BinDir + platform::NativePath("\\Client.vbp"));
  if (developmentCopy) return;
  startup::RunBlocking(services_, [&](std::stop_token stop) {
    std::unordered_set<std::string> named{Folded(kRecordName)};
    for (const IndexRecord& record : index_.Records()) named.insert(Folded(record.inBin));
    for (const platform::FoundFile& file : platform::ListTree(services_.folders.BinDir)) {
      if (stop.stop_requested()) return;
      if (base::Contains(file.path, "$")) continue;
      if (named.contains(Folded(base::WithSlashes(file.path)))) continue;
      platform::TryRemoveFile(services_.folders.BinDir + platform::kSeparator + file.path);
    }
  });
}

bool IndexStage::Wanted(const IndexRecord& record) const {
  return record.refusal.empty() && record.HasDigest() &&
         (services_.flags.StaffClient || !base::Contains(record.path, "KVNG"));
}

bool IndexStage::VerifyAndFetch(const std::function<bool()>& abandoned) {
  DigestRecord proved(RecordFile(services_.folders));
  proved.Load();
  const std::vector<IndexRecord>& records = index_.Records();
  std::vector<std::string_view> names(records.size());
  for (std::size_t i = 0; i < records.size(); ++i) {
    if (Wanted(records[i])) names[i] = records[i].inBin;
  }
  std::vector<FileProof> proofs(records.size());
  const auto ended = [&] { return services_.lifetime.Ending() || abandoned(); };
  const bool writable = services_.flags.FolderWritable;
  bool left = false;
  {
    Verification verification(services_.folders.BinDir, std::move(names), proved, services_.host.events,
                              services_.lifetime);
    for (std::size_t i = 0; i < records.size() && !ended(); ++i) {
      proofs[i] = verification.Take(i);
      frmMain_.lblEstado.Caption = "Archivos verificados: " + std::to_string(i + 1);
      if (i % kFilesPerRound == 0) services_.host.events.DoEvents();
      if (!Wanted(records[i]) || proofs[i].Has(records[i].digest) || ended()) continue;
      if (writable) {
        FetchAgain(i);
      } else {
        left = true;
      }
    }
  }
  if (writable && !ended()) Remember(proofs, proved);
  return left;
}

void IndexStage::FetchAgain(std::size_t i) {
  const IndexRecord& record = index_.Records()[i];
  const auto number = static_cast<std::int32_t>(i + 1),
             count = static_cast<std::int32_t>(index_.Records().size());
  if (download_.DownloadClient(number, count, record))
    fetched_[Folded(record.inBin + kPackedEnding)] = record.digest;
}

std::optional<std::string> IndexStage::DigestOf(const std::string& packed) const {
  const auto found = fetched_.find(Folded(base::WithSlashes(packed)));
  return found == fetched_.end() ? std::nullopt : std::optional(found->second);
}

void IndexStage::Remember(const std::vector<FileProof>& proofs, DigestRecord& proved) {
  for (std::size_t i = 0; i < proofs.size(); ++i) {
    const IndexRecord& record = index_.Records()[i];
    if (!Wanted(record)) continue;
    if (proofs[i].stamp && proofs[i].Has(record.digest)) {
      proved.Remember(record.inBin, *proofs[i].stamp, *proofs[i].digest);
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
