#include "controls/control.hpp"

namespace controls {

Control::Control(Window& window, std::string name) : window_(window), name_(std::move(name)) {
  window_.controls_.push_back(this);
}

void Control::Notify(std::string_view property, const std::string& value) {
  window_.Notify(*this, property, value);
}

Window::Window(std::string name, std::string caption)
    : Caption(*this, "Caption", std::move(caption)), name_(std::move(name)) {}

Control* Window::Find(std::string_view name) const {
  for (Control* control : controls_) {
    if (control->Name() == name) return control;
  }
  return nullptr;
}

void Window::Notify(std::string_view property, const std::string& value) {
  if (face_) face_->Changed(*this, property, value);
}

void Window::Notify(const Control& control, std::string_view property, const std::string& value) {
  if (face_) face_->Changed(*this, control, property, value);
}

}  // namespace controls
