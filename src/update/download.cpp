#include "update/download.hpp"

#include "base/runtime_error.hpp"
#include "base/text.hpp"
#include "base/url.hpp"
#include "platform/files.hpp"
#include "startup/blocking.hpp"
#include "startup/procedure.hpp"
#include "update/packed_file.hpp"
#include "update/patch_failure.hpp"
#include "update/patch_journal.hpp"
#include "util/clsHashing.hpp"

namespace update {
namespace {

constexpr std::uint32_t kWatchdogMs = 10'000;
constexpr std::uint32_t kRoundMs = 10;   // a wait loop's pause, so that it costs no processor
constexpr const char* kParts = "parts";  // below the scratch folder
// With the one of the present file a mirror has four connections to serve.
constexpr web::FetchAhead::Limits kPackedAhead{.files = 12, .connections = 3};
constexpr int kMostTimeouts = 5;
constexpr int kMostSilentRetries = 3;
constexpr const char* kTimeOutQuestion = "Error, tiempo de espera agotado. ¿Deseas reintentar la descarga?";
constexpr const char* kOtherContent = "su contenido no es el que nombra el índice";
constexpr const char* kNotSigned = "no está en la publicación firmada";

std::string PackedName(const IndexRecord& record) { return "Bin/" + std::string(record.inBin) + ".kvn"; }

Attempt::Kind KindOf(const web::TransferReport& report) {
  if (report.own) return Attempt::Kind::OwnFailure;
  return report.otherContent ? Attempt::Kind::BadContent : Attempt::Kind::NotArrived;
}

}  // namespace

void Download::Pause() {
  with_.services.host.clock.Sleep(kRoundMs);
  with_.services.host.events.DoEvents();
}

bool Download::TimedOut() const {
  return platform::Elapsed(with_.services.host.clock.SystemUptime(), with_.state.WatchdogStart) > kWatchdogMs;
}

void Download::RemoveTarget() { platform::TryRemoveFile(with_.state.TargetPath); }

// Logged when nobody vouches for the file, which is then not asked for.
std::optional<web::Expected> Download::ExpectedOf(const std::string& name) const {
  auto expected = with_.trust.ExpectedOf(name);
  if (!expected) with_.services.recorder.Note(name + ": " + kNotSigned);
  return expected;
}

// That several mirrors give the same wrong file says nothing about the next one, so each counts for itself.
Attempt Download::NotGood(const web::TransferReport& report, const std::string& url) {
  const bool page = report.Arrived();
  if ((page || report.otherContent) && with_.trust.PublishedSince()) return {Attempt::Kind::Outdated};
  return {.kind = KindOf(report),
          .reason = report.Reason(),
          .details = report.Details(),
          .cut = report.outcome.error == platform::HttpError::CutShort,
          .digest = url,
          .otherFile = report.otherContent,
          .noRoom = report.own && report.own->Is(base::ErrorNumber::DiskFull)};
}

// From the mirror that is chosen now; nothing when nobody vouches for the file.
std::optional<web::FileRequest> Download::PackedRequest(const IndexRecord& record) const {
  const auto expected = with_.trust.ExpectedOf(remoteFolder + PackedName(record));
  if (!expected) return std::nullopt;
  return web::FileRequest{
      .url = UrlOf("Bin/" + base::UrlPath(record.inBin) + ".kvn"),
      .path = {},
      .expected = *expected,
      .proof = [md5 = record.digest.Hex()](const std::string& file, const std::stop_token& stop) {
        return PackedFileHolds(file, md5, stop);
      }};
}

void Download::FetchPacked(const std::vector<IndexRecord>& records) {
  std::vector<web::FileRequest> next;
  for (const IndexRecord& record : records) {
    if (auto request = PackedRequest(record)) next.push_back(std::move(*request));
  }
  with_.transfers.FetchNext(std::move(next), kPackedAhead);
}

// A page in the place of a file is no file; one that came whole is worth nothing unless it is what the index
// names.
Attempt Download::AttemptPacked(const web::FileRequest& request, const std::function<void()>& meanwhile) {
  const std::string &local = request.path, &url = request.url;
  if (platform::IsFile(local)) platform::RemoveFile(local);
  const web::TransferReport report = with_.transfers.DownloadUrlToFile(request, meanwhile);
  if (report.Good() && !report.disproved) return {};
  Attempt attempt = report.Good() ? BadContent(local, kOtherContent) : NotGood(report, url);
  platform::TryRemoveFile(local);
  return attempt;
}

Attempt Download::BadContent(const std::string& file, const std::string& why) {
  Attempt bad{Attempt::Kind::BadContent, why, why};
  startup::RunBlocking(with_.services,
                       [&](std::stop_token stop) { bad.digest = util::clsHashing().MD5File(file, stop); });
  return bad;
}

bool Download::DownloadClient(std::int32_t index, std::int32_t count, const IndexRecord& record,
                              const PackedWork& work) {
  web::DownloadState& state = with_.state;
  controls::MainWindow& frmMain = with_.frmMain;
  MirrorRound::End end = MirrorRound::End::Failed;
  startup::Guarded(
      work.failures,
      [&](int& line) {
        line = 10;
        frmMain.lblEstado.Caption = "Actualizando, aguarde un momento...";
        line = 20;
        state.TargetPath = with_.services.folders.ResourcesUpdateDir + platform::kSeparator +
                           platform::NativePath(record.inBin);
        const std::string local = state.TargetPath + ".kvn";
        platform::MakeFolders(platform::FolderOf(local));
        line = 40;
        if (!ExpectedOf(remoteFolder + PackedName(record))) return;
        const std::string place = std::to_string(index) + "/" + std::to_string(count);
        end = with_.mirrors
                  .Fetch(record.Path(),
                         [&] {
                           frmMain.lblEstado.Caption =
                               "Progreso de actualización: " + place;  // while the file is on its way
                           web::FileRequest request = PackedRequest(record).value();
                           request.path = local;
                           return WithRoom([&] { return AttemptPacked(request, work.meanwhile); });
                         })
                  .end;
        line = 50;
        frmMain.lblName.Caption = "Descargando actualizaciones: " + place + " - " +
                                  std::string(base::Field(record.Path(), 3, '\\'));
        frmMain.lblDirectorio.Caption = state.TargetPath;
        state.Finished = false;
      },
      [&](const startup::Failure& failure) {
        return failure.Opening() + " in procedure DownloadClient of Formulario frmMain";
      });
  return end == MirrorRound::End::Good;
}

Fetched Download::DescargarArchivo(const std::string& name, bool unpack, const FileUse& use) {
  int line = 0;
  try {
    return FetchArchive(name, unpack, use, line);
  } catch (const base::RuntimeError& error) {
    const startup::Failure failure = startup::CurrentFailure(line);
    with_.services.recorder.LogError(
        failure.Opening() +
        " en el procedimiento DescargarArchivo del módulo Formulario frmMain en la línea: " + failure.Line() +
        " Nombre: " + name + " U: " + UrlOf(name));
    return {DownloadResult::Stopped, ReasonOf(error)};
  }
}

// What lies ready for later may be what leaves the present file no room.
Attempt Download::WithRoom(const std::function<Attempt()>& attempt) {
  Attempt first = attempt();
  if (!first.noRoom || !with_.transfers.Next()) return first;
  ForgetFollowing();
  return attempt();
}

std::string Download::UrlOf(const std::string& name) const {
  return with_.hosts.CurrentUpdateURL + remoteFolder + name;
}

web::FileRequest Download::RequestFor(const std::string& name, const web::Expected& expected) const {
  web::FileRequest request{.url = UrlOf(name), .path = {}, .expected = expected};
  request.part =
      with_.services.folders.Scratch(kParts) + platform::kSeparator + base::Replaced(name, "/", "");
  return request;
}

void Download::FetchFollowing() {
  std::vector<web::FileRequest> next;
  for (const std::string& name : following) {
    const auto expected = with_.trust.ExpectedOf(remoteFolder + name);
    if (!expected) break;
    next.push_back(RequestFor(name, *expected));
  }
  with_.transfers.FetchNext(std::move(next), {});
  if (const auto first = with_.transfers.Next())
    prepared_ = std::make_unique<ArchivePreparation>(first, with_.services.folders);
}

void Download::ForgetFollowing() {
  following.clear();
  prepared_.reset();
  platform::TryRemoveEmptyFolder(StagingRoot(with_.services.folders));
  with_.transfers.ForgetNext();
}

void Download::ForgetInterrupted() { platform::RemoveTree(with_.services.folders.Scratch(kParts)); }

void Download::BeginWhole(const std::vector<std::string>& archives) {
  web::WholeUpdate whole{.number = archives.empty() ? 0 : 1,
                         .count = static_cast<int>(archives.size()),
                         .startedAt = with_.services.host.clock.Milliseconds()};
  bool known = true;
  for (const std::string& name : archives) {
    const auto expected = with_.trust.ExpectedOf(remoteFolder + name);
    known = known && expected && expected->size;
    if (known) whole.total += *expected->size;
  }
  if (!known) whole.total = 0;
  with_.transfers.whole = whole;
}

void Download::EndWhole() {
  with_.transfers.whole = {};
  with_.frmMain.ProgressBar1.Whole = -1;
}

void Download::CountOne(const web::TransferReport& report) {
  web::WholeUpdate& whole = with_.transfers.whole;
  if (whole.number == 0) return;
  whole.bytes += report.bytes;
  if (whole.number++ == whole.count) whole.number = 0;
}

Fetched Download::FetchArchive(const std::string& name, bool unpack, const FileUse& use, int& line) {
  web::DownloadState& state = with_.state;
  line = 10;
  state.TargetPath = with_.services.folders.FetchDir + platform::kSeparator + base::Replaced(name, "/", "");
  const auto expected = ExpectedOf(remoteFolder + name);
  if (!expected) return {DownloadResult::Stopped, kNotSigned};
  const MirrorRound::Result result = with_.mirrors.Fetch(
      name, [&] { return WithRoom([&] { return AttemptArchive(name, *expected, unpack, use, line); }); });
  if (result.end == MirrorRound::End::Good) return {DownloadResult::Done};
  line = 50;
  if (state.CancelRequested || with_.services.lifetime.Ending()) {
    RemoveTarget();
    with_.closeLauncher();
    return {DownloadResult::Cancelled};
  }
  if (result.end == MirrorRound::End::Interrupted) return {DownloadResult::TryAgain};
  switch (result.last.kind) {
    case Attempt::Kind::NotArrived:
      with_.frmMain.lblEstado.Caption = "Falló la descarga de " + name + ": " + result.last.reason + ".";
      return OnTimeOut(result.notArrived, result.last.reason);
    case Attempt::Kind::BadContent:
      if (unpack && !result.last.otherFile) with_.services.host.dialogs.Show(kUnzipFailed);
      break;
    case Attempt::Kind::OwnFailure:
    case Attempt::Kind::Outdated:
    case Attempt::Kind::Good:
      break;
  }
  return {DownloadResult::Stopped, result.last.reason};
}

Attempt Download::AttemptArchive(const std::string& name, const web::Expected& expected, bool unpack,
                                 const FileUse& use, int& line) {
  web::DownloadState& state = with_.state;
  controls::MainWindow& frmMain = with_.frmMain;
  line = 10;
  frmMain.lblName.Caption = name;
  frmMain.lblDirectorio.Caption = with_.services.folders.BinDir + platform::kSeparator;
  state.Completed = state.Failed = false;
  line = 20;
  for (const std::string& old : {state.TargetPath, state.TargetPath + ".txt"}) {
    if (!platform::IsFile(old)) continue;
    platform::RemoveFile(old);
    with_.services.host.events.DoEvents();
  }
  line = 30;
  frmMain.lblEstado.Caption = "Actualizando juego, por favor aguarde unos minutos.";
  state.Finished = false;
  line = 40;
  const web::FileRequest request = RequestFor(name, expected);
  const std::string& url = request.url;
  const web::TransferReport report = with_.transfers.DownloadUrlToFile(
      url, state.TargetPath, request.expected, unpack ? request.part : std::string{});
  state.WatchdogStart = with_.services.host.clock.SystemUptime();
  if (!report.Arrived()) return NotGood(report, url);
  line = 60;
  Attempt attempt;
  if (!report.Good()) {
    attempt = NotGood(report, url);
    // A page, which every mirror words in its own way.
    if (attempt.kind == Attempt::Kind::NotArrived) attempt.kind = Attempt::Kind::BadContent;
  } else if (unpack || use.judge) {
    attempt = unpack ? UseArchive(url, use) : JudgeFile(use);
    attempt.cut = report.resumed;  // its beginning may be at fault: once more from the first byte
  }
  if (unpack || attempt.kind != Attempt::Kind::Good) RemoveTarget();
  if (unpack && attempt.kind == Attempt::Kind::Good) CountOne(report);
  return attempt;
}

Attempt Download::JudgeFile(const FileUse& use) {
  const std::string why = use.judge(with_.state.TargetPath);
  return why.empty() ? Attempt{} : BadContent(with_.state.TargetPath, why);
}

// While this archive goes into the game, those behind it are fetched and the next one is expanded.
Attempt Download::UseArchive(const std::string& url, const FileUse& use) {
  const std::string& file = with_.state.TargetPath;
  std::unique_ptr<ArchivePreparation> prepared = std::move(prepared_);
  if (prepared && prepared->Url() != url) prepared.reset();
  FetchFollowing();
  const Unpacked unpacked = with_.unzip.Unzip(file, with_.services.folders.AppPath + platform::kSeparator,
                                              {.prepared = prepared.get(), .added = use.added});
  if (unpacked.done) return {};
  if (!unpacked.ownFailure) return BadContent(file, unpacked.reason);
  return {.kind = Attempt::Kind::OwnFailure,
          .reason = unpacked.reason,
          .details = unpacked.reason,
          .noRoom = unpacked.noRoom};
}

// A round in which nothing arrived is over. The pause keeps a launcher from asking a server that is in
// trouble again at once.
Fetched Download::OnTimeOut(int timeouts, const std::string& why) {
  web::DownloadState& state = with_.state;
  while (!TimedOut()) {
    if (state.CancelRequested || with_.services.lifetime.Ending()) return {DownloadResult::Cancelled};
    Pause();
  }
  state.TimedOut = state.RetryPending = true;
  TimeoutCount += timeouts;
  if (TimeoutCount < kMostTimeouts && SilentRetryCount < kMostSilentRetries) {
    ++SilentRetryCount;
    return {DownloadResult::TryAgain};
  }
  const auto answer = with_.services.host.dialogs.Show(kTimeOutQuestion, platform::DialogButtons::YesNo);
  TimeoutCount = 0;
  if (answer != platform::DialogAnswer::Yes) return {DownloadResult::Stopped, why};
  state.RetryPending = true;
  SilentRetryCount = 0;
  RemoveTarget();
  return {DownloadResult::TryAgain};
}

}  // namespace update
