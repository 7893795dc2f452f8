#include "startup/unattended_dialogs.hpp"

namespace startup {

platform::DialogAnswer UnattendedDialogs::Show(const std::string& text, platform::DialogButtons buttons,
                                               const std::string& title) {
  if (!flags_.UpdatesOnly) return dialogs_.Show(text, buttons, title);
  dialogs_.Announce(text, title);
  if (announced) announced(text);
  return platform::UnattendedAnswer(buttons);
}

}  // namespace startup
