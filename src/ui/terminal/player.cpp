#include "ui/terminal/player.hpp"

#include "controls/kinds.hpp"

namespace ui {
namespace {

using controls::MouseButton;

// A picture gets the pointer whether it is enabled or not: its button decides what that means.
std::string WhyUntouchable(const controls::Control& control) {
  if (dynamic_cast<const controls::Timer*>(&control)) return "is a timer, which nobody can see";
  if (!control.Visible) return "is not visible";
  const bool picture = dynamic_cast<const controls::ImageControl*>(&control) != nullptr;
  return control.Enabled || picture ? "" : "is disabled";
}

void Choose(controls::OptionButton& option) {
  if (option.Value) return;
  for (controls::Control* other : option.Parent().Controls()) {
    auto* sibling = dynamic_cast<controls::OptionButton*>(other);
    if (sibling && sibling != &option) sibling->Value = false;
  }
  option.Value = true;
}

std::string EnterInto(controls::ComboBox& combo, const std::string& value) {
  const int index = combo.IndexOf(value);
  if (combo.KeyUp.HasHandlers()) {
    combo.ListIndex = index;
    combo.Text = value;
    combo.KeyUp();
    return {};
  }
  if (index < 0) return "has no entry \"" + value + "\"";
  combo.Select(index);
  combo.Change();
  return {};
}

}  // namespace

std::string ClickControl(controls::Control& control) {
  if (std::string why = WhyUntouchable(control); !why.empty()) return why;
  control.MouseDown(MouseButton::Left);
  control.MouseUp(MouseButton::Left);
  if (auto* option = dynamic_cast<controls::OptionButton*>(&control)) Choose(*option);
  if (auto* check = dynamic_cast<controls::CheckBox*>(&control)) check->Value = !check->Value;
  control.Click();
  return {};
}

std::string EnterValue(controls::Control& control, const std::string& value) {
  if (std::string why = WhyUntouchable(control); !why.empty()) return why;
  if (auto* combo = dynamic_cast<controls::ComboBox*>(&control)) return EnterInto(*combo, value);
  auto* box = dynamic_cast<controls::TextBox*>(&control);
  if (!box) return "takes no value";
  box->Text = value;
  box->LostFocus();
  return {};
}

std::string PointAt(controls::Control& control) {
  if (std::string why = WhyUntouchable(control); !why.empty()) return why;
  control.MouseMove(MouseButton::None);
  return {};
}

std::string WhyOutOfReach(const controls::Window& window) {
  if (!window.Visible) return "is not visible";
  if (window.State.Get() == controls::WindowState::Minimised) return "is minimised";
  return {};
}

}  // namespace ui
