#include "update/update_check.hpp"

#include <algorithm>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"
#include "update/folder_hold.hpp"
#include "update/launcher_state.hpp"
#include "update/patch_failure.hpp"
#include "update/patch_journal.hpp"
#include "util/clsHashing.hpp"

namespace update {
namespace {

using End = RunOutcome::End;

constexpr std::uint32_t kPauseMs = 50;
constexpr int kListTimeoutSeconds = 20;
constexpr std::size_t kMostAhead = 8;  // archives whose names are told in advance
constexpr int kLastBitmap = 32'000;
constexpr int kBitmapsPerRound = 1'000;  // between two looks at the player's events
constexpr const char* kUnreadableList =
    "Error no se ha logrado leer las actualizaciones de la base de datos de Kelvarin.";

std::string ArchiveOf(std::size_t category, int number) {
  const std::string name = kCategories[category];
  return name + "/" + name + std::to_string(number) + ".zip";
}

RunOutcome Stopped(const std::string& status) { return {End::Stopped, status}; }
// What was told to the player and logged where it happened.
RunOutcome StoppedAndTold(const std::string& status) { return {End::Stopped, status, {}}; }

}  // namespace

void UpdateCheck::Show(const char* status) {
  with_.frmMain.lblEstado.Caption = status;
  with_.services.host.clock.Sleep(kPauseMs);
  with_.services.host.events.DoEvents();
}

RunOutcome UpdateCheck::tmrUpdates_Timer(bool hostInDoubt) {
  FolderHold hold;
  if (!hold.Take(with_.services, with_.frmMain, [this] { return with_.mode.MayGoOn(); }))
    return Interrupted();
  RunOutcome outcome = StoppedAndTold({});
  startup::Guarded(
      with_.services.recorder, [&](int& line) { outcome = Run(line, hostInDoubt); },
      [&](const startup::Failure& failure) {
        const base::RuntimeError error(static_cast<base::ErrorNumber>(failure.number), failure.description);
        outcome.status = "La actualización se detuvo: " + ReasonOf(error) + ".";
        return failure.Opening() +
               " en el procedimiento tmrUpdates_Timer del modulo Formulario frmMain en la línea " +
               failure.Line() + " Tmp: " + working_ + "Reporta esto mediante el soporte WEB en " +
               with_.services.deployment.support;
      });
  RemoveScratch();
  return outcome;
}

RunOutcome UpdateCheck::Interrupted() const {
  return {with_.services.lifetime.Ending() ? End::ProgramEnds : End::TryAgain, {}, {}};
}

// Who cannot update may still play.
RunOutcome UpdateCheck::OfferGame(const RunOutcome& stopped) {
  with_.frmMain.lblEstado.Caption = stopped.status;
  if (with_.installed.Offer(stopped.status)) {
    with_.services.recorder.Note(stopped.log);
    return {End::GameStarted, {}, {}};
  }
  return MayGoOn() ? stopped : Interrupted();
}

RunOutcome UpdateCheck::Run(int& line, bool hostInDoubt) {
  line = 10;
  working_.clear();
  Show("Buscando actualizaciones...");
  line = 20;
  with_.instance.Release();
  with_.trust.BeginRun();
  if (const std::string why = RecoverInterruptedPatch(with_.services); !why.empty()) {
    if (!FolderWritable()) return Unwritable();
    return Stopped("No se pudo deshacer un parche interrumpido: " + why + ".");
  }
  if (const Ended ended = IndexLoop(line, hostInDoubt)) return *ended;
  return Complete(line);
}

// The patches, then the index; a failed index starts again with the patches as long as the player wants it.
UpdateCheck::Ended UpdateCheck::IndexLoop(int& line, bool hostInDoubt) {
  for (;;) {
    if (const Ended ended = PatchStage(line, hostInDoubt)) return ended;
    with_.download.remoteFolder = "NewAct2/";
    if (with_.services.flags.UpdatesOnly) {
      with_.services.lifetime.End(0);
      return Interrupted();
    }
    line = 110;
    working_ = "Info.kvn";
    const bool fetched = with_.index.Fetch();
    if (!MayGoOn()) return Interrupted();
    if (fetched) break;
    const auto answer = with_.services.host.dialogs.Show(
        "No se ha logrado descargar el indice de descargas, ¿Deseas reintentarlo?",
        platform::DialogButtons::YesNo);
    if (!MayGoOn()) return Interrupted();
    if (answer != platform::DialogAnswer::Yes) break;
    hostInDoubt = true;
  }
  line = 120;
  with_.index.RemoveForeignFiles();
  line = 130;
  const bool left = with_.index.VerifyAndFetch([this] { return !MayGoOn(); });
  if (!MayGoOn()) return Interrupted();
  if (left) return Unwritable();
  return std::nullopt;
}

UpdateCheck::Ended UpdateCheck::PatchStage(int& line, bool hostInDoubt) {
  line = 30;
  with_.frmMain.lblEstado.Caption = "Buscando host...";
  const bool confirmed = !hostInDoubt || with_.selection.ConfirmHost();
  if (!MayGoOn()) return Interrupted();
  if (!confirmed) return OfferGame(Stopped("Ningún servidor de actualizaciones responde."));
  if (const Ended ended = AcceptPublication()) return ended;
  with_.download.remoteFolder = "OldAct/";
  if (with_.inet.StillExecuting()) return RunOutcome{End::TryAgain, {}, {}};
  line = 40;
  with_.inet.SetRequestTimeout(kListTimeoutSeconds);
  PatchCounts remote{}, local{};
  if (const Ended ended = FetchCounts(remote, local, line)) return ended;
  line = 70;
  return ApplyPatches(remote, local);
}

UpdateCheck::Ended UpdateCheck::AcceptPublication() {
  working_ = "Signed.txt";
  std::string why;
  switch (with_.trust.Accept(why)) {
    case Trust::Answer::Ready:
      return std::nullopt;
    case Trust::Answer::Interrupted:
      return Interrupted();
    case Trust::Answer::Refused:
      break;
  }
  return OfferGame(Stopped(why));
}

// Mirrors count on being asked for the list; where a publication is signed, it can say nothing new.
UpdateCheck::Ended UpdateCheck::FetchCounts(PatchCounts& remote, PatchCounts& local, int& line) {
  const auto signedCounts = with_.trust.Counts();
  if (!signedCounts) return FetchList(remote, local, line);
  working_ = with_.hosts.WebBaseURL + "OldAct/" + "Update.ini";
  with_.inet.OpenURL(working_);
  if (!MayGoOn()) return Interrupted();
  Show("Buscando actualizaciones...");
  remote = *signedCounts;
  for (std::size_t i = 0; i < kCategories.size(); ++i) local[i] = with_.counters.Read(kCategories[i]);
  return std::nullopt;
}

UpdateCheck::Ended UpdateCheck::FetchList(PatchCounts& remote, PatchCounts& local, int& line) {
  listError_ = nullptr;
  const MirrorRound::Result result =
      with_.mirrors.Fetch("Update.ini", [&] { return AttemptList(remote, local, line); });
  switch (result.end) {
    case MirrorRound::End::Good:
      return std::nullopt;
    case MirrorRound::End::Interrupted:
      return Interrupted();
    case MirrorRound::End::Failed:
      break;
  }
  if (listError_) std::rethrow_exception(listError_);
  if (result.last.kind == Attempt::Kind::BadContent) return StoppedAndTold(kUnreadableList);
  return OfferGame(
      StoppedAndTold("No se pudo obtener la lista de actualizaciones: " + result.last.reason + "."));
}

// A list that cannot be read is as bad as one that did not come.
Attempt UpdateCheck::AttemptList(PatchCounts& remote, PatchCounts& local, int& line) {
  line = 40;
  working_ = with_.hosts.WebBaseURL + "OldAct/" + "Update.ini";
  const web::TextAnswer answer = with_.inet.OpenURL(working_);
  const web::TransferReport& report = answer.report;
  if (answer.text.empty()) {
    const bool empty = report.Arrived();
    return {Attempt::Kind::NotArrived, empty ? "la respuesta está vacía" : report.Reason(),
            empty ? "la respuesta está vacía" : report.Details()};
  }
  const auto bad = [&](const std::string& why) {
    return Attempt{Attempt::Kind::BadContent, why, why, false, util::clsHashing().MD5String(answer.text)};
  };
  line = 50;
  const UpdateList list(with_.services.host.profiles,
                        with_.services.folders.FetchDir + platform::NativePath("\\Update.ini"), answer.text);
  Show("Buscando actualizaciones...");
  line = 60;
  listError_ = nullptr;
  try {
    for (std::size_t i = 0; i < kCategories.size(); ++i) {
      working_ = kCategories[i];
      const auto newest = list.Newest(kCategories[i]);
      if (!newest) return bad(working_ + " no es un número");
      remote[i] = *newest;
      local[i] = with_.counters.Read(kCategories[i]);
    }
  } catch (const base::RuntimeError& error) {
    listError_ = std::current_exception();
    return bad(working_ + ": " + error.Description());
  }
  return {};
}

void UpdateCheck::PlanPatches(const PatchCounts& remote, const PatchCounts& local) {
  patches_.clear();
  installed_ = 0;
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    for (int number = local[i] + 1; number <= remote[i]; ++number) patches_.push_back(ArchiveOf(i, number));
  }
  with_.download.BeginWhole(patches_);
}

