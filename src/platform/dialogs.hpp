#pragma once

#include <string>

namespace platform {

enum class DialogButtons { Ok, YesNo, YesNoCancel };
enum class DialogAnswer { Ok, Yes, No, Cancel };

// What a box is answered with when nobody is there: its last button, which does the least.
constexpr DialogAnswer UnattendedAnswer(DialogButtons buttons) {
  switch (buttons) {
    case DialogButtons::Ok:
      return DialogAnswer::Ok;
    case DialogButtons::YesNo:
      return DialogAnswer::No;
    case DialogButtons::YesNoCancel:
      break;
  }
  return DialogAnswer::Cancel;
}

// The program's own name, the title of a message box that is given none.
inline constexpr const char* kDefaultDialogTitle = "Launcher - Kelvarin";

class Dialogs {
 public:
  virtual ~Dialogs() = default;

  // Shows a message box over the active window of the program and waits for its answer, events running
  // meanwhile. `text` may hold "\r\n" line breaks. Closing a box answers as its last button would; one with
  // only OK answers Ok.
  virtual DialogAnswer Show(const std::string& text, DialogButtons buttons = DialogButtons::Ok,
                            const std::string& title = kDefaultDialogTitle) = 0;

  // Every box that is open is answered as its last button would, as soon as its events run again. On the
  // interface thread.
  virtual void CloseAll() {}

  // Tells what a box would say where there is somewhere to tell it, and never waits.
  virtual void Announce(const std::string& text, const std::string& title = kDefaultDialogTitle) = 0;
};

}  // namespace platform
