#pragma once

#include <functional>
#include <string>

#include "controls/control.hpp"
#include "controls/menu.hpp"

namespace ui {

struct Area {
  int left = 0, top = 0, right = 0, bottom = 0;  // pixels
  int Width() const { return right - left; }
  int Height() const { return bottom - top; }
  bool operator==(const Area&) const = default;
};

enum class TrayAction { Add = 0, Modify = 1, Remove = 2 };

// Where windows are shown: real ones on Windows, printed lines in the terminal. Beside the properties that a
// controls::Face follows, what the windows' own code asks of the screen.
class Screen {
 public:
  virtual ~Screen() = default;

  // From now on the window follows its Visible, State and other properties and gets the player's events.
  // Every change of its State, by the player or by code, raises its Resize. It must be detached before it is
  // destroyed.
  virtual void Attach(controls::Window& window) = 0;
  virtual void Detach(controls::Window& window) = 0;

  virtual Area WorkArea() = 0;  // of the screen that shows the notification area
  virtual double TwipsPerPixel(const controls::Window&) { return 15; }  // 1440 / dots per inch
  virtual Area Bounds(const controls::Window& window) = 0;
  virtual void MoveTo(controls::Window& window, int left, int top) = 0;
  virtual void Centre(controls::Window& window) = 0;
  // Over the middle of `over`, whole on the work area when `over` stands there; when `over` cannot be seen,
  // as Centre.
  virtual void CentreOver(controls::Window& window, const controls::Window& over);
  virtual void BringToForeground(controls::Window& window) = 0;
  virtual void SetTopmost(controls::Window& window) = 0;
  virtual void StartDrag(controls::Window& window) = 0;  // the system moves the window with the pointer

  // Whether a game or a presentation fills the screen, so that nothing should slide over it.
  virtual bool PlayerIsBusy() { return false; }
  // Another instance of the program that runs already may bring its window to the front: for a start that
  // asks it to. The player's last act was this start, so the right to do it is ours to give.
  virtual void LetOthersComeToFront() {}

  std::function<void()> resumed;  // called, when it is set, after the machine has slept

  // The notification-area icon of the program (its own icon resource "AAA"). Its mouse messages arrive as
  // TrayMessage, by their published window-message numbers.
  virtual void NotifyIcon(TrayAction action, const std::string& tip) = 0;
  // From the next NotifyIcon on the icon is drawn from this icon or picture file; empty: the program's own.
  virtual void SetTrayPicture(const std::string& /*file*/) {}
  controls::Event<int> TrayMessage;

  // Shows a pop-up menu at the pointer and runs the Click of the entry chosen.
  virtual void PopupMenu(controls::Menu& menu) = 0;
};

}  // namespace ui