UpdateCheck::Ended UpdateCheck::ApplyPatches(const PatchCounts& remote, const PatchCounts& local) {
  if (!FolderWritable()) {
    for (std::size_t i = 0; i < kCategories.size(); ++i) {
      if (local[i] < remote[i]) return Unwritable();
    }
    return std::nullopt;
  }
  PlanPatches(remote, local);
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    if (local[i] >= remote[i]) {
      // A counter ahead of the server is pulled back to it.
      if (const Ended ended = Record(i, remote[i])) return ended;
      continue;
    }
    for (int number = local[i] + 1; number <= remote[i]; ++number) {
      if (const Ended ended = ApplyPatch(i, number)) return ended;
    }
  }
  with_.download.ForgetFollowing();
  with_.download.ForgetInterrupted();
  return std::nullopt;
}

UpdateCheck::Ended UpdateCheck::ApplyPatch(std::size_t category, int number) {
  working_ = ArchiveOf(category, number);
  ++installed_;
  const std::size_t ahead = std::min(patches_.size() - installed_, kMostAhead);
  const auto next = patches_.begin() + static_cast<std::ptrdiff_t>(installed_);
  with_.download.following.assign(next, next + static_cast<std::ptrdiff_t>(ahead));
  const Fetched fetched = with_.download.DescargarArchivo(
      working_, true, {.added = AddedFile{CounterPath(kCategories[category]), CounterText(number)}});
  if (!MayGoOn()) return Interrupted();
  switch (fetched.result) {
    case DownloadResult::Done:
      return Record(category, number);
    case DownloadResult::TryAgain:
      return RunOutcome{End::TryAgain, {}, {}};
    case DownloadResult::Stopped:
      return Stopped("No se pudo instalar " + working_ + ": " + fetched.reason + ".");
    case DownloadResult::Cancelled:
      break;
  }
  return Interrupted();
}

