#include "update/run_mode.hpp"

#include <utility>

namespace update {

void RunMode::Enter(Mode mode) {
  mode_ = mode;
  ++changes_;
  const bool runs = mode == Mode::Updating;
  if (!runs) awake_.reset();
  if (runs && !awake_) awake_.emplace();
  if (runs) frmMain_.ProgressBar1.Failed = false;
  frmMain_.tmrUpdates.Set(runs);
  frmMain_.NewsTimer.Set(mode == Mode::Idle);
  parts_.enablePlay(mode == Mode::Idle);
}

void RunMode::RingSilent() {
  if (Now() != Mode::Starting || services_.flags.UpdatesOnly || offline_) return;
  offline_ = true;
  parts_.enablePlay(true);
  parts_.enableSettings(true);
}

void RunMode::StartUpDone() {
  if (Now() != Mode::Starting) return;
  const bool runs = services_.flags.UpdatesOnly || std::exchange(repairWaits_, false);
  Enter(runs ? Mode::Updating : Mode::Idle);
  parts_.enableSettings(true);
}

void RunMode::cmdIniciar_Click() {
  if (Now() == Mode::Starting && offline_) parts_.offerInstalledGame();
  if (Now() == Mode::Idle) Enter(Mode::Updating);
}

// A run that is at a patch still records it, so what a repair forgets is forgotten behind that run.
void RunMode::RepairConfirmed() {
  if (Now() == Mode::Ending) return;
  if (onStack_) {
    startOver_ = true;
    return;
  }
  if (!parts_.forgetInstalled()) return;
  if (Now() == Mode::Starting) repairWaits_ = true;
  if (Now() == Mode::Idle) Enter(Mode::Updating);
}

// The timer rests while its run is on the stack: the run lets events happen, and a run inside a run would
// fetch the same archives into the same folders.
void RunMode::tmrUpdates_Timer() {
  if (Now() != Mode::Updating || onStack_) return;
  onStack_ = true;
  frmMain_.tmrUpdates.Set(false);
  const RunOutcome outcome = parts_.run(std::exchange(hostInDoubt_, false));
  onStack_ = false;
  if (!std::exchange(startOver_, false)) return RunEnded(outcome);
  parts_.forgetInstalled();
  if (Now() != Mode::Ending) frmMain_.tmrUpdates.Set(true);
}

void RunMode::RunEnded(const RunOutcome& outcome) {
  if (Now() == Mode::Ending) return;
  switch (outcome.end) {
    case RunOutcome::End::TryAgain:
      hostInDoubt_ = true;
      frmMain_.tmrUpdates.Set(true);
      return;
    case RunOutcome::End::Stopped:
      hostInDoubt_ = true;
      if (!outcome.log.empty()) services_.recorder.Note(outcome.log);
      frmMain_.restingStatus = outcome.status;
      frmMain_.lblEstado.Caption = outcome.status;
      frmMain_.lblVelocity.Caption = std::string{};
      frmMain_.ProgressBar1.Value = 0;
      frmMain_.ProgressBar1.Failed = true;
      if (services_.flags.UpdatesOnly) return services_.lifetime.End(1);
      Enter(Mode::Idle);
      return;
    case RunOutcome::End::GameStarted:
    case RunOutcome::End::ProgramEnds:
      return;
  }
}

void RunMode::ProgramEnds() {
  ++changes_;
  awake_.reset();
  frmMain_.tmrUpdates.Set(false);
  frmMain_.NewsTimer.Set(false);
}

}  // namespace update
