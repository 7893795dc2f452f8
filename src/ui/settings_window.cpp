#include "ui/settings_window.hpp"

#include <utility>

#include "platform/files.hpp"

namespace ui {

SkinPictures OptionPictures(const startup::Folders& folders) {
  return SkinPictures(folders.GraphicsDir + platform::NativePath("Opciones\\"));
}

Words WindowWords(const std::string& procedure, const std::string& window) {
  return [=](const startup::Failure& failure) {
    return failure.Opening() + " procedimiento " + procedure + " Formulario " + window +
           " línea: " + failure.Line();
  };
}

SettingsWindow::SettingsWindow(SettingsServices& services, controls::Window& window, Load load, Words words)
    : services_(services), window_(window), load_(std::move(load)), words_(std::move(words)) {
  window_.KeyDown += [this](int key) {
    if (key != controls::kKeyEscape) return;
    services_.gameIni.SaveGameConfig(services_.gameIni.Config());
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
    Form_Load();
    if (!attached_) return;
    services_.screen.CentreOver(window_, over);
    window_.Visible = true;
  }
  if (window_.State.Get() == controls::WindowState::Minimised) window_.State = controls::WindowState::Normal;
  services_.screen.BringToForeground(window_);
}

void SettingsWindow::Form_Load() {
  loading_ = true;
  startup::Guarded(
      services_.recorder,
      [this](int& line) {
        line = 10;
        if (!attached_) services_.screen.Attach(window_);
        attached_ = true;
        line = 20;
        load_(line);
      },
      words_);
  loading_ = false;
}

void SettingsWindow::Close() { window_.Visible = false; }

}  // namespace ui
