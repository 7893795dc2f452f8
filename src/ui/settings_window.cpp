#include "ui/settings_window.hpp"

#include <utility>

namespace ui {

SettingsWindow::SettingsWindow(SettingsServices& services, controls::Window& window,
                               std::function<void()> load)
    : services_(services), window_(window), load_(std::move(load)) {
  window_.KeyDown += [this](int key) {
    if (key != controls::kKeyEscape) return;
    services_.gameIni.SaveGameConfig(services_.gameIni.Config);
    Close();
  };
  window_.QueryUnload += [this](controls::UnloadMode) { Close(); };
}

SettingsWindow::~SettingsWindow() {
  if (attached_) services_.screen.Detach(window_);
}

void SettingsWindow::Show(const controls::Window& over) {
  if (loading_) return;  // asked again from inside a message box of the loading
  if (!window_.Visible) {
    loading_ = true;
    load_();
    loading_ = false;
    if (!attached_) services_.screen.Attach(window_);
    attached_ = true;
    services_.screen.CentreOver(window_, over);
    window_.Visible = true;
  }
  if (window_.State.Get() == controls::WindowState::Minimised) window_.State = controls::WindowState::Normal;
  services_.screen.BringToForeground(window_);
}

void SettingsWindow::Close() { window_.Visible = false; }

std::function<std::string(const startup::Failure&)> WindowWords(std::string procedure, std::string window) {
  return [procedure = std::move(procedure), window = std::move(window)](const startup::Failure& failure) {
    return failure.Opening() + " procedimiento " + procedure + " Formulario " + window +
           " línea: " + failure.Line();
  };
}

}  // namespace ui
