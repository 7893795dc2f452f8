#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/dialogs.hpp"

namespace ui {

enum class PlayerAct {
  Click,   // window.control
  Enter,   // window.control=value
  Point,   // window.control~, or window~ with no control
  Escape,  // window.Esc
  Close,   // window.close
  Tray,    // tray=number
};

// One line of the player in the terminal.
struct PlayerLine {
  PlayerAct act = PlayerAct::Click;
  std::string window;
  std::string control;  // an array's element with its index: "lblServerState(1)"
  std::string value;    // what is entered, as it stands behind the first "="
  int number = 0;       // of a tray message
};

// None when the line follows no form.
std::optional<PlayerLine> ReadPlayerLine(std::string_view line);

// "Yes", "No" or "Cancel" in any case, if the box has such a button.
std::optional<platform::DialogAnswer> ReadAnswer(std::string_view line, platform::DialogButtons buttons);

}  // namespace ui
