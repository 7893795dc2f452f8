#include "ui/clsGraphicalButton.hpp"

#include "base/runtime_error.hpp"
#include "platform/files.hpp"

namespace ui {

void clsGraphicalButton::Initialize(controls::ImageControl& imgButton, const std::string& imgNormalPath,
                                    const std::string& imgRollOverPath, const std::string& imgClickPath,
                                    LastPressedHolder& Formulario, const std::string& imgDisabledPath,
                                    bool StartDisabled, bool /*MakeClickSound*/, bool ShowHandPointer,
                                    const std::string& handPointer) {
  if (!ButtonHolder_) {
    imgButton.MouseDown += [this](controls::MouseButton) { ButtonHolder_MouseDown(); };
    imgButton.MouseMove += [this](controls::MouseButton) { ButtonHolder_MouseMove(); };
    imgButton.MouseUp += [this](controls::MouseButton) { ButtonHolder_MouseUp(); };
  }
  ButtonHolder_ = &imgButton;
  Formulario_ = &Formulario;

  bool missing = false;
  const auto loaded = [&missing](const std::string& path) {
    if (path.empty() || platform::IsFile(path)) return path;
    missing = true;
    return std::string{};
  };
  normal_ = loaded(imgNormalPath);
  hover_ = loaded(imgRollOverPath);
  pressed_ = loaded(imgClickPath);
  disabledPicture_ = loaded(imgDisabledPath);
  if (ShowHandPointer) imgButton.MouseIcon = loaded(handPointer);
  disabled_ = StartDisabled;
  ShowResting();
  if (missing) throw base::RuntimeError(base::ErrorNumber::FileNotFound);
}

void clsGraphicalButton::ToggleToNormal() {
  if (!hovering_) return;
  ShowResting();
  if (!disabled_) hovering_ = false;
}

void clsGraphicalButton::EnableButton(bool ToogleEnable) {
  disabled_ = !ToogleEnable;
  hovering_ = false;
  if (ButtonHolder_) ShowResting();
}

void clsGraphicalButton::ButtonHolder_MouseDown() { ButtonHolder_->Picture = pressed_; }

void clsGraphicalButton::ButtonHolder_MouseMove() {
  if (disabled_) {
    ButtonHolder_->Picture = disabledPicture_;
    return;
  }
  if (hovering_) return;
  Formulario_->LastPressed->ToggleToNormal();
  hovering_ = true;
  ButtonHolder_->Picture = hover_;
  Formulario_->LastPressed = this;
}

void clsGraphicalButton::ButtonHolder_MouseUp() {
  ButtonHolder_->Picture = disabled_ ? disabledPicture_ : hover_;
}

void clsGraphicalButton::ShowResting() {
  ButtonHolder_->Picture = disabled_ ? disabledPicture_ : normal_;
  ButtonHolder_->Idle = disabled_;
}

}  // namespace ui
