#pragma once

#include <string>

namespace platform {

// RiskyYesNo asks before something that a wrong Yes would cost the player dearly.
enum class DialogButtons { Ok, YesNo, YesNoCancel, RiskyYesNo };
enum class DialogAnswer { Ok, Yes, No, Cancel };

// What the box's last button answers: the answer of one that is closed, or that nobody is there to answer.
constexpr DialogAnswer UnattendedAnswer(DialogButtons buttons) {
  switch (buttons) {
    case DialogButtons::Ok:
      return DialogAnswer::Ok;
    case DialogButtons::YesNo:
    case DialogButtons::RiskyYesNo:
      return DialogAnswer::No;
    case DialogButtons::YesNoCancel:
      break;
  }
  return DialogAnswer::Cancel;
}

// What Enter answers: the first button, unless that one may cost something.
constexpr DialogAnswer DefaultAnswer(DialogButtons buttons) {
  const bool asks = buttons == DialogButtons::YesNo || buttons == DialogButtons::YesNoCancel;
  return asks ? DialogAnswer::Yes : UnattendedAnswer(buttons);
}

// The program's own name, the title of a message box that is given none.
inline constexpr const char* kDefaultDialogTitle = "Launcher - Kelvarin";

class Dialogs {
 public:
  virtual ~Dialogs() = default;

  // Shows a message box over the active window of the program and waits for its answer, events running
  // meanwhile. `text` may hold "\r\n" line breaks; an empty title is none. A key that was held down before
  // the box opened answers nothing.
  virtual DialogAnswer Show(const std::string& text, DialogButtons buttons = DialogButtons::Ok,
                            const std::string& title = kDefaultDialogTitle) = 0;

  // Every box that is open is answered as its last button would, as soon as its events run again. On the
  // interface thread.
  virtual void CloseAll() {}

  // Tells what a box would say where there is somewhere to tell it, and never waits.
  virtual void Announce(const std::string& text, const std::string& title = kDefaultDialogTitle) = 0;
};

}  // namespace platform
