#include "startup/unattended_dialogs.hpp"

namespace startup {

platform::DialogAnswer UnattendedDialogs::Show(const std::string& text, platform::DialogButtons buttons,
                                               const std::string& title) {
  if (!flags_.UpdatesOnly) return dialogs_.Show(text, buttons, title);
  dialogs_.Announce(text, title);
  switch (buttons) {
    case platform::DialogButtons::Ok:
      return platform::DialogAnswer::Ok;
    case platform::DialogButtons::YesNo:
      return platform::DialogAnswer::No;
    case platform::DialogButtons::YesNoCancel:
      return platform::DialogAnswer::Cancel;
  }
  return platform::DialogAnswer::Cancel;
}

}  // namespace startup
