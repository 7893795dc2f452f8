#include "update/update_check.hpp"

#include <utility>

#include "base/runtime_error.hpp"
#include "platform/files.hpp"
#include "startup/procedure.hpp"

namespace update {
namespace {

constexpr std::uint32_t kPauseMs = 50;
constexpr int kListTimeoutSeconds = 20;
constexpr int kLastBitmap = 32'000;
constexpr int kBitmapsPerRound = 1'000;  // between two looks at the player's events

}  // namespace

void UpdateCheck::Show(const char* status) {
  with_.frmMain.lblEstado.Caption = status;
  with_.services.host.clock.Sleep(kPauseMs);
  with_.services.host.events.DoEvents();
}

void UpdateCheck::tmrUpdates_Timer() {
  Step step = Step::Stop;
  startOver_ = false;
  startup::Guarded(
      with_.services.recorder, [&](int& line) { step = Run(line); },
      [&](const startup::Failure& failure) {
        return failure.Opening() +
               " en el procedimiento tmrUpdates_Timer del modulo Formulario frmMain en la línea " +
               failure.Line() + " Tmp: " + working_ + "Reporta esto mediante el soporte WEB en " +
               with_.services.deployment.support;
      });
  Finish(step);
}

void UpdateCheck::Finish(Step step) {
  if (with_.services.lifetime.Ending() || step == Step::Ended) return;
  if (step == Step::NextTick) {
    with_.frmMain.tmrUpdates.Set(true);
    return;
  }
  confirmHost_ = true;
  with_.frmMain.tmrUpdates.Set(false);
  with_.enablePlay(true);
  if (with_.services.flags.UpdatesOnly) with_.services.lifetime.End(1);
}

UpdateCheck::Step UpdateCheck::Run(int& line) {
  line = 10;
  working_.clear();
  Show("Buscando actualizaciones...");
  line = 20;
  with_.instance.Release();
  if (const Step step = IndexLoop(line); step != Step::GoOn) return step;
  if (with_.services.lifetime.Ending()) return Step::Ended;
  Complete(line);
  return with_.services.lifetime.Ending() ? Step::Ended : Step::Stop;
}

// The patches, then the index; a failed index starts again with the patches as long as the player wants it.
UpdateCheck::Step UpdateCheck::IndexLoop(int& line) {
  for (;;) {
    if (const Step step = PatchStage(line); step != Step::GoOn) return step;
    with_.download.remoteFolder = "NewAct2/";
    if (with_.services.flags.UpdatesOnly) {
      with_.services.lifetime.End(0);
      return Step::Ended;
    }
    line = 110;
    working_ = "Info.kvn";
    const bool fetched = with_.index.Fetch();
    if (with_.services.lifetime.Ending()) return Step::Ended;
    if (startOver_) return Step::NextTick;
    if (fetched) break;
    const auto answer = with_.services.host.dialogs.Show(
        "No se ha logrado descargar el indice de descargas, ¿Deseas reintentarlo?",
        platform::DialogButtons::YesNo);
    if (answer != platform::DialogAnswer::Yes) break;
    confirmHost_ = true;
  }
  line = 120;
  with_.index.RemoveForeignFiles();
  line = 130;
  with_.index.VerifyAndFetch([&] { return startOver_; });
  return startOver_ ? Step::NextTick : Step::GoOn;
}

UpdateCheck::Step UpdateCheck::PatchStage(int& line) {
  line = 30;
  with_.frmMain.lblEstado.Caption = "Buscando host...";
  const bool timedOut = std::exchange(with_.state.RetryPending, false);
  if (std::exchange(confirmHost_, false) || timedOut) with_.selection.ComenzarActualizacion();
  if (with_.services.lifetime.Ending()) return Step::Ended;
  with_.download.remoteFolder = "OldAct/";
  if (with_.inet.StillExecuting()) return Step::NextTick;
  line = 40;
  with_.inet.SetRequestTimeout(kListTimeoutSeconds);
  working_ = with_.hosts.WebBaseURL + "OldAct/" + "Update.ini";
  const std::string text = with_.inet.OpenURL(working_);
  if (with_.services.lifetime.Ending()) return Step::Ended;
  if (text.empty()) return Step::Stop;
  line = 50;
  const UpdateList list(with_.services.host.profiles,
                        with_.services.folders.AppPath + platform::NativePath("\\Update.ini"), text);
  Show("Buscando actualizaciones...");
  line = 60;
  PatchCounts remote{}, local{};
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    working_ = kCategories[i];
    const auto newest = list.Newest(kCategories[i]);
    if (!newest) {
      with_.frmMain.lblEstado.Caption =
          "Error no se ha logrado leer las actualizaciones de la base de datos de Kelvarin.";
      return Step::Stop;
    }
    remote[i] = *newest;
    local[i] = with_.counters.Read(kCategories[i]);
  }
  line = 70;
  return ApplyPatches(remote, local);
}

UpdateCheck::Step UpdateCheck::ApplyPatches(const PatchCounts& remote, const PatchCounts& local) {
  for (std::size_t i = 0; i < kCategories.size(); ++i) {
    if (local[i] >= remote[i]) {
      // A counter ahead of the server is pulled back to it.
      if (!with_.counters.Write(kCategories[i], remote[i])) return Step::Stop;
      continue;
    }
    for (int number = local[i] + 1; number <= remote[i]; ++number) {
      if (const Step step = ApplyPatch(i, number); step != Step::GoOn) return step;
    }
  }
  return with_.services.lifetime.Ending() ? Step::Ended : Step::GoOn;
}

UpdateCheck::Step UpdateCheck::ApplyPatch(std::size_t category, int number) {
  const std::string name = kCategories[category];
  working_ = name + "/" + name + std::to_string(number) + ".zip";
  switch (with_.download.DescargarArchivo(working_, true)) {
    case DownloadResult::Done:
      break;
    case DownloadResult::TryAgain:
      return Step::NextTick;
    case DownloadResult::Cancelled:
      return Step::Ended;
    case DownloadResult::GivenUp:
    case DownloadResult::UnpackFailed:
    case DownloadResult::Failed:
      return Step::Stop;
  }
  if (startOver_) return Step::NextTick;
  return with_.counters.Write(name, static_cast<std::int16_t>(number)) ? Step::GoOn : Step::Stop;
}

void UpdateCheck::Complete(int& line) {
  line = 140;
  with_.installation.DescomprimirArchivos();
  line = 150;
  RemoveLooseBitmaps();
  if (with_.services.lifetime.Ending()) return;
  line = 160;
  with_.launch.EjecutarKelvar(with_.services.deployment.parameter);
}

// Old clients left their graphics as numbered bitmaps; the first one tells whether there are any.
void UpdateCheck::RemoveLooseBitmaps() {
  if (!platform::IsFile(with_.services.folders.GraphicsDir + "1.bmp")) return;
  for (int i = 0; i <= kLastBitmap && !with_.services.lifetime.Ending(); ++i) {
    platform::TryRemoveFile(with_.services.folders.GraphicsDir + std::to_string(i) + ".bmp");
    if (i % kBitmapsPerRound == 0) with_.services.host.events.DoEvents();
  }
}

}  // namespace update