UpdateCheck::Ended UpdateCheck::Record(std::size_t category, int number) {
  if (with_.counters.Write(kCategories[category], static_cast<std::int16_t>(number))) return std::nullopt;
  return StoppedAndTold("No se pudo anotar lo instalado.");
}

// The run has come to something that must be written.
RunOutcome UpdateCheck::Unwritable() {
  const std::string why = "No se puede escribir en la carpeta del juego: " + with_.services.folders.AppPath;
  if (with_.services.flags.UpdatesOnly) return Stopped(why + ".");
  const bool playable = with_.launch.Installed();
  const bool restarts = with_.rights.Make(playable ? "se abrirá el juego tal como está" : "no podrás jugar");
  if (restarts || !MayGoOn()) return Interrupted();
  if (!playable) return Stopped(why + ".");
  with_.services.recorder.Note(why);
  with_.launch.EjecutarKelvar(with_.services.deployment.parameter);
  return {End::GameStarted, {}, {}};
}

RunOutcome UpdateCheck::Complete(int& line) {
  line = 140;
  if (FolderWritable()) {
    with_.installation.DescomprimirArchivos(
        [this](const std::string& packed) { return with_.index.DigestOf(packed); });
    line = 150;
    RemoveLooseBitmaps();
  }
  if (!MayGoOn()) return Interrupted();
  line = 160;
  with_.launch.EjecutarKelvar(with_.services.deployment.parameter);
  return {End::GameStarted, {}, {}};
}

// Old clients left their graphics as numbered bitmaps; the first one tells whether there are any.
void UpdateCheck::RemoveLooseBitmaps() {
  const std::string& folder = with_.services.folders.GraphicsDir;
  if (!platform::IsFile(folder + "1.bmp")) return;
  for (int i = 0; i <= kLastBitmap && !with_.services.lifetime.Ending(); ++i) {
    platform::TryRemoveFile(folder + std::to_string(i) + ".bmp");
    if (i % kBitmapsPerRound == 0) with_.services.host.events.DoEvents();
  }
}

// The copy of the last archive, and the folders that packed files came in.
void UpdateCheck::RemoveScratch() {
  with_.download.ForgetFollowing();
  with_.download.EndWhole();
  platform::TryRemoveFile(with_.services.folders.Scratch("tmp.tmp"));
  platform::RemoveEmptyFolders(with_.services.folders.ResourcesUpdateDir);
}

}  // namespace update
