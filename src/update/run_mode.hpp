#pragma once

#include <functional>
#include <optional>
#include <string>

#include "controls/main_window.hpp"
#include "platform/keep_awake.hpp"
#include "startup/services.hpp"

namespace update {

// What the launcher is doing now.
enum class Mode {
  Starting,  // until start-up is done; play and settings are off unless no mirror answers
  Idle,      // the player looks at servers and news and may press play
  Updating,  // a run is on the stack, or the next tick of tmrUpdates begins one
  Ending,    // the program ends
};

// How a run ended, with the one reason for it.
struct RunOutcome {
  enum class End {
    GameStarted,  // and the launcher is closing
    TryAgain,     // the next tick begins anew
    Stopped,      // the player may press play again
    ProgramEnds,
  };
  End end = End::Stopped;
  std::string status;        // of a run that stopped: what the player reads in the status line (Spanish)
  std::string log = status;  // and what Errores.log says of it, one line; empty when it stands there already
};

// The one owner of the mode. Only it switches the update timer, the news timer and the buttons for play and
// settings; everybody else tells it what happened and asks it whether to go on. No run begins while another
// is on the stack.
class RunMode {
 public:
  struct Parts {
    std::function<void(bool)> enablePlay, enableSettings;
    // One whole run. `hostInDoubt`: the last one did not get what it asked for, so the mirror is to be
    // confirmed first.
    std::function<RunOutcome(bool hostInDoubt)> run;
    // Asks whether to start the installed game although no mirror answers.
    std::function<void()> offerInstalledGame;
    // Forgets what was installed and proved, while no run of this launcher is on the stack; false when it
    // could not.
    std::function<bool()> forgetInstalled;
  };

  RunMode(const startup::Services& services, controls::MainWindow& frmMain, Parts parts)
      : services_(services), frmMain_(frmMain), parts_(std::move(parts)) {}
  RunMode(const RunMode&) = delete;

  Mode Now() const { return services_.lifetime.Ending() ? Mode::Ending : mode_; }

  // What happened. An event that means nothing in the present mode changes nothing.
  void RingSilent();  // a whole round of mirrors did not answer, and the walk goes on
  void StartUpDone();
  void cmdIniciar_Click();  // the play button
  void RepairConfirmed();   // what was installed is forgotten as soon as no run can record anything any more
  void tmrUpdates_Timer();
  void ProgramEnds();  // the timers stop; whoever tells this ends the program

  // Whether the run on the stack may go on at a safe point; false once it must end because of a repair or of
  // the program's end.
  bool MayGoOn() const { return !startOver_ && Now() == Mode::Updating; }

  // Says, as long as it is asked, whether the launcher is in the mode that it is in now and has not left it
  // meanwhile.
  std::function<bool()> StillSo() const {
    return [this, then = changes_] { return changes_ == then; };
  }

 private:
  void Enter(Mode mode);
  void RunEnded(const RunOutcome& outcome);

  const startup::Services& services_;
  controls::MainWindow& frmMain_;
  Parts parts_;
  std::optional<platform::KeepAwake> awake_;  // while a run goes on
  Mode mode_ = Mode::Starting;
  unsigned changes_ = 0;      // of the mode
  bool onStack_ = false;      // a run
  bool startOver_ = false;    // a repair was confirmed while the run on the stack was under way
  bool repairWaits_ = false;  // a repair was confirmed during start-up
  bool hostInDoubt_ = false;
  bool offline_ = false;  // start-up waits for a mirror, and the player may do without
};

}  // namespace update
