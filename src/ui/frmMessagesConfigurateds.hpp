#pragma once

#include <deque>

#include "controls/kinds.hpp"
#include "ui/settings_window.hpp"

namespace ui {

// The game client's ten predefined messages, for display only.
class frmMessagesConfigurateds {
 public:
  explicit frmMessagesConfigurateds(SettingsServices& services);

  void Show(const controls::Window& over) { opened_.Show(over); }
  void Unload() { opened_.Close(); }

  controls::Window Window{"frmMessagesConfigurateds", "Mensajes Predefinidos"};

 private:
  controls::Label lblMensajes_;
  std::deque<controls::Label> labels_;
  std::deque<controls::TextBox> messageTxt_;
  std::deque<controls::Button> buttons_;
  SettingsWindow opened_;
};

}  // namespace ui
