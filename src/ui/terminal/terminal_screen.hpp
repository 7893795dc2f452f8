#pragma once

#include <deque>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "platform/dialogs.hpp"
#include "platform/posix/event_loop_posix.hpp"
#include "ui/screen.hpp"
#include "ui/terminal/player_line.hpp"

namespace ui {

// The launcher in a terminal. What a player would see is printed, one line for each change:
//   frmMain.lblEstado: text                      a caption
//   frmMain.lblServerState(1).ForeColor: 65280   any other property
//   frmNotify.Visible: True                      a property of a window
//   MsgBox [title] text                          a message box
//   Menu mPopupMenu                              a pop-up menu opened
// and what is read acts as the player (player_line.hpp has the forms). A line break inside a value is printed
// as \n. A line that cannot be obeyed is answered on the error stream. A question takes the next line as its
// answer; when the input has ended it is answered No, or Cancel where there is such a button. An entry of the
// open menu is clicked as FrmSysTrays.mRestore.
class TerminalScreen : public Screen, public controls::Face, public platform::Dialogs {
 public:
  // The descriptor `input` and the streams stay the caller's; -1: no input.
  TerminalScreen(platform::PosixEventLoop& events, int input, std::ostream& out, std::ostream& errors);

  // Until start-up is done its buttons are not there yet: what the player enters meanwhile is kept, in order,
  // for afterwards. Only closing the window and answering a question are obeyed at once.
  void StartUpDone();

  // Prints a line of the program's own, such as "Run ..." or "Open ...", at once with all before it.
  void Tell(const std::string& line);

  void Attach(controls::Window& window) override;
  void Detach(controls::Window& window) override;
  Area WorkArea() override;
  Area Bounds(const controls::Window& window) override;
  void MoveTo(controls::Window& window, int left, int top) override;
  void Centre(controls::Window& window) override;
  void BringToForeground(controls::Window& window) override;
  void SetTopmost(controls::Window&) override {}
  void StartDrag(controls::Window&) override {}
  void NotifyIcon(TrayAction action, const std::string& tip) override;
  void PopupMenu(controls::Menu& menu) override;

  void Changed(const controls::Window& window, const controls::Control& control, std::string_view property,
               const std::string& value) override;
  void Changed(const controls::Window& window, std::string_view property, const std::string& value) override;

  platform::DialogAnswer Show(const std::string& text, platform::DialogButtons buttons,
                              const std::string& title) override;
  void Announce(const std::string& text, const std::string& title) override;

 private:
  struct Question {
    platform::DialogButtons buttons;
    std::optional<platform::DialogAnswer> answer;
  };

  struct Placed {
    controls::Window* window;
    Area area;
  };

  void Print(const std::string& line);  // on its way by the next round of events
  bool OnLine(const std::string& line);
  std::string Answer(const std::string& line);
  bool MustWait(const PlayerLine& line) const;
  std::string Obey(const PlayerLine& line);
  std::string ObeyWindow(const PlayerLine& line, controls::Window& window);
  std::string ChooseEntry(const std::string& name);
  controls::Window* FindWindow(const std::string& name) const;

  platform::PosixEventLoop& events_;
  std::ostream& out_;
  std::ostream& errors_;
  std::map<const controls::Window*, Placed> windows_;
  bool startUpDone_ = false;
  std::deque<std::string> kept_;
  std::vector<Question*> questions_;  // the innermost last
  controls::Menu* menu_ = nullptr;    // the open one
  bool trayIcon_ = false;
};

}  // namespace ui
