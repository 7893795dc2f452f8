#pragma once

#include <string>

#include "controls/kinds.hpp"

namespace ui {

class clsGraphicalButton;

// A window whose image buttons light up one at a time. LastPressed is the button that last showed its hover
// picture; never null: at first it points at a button that was never initialised.
struct LastPressedHolder {
  clsGraphicalButton* LastPressed;
};

// Makes a button of an image control: a picture for each of its states and, if asked for, a hand pointer. A
// disabled button still delivers its clicks, so click handlers ask isEnabled where that matters. The control
// and the holder outlive the button, and the button every event of the control.
class clsGraphicalButton {
 public:
  clsGraphicalButton() = default;
  clsGraphicalButton(const clsGraphicalButton&) = delete;
  clsGraphicalButton& operator=(const clsGraphicalButton&) = delete;

  // Paths are full paths; the disabled picture and the pointer may be empty. A picture that is missing raises
  // 53 after everything else was set up, so a caller that goes on has a working button without that picture.
  void Initialize(controls::ImageControl& imgButton, const std::string& imgNormalPath,
                  const std::string& imgRollOverPath, const std::string& imgClickPath,
                  LastPressedHolder& Formulario, const std::string& imgDisabledPath = "",
                  bool StartDisabled = false, bool MakeClickSound = false, bool ShowHandPointer = false,
                  const std::string& handPointer = "");

  void ToggleToNormal();
  void EnableButton(bool ToogleEnable = false);
  bool isEnabled() const { return !disabled_; }

 private:
  void ButtonHolder_MouseDown();
  void ButtonHolder_MouseMove();
  void ButtonHolder_MouseUp();
  void ShowResting();

  controls::ImageControl* ButtonHolder_ = nullptr;
  LastPressedHolder* Formulario_ = nullptr;
  std::string normal_, hover_, pressed_, disabledPicture_;
  bool hovering_ = false;
  bool disabled_ = false;
};

}  // namespace ui
